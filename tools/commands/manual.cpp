// zrvcomn manual: the manual page zrvcomn(1), from the same table of options and the same texts that the
// help shows.
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "output.h"
#include "subcommand.h"

namespace {

using namespace zrvtool;

constexpr const char *ending =
    ".SH EXIT STATUS\n"
    ".TP\n0\nAll was done, and nothing is wrong.\n"
    ".TP\n1\nSome values failed or something is wrong, each told on standard error.\n"
    ".TP\n2\nWrong usage: nothing was done, and one line says why.\n"
    ".SH ENVIRONMENT\n"
    ".TP\n.B ZARVEK\nThe home directory of the installation.\n"
    ".TP\n.BR LC_COLLATE \", \" LC_CTYPE \", \" LC_MESSAGE \", \" LC_MONETARY \", \" LC_NUMERIC "
    "\", \" "
    "LC_TIME \", \" LANG\n"
    "The locales of the six categories, where no option tells one.\n"
    ".TP\n.B NO_COLOR\nNo colours on a terminal.\n"
    ".PP\nOther variables move single files;\n.B zrvcomn config paths\nnames them where they "
    "count.\n"
    ".SH SEE ALSO\n.BR libzrvcomn (3)\n";

// Text of a page: nothing in it is a request, and what is typed can be copied.
std::string escaped(std::string_view text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool begins_line = i == 0 || text[i - 1] == '\n';
    if (begins_line && (text[i] == '.' || text[i] == '\''))
      result += "\\&";
    switch (text[i]) {
    case '\\':
      result += "\\e";
      break;
    case '-':
      result += "\\-";
      break;
    case '\'':
      result += "\\(aq";
      break;
    case '"':
      result += "\\(dq";
      break;
    case '`':
      result += "\\(ga";
      break;
    case '^':
      result += "\\(ha";
      break;
    case '~':
      result += "\\(ti";
      break;
    default:
      result += text[i];
    }
  }
  return result;
}

// The text under the options: paragraphs, titles such as "Examples:", and lines that are indented, which
// stay as they are.
std::string body(const std::string &text) {
  std::string result;
  bool as_it_stands = false, begins = true;
  for (const std::string &line : CLI::detail::split(text, '\n')) {
    const bool indented = line.starts_with("  ");
    if (as_it_stands && !indented) {
      result += ".fi\n.RE\n";
      as_it_stands = false;
    }
    if (line.empty()) {
      begins = true;
      continue;
    }
    if (indented && !as_it_stands) {
      result += ".RS 4\n.nf\n";
      as_it_stands = true;
    } else if (begins) {
      result += ".PP\n";
    }
    begins = false;
    result += escaped(indented ? std::string_view(line).substr(2) : line) + "\n";
  }
  return result + (as_it_stands ? ".fi\n.RE\n" : "");
}

std::string option(const CLI::Option &option, const CLI::Formatter &formatter) {
  const bool positional = option.get_positional();
  std::string names = escaped(formatter.make_option_name(&option, positional));
  for (size_t comma = names.find(','); comma != std::string::npos;
       comma = names.find(',', comma + 2))
    names.insert(comma + 1, 1, ' ');
  return ".TP\n" + std::string(positional ? ".I \"" : ".B \"") + names +
         escaped(formatter.make_option_opts(&option)) + "\"\n" + escaped(option.get_description()) +
         "\n";
}

std::string options(const CLI::App &app) {
  const CLI::Formatter formatter;
  std::string text;
  for (const bool positional : {true, false})
    for (const CLI::Option *each : app.get_options())
      if (each->get_positional() == positional && !each->get_group().empty() &&
          (each != app.get_help_ptr() || app.get_parent() == nullptr))
        text += option(*each, formatter);
  return text;
}

// "zrvcomn sort [OPTIONS]"
std::string usage(const CLI::App &app) {
  const CLI::Formatter formatter;
  const std::string text = formatter.make_usage(&app, "zrvcomn " + app.get_name());
  return text.substr(text.find(':') + 2, text.find('\n') - text.find(':') - 2);
}

std::string page(const CLI::App &program) {
  std::string text = ".TH ZRVCOMN 1 \"\" \"zrvcomn " ZRVTOOL_VERSION "\"\n"
                     ".SH NAME\nzrvcomn \\- " +
                     escaped(program.get_description()) +
                     "\n.SH SYNOPSIS\n.B zrvcomn\n.I command\n[options] [values]\n"
                     ".SH DESCRIPTION\n" +
                     body(program.get_footer()) + ".SH OPTIONS\n" + options(program) +
                     ".SH COMMANDS\n";
  for (const CLI::App *app : program.get_subcommands([](const CLI::App *) { return true; }))
    text += ".SS " + escaped(app->get_name()) + "\n" + escaped(app->get_description()) +
            ".\n.PP\n.B " + escaped(usage(*app)) + "\n" + options(*app) + body(app->get_footer());
  return text + ending;
}

Subcommand::Run add(CLI::App &app) {
  app.footer("The installed command has this page where man looks for it.\n"
             "\nExamples:\n"
             "  zrvcomn manual >zrvcomn.1\n"
             "  zrvcomn manual | man -l -\n"
             "\nExit codes: 0 printed, 2 wrong usage.");
  return [&app](const std::vector<std::string> &) {
    Writer out(STDOUT_FILENO);
    out.text = page(*app.get_parent());
    out.flush();
    return exit_success;
  };
}

const Subcommand manual("manual", "Print the manual page of the command", add);

} // namespace
