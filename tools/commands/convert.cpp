// zrvcomn convert: values from one datatype to another.
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "converter.h"
#include "csv_options.h"
#include "input.h"
#include "listing.h"
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
  bool has_maxlength = false, hex = false, total = false;
  std::string delimiter = ",", locale = "default", charset;
  std::vector<std::string> words;
  Values values;
  Listing listing;
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

Words format_names() {
  Words names;
  for (const FormatBit &row : format_bits)
    names.emplace_back(row.name);
  return names;
}

CS_INT parse_format_bit(const std::string &word) {
  if (!word.empty() && word.find_first_not_of("0123456789") == std::string::npos)
    return decimal("--format", word, 0, std::numeric_limits<CS_INT>::max());
  static const Words names = format_names();
  return format_bits[&choose("--format bit", word, names) - names.data()].bit;
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

// The sum of the results, added as exact numerics. It is whole or it is none.
class Total {
public:
  explicit Total(const Type &type) {
    sum.precision = static_cast<CS_BYTE>(type.precision);
    sum.scale = static_cast<CS_BYTE>(type.scale);
  }

  void add(std::string_view bytes) {
    CS_NUMERIC value{}, next{};
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    if (!is_whole())
      return;
    status = comn_numadd(&sum, &value, &next);
    sum = next;
  }
  void leave_out() { ++missing; }

  bool is_whole() const { return missing == 0 && status == CS_SUCCEED; }
  std::string why_not() const {
    if (missing == 0)
      return "the sum does not fit a numeric: " + status_name(status);
    return "there is no sum: " + std::to_string(missing) +
           (missing == 1 ? " value is missing in it" : " values are missing in it");
  }

  std::string text() {
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
  CS_RETCODE status = CS_SUCCEED;
  uint64_t missing = 0;
};

// Why a text is no value of its type.
std::string why_unread(const Type &type, CS_RETCODE status) {
  const std::string name = status_name(status);
  if (status != CS_CONV_OVERFLOW && status != CS_CONV_UNDERFLOW && status != CS_CONV_TRUNCATED)
    return " is no " + type.full_name() + ": " + name;
  if (type.layout() == Layout::exact && type.is_bare)
    return " does not fit " + type.full_name() + ", the default; say --from " + type.info->name +
           "(p,s): " + name;
  return " does not fit " + type.full_name() + ": " + name;
}

// Bits and capacities that nothing would look at are refused, not dropped.
void check_uses(const Type &from, const Type &to, CS_INT format, bool has_maxlength) {
  const auto is_text = [](const Type &type) { return type.layout() == Layout::text; };
  const bool is_open =
      is_text(to) || to.layout() == Layout::binary || to.layout() == Layout::unitext;
  const std::string why =
      " has no use: the type " + std::string(to.info->name) + " has a fixed width";
  if (has_maxlength && !is_open)
    throw UsageError("--maxlength" + why);
  if (format != 0 && !is_open)
    throw UsageError("--format" + why);
  if ((format & CS_DFMT_ESCQUOTE) != 0 && (!is_text(from) || !is_text(to)))
    throw UsageError("--format escquote doubles quotes from text to text, and nothing else");
}

int run(const Options &options) {
  const Type from = parse_type(options.from);
  const Type to = parse_type(options.to);
  const CS_INT format = parse_format(options.format);
  if (options.total && to.layout() != Layout::exact)
    throw UsageError("--total adds numerics, not " + std::string(to.info->name));
  check_uses(from, to, format, options.has_maxlength);
  Converter converter(from, to, format,
                      options.has_maxlength ? std::optional<CS_INT>(options.maxlength)
                                            : std::nullopt,
                      options.locale, options.charset);

  Writer out(STDOUT_FILENO);
  Rows rows(out,
            options.listing.json    ? RowStyle::json
            : options.listing.plain ? RowStyle::plain
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
        options.csv, options.column, options.delimiter.front(),
        [&](uint64_t line, const std::string &fault) {
          failures.report(input->place(line), fault);
        },
        show_so_far);
  else
    input = values_input(options.values, show_so_far);

  uint64_t count = 0;
  Total total(to);
  InputValue value;
  try {
    while (input->next(value)) {
      const Outcome outcome = converter.convert(value.text);
      const bool is_good = is_success(outcome.status);
      if (!options.total) {
        Row row{value.line, value.text, {}, {}, outcome.bytes, outcome.status};
        row.is_units = to.layout() == Layout::unitext;
        if (outcome.was_read)
          row.length = outcome.length;
        if (outcome.is_usable)
          row.result = outcome.text;
        rows.add(row);
      } else if (is_good) {
        total.add(outcome.bytes);
      } else {
        total.leave_out();
      }
      if (!is_good)
        failures.report(input->place(value.line),
                        in_quotes(value.text) + (outcome.was_read
                                                     ? ": " + status_name(outcome.status)
                                                     : why_unread(from, outcome.status)));
      progress.step(++count, input->progress());
    }
  } catch (const StreamError &) {
    // What was converted before the input broke off counts.
    show_so_far();
    throw;
  }
  show_so_far();
  if (options.total && !total.is_whole()) {
    failures.report("--total", total.why_not());
  } else if (options.total) {
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
  offer(app.add_option("--format", options->format,
                       "Format bits of the result: nullterm, padnull, padblank, escquote or "
                       "numbers, joined by commas")
            ->type_name("BITS"),
        format_names());
  app.add_option("--locale", options->locale,
                 "The locale of the texts, for names and order of dates and the character set")
      ->type_name("NAME");
  CLI::Option *const charset =
      app.add_option("--charset", options->charset, "The character set of the texts, if another")
          ->type_name("SET");
  constexpr CS_INT longest = 16 * 1024 * 1024;
  CLI::Option *const maxlength = add_number(app, "--maxlength", options->maxlength, 0, longest,
                                            "BYTES", "Capacity of the result in bytes");
  const CLI::Option *const csv = add_csv(app, options->csv, options->column, options->delimiter,
                                         "Take the values from a CSV file, '-' for standard input")
                                     .file;
  app.add_flag("--hex", options->hex, "Show the bytes of each result in hexadecimal");
  CLI::Option *const json = add_listing(app, options->listing, "value").json;
  app.add_flag("--total", options->total,
               "Print the sum of the results, which must be numerics, in place of them")
      ->excludes(json);
  app.add_option("values", options->words, "Values, or '-' for the lines of standard input");
  app.footer(
      "Values that begin with '-' stand behind '--'. A failed value is reported on standard error\n"
      "with its line and status; the others are converted.\n"
      "\nExamples:\n"
      "  zrvcomn convert --from smallint --to tinyint -- -1 300 42\n"
      "  zrvcomn convert --from int --to 'char(8)' --format nullterm,padblank --hex 12345\n"
      "  seq 1000 | zrvcomn convert --from int --to 'binary(4)' --json -\n"
      "  zrvcomn convert --from bigint --to smallint --csv countries.csv --column population\n"
      "  zrvcomn convert --from char --to 'unichar(20)' --hex abc\n"
      "  zrvcomn convert --from 'numeric(9,2)' --to 'numeric(20,2)' --total 0.10 0.20\n"
      "  zrvcomn convert --from char --to datetime --locale fr_FR.UTF-8 '14 juillet 1989'\n"
      "\nExit codes: 0 all values converted, 1 some failed, 2 wrong usage.");
  return [options, maxlength, csv, charset](const std::vector<std::string> &more_values) {
    if (charset->count() > 0 && options->charset.empty())
      throw UsageError("--charset names no set");
    options->has_maxlength = maxlength->count() > 0;
    if (csv->count() == 0) {
      options->values =
          Values(options->words, more_values,
                 "no values: give some, or '-' for standard input, or --csv and --column");
      return run(*options);
    }
    if (!options->words.empty() || !more_values.empty())
      throw UsageError("--csv excludes values");
    check_csv(options->csv, options->delimiter);
    return run(*options);
  };
}

const Subcommand convert("convert", "Convert values from one datatype to another", add);

} // namespace
