// Where values come from: arguments, the lines of standard input, a column of a CSV file.
#ifndef ZRVTOOL_INPUT_H
#define ZRVTOOL_INPUT_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zrvtool {

struct InputValue {
  std::string_view text; // lasts until the next value
  uint64_t line;         // its line, or its place among the arguments, from 1
};

class Input {
public:
  virtual ~Input() = default;

  // Gives the next value, or returns false at the end. Throws StreamError when reading fails.
  virtual bool next(InputValue &value) = 0;

  // The record in which the latest value stands, as it was read, its end included; before the first
  // value the one that names the columns. Empty where there are no records. Lasts as the value does.
  virtual std::string_view record() const { return {}; }

  // What comes before the number in a message: "value ", "line ", "file.csv:".
  virtual std::string place(uint64_t line) const = 0;

  // The bytes read and the bytes in all; 0 where that is not known.
  virtual std::pair<uint64_t, uint64_t> progress() const { return {0, 0}; }
};

// Called before a read that may have to wait.
using BeforeWait = std::function<void()>;
// Called with the line and the fault of a CSV record that has no such column.
using BadRecord = std::function<void(uint64_t, const std::string &)>;

// The values of a command line. "-" alone among `words` stands for the lines of standard input; those
// behind "--" are values whatever they look like. Throws UsageError, with `none` where there are no
// values at all.
struct Values {
  Values() = default;
  Values(const std::vector<std::string> &words, const std::vector<std::string> &behind_dashes,
         const char *none = "no values: give some, or '-' for standard input");

  std::vector<std::string> words;
  bool are_lines = false;
};

std::unique_ptr<Input> values_input(const Values &values, BeforeWait before_wait);

// Reads `path`, or standard input for "-". Throws UsageError when the file or the column is not
// there, or the column is there twice.
std::unique_ptr<Input> csv_input(const std::string &path, const std::string &column, char delimiter,
                                 BadRecord bad_record, BeforeWait before_wait);

} // namespace zrvtool

#endif
