// The command zrvcomn: uses and inspects the library as any client would.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include "subcommand.h"
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

// Reports wrong usage on one line.
int report_usage(const std::string &command, std::string message) {
  std::replace(message.begin(), message.end(), '\n', ' ');
  std::cerr << command << ": " << message << " (see " << command << " --help)\n";
  return exit_usage;
}

bool has_positionals(const CLI::App &app) {
  return !app.get_options([](const CLI::Option *option) { return option->get_positional(); })
              .empty();
}

int run(int argc, char **argv) {
  CLI::App program("Uses and inspects the common library of datatypes and conversions.", "zrvcomn");
  program.set_version_flag("--version", version_text());
  program.require_subcommand(0, 1);
  program.get_option("--version")->description("Print the version and exit");
  program.footer("Examples:\n"
                 "  zrvcomn convert --from smallint --to tinyint -- -1 300 42\n"
                 "  zrvcomn types --from int\n"
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
  if (argc > 1 && argv[1][0] != '-') {
    const std::string word = argv[1];
    if (std::find(names.begin(), names.end(), word) == names.end())
      return report_usage(command_name, "unknown command '" + word + "'" + suggest(word, names));
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
      throw UsageError("unexpected word '" + values[0] + "'");
    return chosen(values);
  } catch (const CLI::Success &success) {
    return program.exit(success);
  } catch (const CLI::ExtrasError &error) {
    const CLI::App *const app =
        program.get_subcommands().empty() ? &program : program.get_subcommands()[0];
    return report_usage(
        command_name,
        std::string(error.what()) +
            (has_positionals(*app) ? "; values that begin with '-' stand behind '--'" : ""));
  } catch (const CLI::ParseError &error) {
    return report_usage(command_name, error.what());
  } catch (const UsageError &error) {
    return report_usage(command_name, error.what());
  } catch (const StreamError &error) {
    std::cerr << command_name << ": " << error.what() << "\n";
  } catch (const std::bad_alloc &) {
    std::cerr << command_name << ": out of memory\n";
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
