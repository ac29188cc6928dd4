// zrvcomn config: where the library looks for the files of an installation.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <pwd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "output.h"
#include "status_names.h"
#include "subcommand.h"
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

std::string padded(std::string text, size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
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

void print_json(std::string &out, const std::vector<Found> &all) {
  for (const Found &found : all) {
    nlohmann::ordered_json object;
    object["name"] = found.place->name;
    object["holds"] = found.place->what;
    object["path"] = nullptr;
    if (!found.failed)
      object["path"] = found.path;
    object["is"] = found.state;
    object["decided_by"] = found.rule;
    out += object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  }
}

int run(bool json) {
  std::vector<Found> all;
  bool failed = false;
  for (const Place &place : places) {
    all.push_back(find(place));
    failed |= all.back().failed;
  }
  Writer out(STDOUT_FILENO);
  if (json)
    print_json(out.text, all);
  else
    print_table(out.text, all);
  out.flush();
  return failed ? exit_failure : exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto topic = std::make_shared<std::string>();
  const auto json = std::make_shared<bool>(false);
  app.add_option("topic", *topic, "What to show: paths")->required();
  app.add_flag("--json", *json, "Print one JSON object for each place");
  app.footer("paths: where each file of the installation is looked for, whether it is there, and\n"
             "the variable or rule that decided.\n\n"
             "Examples:\n"
             "  zrvcomn config paths\n"
             "  ZARVEK=/opt/zarvek zrvcomn config paths --json");
  return [topic, json](const std::vector<std::string> &) {
    if (*topic != "paths")
      throw UsageError("nothing to show about '" + *topic + "', only about paths");
    return run(*json);
  };
}

const Subcommand config("config", "Show where the files of the installation are", add);

} // namespace
