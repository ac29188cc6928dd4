// zrvcomn completion: a completion script for a shell, from the same table of options that the
// parser works with.
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "output.h"
#include "subcommand.h"
#include "type_names.h"

namespace {

using namespace zrvtool;

std::string join(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> option_names(const CLI::App &app) {
  std::vector<std::string> names;
  for (const CLI::Option *option : app.get_options()) {
    for (const std::string &name : option->get_lnames())
      names.push_back("--" + name);
    for (const std::string &name : option->get_snames())
      names.push_back("-" + name);
  }
  return names;
}

// What completes the value of an option, by the kind of value that its help names.
std::string value_completion(const CLI::Option &option) {
  const std::string kind = option.get_type_name();
  if (kind == "TYPE")
    return "COMPREPLY=($(compgen -W '" + join(all_type_names()) + "' -- \"$word\"))";
  if (kind == "FILE")
    return "COMPREPLY=($(compgen -f -- \"$word\"))";
  if (kind == "BITS")
    return "COMPREPLY=($(compgen -W 'nullterm padnull padblank escquote' -- \"$word\"))";
  return "COMPREPLY=()";
}

std::string bash_script(const CLI::App &program) {
  std::string text = "# bash completion for zrvcomn: eval \"$(zrvcomn completion bash)\"\n"
                     "_zrvcomn() {\n"
                     "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
                     "  case ${COMP_WORDS[1]} in\n";
  std::vector<std::string> commands;
  for (const CLI::App *app : program.get_subcommands([](const CLI::App *) { return true; })) {
    commands.push_back(app->get_name());
    text += "  " + app->get_name() + ")\n    case $before in\n";
    for (const CLI::Option *option : app->get_options()) {
      const bool takes_value = option->get_items_expected_max() > 0;
      if (takes_value && !option->get_lnames().empty())
        text +=
            "    --" + option->get_lnames()[0] + ") " + value_completion(*option) + "; return ;;\n";
    }
    text += "    esac\n    COMPREPLY=($(compgen -W '" + join(option_names(*app)) +
            "' -- \"$word\"))\n    return ;;\n";
  }
  text += "  esac\n  COMPREPLY=($(compgen -W '" + join(commands) + " " +
          join(option_names(program)) + "' -- \"$word\"))\n}\ncomplete -F _zrvcomn zrvcomn\n";
  return text;
}

Subcommand::Run add(CLI::App &app) {
  const auto shell = std::make_shared<std::string>();
  app.add_option("shell", *shell, "The shell: bash")->required();
  app.footer("Example:\n  eval \"$(zrvcomn completion bash)\"");
  return [shell, &app](const std::vector<std::string> &) {
    if (*shell != "bash")
      throw UsageError("no completion for '" + *shell + "', only for bash");
    Writer out(STDOUT_FILENO);
    out.text = bash_script(*app.get_parent());
    out.flush();
    return exit_success;
  };
}

const Subcommand completion("completion", "Print a script that completes words in a shell", add);

} // namespace
