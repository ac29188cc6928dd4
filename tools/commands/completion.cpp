// zrvcomn completion: a completion script for a shell, from the same table of options that the
// parser works with.
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "output.h"
#include "subcommand.h"
#include "type_names.h"

namespace {

using namespace zrvtool;

std::string join(const Words &words) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

Words option_names(const CLI::App &app) {
  Words names;
  for (const CLI::Option *option : app.get_options()) {
    for (const std::string &name : option->get_lnames())
      names.push_back("--" + name);
    for (const std::string &name : option->get_snames())
      names.push_back("-" + name);
  }
  return names;
}

// The words that may stand in place of an option's value, or of a word without one.
const Words &words_of(const CLI::Option &option) {
  static const Words types = all_type_names();
  return option.get_type_name() == "TYPE" ? types : offered(&option);
}

// What may begin a word of the subcommand that is no option's value.
Words first_words(const CLI::App &app) {
  Words words = option_names(app);
  for (const CLI::Option *option : app.get_options())
    if (option->get_positional())
      words.insert(words.end(), words_of(*option).begin(), words_of(*option).end());
  return words;
}

bool is_file(const CLI::Option &option) {
  return option.get_type_name() == "FILE";
}

// An option, not a word in its place, with a value behind it.
bool takes_value(const CLI::Option &option) {
  return option.get_items_expected_max() > 0 && !option.get_lnames().empty();
}

std::vector<const CLI::App *> subcommands(const CLI::App &program) {
  return program.get_subcommands([](const CLI::App *) { return true; });
}

std::string bash_reply(const std::string &generator) {
  return "COMPREPLY=($(compgen " + generator + " -- \"$word\"))";
}

std::string bash_script(const CLI::App &program) {
  std::string text = "# bash completion for zrvcomn: eval \"$(zrvcomn completion bash)\"\n"
                     "_zrvcomn() {\n"
                     "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
                     "  case ${COMP_WORDS[1]} in\n";
  Words commands = option_names(program);
  for (const CLI::App *app : subcommands(program)) {
    commands.push_back(app->get_name());
    text += "  " + app->get_name() + ")\n    case $before in\n";
    for (const CLI::Option *option : app->get_options())
      if (takes_value(*option))
        text += "    --" + option->get_lnames()[0] + ") " +
                bash_reply(is_file(*option) ? "-f" : "-W '" + join(words_of(*option)) + "'") +
                "; return ;;\n";
    text +=
        "    esac\n    " + bash_reply("-W '" + join(first_words(*app)) + "'") + "\n    return ;;\n";
  }
  commands.push_back("help");
  return text + "  esac\n  " + bash_reply("-W '" + join(commands) + "'") +
         "\n}\ncomplete -F _zrvcomn zrvcomn\n";
}

// zsh runs what bash does.
std::string zsh_script(const CLI::App &program) {
  return "#compdef zrvcomn\n"
         "# zsh completion for zrvcomn: eval \"$(zrvcomn completion zsh)\"\n"
         "autoload -U +X bashcompinit && bashcompinit\n" +
         bash_script(program);
}

// In single quotes of fish.
std::string fish_quoted(std::string text) {
  for (size_t i = 0; i < text.size(); ++i)
    if (text[i] == '\'' || text[i] == '\\')
      text.insert(i++, 1, '\\');
  return "'" + text + "'";
}

std::string fish_script(const CLI::App &program) {
  const std::string line = "complete -c zrvcomn ";
  std::string text = "# fish completion for zrvcomn: zrvcomn completion fish | source\n" + line +
                     "-f\n" + line + "-n __fish_use_subcommand -l version -s V\n";
  for (const CLI::App *app : subcommands(program)) {
    const std::string inside = "-n '__fish_seen_subcommand_from " + app->get_name() + "' ";
    text += line + "-n __fish_use_subcommand -a " + app->get_name() + " -d " +
            fish_quoted(app->get_description()) + "\n";
    for (const CLI::Option *option : app->get_options()) {
      const std::string words = join(words_of(*option));
      if (option->get_lnames().empty()) {
        if (!words.empty())
          text += line + inside + "-a '" + words + "'\n";
        continue;
      }
      text += line + inside + "-l " + option->get_lnames()[0];
      for (const std::string &name : option->get_snames())
        text += " -s " + name;
      if (takes_value(*option))
        text += is_file(*option) ? " -r -F" : words.empty() ? " -x" : " -x -a '" + words + "'";
      text += " -d " + fish_quoted(option->get_description()) + "\n";
    }
  }
  return text;
}

Subcommand::Run add(CLI::App &app) {
  const auto shell = std::make_shared<std::string>();
  CLI::Option *const word =
      add_choice(app, "shell", *shell, "SHELL", {"bash", "zsh", "fish"}, "bash, zsh or fish")
          ->required();
  app.footer("The installed command has these scripts where the shells look for them.\n"
             "\nExamples:\n"
             "  eval \"$(zrvcomn completion bash)\"\n"
             "  zrvcomn completion zsh >_zrvcomn\n"
             "\nExit codes: 0 printed, 2 wrong usage.");
  return [shell, word, &app](const Words &more) {
    take_word(word, *shell, more, "shell");
    const CLI::App &program = *app.get_parent();
    Writer out(STDOUT_FILENO);
    out.text = *shell == "bash"  ? bash_script(program)
               : *shell == "zsh" ? zsh_script(program)
                                 : fish_script(program);
    out.flush();
    return exit_success;
  };
}

const Subcommand completion("completion", "Print a script that completes words in a shell", add);

} // namespace
