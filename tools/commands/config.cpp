// zrvcomn config: where the library looks for the files of an installation, and what configuration files
// have to say.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <pwd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "config_file.h"
#include "listing.h"
#include "output.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comnlib.h"

namespace {

using namespace zrvtool;

constexpr CS_INT path_size = 4096;

bool is_set(const char *variable) {
  const char *const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// One file or directory: how its path is built, and by which rule.
struct Place {
  const char *name;
  const char *what;
  CS_RETCODE (*build)(CS_CONTEXT *context, char *path);
  std::string (*rule)();
};

std::string home_rule() {
  if (is_set("ZARVEK"))
    return "ZARVEK";
  const passwd *const user = getpwnam("zarvek");
  return user != nullptr && user->pw_dir != nullptr && *user->pw_dir != '\0'
             ? "home directory of the user zarvek"
             : "installed with the library";
}

std::string below_home() {
  return "below the home directory";
}

std::string product_rule() {
  return is_set("ZARVEK_NCL") ? "below the home directory, ZARVEK_NCL" : below_home();
}

std::string interfaces_rule() {
  return is_set("ZRVNCL_IFILE") ? "ZRVNCL_IFILE" : below_home();
}

std::string driver_rule() {
  for (const char *variable : {"ZRVNCL_TCL_CFG", "ZARVEK_TCL_CFG"})
    if (is_set(variable))
      return variable;
  return product_rule();
}

CS_RETCODE below(const char *directory, const char *file, CS_INT ncl, char *path) {
  return com_path_anyfile(path, path_size, const_cast<char *>(directory), const_cast<char *>(file),
                          ncl);
}

CS_RETCODE config_file(CS_CONTEXT *context, const char *file, char *path) {
  return com_path_cfgfile(context, const_cast<char *>(file), path, path_size, 0);
}

CS_RETCODE charset_directory(CS_CONTEXT *context, const char *charset, char *path) {
  return com_path_charfile(context, const_cast<char *>(charset), nullptr, nullptr, path, path_size);
}

const Place places[] = {
    {"home", "the installation",
     [](CS_CONTEXT *, char *path) { return below(nullptr, nullptr, 0, path); }, home_rule},
    {"interfaces", "server directory",
     [](CS_CONTEXT *context, char *path) { return com_path_ifile(context, path, path_size); },
     interfaces_rule},
    {"ncl.cfg", "configuration",
     [](CS_CONTEXT *context, char *path) { return config_file(context, "ncl.cfg", path); },
     below_home},
    {"libtcl.cfg", "driver configuration",
     [](CS_CONTEXT *, char *path) {
       return com_get_tclcfg(path, path_size) > 0 ? CS_SUCCEED : CS_FAIL;
     },
     driver_rule},
    {"objectid.dat", "identifiers",
     [](CS_CONTEXT *context, char *path) { return config_file(context, "objectid.dat", path); },
     below_home},
    {"locales.dat", "locale names",
     [](CS_CONTEXT *, char *path) { return below("locales", "locales.dat", 0, path); }, below_home},
    {"messages", "message files",
     [](CS_CONTEXT *, char *path) { return below("locales/message", nullptr, 0, path); },
     below_home},
    {"datetime", "date and time locale data",
     [](CS_CONTEXT *, char *path) { return below("locales/datetime", nullptr, 0, path); },
     below_home},
    {"money", "money locale data",
     [](CS_CONTEXT *, char *path) { return below("locales/money", nullptr, 0, path); }, below_home},
    {"numeric", "numeric locale data",
     [](CS_CONTEXT *, char *path) { return below("locales/numeric", nullptr, 0, path); },
     below_home},
    {"charsets", "character sets and sort orders",
     [](CS_CONTEXT *context, char *path) { return charset_directory(context, nullptr, path); },
     below_home},
    {"unicode", "conversion tables",
     [](CS_CONTEXT *context, char *path) { return charset_directory(context, "unicode", path); },
     below_home},
    {"devlib3p", "LDAP client libraries",
     [](CS_CONTEXT *, char *path) { return below("devlib3p", nullptr, 1, path); }, product_rule},
};

// Where a place was found to be.
struct Found {
  const Place *place;
  std::string path; // empty: it has none
  std::string state;
  std::string rule;
  bool failed;
};

Found find(const Place &place) {
  CS_CONTEXT context{};
  char path[path_size] = {};
  const CS_RETCODE result = place.build(&context, path);
  if (result != CS_SUCCEED)
    return {&place, "", status_name(result), place.rule(), true};
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  std::string state = "missing";
  if (std::filesystem::exists(status))
    state = access(path, R_OK) != 0                 ? "unreadable"
            : std::filesystem::is_directory(status) ? "directory"
                                                    : "file";
  return {&place, path, state, place.rule(), false};
}

void print_table(std::string &out, const std::vector<Found> &all) {
  size_t name_width = 0, path_width = 0;
  for (const Found &found : all) {
    name_width = std::max(name_width, std::strlen(found.place->name));
    path_width = std::max(path_width, found.path.size());
  }
  out += padded("name", name_width) + "  " + padded("path", path_width) + "  " + padded("is", 10) +
         "  decided by\n";
  for (const Found &found : all)
    out += padded(found.place->name, name_width) + "  " +
           padded(found.failed ? "-" : found.path, path_width) + "  " + padded(found.state, 10) +
           "  " + found.rule + "\n";
}

void print_lines(std::string &out, const std::vector<Found> &all, const Listing &listing) {
  for (const Found &found : all) {
    nlohmann::ordered_json object;
    object["name"] = found.place->name;
    object["holds"] = found.place->what;
    object["path"] = nullptr;
    if (!found.failed)
      object["path"] = found.path;
    object["is"] = found.state;
    object["decided_by"] = found.rule;
    listing.add(out, object);
  }
}

int show_paths(const Listing &listing) {
  std::vector<Found> all;
  bool failed = false;
  for (const Place &place : places) {
    all.push_back(find(place));
    failed |= all.back().failed;
  }
  Writer out(STDOUT_FILENO);
  if (listing.is_for_programs())
    print_lines(out.text, all, listing);
  else
    print_table(out.text, all);
  out.flush();
  return failed ? exit_failure : exit_success;
}

// ---- configuration files ----

// What is wrong with a file, for a command that needs what is in it.
void tell_faults(ConfigFile &file) {
  for (const Fault &fault : file.take_faults())
    std::cerr << "zrvcomn config: " << file.path()
              << (fault.line > 0 ? ":" + std::to_string(fault.line) : "") << ": " << fault.text
              << '\n';
}

// A value as it stands, on a terminal such that it commands nothing.
void append_value(Writer &out, const std::string &value) {
  if (out.is_terminal())
    append_visible(out.text, value);
  else
    out.text += value;
}

int get(const std::string &path, const std::string &section, const std::string &entry, bool json) {
  ConfigFile file(path);
  tell_faults(file);
  if (!file.is_loaded())
    return exit_failure;
  CS_RETCODE status = CS_FAIL;
  const std::vector<std::string> values = file.get(section, entry, status);
  Writer out(STDOUT_FILENO);
  for (const std::string &value : values) {
    if (json) {
      out.text += json_text({{"section", section}, {"entry", entry}, {"value", value}}) + "\n";
    } else {
      append_value(out, value);
      out.text += '\n';
    }
    out.settle();
  }
  out.flush();
  tell_faults(file);
  if (status != CS_END_DATA)
    return exit_failure;
  if (values.empty())
    std::cerr << "zrvcomn config: there is no entry " << in_quotes(entry) << " for section "
              << in_quotes(section) << '\n';
  return values.empty() ? exit_failure : exit_success;
}

int list_sections(ConfigFile &file, bool json) {
  Writer out(STDOUT_FILENO);
  for (const std::string &section : file.sections()) {
    if (json) {
      out.text += json_text({{"section", section}}) + "\n";
    } else {
      append_value(out, section);
      out.text += '\n';
    }
    out.settle();
  }
  out.flush();
  return exit_success;
}

int list_entries(ConfigFile &file, const std::string &section, bool json) {
  const auto entries = file.entries(section);
  if (!entries) {
    std::cerr << "zrvcomn config: there is no section " << in_quotes(section) << " in "
              << file.path() << '\n';
    return exit_failure;
  }
  Writer out(STDOUT_FILENO);
  for (const NamedValues &entry : *entries)
    for (const std::string &value : entry.values) {
      if (json) {
        out.text +=
            json_text({{"section", section}, {"entry", entry.name}, {"value", value}}) + "\n";
      } else {
        append_value(out, entry.name);
        out.text += " = ";
        append_value(out, value);
        out.text += '\n';
      }
      out.settle();
    }
  out.flush();
  return exit_success;
}

int list(const std::string &path, const std::optional<std::string> &section, bool json) {
  ConfigFile file(path);
  tell_faults(file);
  if (!file.is_loaded())
    return exit_failure;
  return section ? list_entries(file, *section, json) : list_sections(file, json);
}

// The line of a file in which a place is, and the bytes of it in front of the place.
std::pair<std::string, std::string> line_around(const std::string &bytes, size_t place) {
  const size_t at = std::min(place, bytes.size());
  const size_t before = at == 0 ? std::string::npos : bytes.rfind('\n', at - 1);
  const size_t begin = before == std::string::npos ? 0 : before + 1;
  const size_t end = std::min(bytes.find('\n', at), bytes.size());
  return {bytes.substr(begin, end - begin), bytes.substr(begin, at - begin)};
}

std::string visible(const std::string &bytes) {
  std::string text;
  append_visible(text, bytes);
  return text;
}

int check(const std::string &path, bool json) {
  ConfigFile file(path);
  const std::vector<Fault> faults = file.take_faults();
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  Writer out(STDOUT_FILENO);
  for (const Fault &fault : faults) {
    const bool has_place = fault.offset >= 0 && stream.is_open();
    auto [line, before] = has_place ? line_around(bytes, static_cast<size_t>(fault.offset))
                                    : std::pair<std::string, std::string>();
    if (line.ends_with('\r'))
      line.pop_back();
    const size_t column = count_characters(before) + 1;
    const size_t indent = count_characters(visible(before));
    if (json) {
      nlohmann::ordered_json object = {{"file", path}, {"line", nullptr}, {"column", nullptr}};
      if (has_place) {
        object["line"] = fault.line;
        object["column"] = column;
      }
      object["text"] = fault.text;
      out.text += json_text(object) + "\n";
    } else {
      out.text += path + ":";
      if (has_place)
        out.text += std::to_string(fault.line) + ":" + std::to_string(column) + ":";
      out.text += " ";
      append_visible(out.text, fault.text);
      out.text += "\n";
      if (has_place)
        out.text += "  " + visible(line) + "\n  " + std::string(indent, ' ') + "^\n";
    }
    out.settle();
  }
  out.flush();
  return faults.empty() && file.is_loaded() ? exit_success : exit_failure;
}

struct Options {
  std::string action;
  std::vector<std::string> words;
  Listing listing;
};

int run(const Options &options) {
  const std::string &action = options.action;
  const std::vector<std::string> &words = options.words;
  const Listing &listing = options.listing;
  const bool json = listing.json;
  const auto refuse = [&](const std::string &what) -> int {
    throw UsageError(action + " takes " + what);
  };
  if (action == "paths")
    return words.empty() ? show_paths(listing) : refuse("no words");
  if (listing.plain)
    throw UsageError("--plain is for paths");
  if (action == "check")
    return words.size() == 1 ? check(words[0], json) : refuse("one file");
  if (action == "get") {
    if (words.size() == 2)
      return get("", words[0], words[1], json);
    return words.size() == 3 ? get(words[0], words[1], words[2], json)
                             : refuse("a section and an entry, and a file before them");
  }
  switch (words.size()) {
  case 0:
    return list("", std::nullopt, json);
  case 1:
    // A section of ncl.cfg, unless there is a file of that name.
    return access(words[0].c_str(), F_OK) == 0 ? list(words[0], std::nullopt, json)
                                               : list("", words[0], json);
  case 2:
    return list(words[0], words[1], json);
  }
  return refuse("a file and a section");
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", {"check", "get", "list", "paths"},
             "check, get, list or paths")
      ->required();
  app.add_option("words", options->words,
                 "check: FILE; get: [FILE] SECTION ENTRY; list: [FILE] [SECTION]")
      ->type_name("WORD");
  add_listing(app, options->listing, "line");
  app.footer(
      "check: what is wrong with a configuration file, each fault with its line and place.\n"
      "get: all values of an entry, each on a line, included sections after the section itself.\n"
      "list: the sections of a file, or the entries of one with its own values. A word alone is\n"
      "a file if there is one of that name, else a section of ncl.cfg.\n"
      "paths: where each file of the installation is looked for, whether it is there, and\n"
      "the variable or rule that decided.\n"
      "\nWithout FILE it is ncl.cfg of the installation. Files are read in the character set of\n"
      "the environment's locale.\n"
      "\nExamples:\n"
      "  zrvcomn config get payroll server\n"
      "  zrvcomn config list ./app.cfg payroll\n"
      "  zrvcomn config check ./app.cfg\n"
      "  ZARVEK=/opt/zarvek zrvcomn config paths --json\n"
      "\nExit codes: 0 found and nothing wrong, 1 no value or something wrong, 2 wrong usage.");
  return [options](const std::vector<std::string> &more) {
    options->words.insert(options->words.end(), more.begin(), more.end());
    return run(*options);
  };
}

const Subcommand config("config", "Show configuration files and where files are", add);

} // namespace
