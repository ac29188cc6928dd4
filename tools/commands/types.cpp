// zrvcomn types: the datatypes, and which of them convert to which.
#include <algorithm>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "context.h"
#include "output.h"
#include "subcommand.h"
#include "type_names.h"

namespace {

using namespace zrvtool;

struct Options {
  std::vector<std::string> from, to;
  bool json = false;
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

std::string padded(std::string text, size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
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
void print_grid(std::string &out, Context &context, const TypeList &sources,
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
      const bool converts = context.conversion(from->code, to->code) != nullptr;
      count += converts;
      out += converts ? '#' : '.';
    }
    out += '\n';
  }
  out += "\n# converts, . does not; " + std::to_string(count) + " of " +
         std::to_string(sources.size() * targets.size()) + " pairs convert in this release\n";
}

void print_json(std::string &out, Context &context, const TypeList &sources,
                const TypeList &targets) {
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
      if (context.conversion(from->code, to->code) != nullptr)
        object["converts_to"].push_back(to->name);
    out += object.dump() + "\n";
  }
}

int run(const Options &options) {
  const TypeList sources = select(options.from);
  const TypeList targets = select(options.to);
  Context context;
  Writer out(STDOUT_FILENO);
  if (options.json) {
    print_json(out.text, context, sources, targets);
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
    print_grid(out.text, context, sources, targets);
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
  app.add_flag("--json", options->json, "Print one JSON object for each source type");
  app.footer("Examples:\n"
             "  zrvcomn types\n"
             "  zrvcomn types --from int,bigint\n"
             "  zrvcomn types --to char --json");
  return [options](const std::vector<std::string> &) {
    for (const auto *names : {&options->from, &options->to})
      for (const std::string &name : *names)
        parse_type(name);
    return run(*options);
  };
}

const Subcommand types("types", "List the datatypes and the matrix of conversions", add);

} // namespace
