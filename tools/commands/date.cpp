// zrvcomn date: text both ways, sums, differences and parts of dates.
#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "date_parse.h"
#include "input.h"
#include "listing.h"
#include "output.h"
#include "started.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/datetime.h"

namespace {

using namespace zrvtool;

constexpr CS_INT iso_style = 140; // with microseconds
constexpr CS_INT last_style = 200;
constexpr CS_BYTE bigdatetime_number = 187; // the protocol's number of CS_BIGDATETIME

struct Options {
  std::string action, part, from, locale, to = "datetime", order = "mdy";
  CS_INT style = iso_style, count = 0, firstday = 7;
  bool parse = false, all_styles = false, names = false;
  Listing listing;
  std::vector<std::string> words;
  Values values;
};

// The parts by their codes.
const Words part_names = {"year",      "quarter",  "month",    "weekday",     "day",
                          "dayofyear", "hour",     "minute",   "second",      "millisecond",
                          "week",      "iso-year", "iso-week", "iso-weekday", "microsecond"};

int parse_part(const std::string &name) {
  return static_cast<int>(&choose("part", name, part_names) - part_names.data());
}

struct Parsed {
  CS_RETCODE status;
  CS_BIGDATETIME value;
};

// So many digits from the front of a text; nothing if they are not there.
std::optional<CS_INT> take_number(std::string_view &text, size_t digits) {
  if (text.size() < digits)
    return std::nullopt;
  CS_INT number = 0;
  for (const char digit : text.substr(0, digits)) {
    if (digit < '0' || digit > '9')
      return std::nullopt;
    number = number * 10 + (digit - '0');
  }
  text.remove_prefix(digits);
  return number;
}

bool take(std::string_view &text, std::string_view any_of) {
  if (text.empty() || any_of.find(text.front()) == std::string_view::npos)
    return false;
  text.remove_prefix(1);
  return true;
}

// YYYY-MM-DD, or that with a "T" or a blank, hh:mm, and :ss and .ffffff if they are there.
bool read_iso(std::string_view text, CS_DATEREC &fields) {
  const auto read = [&](CS_INT &field, size_t digits) {
    const auto number = take_number(text, digits);
    field = number.value_or(0);
    return number.has_value();
  };
  fields = {};
  fields.datesecprec = 1000000;
  if (!read(fields.dateyear, 4) || !take(text, "-") || !read(fields.datemonth, 2) ||
      !take(text, "-") || !read(fields.datedmonth, 2))
    return false;
  --fields.datemonth;
  if (text.empty())
    return true;
  if (!take(text, "T ") || !read(fields.datehour, 2) || !take(text, ":") ||
      !read(fields.dateminute, 2))
    return false;
  if (text.empty())
    return true;
  if (!take(text, ":") || !read(fields.datesecond, 2))
    return false;
  if (text.empty())
    return true;
  if (!take(text, ".") || text.empty() || text.size() > 6)
    return false;
  std::string fraction(text);
  fraction.resize(6, '0');
  text = fraction;
  return read(fields.datesecfrac, 6);
}

Parsed parse_date(std::string_view text) {
  CS_DATEREC fields;
  Parsed parsed{CS_CONV_SYNTAX, 0};
  if (read_iso(text, fields))
    parsed.status = com_bigdatetimemake(&parsed.value, &fields) == 0 ? CS_SUCCEED : CS_CONV_DOMAIN;
  return parsed;
}

// The names that dates are written with: those of a locale, or the English ones. A locale also has a
// character set for them.
class Names {
public:
  explicit Names(const Options &options) {
    if (!options.locale.empty())
      started = std::make_unique<Started>(options.locale);
    CS_CONTEXT *const context = started != nullptr ? started->get() : nullptr;
    short_months = com_intl_shortmonths(context, nullptr);
    months = com_intl_months(context, nullptr);
    for (CS_INT day = 0; day < 7; ++day) // from Sunday on
      days[day] =
          started == nullptr
              ? Com__WeekDay[day]
              : com_intl_days(
                    context,
                    nullptr)[com_intl_convt_firstday(7, day, com_intl_firstday(context, nullptr))];
    is_utf8 = options.listing.json;
  }

  std::string in_charset(const std::string &text) const {
    return started == nullptr || is_utf8 ? text
                                         : started->convert(text, started->locale()->timeptr);
  }

