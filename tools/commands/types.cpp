// zrvcomn types: the datatypes, and which of them convert to which.
#include <algorithm>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "context.h"
#include "listing.h"
#include "output.h"
#include "subcommand.h"
#include "type_names.h"
#include "visible.h"
#include "zrvcomn/commaps.h"

namespace {

using namespace zrvtool;

struct Options {
  std::vector<std::string> from, to;
  Listing listing;
  bool wire = false;
};

using TypeList = std::vector<const TypeInfo *>;

// The named types in the order of their codes; all of them where none is named.
TypeList select(const std::vector<std::string> &names) {
  TypeList selected;
  for (const TypeInfo &info : builtin_types())
    if (names.empty() || std::any_of(names.begin(), names.end(), [&](const std::string &name) {
          return parse_type(name).info == &info;
        }))
      selected.push_back(&info);
  return selected;
}

std::string right(const std::string &text, size_t width) {
  return std::string(text.size() < width ? width - text.size() : 0, ' ') + text;
}

constexpr size_t name_width = 16;

std::string alias_text(const TypeInfo &info) {
  std::string text;
  for (const char *alias : info.aliases)
    if (alias != nullptr)
      text += (text.empty() ? "" : ", ") + std::string(alias);
  return text;
}

void print_list(std::string &out, const TypeList &types) {
  out += "code  " + padded("name", name_width) + "width  also\n";
  for (const TypeInfo *type : types) {
    const CS_INT width = comn_typelen(type->code, 0);
    std::string line =
        right(std::to_string(type->code), 4) + "  " + padded(type->name, name_width) +
        padded(width > 0 ? right(std::to_string(width), 5) : "    -", 7) + alias_text(*type);
    line.erase(line.find_last_not_of(' ') + 1);
    out += line + "\n";
  }
}

// One mark for each pair; the columns are headed by the codes, read downwards.
void print_grid(std::string &out, Matrix &matrix, const TypeList &sources,
                const TypeList &targets) {
  constexpr size_t label_width = name_width + 4;
  for (const int divisor : {10, 1}) {
    out += padded(divisor == 1 ? "from \\ to" : "", label_width);
    for (const TypeInfo *to : targets) {
      const int digit = to->code / divisor % 10;
      const bool is_blank = divisor == 10 && to->code < 10;
      out += is_blank ? ' ' : static_cast<char>('0' + digit);
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
  }
  size_t count = 0;
  for (const TypeInfo *from : sources) {
    out += right(std::to_string(from->code), 2) + "  " + padded(from->name, name_width);
    for (const TypeInfo *to : targets) {
      const bool converts = matrix.conversion(from->code, to->code) != nullptr;
      count += converts;
      out += converts ? '#' : '.';
    }
    out += '\n';
  }
  out += "\n# converts, . does not; " + std::to_string(count) + " of " +
         std::to_string(sources.size() * targets.size()) + " pairs convert in this release\n";
}

void print_lines(std::string &out, Matrix &matrix, const TypeList &sources, const TypeList &targets,
                 const Listing &listing) {
  for (const TypeInfo *from : sources) {
    nlohmann::ordered_json object;
    object["code"] = from->code;
    object["name"] = from->name;
    object["width"] = nullptr;
    if (const CS_INT width = comn_typelen(from->code, 0); width > 0)
      object["width"] = width;
    object["aliases"] = nlohmann::json::array();
    for (const char *alias : from->aliases)
      if (alias != nullptr)
        object["aliases"].push_back(alias);
    object["converts_to"] = nlohmann::json::array();
    for (const TypeInfo *to : targets)
      if (matrix.conversion(from->code, to->code) != nullptr)
        object["converts_to"].push_back(to->name);
    listing.add(out, object);
  }
}

// One form of a library type on the wire.
struct WireForm {
  CS_INT type, prefix, maxlength;
};

using FormLookup = CS_RETCODE (*)(CS_INT, CS_INT *, CS_INT *, CS_INT *) noexcept;

// False for a type that has none.
bool find_form(FormLookup lookup, CS_INT type, WireForm &form) {
  return lookup(type, &form.type, &form.prefix, &form.maxlength) == CS_SUCCEED && form.type >= 0;
}

std::string form_text(FormLookup lookup, CS_INT type) {
  WireForm form;
  if (!find_form(lookup, type, form))
    return right("-", 10) + right("-", 12) + right("-", 8);
  return right(std::to_string(form.type), 10) +
         right(form.maxlength == CS_UNUSED ? "-" : std::to_string(form.maxlength), 12) +
         right(std::to_string(form.prefix), 8);
}

nlohmann::ordered_json form_json(FormLookup lookup, CS_INT type, const Listing &listing) {
  WireForm form;
  nlohmann::ordered_json object = {{"wire", nullptr}, {"maxlength", nullptr}, {"prefix", nullptr}};
  if (!find_form(lookup, type, form))
    return listing.json ? nlohmann::ordered_json() : object; // columns stay where they are
  object["wire"] = form.type;
  if (form.maxlength != CS_UNUSED)
    object["maxlength"] = form.maxlength;
  object["prefix"] = form.prefix;
  return object;
}

// The library types of a wire type: one for all lengths, or one for each of some lengths.
std::vector<std::pair<CS_INT, const TypeInfo *>> types_of(CS_INT wire_type) {
  std::vector<std::pair<CS_INT, const TypeInfo *>> found;
  CS_INT maxlength = 0, type = 0;
  if (com_tds_get_tdsfixedlen(wire_type, &maxlength) == CS_SUCCEED) {
    if (com_tds_get_cstype(wire_type, maxlength, &type) == CS_SUCCEED)
      found.emplace_back(maxlength, &builtin_types()[static_cast<size_t>(type)]);
    return found;
  }
  for (CS_INT length = 0; length < 256; ++length)
    if (com_tds_get_cstype(wire_type, length, &type) == CS_SUCCEED)
      found.emplace_back(length, &builtin_types()[static_cast<size_t>(type)]);
  return found;
}

// What each library type is on the wire, without and with NULLs; then the way back.
void print_wire(std::string &out) {
  out += "code  " + padded("name", name_width - 2);
  for (const char *form : {"fixed", "nullable"})
    out += right(form, 10) + right("maxlength", 12) + right("prefix", 8);
  out += '\n';
  for (const TypeInfo &info : builtin_types())
    out += right(std::to_string(info.code), 4) + "  " + padded(info.name, name_width - 2) +
           form_text(com_tds_get_fixed_tdstype, info.code) +
           form_text(com_tds_get_nullable_tdstype, info.code) + "\n";
  out += "\nwire  " + padded("name", name_width) + "maxlength  prefix  null\n";
  for (CS_INT wire_type = 0; wire_type < 256; ++wire_type) {
    CS_INT prefix = 0;
    CS_BOOL nullable = 0;
    if (com_tds_get_tdsdatainfo(wire_type, &prefix, &nullable) != CS_SUCCEED)
      continue;
    for (const auto &[length, info] : types_of(wire_type))
      out += right(std::to_string(wire_type), 4) + "  " + padded(info->name, name_width - 2) +
             right(length == CS_UNUSED ? "-" : std::to_string(length), 11) +
             right(std::to_string(prefix), 8) + (nullable != 0 ? "   yes" : "    no") + "\n";
  }
}

void print_wire_lines(std::string &out, const Listing &listing) {
  for (const TypeInfo &info : builtin_types()) {
    nlohmann::ordered_json object;
    object["code"] = info.code;
    object["name"] = info.name;
    object["fixed"] = form_json(com_tds_get_fixed_tdstype, info.code, listing);
    object["nullable"] = form_json(com_tds_get_nullable_tdstype, info.code, listing);
    listing.add(out, object);
  }
}

int run_wire(const Listing &listing) {
  Writer out(STDOUT_FILENO);
  listing.is_for_programs() ? print_wire_lines(out.text, listing) : print_wire(out.text);
  out.flush();
  return exit_success;
}

int run(const Options &options) {
  const TypeList sources = select(options.from);
  const TypeList targets = select(options.to);
  Matrix matrix;
  Writer out(STDOUT_FILENO);
  if (options.listing.is_for_programs()) {
    print_lines(out.text, matrix, sources, targets, options.listing);
  } else {
    // A filter on both sides lists the types of both.
    TypeList listed = options.from.empty() ? targets : sources;
    if (!options.from.empty() && !options.to.empty()) {
      std::vector<std::string> names = options.from;
      names.insert(names.end(), options.to.begin(), options.to.end());
      listed = select(names);
    }
    print_list(out.text, listed);
    out.text += '\n';
    print_grid(out.text, matrix, sources, targets);
  }
  out.flush();
  return exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  app.add_option("--from", options->from, "Only these source types")
      ->delimiter(',')
      ->type_name("TYPE");
  app.add_option("--to", options->to, "Only these destination types")
      ->delimiter(',')
      ->type_name("TYPE");
  add_listing(app, options->listing, "source type");
  app.add_flag("--wire", options->wire, "Print the types of the wire protocol instead");
  app.footer("Examples:\n"
             "  zrvcomn types\n"
             "  zrvcomn types --wire\n"
             "  zrvcomn types --from int,bigint\n"
             "  zrvcomn types --to char --json\n"
             "\nExit codes: 0 shown, 2 wrong usage.");
  return [options](const std::vector<std::string> &) {
    for (const auto *names : {&options->from, &options->to})
      for (const std::string &name : *names)
        parse_type(name);
    if (options->wire && (!options->from.empty() || !options->to.empty()))
      throw UsageError("--wire excludes --from and --to");
    return options->wire ? run_wire(options->listing) : run(*options);
  };
}

const Subcommand types("types", "List the datatypes and the matrix of conversions", add);

} // namespace
