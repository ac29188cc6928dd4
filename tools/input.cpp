// Reading of lines in large blocks, and of CSV records line by line on top of it.
#include "input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include <csv.h>

#include "errors.h"
#include "visible.h"

namespace zrvtool {

namespace {

// Splits a file into lines. A line ends in a line feed; the last one may lack it.
class LineReader {
public:
  LineReader(const std::string &path, BeforeWait wait)
      : name(path == "-" ? "standard input" : path), before_wait(std::move(wait)) {
    file = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0)
      throw UsageError("cannot open " + in_quotes(path) + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode)) {
      close_file();
      throw UsageError("cannot read " + in_quotes(path) + ": it is a directory");
    }
    is_regular = S_ISREG(status.st_mode);
    if (is_regular)
      total = static_cast<uint64_t>(status.st_size);
    buffer.resize(block_bytes);
  }
  ~LineReader() { close_file(); }
  LineReader(const LineReader &) = delete;
  LineReader &operator=(const LineReader &) = delete;

  // The next line with its line feed.
  bool next(std::string_view &line) {
    size_t searched = begin;
    for (;;) {
      const char *const data = buffer.data();
      if (const void *found = std::memchr(data + searched, '\n', end - searched)) {
        const size_t after = static_cast<size_t>(static_cast<const char *>(found) - data) + 1;
        return take(after, line);
      }
      searched = end;
      if (!fill(searched))
        return begin < end && take(end, line);
    }
  }

  uint64_t line_number() const { return lines; }
  std::pair<uint64_t, uint64_t> progress() const { return {bytes_read, total}; }
  const std::string &display_name() const { return name; }

private:
  static constexpr size_t block_bytes = 256 * 1024;

  bool take(size_t after, std::string_view &line) {
    line = std::string_view(buffer).substr(begin, after - begin);
    begin = after;
    ++lines;
    return true;
  }

  // Reads a block behind the unfinished line, which moves to the front, `searched` with it.
  bool fill(size_t &searched) {
    if (at_end)
      return false;
    if (begin > 0) {
      std::memmove(buffer.data(), buffer.data() + begin, end - begin);
      searched -= begin;
      end -= begin;
      begin = 0;
    }
    if (buffer.size() - end < block_bytes)
      buffer.resize(2 * buffer.size());
    if (!is_regular && before_wait)
      before_wait();
    ssize_t count = 0;
    do
      count = read(file, buffer.data() + end, buffer.size() - end);
    while (count < 0 && errno == EINTR);
    if (count < 0)
      throw StreamError("cannot read " + name + ": " + std::strerror(errno));
    at_end = count == 0;
    end += static_cast<size_t>(count);
    bytes_read += static_cast<uint64_t>(count);
    return !at_end;
  }

  void close_file() {
    if (file > STDIN_FILENO)
      close(file);
    file = -1;
  }

  std::string name;
  BeforeWait before_wait;
  int file;
  bool is_regular = false;
  bool at_end = false;
  std::string buffer;
  size_t begin = 0, end = 0;
  uint64_t lines = 0, bytes_read = 0, total = 0;
};

class ArgumentsInput : public Input {
public:
  explicit ArgumentsInput(std::vector<std::string> the_values) : values(std::move(the_values)) {}
  bool next(InputValue &value) override {
    if (position == values.size())
      return false;
    value.text = values[position++];
    value.line = position;
    return true;
  }
  std::string place(uint64_t line) const override { return "value " + std::to_string(line); }

private:
  std::vector<std::string> values;
  size_t position = 0;
};

class LinesInput : public Input {
public:
  explicit LinesInput(BeforeWait before_wait) : reader("-", std::move(before_wait)) {}
  bool next(InputValue &value) override {
    if (!reader.next(value.text))
      return false;
    // The end of the line is LF or CR LF and no part of the value.
    if (value.text.ends_with('\n')) {
      value.text.remove_suffix(1);
      if (value.text.ends_with('\r'))
        value.text.remove_suffix(1);
    }
    value.line = reader.line_number();
    return true;
  }
  std::string place(uint64_t line) const override { return "line " + std::to_string(line); }
  std::pair<uint64_t, uint64_t> progress() const override { return reader.progress(); }

private:
  LineReader reader;
};

