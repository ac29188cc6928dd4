// Layout and writing of results.
#include "output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "listing.h"
#include "status_names.h"
#include "visible.h"

namespace zrvtool {

namespace {

constexpr size_t flush_bytes = 64 * 1024;

bool is_set(const char *variable) {
  const char *const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool knows_colour() {
  const char *const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) != "dumb" && !is_set("NO_COLOR");
}

constexpr const char *bold = "\033[1m";
constexpr const char *red = "\033[31m";
constexpr const char *plain_text = "\033[0m";

} // namespace

Writer::Writer(int descriptor)
    : file(descriptor), terminal(isatty(descriptor) == 1), colour(terminal && knows_colour()) {}

void Writer::settle() {
  if (text.size() >= flush_bytes)
    flush();
}

void Writer::flush() {
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t count = write(file, rest.data(), rest.size());
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0) {
      text.clear();
      throw StreamError(std::string("cannot write the output: ") + std::strerror(errno));
    }
    rest.remove_prefix(static_cast<size_t>(count));
  }
  text.clear();
}

namespace {

// Rows that are laid out together; the columns of a longer table only ever grow.
constexpr size_t batch_rows = 256;
constexpr size_t batch_bytes = 256 * 1024;
// A longer cell sticks out rather than to push all others aside.
constexpr size_t widest_column = 40;

void append_bytes(std::string &out, const Row &row) {
  if (row.is_units)
    append_hex_units(out, row.bytes);
  else
    append_hex(out, row.bytes);
}

const std::string titles[] = {"value", "result", "length", "hex", "status"};
constexpr size_t hex_column = 3;

} // namespace

Rows::Rows(Writer &writer, RowStyle row_style, bool shows_hex)
    : out(writer), style(row_style), with_hex(shows_hex) {
  if (style == RowStyle::table)
    batch.resize(batch_rows);
}

void Rows::add(const Row &row) {
  if (style == RowStyle::plain)
    return add_plain(row);
  if (style == RowStyle::json)
    return add_json(row);
  if (style == RowStyle::lines)
    return add_line(row);
  Cells &cells = batch[batched++];
  cells.value.clear();
  cells.result.clear();
  cells.length.clear();
  cells.hex.clear();
  append_visible(cells.value, row.value);
  if (row.result) {
    append_visible(cells.result, *row.result);
    if (with_hex)
      append_bytes(cells.hex, row);
  }
  if (row.length)
    cells.length = std::to_string(*row.length);
  cells.status = status_name(row.status);
  cells.failed = !is_success(row.status);
  batched_bytes += cells.value.size() + cells.result.size() + cells.hex.size();
  if (batched == batch.size() || batched_bytes > batch_bytes)
    settle();
}

void Rows::settle() {
  const auto columns = [](const Cells &cells, const std::string *(&list)[column_count]) {
    list[0] = &cells.value;
    list[1] = &cells.result;
    list[2] = &cells.length;
    list[hex_column] = &cells.hex;
    list[4] = &cells.status;
  };
  const std::string *list[column_count];
  for (size_t row = 0; row < batched; ++row) {
    columns(batch[row], list);
    for (size_t i = 0; i < column_count; ++i)
      widths[i] = std::max(widths[i], std::min(widest_column, count_characters(*list[i])));
  }
  if (batched > 0 && !has_header) {
    has_header = true;
    for (size_t i = 0; i < column_count; ++i) {
      list[i] = &titles[i];
      widths[i] = std::max(widths[i], titles[i].size());
    }
    lay_out(list, bold);
  }
  for (size_t row = 0; row < batched; ++row) {
    columns(batch[row], list);
    lay_out(list, batch[row].failed ? red : nullptr);
  }
  if (batched_bytes > batch_bytes) // long cells do not stay
    std::fill_n(batch.begin(), batched, Cells());
  batched = batched_bytes = 0;
}

void Rows::lay_out(const std::string *const (&cells)[column_count], const char *colour) {
  if (!out.has_colour())
    colour = nullptr;
  if (colour != nullptr)
    out.text += colour;
  for (size_t i = 0; i < column_count; ++i) {
    if (i == hex_column && !with_hex)
      continue;
    out.text += *cells[i];
    if (i + 1 == column_count)
      break;
    const size_t width = count_characters(*cells[i]);
    out.text.append(widths[i] > width ? widths[i] - width + 2 : 2, ' ');
  }
  if (colour != nullptr)
    out.text += plain_text;
  out.text += '\n';
  out.settle();
}

void Rows::add_plain(const Row &row) {
  append_visible(out.text, row.value);
  out.text += '\t';
  if (row.result)
    append_visible(out.text, *row.result);
  out.text += '\t';
  if (row.length)
    out.text += std::to_string(*row.length);
  if (with_hex) {
    out.text += '\t';
    if (row.result)
      append_bytes(out.text, row);
  }
  out.text += '\t';
  out.text += status_name(row.status);
  out.text += '\n';
  out.settle();
}

void Rows::add_line(const Row &row) {
  if (row.result)
    out.text += *row.result;
  out.text += '\n';
  out.settle();
}

namespace {

// A text as JSON. Most have nothing to escape. The bytes that are replaced are all in --hex.
void append_json(std::string &out, std::string_view text) {
  const bool is_plain = std::all_of(text.begin(), text.end(), [](char c) {
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
  });
  if (is_plain)
    out.append(1, '"').append(text).append(1, '"');
  else
    out += json_text(text);
}

} // namespace

void Rows::add_json(const Row &row) {
  out.text += "{\"line\":" + std::to_string(row.line) + ",\"value\":";
  append_json(out.text, row.value);
  out.text += ",\"result\":";
  if (!row.result)
    out.text += "null";
  else if (row.is_number)
    out.text += *row.result;
  else
    append_json(out.text, *row.result);
  out.text += ",\"length\":" + (row.length ? std::to_string(*row.length) : "null");
  if (with_hex && row.result) {
    out.text += ",\"hex\":\"";
    append_bytes(out.text, row);
    out.text += '"';
  } else if (with_hex) {
    out.text += ",\"hex\":null";
  }
  out.text += ",\"status\":\"" + status_name(row.status) +
              "\",\"code\":" + std::to_string(row.status) + "}\n";
  out.settle();
}

void Progress::clear() {
  if (is_drawn)
    std::fputs("\r\033[K", stderr);
  is_drawn = false;
}

void Progress::step(uint64_t count, std::pair<uint64_t, uint64_t> bytes) {
  if (!shown || count % interval != 0)
    return;
  is_drawn = true;
  std::fprintf(stderr, "\r%llu values", static_cast<unsigned long long>(count));
  if (const auto [done, total] = bytes; total > 0)
    std::fprintf(stderr, ", %llu%%",
                 static_cast<unsigned long long>(100 * std::min(done, total) / total));
}

void Progress::show_bytes(uint64_t done, uint64_t total) {
  constexpr uint64_t mebibyte = 1 << 20;
  if (!shown || done - drawn_bytes < 16 * mebibyte)
    return;
  is_drawn = true;
  drawn_bytes = done;
  std::fprintf(stderr, "\r%llu MiB", static_cast<unsigned long long>(done / mebibyte));
  if (total > 0)
    std::fprintf(stderr, ", %llu%%",
                 static_cast<unsigned long long>(100 * std::min(done, total) / total));
}

} // namespace zrvtool
