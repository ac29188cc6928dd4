// zrvcomn sort: sorts lines or CSV records as the library compares them.
#include <deque>
#include <iostream>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "csv_options.h"
#include "input.h"
#include "output.h"
#include "sort_order.h"
#include "subcommand.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string charset = "iso_1", order = "dictionary", column, csv, check, delimiter = ",";
  bool reverse = false, unique = false;
};

// Texts that last, in large blocks.
class Store {
public:
  std::string_view keep(std::string_view text) {
    if (blocks.empty() || blocks.back().capacity() - blocks.back().size() < text.size()) {
      blocks.emplace_back();
      blocks.back().reserve(std::max(block_bytes, text.size()));
    }
    std::string &block = blocks.back();
    block += text;
    return std::string_view(block).substr(block.size() - text.size());
  }

private:
  static constexpr size_t block_bytes = 1 << 20;
  std::deque<std::string> blocks;
};

void write_line(Writer &out, std::string_view line) {
  out.text += line;
  if (!line.ends_with('\n'))
    out.text += '\n';
  out.settle();
}

int sort(const Options &options) {
  const SortOrder order(options.charset, options.order);
  Writer out(STDOUT_FILENO);
  bool is_whole = true;
  const bool is_csv = !options.csv.empty();
  const std::unique_ptr<Input> input =
      is_csv ? csv_input(
                   options.csv, options.column, options.delimiter[0],
                   [&](uint64_t line, const std::string &fault) {
                     std::cerr << "zrvcomn sort: " << options.csv << ":" << line << ": " << fault
                               << "\n";
                     is_whole = false;
                   },
                   nullptr)
             : values_input(Values({"-"}, {}), nullptr);
  Store store;
  if (is_csv) // the names of the columns stay where they are
    write_line(out, input->record());
  std::vector<SortItem> items;
  Progress progress(isatty(STDERR_FILENO) != 0);
  for (InputValue value; input->next(value);) {
    if (value.text.size() > INT32_MAX)
      throw StreamError(input->place(value.line) + ": longer than the library compares");
    const std::string_view key = store.keep(value.text);
    items.push_back({key, is_csv ? store.keep(input->record()) : key});
    progress.step(items.size(), input->progress());
  }
  progress.clear();
  sort_items(order, items, options.reverse, options.unique);
  for (const SortItem &item : items)
    write_line(out, item.text);
  out.flush();
  return is_whole ? exit_success : exit_failure;
}

int check(const std::string &path) {
  const SortOrderReport report = check_sort_order(path);
  if (!report.is_good) {
    std::cerr << "zrvcomn sort: " << path << ", " << report.text << "\n";
    return exit_failure;
  }
  Writer out(STDOUT_FILENO);
  out.text += path + ": " + report.text + "\n";
  out.flush();
  return exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  CLI::Option *const charset =
      app.add_option("--charset", options->charset, "Character set of the input (iso_1)")
          ->type_name("SET");
  CLI::Option *const order =
      app.add_option("--order", options->order, "Sort order of the set (dictionary)")
          ->type_name("ORDER");
  const CsvOptions csv = add_csv(app, options->csv, options->column, options->delimiter,
                                 "Sort the records of a CSV file, '-' for standard input");
  app.add_flag("-r,--reverse", options->reverse, "Highest first");
  app.add_flag("-u,--unique", options->unique, "The first alone of what is equal");
  app.add_option("--check", options->check,
                 "Compile the file of a sort order, and say what is wrong")
      ->type_name("FILE");
  app.footer(
      "Sorts the lines of standard input. What the order finds equal is told apart by the\n"
      "order among equals, as upper case before lower; what is equal then stays as it came.\n"
      "\nExamples:\n"
      "  printf 'Zoo\\nzebra\\napple\\n' | zrvcomn sort --order nocase\n"
      "  zrvcomn sort --charset ascii_8 --csv samples/countries.csv --column code -r\n"
      "  zrvcomn sort --check home/charsets/iso_1/nocase.srt\n"
      "\nExit codes: 0 sorted or right, 1 input that is left out, a file that is wrong, 2\n"
      "wrong usage.");
  return [=](const std::vector<std::string> &) {
    if (csv.file->count() > 0)
      check_csv(options->csv, options->delimiter);
    if (options->check.empty())
      return sort(*options);
    if (!options->csv.empty() || options->reverse || options->unique || *charset || *order)
      throw UsageError("--check stands alone");
    return check(options->check);
  };
}

const Subcommand subcommand("sort", "Sort lines as the library compares them", add);

} // namespace
