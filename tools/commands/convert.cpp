// zrvcomn convert: values from one datatype to another.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "converter.h"
#include "input.h"
#include "output.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/numeric.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string from, to, format, csv, column;
  int maxlength = 0;
  bool has_maxlength = false, from_stdin = false, hex = false, json = false, plain = false;
  bool total = false;
  std::vector<std::string> values;
};

struct FormatBit {
  const char *name;
  CS_INT bit;
};
constexpr FormatBit format_bits[] = {
    {"nullterm", CS_DFMT_NULLTERM},
    {"padnull", CS_DFMT_PADNULL},
    {"padblank", CS_DFMT_PADBLANK},
    {"escquote", CS_DFMT_ESCQUOTE},
};

CS_INT parse_format_bit(const std::string &word) {
  CS_INT number = 0;
  const char *const end = word.data() + word.size();
  const auto [rest, error] = std::from_chars(word.data(), end, number);
  if (error == std::errc() && rest == end && number >= 0)
    return number;
  std::vector<std::string> names;
  for (const FormatBit &row : format_bits) {
    if (word == row.name)
      return row.bit;
    names.emplace_back(row.name);
  }
  throw UsageError("--format knows no '" + word + "'" + suggest(word, names));
}

// "nullterm,padblank", "1|4" and "5" are the same.
CS_INT parse_format(const std::string &text) {
  constexpr const char *separators = ",+|";
  if (text.empty())
    return 0;
  CS_INT format = 0;
  size_t begin = 0;
  for (;;) {
    const size_t end = text.find_first_of(separators, begin);
    format |= parse_format_bit(text.substr(begin, end - begin));
    if (end == std::string::npos)
      return format;
    begin = end + 1;
  }
}

// Tells on standard error what failed. Written to a terminal, it stands where it happened among
// the results; otherwise the two streams do not wait for each other.
class Failures {
public:
  // `before` makes the terminal ready for a message.
  explicit Failures(std::function<void()> before)
      : before_message(std::move(before)), err(STDERR_FILENO) {}
  ~Failures() {
    try {
      err.flush();
    } catch (const StreamError &) {
      // Nobody is left to be told.
    }
  }

  void report(const std::string &place, const std::string &what) {
    any = true;
    if (err.is_terminal())
      before_message();
    err.text += "zrvcomn convert: " + place + ": " + what + "\n";
    if (err.is_terminal())
      err.flush();
    err.settle();
  }

  bool any = false;

private:
  std::function<void()> before_message;
  Writer err;
};

// The sum of the results, added as exact numerics.
class Total {
public:
  // A result that was stored; returns the status of the addition.
  CS_RETCODE add(std::string_view bytes) {
    CS_NUMERIC value{};
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    if (!has_value) {
      has_value = true;
      sum = value;
      return CS_SUCCEED;
    }
    CS_NUMERIC next;
    const CS_RETCODE status = comn_numadd(&sum, &value, &next);
    if (is_success(status))
      sum = next;
    return status;
  }

  std::string text() {
    if (!has_value)
      return "0";
    constexpr CS_INT longest = 80;
    char digits[longest];
    CS_CONTEXT context{};
    CS_DATAFMT source{}, destination{};
    source.datatype = CS_TYPE_NUMERIC;
    destination.datatype = CS_TYPE_CHAR;
    destination.maxlength = longest;
    CS_INT length = 0;
    comn_numtochar(&context, &source, &sum, &destination, digits, &length);
    return std::string(digits, static_cast<size_t>(length));
  }

private:
  CS_NUMERIC sum{};
  bool has_value = false;
};

std::string quoted(std::string_view value) {
  constexpr size_t longest = 60;
  std::string text = "'";
  append_visible(text, value.substr(0, longest));
  return text + (value.size() > longest ? "...'" : "'");
}

