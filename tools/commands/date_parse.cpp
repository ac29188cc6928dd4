// zrvcomn date --parse: what the library reads in a free-form text, field by field.
#include "date_parse.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "arguments.h"
#include "errors.h"
#include "input.h"
#include "listing.h"
#include "output.h"
#include "status_names.h"
#include "visible.h"
#include "zrvcomn/datetime.h"

namespace zrvtool {
namespace {

enum Shown { date = 1, time = 2, micros = 4 };

// What the library makes of a text: its result, and the value taken apart.
struct Outcome {
  int result;
  CS_DATEREC fields;
  bool truncated;
};

using Entry = std::function<Outcome(std::string &, CS_INT, CS_INT)>;

// An entry point of the parser, and what takes its value apart.
template <class Value, class Parse, class Crack>
Entry make_entry(Parse parse, Crack crack) {
  return [parse, crack](std::string &text, CS_INT style, CS_INT order) {
    Value value{};
    CS_BOOL truncated = 0;
    Outcome outcome{};
    outcome.result = parse(&value, text.data(), static_cast<CS_INT>(text.size()), style, order,
                           com__get_months(), com__get_shortmonths(), nullptr, &truncated);
    outcome.truncated = truncated != 0;
    if (outcome.result == 0)
      crack(value, outcome.fields);
    return outcome;
  };
}

void crack(CS_DATETIME value, CS_DATEREC &fields) {
  com_datecrack(&value, &fields);
  com_timecrack(&value, &fields);
}

void crack_big(CS_BIGDATETIME value, CS_DATEREC &fields) {
  com_bigdatecrack(&value, &fields);
  com_bigtimecrack(&value, &fields);
}

struct Type {
  std::string name;
  int shown;
  Entry read;
};

const std::vector<Type> &types() {
  static const std::vector<Type> all = {
      {"datetime", date | time, make_entry<CS_DATETIME>(com__datefromchar_mb, crack)},
      {"datetime4", date | time,
       make_entry<CS_DATETIME4>(com__date4fromchar_mb,
                                [](CS_DATETIME4 value, CS_DATEREC &fields) {
                                  CS_DATETIME wide;
                                  com__date4todt(&value, &wide);
                                  crack(wide, fields);
                                })},
      {"bigdatetime", date | time | micros,
       make_entry<CS_BIGDATETIME>(com__bigdatetimefromchar_mb, crack_big)},
      {"date", date,
       make_entry<CS_DATE>(com__dateafromchar_mb,
                           [](CS_DATE value, CS_DATEREC &fields) {
                             crack(CS_DATETIME{value, 0}, fields);
                           })},
      {"time", time,
       make_entry<CS_TIME>(com__timeafromchar_mb,
                           [](CS_TIME value, CS_DATEREC &fields) {
                             crack(CS_DATETIME{0, value}, fields);
                           })},
      {"bigtime", time | micros, make_entry<CS_BIGTIME>(com__bigtimefromchar_mb, crack_big)}};
  return all;
}

const Words order_names = {"mdy", "dmy", "ymd", "ydm", "myd", "dym"};

const Type &find_type(const std::string &name) {
  Words names;
  for (const Type &type : types())
    names.push_back(type.name);
  const std::string &found = choose("date type", name, names);
  return types()[static_cast<size_t>(&found - names.data())];
}

CS_INT find_order(const std::string &name) {
  return static_cast<CS_INT>(&choose("order", name, order_names) - order_names.data()) + 1;
}

const char *reason_of(int result) {
  switch (result) {
  case DT_BAD_SYNTAX:
    return "this forms no date";
  case DT_LEFTOVER:
    return "something is left over";
  case COM_DATE_BADMONTH:
    return "no such month";
  case COM_DATE_BADDAY:
    return "no such day";
  case 9:
    return "am or pm contradicts the hour";
  default:
    return "a year, a time or the value is out of range";
  }
}

nlohmann::ordered_json fields_of(const Outcome &outcome, int shown) {
  nlohmann::ordered_json fields;
  if ((shown & date) != 0) {
    fields["year"] = outcome.fields.dateyear;
    fields["month"] = outcome.fields.datemonth + 1;
    fields["day"] = outcome.fields.datedmonth;
  }
  if ((shown & time) != 0) {
    fields["hour"] = outcome.fields.datehour;
    fields["minute"] = outcome.fields.dateminute;
    fields["second"] = outcome.fields.datesecond;
    if ((shown & micros) != 0)
      fields["microsecond"] = outcome.fields.datesecfrac;
    else
      fields["millisecond"] = outcome.fields.datemsecond;
  }
  return fields;
}

CS_RETCODE status_of(const Outcome &outcome) {
  return outcome.result == 0 ? CS_SUCCEED : outcome.result < 0 ? CS_CONV_SYNTAX : CS_CONV_OVERFLOW;
}

// "year=2001 month=1 day=5"; an empty line for a text that is no date.
void print_line(std::string &out, const Outcome &outcome, const nlohmann::ordered_json &fields) {
  if (outcome.result == 0) {
    std::string line;
    for (const auto &[name, field] : fields.items())
      line += (line.empty() ? "" : " ") + name + "=" + field.dump();
    out += line + (outcome.truncated ? " truncated" : "");
  }
  out += '\n';
}

void print_json(std::string &out, const InputValue &value, const Outcome &outcome,
                const nlohmann::ordered_json &fields) {
  nlohmann::ordered_json object;
  object["line"] = value.line;
  object["value"] = value.text;
  object["result"] = outcome.result == 0 ? fields : nlohmann::ordered_json();
  object["length"] = nullptr;
  object["status"] = status_name(status_of(outcome));
  object["code"] = status_of(outcome);
  object["truncated"] = outcome.truncated;
  if (outcome.result != 0)
    object["reason"] = reason_of(outcome.result);
  out += json_text(object) + "\n";
}

} // namespace

int parse_dates(const DateParseOptions &options) {
  const Type &type = find_type(options.to);
  const CS_INT order = find_order(options.order);
  Writer out(STDOUT_FILENO);
  const auto input = values_input(options.texts, [&] { out.flush(); });
  int code = exit_success;
  for (InputValue value; input->next(value);) {
    std::string text(value.text);
    const Outcome outcome = type.read(text, options.style, order);
    if (outcome.result != 0) {
      out.flush();
      std::fprintf(stderr, "zrvcomn date: %s: %s: %s\n", input->place(value.line).c_str(),
                   in_quotes(value.text).c_str(), reason_of(outcome.result));
      code = exit_failure;
    }
    const nlohmann::ordered_json fields = fields_of(outcome, type.shown);
    if (options.json)
      print_json(out.text, value, outcome, fields);
    else
      print_line(out.text, outcome, fields);
    out.settle();
  }
  out.flush();
  return code;
}

} // namespace zrvtool
