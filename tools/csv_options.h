// The options that take values from a CSV file, for every subcommand that does.
#ifndef ZRVTOOL_CSV_OPTIONS_H
#define ZRVTOOL_CSV_OPTIONS_H

#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zrvtool {

// --csv, --column and --delimiter, which go together; `what` is what --csv does.
struct CsvOptions {
  CLI::Option *file, *column, *delimiter;
};
CsvOptions add_csv(CLI::App &app, std::string &file, std::string &column, std::string &delimiter,
                   const std::string &what);

// What was given, when --csv was: throws UsageError. A delimiter of "\\t" becomes a tab.
void check_csv(const std::string &file, std::string &delimiter);

} // namespace zrvtool

#endif