int run(const Options &options) {
  const Type from = parse_type(options.from);
  const Type to = parse_type(options.to);
  const CS_INT format = parse_format(options.format);
  if (options.total && to.layout() != Layout::exact)
    throw UsageError("--total adds numerics, not " + std::string(to.info->name));
  Converter converter(from, to, format,
                      options.has_maxlength ? std::optional<CS_INT>(options.maxlength)
                                            : std::nullopt);

  Writer out(STDOUT_FILENO);
  Rows rows(out,
            options.json    ? RowStyle::json
            : options.plain ? RowStyle::plain
                            : RowStyle::table,
            options.hex);
  const auto show_so_far = [&] {
    rows.settle();
    out.flush();
  };
  // Results on the same terminal are progress enough.
  Progress progress(isatty(STDERR_FILENO) == 1 && !out.is_terminal());
  Failures failures([&] {
    progress.clear();
    if (out.is_terminal())
      show_so_far();
  });

  std::unique_ptr<Input> input;
  if (!options.csv.empty())
    input = csv_input(
        options.csv, options.column,
        [&](uint64_t line, const std::string &fault) {
          failures.report(input->place(line), fault);
        },
        show_so_far);
  else if (options.from_stdin)
    input = lines_input(show_so_far);
  else
    input = arguments_input(options.values);

  uint64_t count = 0;
  Total total;
  InputValue value;
  try {
    while (input->next(value)) {
      const Outcome outcome = converter.convert(value.text);
      CS_RETCODE status = outcome.status;
      if (!options.total)
        rows.add({value.line, value.text, outcome.was_read, outcome.text, outcome.length,
                  outcome.bytes, outcome.status});
      else if (is_success(status))
        status = total.add(outcome.bytes);
      if (!is_success(status))
        failures.report(
            input->place(value.line),
            quoted(value.text) +
                (outcome.was_read ? ": " : std::string(" is no ") + from.info->name + ": ") +
                status_name(status));
      progress.step(++count, input->progress());
    }
  } catch (const StreamError &) {
    // What was converted before the input broke off counts.
    show_so_far();
    throw;
  }
  show_so_far();
  if (options.total) {
    out.text += total.text() + "\n";
    out.flush();
  }
  return failures.any ? exit_failure : exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  app.add_option("--from", options->from, "Datatype of the values, as 'int' or 'char(12)'")
      ->required()
      ->type_name("TYPE");
  app.add_option("--to", options->to, "Datatype to convert to")->required()->type_name("TYPE");
  app.add_option("--format", options->format,
                 "Format bits of the result: nullterm, padnull, padblank, escquote or numbers, "
                 "joined by commas")
      ->type_name("BITS");
  constexpr int longest = 16 * 1024 * 1024;
  CLI::Option *const maxlength =
      app.add_option("--maxlength", options->maxlength, "Capacity of the result in bytes")
          ->check(CLI::Range(0, longest))
          ->type_name("BYTES");
  CLI::Option *const csv = app.add_option("--csv", options->csv,
                                          "Take the values from a CSV file, '-' for standard input")
                               ->type_name("FILE");
  CLI::Option *const column =
      app.add_option("--column", options->column, "Column of the CSV file, by its name")
          ->type_name("NAME");
  app.add_flag("--hex", options->hex, "Show the bytes of each result in hexadecimal");
  CLI::Option *const json =
      app.add_flag("--json", options->json, "Print one JSON object for each value");
  app.add_flag("--plain", options->plain, "Print columns with tabs between, without a header")
      ->excludes(json);
  app.add_flag("--total", options->total,
               "Print the sum of the results, which must be numerics, in place of them")
      ->excludes(json);
  app.add_option("values", options->values, "Values, or '-' for the lines of standard input");
  csv->needs(column);
  column->needs(csv);
  app.footer(
      "Values that begin with '-' stand behind '--'. A failed value is reported on standard error\n"
      "with its line and status; the others are converted.\n"
      "\nExamples:\n"
      "  zrvcomn convert --from smallint --to tinyint -- -1 300 42\n"
      "  zrvcomn convert --from int --to 'char(8)' --format nullterm,padblank --hex 12345\n"
      "  seq 1000 | zrvcomn convert --from int --to 'binary(4)' --json -\n"
      "  zrvcomn convert --from bigint --to smallint --csv countries.csv --column population\n"
      "  zrvcomn convert --from 'numeric(9,2)' --to 'numeric(20,2)' --total 0.10 0.20\n"
      "\nExit codes: 0 all values converted, 1 some failed, 2 wrong usage.");
  return [options, maxlength, csv](const std::vector<std::string> &more_values) {
    options->has_maxlength = maxlength->count() > 0;
    auto &all = options->values;
    const bool from_stdin = std::find(all.begin(), all.end(), "-") != all.end();
    all.insert(all.end(), more_values.begin(), more_values.end());
    if (csv->count() > 0 && !all.empty())
      throw UsageError("--csv excludes values");
    if (csv->count() > 0 && options->csv.empty())
      throw UsageError("--csv names no file");
    if (csv->count() == 0 && all.empty())
      throw UsageError("no values: give some, or '-' for standard input, or --csv and --column");
    if (from_stdin && all.size() > 1)
      throw UsageError("'-' for standard input excludes other values");
    options->from_stdin = from_stdin;
    return run(*options);
  };
}

const Subcommand convert("convert", "Convert values from one datatype to another", add);

} // namespace
