// zrvcomn oid: the identifiers of the installation.
#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "identifiers.h"
#include "listing.h"
#include "output.h"
#include "subcommand.h"
#include "visible.h"

namespace {

using namespace zrvtool;

// The classes by their numbers.
const std::vector<std::string> class_names = {"charset",  "numeric", "money",    "datetime",
                                              "collate",  "natlang", "integer2", "integer4",
                                              "integer8", "float4",  "float8",   "secmech"};

struct Record {
  CS_INT oidclass;
  const CsOID *oid;
};

std::string_view dotted_of(const CsOID &oid) {
  return {oid.oidstring, static_cast<size_t>(oid.oidnamelen)};
}

std::string encoding_of(const CsOID &oid) {
  std::string text;
  append_hex(text,
             {reinterpret_cast<const char *>(oid.oidber), static_cast<size_t>(oid.oidberlen)});
  return text;
}

std::string visible_dotted_of(const CsOID &oid) {
  std::string text;
  append_visible(text, dotted_of(oid));
  return text;
}

std::string names_of(const CsOID &oid) {
  std::string text;
  for (const CS_STRING_LIST *name = oid.oidlnames; name != nullptr; name = name->next) {
    text += text.empty() ? "" : ", ";
    append_visible(text, name_of(*name));
  }
  return text;
}

void print_list(std::string &out, const std::vector<Record> &records) {
  size_t width = std::string("identifier").size();
  for (const Record &record : records)
    width = std::max(width, visible_dotted_of(*record.oid).size());
  out += "class     " + padded("identifier", width) + "  names\n";
  for (const auto &[oidclass, oid] : records)
    out += padded(class_names[static_cast<size_t>(oidclass)], 10) +
           padded(visible_dotted_of(*oid), width) + "  " + names_of(*oid) + "\n";
}

void print_records(std::string &out, const std::vector<Record> &records) {
  for (const auto &[oidclass, oid] : records)
    out += std::string(out.empty() ? "" : "\n") + "class       " +
           class_names[static_cast<size_t>(oidclass)] + "\nidentifier  " + visible_dotted_of(*oid) +
           "\nencoding    " + encoding_of(*oid) + "\nnames       " + names_of(*oid) + "\n";
}

void print_lines(std::string &out, const std::vector<Record> &records, const Listing &listing) {
  for (const auto &[oidclass, oid] : records) {
    nlohmann::ordered_json object;
    object["class"] = class_names[static_cast<size_t>(oidclass)];
    object["identifier"] = dotted_of(*oid);
    object["encoding"] = encoding_of(*oid);
    object["names"] = nlohmann::json::array();
    for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next)
      object["names"].push_back(name_of(*name));
    listing.add(out, object);
  }
}

// Everything, or one class.
std::vector<Record> list(const Identifiers &identifiers, const std::string &class_name) {
  std::vector<Record> records;
  for (CS_INT oidclass = 0; oidclass < COM_OID_CLASS_COUNT; ++oidclass)
    if (class_name.empty() || class_name == class_names[static_cast<size_t>(oidclass)])
      for (const CsOID *oid = identifiers.first(oidclass); oid != nullptr; oid = oid->oidnext)
        records.push_back({oidclass, oid});
  return records;
}

// The record of each class that has the name, or else is written so.
std::vector<Record> find(Identifiers &identifiers, const std::string &wanted) {
  std::vector<Record> records;
  for (CS_INT oidclass = 0; oidclass < COM_OID_CLASS_COUNT; ++oidclass) {
    const CsOID *found = identifiers.find(oidclass, wanted);
    for (const CsOID *oid = identifiers.first(oidclass); oid != nullptr && found == nullptr;
         oid = oid->oidnext)
      if (dotted_of(*oid) == wanted)
        found = oid;
    if (found != nullptr)
      records.push_back({oidclass, found});
  }
  return records;
}

struct Options {
  std::string action, what;
  Listing listing;
};

int run(const Options &options) {
  Identifiers identifiers;
  const bool is_list = options.action == "list";
  const std::vector<Record> records =
      is_list ? list(identifiers, options.what) : find(identifiers, options.what);
  if (records.empty()) {
    std::string what;
    append_visible(what, options.what);
    std::cerr << "zrvcomn oid: nothing is known as '" << what << "'\n";
    return exit_failure;
  }
  Writer out(STDOUT_FILENO);
  if (options.listing.is_for_programs())
    print_lines(out.text, records, options.listing);
  else if (is_list)
    print_list(out.text, records);
  else
    print_records(out.text, records);
  out.flush();
  return exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", {"list", "find"}, "list or find")
      ->required();
  CLI::Option *const what =
      app.add_option("what", options->what, "list: a class; find: a name or a dotted identifier")
          ->type_name("CLASS|NAME|DOTTED");
  add_listing(app, options->listing, "identifier");
  app.footer(
      "list: every identifier, or those of one class, with its names. find: the identifiers\n"
      "that have a name, or the dotted one, with the encoding in hexadecimal.\n"
      "Classes: charset, numeric, money, datetime, collate, natlang, integer2, integer4,\n"
      "integer8, float4, float8, secmech.\n"
      "\nExamples:\n"
      "  zrvcomn oid list collate\n"
      "  zrvcomn oid find UTF-8\n"
      "  zrvcomn oid find --json german\n"
      "\nExit codes: 0 found, 1 not found or not loaded, 2 wrong usage.");
  return [options, what](const Words &more) {
    take_word(what, options->what, more, "class, name or identifier");
    if (options->action == "find" && options->what.empty())
      throw UsageError("find needs a name or a dotted identifier");
    if (options->action == "list" && !options->what.empty())
      options->what = choose("class", options->what, class_names);
    return run(*options);
  };
}

const Subcommand oid("oid", "List and find the identifiers of the installation", add);

} // namespace