  CS_CHAR **short_months, **months, *days[7];

private:
  std::unique_ptr<Started> started;
  bool is_utf8;
};

// Nothing where there is no such style.
std::optional<std::string> show(CS_BIGDATETIME value, CS_INT style, CS_CHAR **short_months) {
  char text[256];
  const CS_INT length = com__bigdatetimetochar(&value, text, sizeof text, style, short_months);
  if (length < 0)
    return std::nullopt;
  return std::string(text, static_cast<size_t>(length));
}

std::optional<std::string> show(CS_BIGDATETIME value, CS_INT style, const Names &names) {
  const std::optional<std::string> text = show(value, style, names.short_months);
  return text ? std::optional(names.in_charset(*text)) : std::nullopt;
}

// What comes of one value: its status and, if that is success, its text.
struct Result {
  CS_RETCODE status;
  std::string text;
};

Result part_of(CS_BIGDATETIME value, int part, const Options &options, const Names &names) {
  if (!options.names)
    return {CS_SUCCEED, std::to_string(com__bigdatepart(part, &value, options.firstday))};
  char text[256];
  const CS_INT length =
      com__bigdatename(part, &value, text, names.months, const_cast<CS_CHAR **>(names.days));
  return {CS_SUCCEED, names.in_charset(std::string(text, static_cast<size_t>(length)))};
}

using Work = std::function<Result(CS_BIGDATETIME)>;

Work make_work(const Options &options, const Names &names) {
  if (options.action == "format")
    return [&options, &names](CS_BIGDATETIME value) {
      return Result{CS_SUCCEED, show(value, options.style, names).value_or("")};
    };
  const int part = parse_part(options.part);
  if (options.action == "add")
    return [&options, &names, part](CS_BIGDATETIME value) {
      if (com__bigdate_add(part, options.count, &value, bigdatetime_number) != 0)
        return Result{CS_CONV_OVERFLOW, ""};
      return Result{CS_SUCCEED, show(value, options.style, names).value_or("")};
    };
  if (options.action == "part")
    return [&options, &names, part](CS_BIGDATETIME value) {
      return part_of(value, part, options, names);
    };
  const Parsed from = parse_date(options.from);
  if (from.status != CS_SUCCEED)
    throw UsageError("--from takes a date as 2001-01-05 or 2001-01-05T13:30:15");
  return [from, part](CS_BIGDATETIME value) {
    CS_BIGDATETIME start = from.value;
    CS_BIGINT difference = 0;
    com__bigdatediff(part, &start, &value, &difference);
    return Result{CS_SUCCEED, std::to_string(difference)};
  };
}

// One row for each style that there is.
void print_all_styles(Writer &out, const InputValue &value, CS_BIGDATETIME date, bool json,
                      const Names &names) {
  for (CS_INT style = 0; style <= last_style; ++style)
    if (const auto text = show(date, style, names)) {
      if (json) {
        nlohmann::ordered_json object;
        object["line"] = value.line;
        object["value"] = value.text;
        object["result"] = *text;
        object["length"] = text->size();
        object["status"] = status_name(CS_SUCCEED);
        object["code"] = CS_SUCCEED;
        object["style"] = style;
        out.text += json_text(object) + "\n";
      } else {
        out.text += std::to_string(style) + "\t" + *text + "\n";
      }
      out.settle();
    }
}

int run(const Options &options) {
  const Names names(options);
  const Work work = make_work(options, names);
  Writer out(STDOUT_FILENO);
  Rows rows(out,
            options.listing.json    ? RowStyle::json
            : options.listing.plain ? RowStyle::plain
                                    : RowStyle::lines,
            false);
  const bool is_number = options.action == "diff" || (options.action == "part" && !options.names);
  const auto input = values_input(options.values, [&] { out.flush(); });
  int code = exit_success;
  for (InputValue value; input->next(value);) {
    const Parsed date = parse_date(value.text);
    Result result{date.status, ""};
    if (date.status == CS_SUCCEED) {
      if (options.all_styles) {
        print_all_styles(out, value, date.value, options.listing.json, names);
        continue;
      }
      result = work(date.value);
    }
    if (result.status != CS_SUCCEED) {
      out.flush();
      std::fprintf(stderr, "zrvcomn date: %s: %s: %s\n", input->place(value.line).c_str(),
                   in_quotes(value.text).c_str(), status_name(result.status).c_str());
      code = exit_failure;
    }
    Row row{value.line, value.text, {}, {}, {}, result.status};
    row.is_number = is_number;
    if (result.status == CS_SUCCEED) {
      row.result = result.text;
      row.length = static_cast<CS_INT>(result.text.size());
    }
    rows.add(row);
  }
  out.flush();
  return code;
}

// Which actions an option serves, and which of them need it. "--parse" is an action here.
struct Use {
  const CLI::Option *option;
  Words actions;
  Words needing;
};

bool has(const Words &words, const std::string &word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

void check_uses(const std::vector<Use> &uses, const std::string &action) {
  for (const Use &use : uses) {
    if (use.option->count() > 0 && !has(use.actions, action))
      throw UsageError(action + " has no use for " + use.option->get_name());
    if (use.option->count() == 0 && has(use.needing, action))
      throw UsageError(action + " needs " + use.option->get_name());
  }
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  const Words actions = {"format", "add", "diff", "part"};
  offer(app.add_option("action", options->action, "format, add, diff or part; none with --parse")
            ->type_name("ACTION"),
        actions);
  app.add_flag("--parse", options->parse, "Show what the library reads in each free-form text");
  CLI::Option *const to =
      app.add_option("--to", options->to,
                     "--parse: datetime, datetime4, bigdatetime, date, time or bigtime (datetime)")
          ->type_name("DATETYPE");
  offer(to, {"datetime", "datetime4", "bigdatetime", "date", "time", "bigtime"});
  CLI::Option *const order =
      app.add_option("--order", options->order, "--parse: the order of three numbers (mdy)")
          ->type_name("ORDER");
  offer(order, {"mdy", "dmy", "ymd", "ydm", "myd", "dym"});
  CLI::Option *const style =
      add_number(app, "--style", options->style, 0, last_style, "NUMBER",
                 "Style of the text of format and add (140), or that --parse reads (0)");
  Words styles;
  for (CS_INT number = 0; number <= last_style; ++number)
    if (show(0, number, com__get_shortmonths()))
      styles.push_back(std::to_string(number));
  offer(style, styles);
  CLI::Option *const all_styles =
      app.add_flag("--all-styles", options->all_styles, "format: print every style with its text");
  CLI::Option *const part =
      app.add_option("--part", options->part, "add, diff, part: the part of the date, as 'month'")
          ->type_name("PART");
  offer(part, part_names);
  constexpr CS_INT most = std::numeric_limits<CS_INT>::max();
  CLI::Option *const count = add_number(app, "--count", options->count, -most, most, "NUMBER",
                                        "add: how many of the part, of any sign");
  CLI::Option *const from =
      app.add_option("--from", options->from, "diff: the date that each value is compared with")
          ->type_name("DATE");
  CLI::Option *const firstday =
      add_number(app, "--firstday", options->firstday, 1, 7, "DAY",
                 "part: the day that counts as 1, from Monday 1 to Sunday 7");
  CLI::Option *const locale =
      app.add_option("--locale", options->locale,
                     "The locale whose names of months and days, and whose character set, are used")
          ->type_name("NAME");
  CLI::Option *const names = app.add_flag("--names", options->names, "part: the name of the part");
  CLI::Option *const plain = add_listing(app, options->listing, "result").plain;
  const std::vector<Use> uses = {
      {to, {"--parse"}, {}},
      {order, {"--parse"}, {}},
      {style, {"--parse", "format", "add"}, {}},
      {all_styles, {"format"}, {}},
      {part, {"add", "diff", "part"}, {"add", "diff", "part"}},
      {count, {"add"}, {"add"}},
      {from, {"diff"}, {"diff"}},
      {firstday, {"part"}, {}},
      {locale, {"format", "add", "part"}, {}},
      {names, {"part"}, {}},
      {plain, {"format", "add", "diff", "part"}, {}},
  };
  app.add_option("values", options->words,
                 "Dates as 2001-01-05 or 2001-01-05T13:30:15.123456, or '-' for the lines of "
                 "standard input");
  app.footer("Parts: year, quarter, month, weekday, day, dayofyear, hour, minute, second,\n"
             "millisecond, week, iso-year, iso-week, iso-weekday, microsecond.\n"
             "\nExamples:\n"
             "  zrvcomn date format --all-styles 2001-01-05T13:30:15.123456\n"
             "  zrvcomn date add --part month --count 1 --style 23 2001-01-31\n"
             "  zrvcomn date diff --part day --from 2000-01-01 2001-01-01\n"
             "  zrvcomn date part --part weekday --names 2001-01-05\n"
             "  zrvcomn date --parse --order dmy '31/12/1999 5pm'\n"
             "  zrvcomn date format --style 0 --locale fr_FR.UTF-8 1789-07-14\n"
             "\nExit codes: 0 all values done, 1 some failed, 2 wrong usage.");
  return [options, uses, actions, style](const std::vector<std::string> &more_values) {
    Words &words = options->words;
    if (options->parse) {
      // The first text stands where an action would.
      if (!options->action.empty())
        words.insert(words.begin(), options->action);
      check_uses(uses, "--parse");
      if (style->count() == 0)
        options->style = 0;
      return parse_dates({Values(words, more_values), options->to, options->order, options->style,
                          options->listing.json});
    }
    options->action = choose("action", options->action, actions);
    options->values = Values(words, more_values);
    check_uses(uses, options->action);
    if (options->all_styles && (style->count() > 0 || options->listing.plain))
      throw UsageError("--all-styles excludes --style and --plain");
    if (!show(0, options->style, com__get_shortmonths()))
      throw UsageError("there is no style " + std::to_string(options->style));
    return run(*options);
  };
}

const Subcommand date("date", "Format dates, add to them, compare them, take them apart", add);

} // namespace
