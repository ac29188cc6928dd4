// zrvcomn locale: the locales of the installation, and what one of them means.
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "listing.h"
#include "output.h"
#include "started.h"
#include "subcommand.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string action, name;
  Listing listing;
};

constexpr const char *categories[] = {"collate", "ctype", "message", "monetary", "numeric", "time"};
constexpr const char *columns[] = {"name", "language", "charset", "sort_order",
                                   "date", "number",   "money"};
constexpr CS_MSGNUM sample_message = 17040899;

// The cells of one line, padded into columns.
void append_cells(std::string &out, const std::vector<std::string> &cells,
                  const std::vector<size_t> &widths) {
  for (size_t i = 0; i < cells.size(); ++i) {
    out += cells[i];
    if (i + 1 < cells.size())
      out.append(widths[i] > cells[i].size() ? widths[i] - cells[i].size() + 2 : 2, ' ');
  }
  while (!out.empty() && out.back() == ' ')
    out.pop_back();
  out += '\n';
}

// A locale does not name everything.
std::string or_dash(const CS_CHAR *name) {
  return name != nullptr && *name != '\0' ? name : "-";
}

nlohmann::ordered_json fields_of(const std::string *cells) {
  nlohmann::ordered_json object;
  for (const char *const column : columns) {
    object[column] = nullptr;
    if (*cells != "-")
      object[column] = *cells;
    ++cells;
  }
  return object;
}

int list(const Options &options) {
  Writer out(STDOUT_FILENO);
  const std::vector<size_t> widths = {24, 20, 10, 20, 6, 6, 6};
  if (!options.listing.is_for_programs())
    append_cells(out.text, {std::begin(columns), std::end(columns)}, widths);
  for (const std::vector<std::string> &row : locale_rows()) {
    std::vector<std::string> cells;
    for (const std::string &value : row)
      cells.push_back(or_dash(value.c_str()));
    cells.resize(std::size(columns), "-");
    if (options.listing.is_for_programs())
      options.listing.add(out.text, fields_of(cells.data()));
    else
      append_cells(out.text, cells, widths);
    out.settle();
  }
  out.flush();
  return exit_success;
}

std::string text_of(CS_LOCALE *locale, CS_INT category, CS_INT type) {
  CS_CHAR buffer[3 * COM_LOCNAME_SIZE];
  CS_INT length = 0;
  return com_intl_getstr(locale, category, type, buffer, sizeof buffer, &length) == CS_SUCCEED
             ? std::string(buffer, static_cast<size_t>(length))
             : "";
}

// A date of the locale's style, in UTF-8.
std::string sample_date(Started &started) {
  CS_DATEREC fields{};
  fields.dateyear = 2001;
  fields.datemonth = 7;
  fields.datedmonth = 5;
  fields.datehour = 13;
  fields.dateminute = 30;
  CS_BIGDATETIME value = 0;
  com_bigdatetimemake(&value, &fields);
  CS_CHAR text[255];
  const CS_INT length = com__bigdatetimetochar(&value, text, sizeof text, 106,
                                               com_intl_shortmonths(started.get(), nullptr));
  return length > 0 ? std::string(text, static_cast<size_t>(length)) : "";
}

std::string sample_line(Started &started) {
  CsErrParams parameters;
  CS_CHAR function[] = "comn_init_cfg", file[] = "ncl.cfg", line[1023];
  com_ep_ss(&parameters, function, file);
  CS_INT length = 0;
  com_build_errmsg(started.get(), static_cast<CS_ERRHAN *>(started.get()->ctxcomerrhan),
                   sample_message, &parameters, nullptr, 0, COM_ERRSEC_API, line, sizeof line,
                   &length);
  return std::string(line, static_cast<size_t>(length));
}

int show(const Options &options) {
  Started started(options.name);
  CS_LOCALE *const locale = started.locale();
  Writer out(STDOUT_FILENO);
  nlohmann::ordered_json object;
  const std::vector<size_t> widths = {10, 24, 20, 10, 20, 6, 6, 6};
  if (!options.listing.is_for_programs()) {
    std::vector<std::string> head = {"category"};
    head.insert(head.end(), std::begin(columns), std::end(columns));
    append_cells(out.text, head, widths);
  }
  for (size_t i = 0; i < std::size(categories); ++i) {
    const auto category = static_cast<CS_INT>(i + 1);
    const auto *const cache = static_cast<const CsLocCache *>(category_of(*locale, category));
    const std::vector<std::string> cells = {categories[i],
                                            or_dash(cache->locname),
                                            text_of(locale, category, CS_LOCSTR_LANGUAGE),
                                            text_of(locale, category, CS_LOCSTR_CHARSET),
                                            text_of(locale, category, CS_LOCSTR_SORTORDER),
                                            or_dash(cache->datename),
                                            or_dash(cache->numname),
                                            or_dash(cache->monname)};
    if (!options.listing.is_for_programs())
      append_cells(out.text, cells, widths);
    else
      object[categories[i]] = fields_of(&cells[1]);
  }
  const std::string date = sample_date(started);
  const std::string order = com_intl_dateorder(started.get(), nullptr);
  const CS_INT first_day = com_intl_firstday(started.get(), nullptr);
  const bool is_12_hour = com_intl_is12hour(started.get(), nullptr) != 0;
  const CS_INT style = comn_intl_get_dtfmt(started.get(), nullptr);
  if (options.listing.is_for_programs()) {
    object["date_order"] = order;
    object["first_day"] = first_day;
    object["is_12_hour"] = is_12_hour;
    object["style"] = style;
    object["date"] = date;
    if (options.listing.json)
      options.listing.add(out.text, object);
    else
      for (const auto &[name, value] : object.items()) // a line for each field
        options.listing.add(out.text, {{"name", name}, {"value", value}});
  } else {
    out.text += "\ndate order  " + order + ", style " + std::to_string(style) + "\nfirst day   " +
                std::to_string(first_day) + "\nclock       " + (is_12_hour ? "12" : "24") +
                " hours\ndate        " + started.convert(date, locale->timeptr) + "\nmessage     " +
                sample_line(started) + "\n";
  }
  out.flush();
  return exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", {"list", "show"}, "list or show")
      ->required();
  CLI::Option *const name =
      app.add_option("name", options->name,
                     "show: the locale; without one, those of the environment")
          ->type_name("NAME");
  add_listing(app, options->listing, "locale");
  app.footer("Texts of show come in the locale's own character set, those of JSON in UTF-8.\n"
             "\nExamples:\n"
             "  zrvcomn locale list\n"
             "  zrvcomn locale show de_DE.UTF-8\n"
             "  LC_TIME=fr_FR.UTF-8 zrvcomn locale show\n"
             "\nExit codes: 0 shown, 1 no such locale or installation, 2 wrong usage.");
  return [options, name](const Words &more) {
    take_word(name, options->name, more, "locale");
    if (options->action == "show")
      return show(*options);
    if (!options->name.empty())
      throw UsageError("list takes no name");
    return list(*options);
  };
}

const Subcommand locale("locale", "List the locales, show what one of them means", add);

} // namespace
