// The options of CSV files.
#include "csv_options.h"

#include <CLI/CLI.hpp>

#include "errors.h"

namespace zrvtool {

CsvOptions add_csv(CLI::App &app, std::string &file, std::string &column, std::string &delimiter,
                   const std::string &what) {
  const CsvOptions options = {
      app.add_option("--csv", file, what)->type_name("FILE"),
      app.add_option("--column", column, "Column of the CSV file, by its name")->type_name("NAME"),
      app.add_option("--delimiter", delimiter, "What stands between the fields of the CSV file (,)")
          ->type_name("CHARACTER")};
  options.file->needs(options.column);
  options.column->needs(options.file);
  options.delimiter->needs(options.file);
  return options;
}

void check_csv(const std::string &file, std::string &delimiter) {
  if (file.empty())
    throw UsageError("--csv names no file");
  if (delimiter == "\\t")
    delimiter = "\t";
  if (delimiter.size() != 1 || delimiter.find_first_of("\"\r\n") == 0)
    throw UsageError("--delimiter is one byte, and neither a quote nor the end of a line");
}

} // namespace zrvtool
