// Where results go: rows as an aligned table, as plain columns or as JSON, and progress.
#ifndef ZRVTOOL_OUTPUT_H
#define ZRVTOOL_OUTPUT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrvcomn/cstypes.h"

namespace zrvtool {

// Text on its way to a file descriptor, written in large blocks.
class Writer {
public:
  explicit Writer(int descriptor);

  // What is to be written: append to it, then call settle.
  std::string text;

  void settle();
  // Throws StreamError when it cannot write.
  void flush();

  bool is_terminal() const { return terminal; }
  // True when escapes for colours may be sent: a terminal, without NO_COLOR, that knows them.
  bool has_colour() const { return colour; }

private:
  int file;
  bool terminal, colour;
};

enum class RowStyle {
  lines, // the results alone; an empty line for one that is missing
  table, // columns that are aligned, under a header
  plain, // columns with tabs between, without a header
  json,  // JSON Lines
};

// One row of results.
struct Row {
  uint64_t line;
  std::string_view value;
  std::optional<std::string_view> result;
  std::optional<CS_INT> length;
  std::string_view bytes; // of the result
  CS_RETCODE status;
  bool is_units = false;  // the bytes are those of 16-bit text
  bool is_number = false; // the result is one, and stands in JSON as such
};

class Rows {
public:
  Rows(Writer &out, RowStyle style, bool with_hex);

  void add(const Row &row);
  // Lays out what has come so far, so that it can be written.
  void settle();

private:
  struct Cells {
    std::string value, result, length, hex, status;
    bool failed;
  };
  static constexpr size_t column_count = 5;

  void add_line(const Row &row);
  void add_plain(const Row &row);
  void add_json(const Row &row);
  void lay_out(const std::string *const (&cells)[column_count], const char *colour);

  Writer &out;
  RowStyle style;
  bool with_hex;
  bool has_header = false;
  std::vector<Cells> batch;
  size_t batched = 0, batched_bytes = 0;
  size_t widths[column_count] = {};
};

// A line on standard error that counts, where that is a terminal and the input is long.
class Progress {
public:
  explicit Progress(bool is_shown) : shown(is_shown) {}
  ~Progress() { clear(); }
  void clear();
  void step(uint64_t count, std::pair<uint64_t, uint64_t> bytes);
  // The same for a stream: `total` is 0 where it is not known.
  void show_bytes(uint64_t done, uint64_t total);

private:
  static constexpr uint64_t interval = 100000;
  bool shown;
  bool is_drawn = false;
  uint64_t drawn_bytes = 0;
};

} // namespace zrvtool

#endif