// The parser gets one line at a time, so that a record's line is known although quoted fields may
// hold line feeds.
class CsvInput : public Input {
public:
  CsvInput(const std::string &path, const std::string &column, char delimiter, BadRecord bad,
           BeforeWait before_wait)
      : reader(path, std::move(before_wait)), bad_record(std::move(bad)), wanted(column) {
    if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) != 0)
      throw std::bad_alloc();
    csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
    // Blanks around a field are part of it.
    csv_set_space_func(&parser, [](unsigned char) { return 0; });
    try {
      find_column();
    } catch (...) {
      csv_free(&parser);
      throw;
    }
  }
  ~CsvInput() override { csv_free(&parser); }
  CsvInput(const CsvInput &) = delete;
  CsvInput &operator=(const CsvInput &) = delete;

  bool next(InputValue &value) override {
    while (next_record()) {
      if (fields.size() != width)
        bad_record(record_line, "the record has " + std::to_string(fields.size()) + " of " +
                                    std::to_string(width) + " fields" +
                                    (index < fields.size() ? "" : ", and no " + in_quotes(wanted)));
      if (index < fields.size()) {
        value = {fields[index], record_line};
        return true;
      }
    }
    return false;
  }
  std::string place(uint64_t line) const override {
    return reader.display_name() + ":" + std::to_string(line);
  }
  std::pair<uint64_t, uint64_t> progress() const override { return reader.progress(); }
  std::string_view record() const override { return raw; }

private:
  void find_column() {
    if (!next_record())
      throw UsageError(in_quotes(reader.display_name()) +
                       " is empty: the first line names the columns");
    constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    if (fields[0].starts_with(byte_order_mark))
      fields[0].erase(0, byte_order_mark.size());
    width = fields.size();
    const auto found = std::find(fields.begin(), fields.end(), wanted);
    index = static_cast<size_t>(found - fields.begin());
    if (found != fields.end()) {
      if (std::find(found + 1, fields.end(), wanted) != fields.end())
        throw UsageError("two columns of " + in_quotes(reader.display_name()) + " have the name " +
                         in_quotes(wanted));
      return;
    }
    std::string message = "no column " + in_quotes(wanted) + " in " +
                          in_quotes(reader.display_name()) + ", which has";
    for (size_t i = 0; i < width; ++i)
      message += (i == 0 ? " " : ", ") + in_quotes(fields[i]);
    throw UsageError(message);
  }

  // Reads the next record into `fields`.
  bool next_record() {
    fields_used = 0;
    is_complete = false;
    record_line = 0;
    std::string_view line;
    while (!is_complete && reader.next(line)) {
      if (record_line == 0) {
        record_line = reader.line_number();
        raw.clear();
      }
      raw += line;
      if (csv_parse(&parser, line.data(), line.size(), on_field, on_record, this) != line.size())
        fail(reader.line_number());
      if (has_stray_return)
        throw StreamError(place(reader.line_number()) + ": a carriage return inside the line");
      if (!is_complete && line.find_first_not_of("\r\n") == std::string_view::npos &&
          fields_used == 0 && !is_quoting()) {
        bad_record(record_line, "the line is blank");
        record_line = 0;
      }
    }
    if (!is_complete && csv_fini(&parser, on_field, on_record, this) != 0)
      fail(record_line);
    fields.resize(fields_used);
    return is_complete;
  }

  // True when the line was blank only because it stands inside quotes.
  bool is_quoting() const { return parser.quoted != 0; }

  [[noreturn]] void fail(uint64_t line) {
    throw StreamError(place(line) + ": " +
                      (csv_error(&parser) == CSV_EPARSE ? "misplaced or unfinished quotes"
                                                        : csv_strerror(csv_error(&parser))));
  }

  static void on_field(void *bytes, size_t length, void *self_pointer) {
    auto &self = *static_cast<CsvInput *>(self_pointer);
    // The parser takes a lone carriage return for the end of a record.
    self.has_stray_return = self.is_complete;
    if (self.fields.size() == self.fields_used)
      self.fields.emplace_back();
    self.fields[self.fields_used++].assign(static_cast<const char *>(bytes), length);
  }
  static void on_record(int, void *self_pointer) {
    static_cast<CsvInput *>(self_pointer)->is_complete = true;
  }

  LineReader reader;
  BadRecord bad_record;
  std::string wanted;
  std::string raw;
  csv_parser parser;
  std::vector<std::string> fields;
  size_t fields_used = 0, index = 0, width = 0;
  bool is_complete = false, has_stray_return = false;
  uint64_t record_line = 0;
};

} // namespace

Values::Values(const std::vector<std::string> &given, const std::vector<std::string> &behind_dashes,
               const char *none)
    : words(given), are_lines(std::find(given.begin(), given.end(), "-") != given.end()) {
  words.insert(words.end(), behind_dashes.begin(), behind_dashes.end());
  if (words.empty())
    throw UsageError(none);
  if (are_lines && words.size() > 1)
    throw UsageError("'-' for standard input excludes other values");
}

std::unique_ptr<Input> values_input(const Values &values, BeforeWait before_wait) {
  if (values.are_lines)
    return std::make_unique<LinesInput>(std::move(before_wait));
  return std::make_unique<ArgumentsInput>(values.words);
}

std::unique_ptr<Input> csv_input(const std::string &path, const std::string &column, char delimiter,
                                 BadRecord bad_record, BeforeWait before_wait) {
  return std::make_unique<CsvInput>(path, column, delimiter, std::move(bad_record),
                                    std::move(before_wait));
}

} // namespace zrvtool
