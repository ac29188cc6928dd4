// The command zrvcomn: uses and inspects the library as any client would.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comnlib.h"

using namespace zrvtool;

namespace {

// The version of the command, and what the library that it runs with says.
std::string version_text() {
  CS_INT version = 0;
  CS_BOOL is_debug = 0;
  com_version(&version, &is_debug);
  return "zrvcomn " ZRVTOOL_VERSION " (library " + std::to_string(version) + ")";
}

// Reports wrong usage on one line, which commands no terminal.
int report_usage(const std::string &command, std::string message) {
  std::erase_if(message, [](char c) { return c >= 0 && c < ' '; });
  std::cerr << command << ": " << message << " (see " << command << " --help)\n";
  return exit_usage;
}

bool has_positionals(const CLI::App &app) {
  return !app.get_options([](const CLI::Option *option) { return option->get_positional(); })
              .empty();
}

// True where any number of values may stand.
bool takes_values(const CLI::App &app) {
  return !app.get_options([](const CLI::Option *option) {
               return option->get_positional() && option->get_items_expected_max() > 1;
             })
              .empty();
}

Words option_names(const CLI::App &app) {
  Words names;
  for (const CLI::Option *option : app.get_options())
    for (const std::string &name : option->get_lnames())
      names.push_back("--" + name);
  return names;
}

// What the parser says is wrong. A word that it does not know may be the reason for one that it misses,
// so that comes first.
std::string fault_of(const CLI::App &app, const CLI::ParseError &error) {
  const Words unknown = app.remaining();
  if (unknown.empty())
    return error.what();
  const std::string &word = unknown.front();
  if (!word.starts_with('-'))
    return "unexpected word " + in_quotes(word);
  return "there is no option " + in_quotes(word) + suggest(word, option_names(app)) +
         (takes_values(app) ? "; values that begin with '-' stand behind '--'" : "");
}

int run(int argc, char **argv) {
  CLI::App program("Uses and inspects the common library of datatypes and conversions.", "zrvcomn");
  program.set_version_flag("-V,--version", version_text());
  program.require_subcommand(0, 1);
  program.get_option("--version")->description("Print the version and exit");
  program.footer("Examples:\n"
                 "  zrvcomn convert --from smallint --to tinyint -- -1 300 42\n"
                 "  zrvcomn types --from int\n"
                 "\nzrvcomn help COMMAND tells more of each.\n"
                 "\nExit codes: 0 all values converted, 1 some failed, 2 wrong usage.");

  Subcommand::Run chosen;
  std::vector<std::string> names;
  for (const Subcommand *command : Subcommand::all()) {
    CLI::App *const app = program.add_subcommand(command->name, command->description);
    names.emplace_back(command->name);
    // The options are parsed when the callback comes.
    app->callback([&chosen, action = command->add(*app)] { chosen = action; });
  }

  std::string command_name = "zrvcomn";
  // "help convert" is "convert --help".
  std::vector<char *> words(argv, argv + argc);
  char help[] = "--help";
  if (argc > 1 && argv[1] == std::string("help")) {
    words.erase(words.begin() + 1);
    words.insert(words.begin() + (words.size() > 1 ? 2 : 1), help);
    argv = words.data();
  }
  if (argc > 1 && argv[1][0] != '-') {
    const std::string word = argv[1];
    if (std::find(names.begin(), names.end(), word) == names.end())
      return report_usage(command_name,
                          "unknown command " + in_quotes(word) + suggest(word, names));
    command_name += " " + word;
  }

  // The parser would give back what stands behind "--" once it has one value.
  char **const dashes =
      std::find_if(argv, argv + argc, [](const char *word) { return word == std::string("--"); });
  const std::vector<std::string> values(std::min(dashes + 1, argv + argc), argv + argc);
  try {
    program.parse(static_cast<int>(dashes - argv), argv);
    if (!chosen)
      throw UsageError("a command is needed: " + CLI::detail::join(names, ", "));
    if (!values.empty() && !has_positionals(*program.get_subcommands()[0]))
      throw UsageError("unexpected word " + in_quotes(values[0]));
    return chosen(values);
  } catch (const CLI::Success &success) {
    return program.exit(success);
  } catch (const CLI::ParseError &error) {
    const CLI::App *const app =
        program.get_subcommands().empty() ? &program : program.get_subcommands()[0];
    return report_usage(command_name, fault_of(*app, error));
  } catch (const UsageError &error) {
    return report_usage(command_name, error.what());
  } catch (const StreamError &error) {
    std::cerr << command_name << ": " << error.what() << "\n";
  } catch (const std::bad_alloc &) {
    std::cerr << command_name << ": out of memory\n";
  } catch (const std::exception &error) {
    std::string text;
    append_visible(text, error.what());
    std::cerr << command_name << ": " << text << "\n";
  }
  return exit_failure;
}

} // namespace

int main(int argc, char **argv) {
  const int code = run(argc, argv);
  // Help and version go through the standard stream, whose failure must not pass for success.
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "zrvcomn: cannot write the output\n";
    return exit_failure;
  }
  return code;
}
