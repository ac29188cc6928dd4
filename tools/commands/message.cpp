// zrvcomn message: a message of the library, as an application's error callback gets it.
#include <charconv>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "identifiers.h"
#include "listing.h"
#include "output.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comerr.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string number;
  std::vector<std::string> parameters;
  std::string language = "us_english";
  bool json = false;
};

std::optional<CS_MSGNUM> parse_number(const std::string &text) {
  const bool is_hex = text.starts_with("0x");
  const char *const begin = text.data() + (is_hex ? 2 : 0);
  const char *const end = text.data() + text.size();
  long long number = 0;
  const auto [parsed, error] = std::from_chars(begin, end, number, is_hex ? 16 : 10);
  if (error != std::errc() || parsed != end || number < INT32_MIN || number > UINT32_MAX)
    return std::nullopt;
  return static_cast<CS_MSGNUM>(static_cast<uint32_t>(number));
}

CS_INT byte_of(CS_MSGNUM number, int index) {
  return static_cast<CS_INT>(static_cast<uint32_t>(number) >> (8 * index) & 255);
}

// The messages of one language, in UTF-8.
class Language {
public:
  Language(Identifiers &identifiers, CsOID *oid)
      : context(*identifiers.get()),
        name(oid->oidlnames->string, static_cast<size_t>(oid->oidlnames->len)) {
    charset.oid = identifiers.find(COM_OID_CHARSET, "utf8");
    context.ctxglobals->cmg_utf8_charset = &charset;
    cache.locchardesc = &charset;
    cache.langname = name.data();
    cache.langnamelen = static_cast<CS_INT>(name.size());
    locale.messageptr = &cache;
    context.ctxlocale = &locale;
    CS_RETCODE status = comn__intl_load_message(&context, oid, &cache);
    if (status == CS_SUCCEED)
      status = com_errinit(&context);
    if (status != CS_SUCCEED) {
      drop();
      throw StreamError("cannot read comnlib.loc of " + name + ": " +
                        failure_text(status, context) +
                        " (zrvcomn config paths tells where it should be)");
    }
  }
  ~Language() { drop(); }
  Language(const Language &) = delete;
  Language &operator=(const Language &) = delete;

  const std::string &get_name() const { return name; }

  bool has_text(CS_MSGNUM number) {
    CS_ERRIDX index = {COM_ERRSEC_API, byte_of(number, 0)};
    CS_CHAR *text = nullptr;
    return byte_of(number, 2) == COM_ERRORIGIN_INTL ||
           com_err_msg(&context, handle(), &index, &text) == CS_SUCCEED;
  }

  // Numbers among the parameters are shown as they are written.
  std::string line(CS_MSGNUM number, std::vector<std::string> parameters) {
    CsErrParams ep;
    if (parameters.size() == 3)
      com_ep_sss(&ep, parameters[0].data(), parameters[1].data(), parameters[2].data());
    else if (parameters.size() == 2)
      com_ep_ss(&ep, parameters[0].data(), parameters[1].data());
    else
      com_ep_s(&ep, parameters[0].data());
    std::string text(1023, '\0');
    const auto build = [&](CS_INT &length) {
      return com_notrunc_errmsg(&context, handle(), number, &ep, nullptr, 0, COM_ERRSEC_API, 0,
                                text.data(), static_cast<CS_INT>(text.size()), &length);
    };
    CS_INT length = 0;
    if (build(length) != CS_SUCCEED) {
      text.resize(static_cast<size_t>(length));
      build(length);
    }
    text.resize(static_cast<size_t>(length));
    return text;
  }

  std::string state(CS_MSGNUM number) {
    CS_CHAR text[8];
    CS_INT length = 0;
    return com_err_sqlstate(&context, handle(), byte_of(number, 0), COM_ERRSEC_API, text,
                            sizeof text, &length) == CS_SUCCEED
               ? std::string(text, static_cast<size_t>(length))
               : "ZZZZZ";
  }

private:
  CS_ERRHAN *handle() { return static_cast<CS_ERRHAN *>(context.ctxcomerrhan); }
  void drop() {
    com_errdrop(&context);
    comn_intl_message_drop(&context);
  }

  CS_CONTEXT &context;
  std::string name;
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

int run(const Options &options, CS_MSGNUM number) {
  Identifiers identifiers;
  CsOID *const oid = identifiers.find(COM_OID_NATLANG, options.language);
  if (oid == nullptr) {
    throw UsageError("there is no language " + in_quotes(options.language));
  }
  Language language(identifiers, oid);
  if (!language.has_text(number)) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%08x", static_cast<unsigned>(number));
    std::cerr << "zrvcomn message: the language " << language.get_name() << " has no text for "
              << byte_of(number, 0) << " (" << hex << ")\n";
    return exit_failure;
  }
  const std::string line = language.line(number, options.parameters);
  Writer out(STDOUT_FILENO);
  if (options.json) {
    nlohmann::ordered_json object;
    object["number"] = number;
    object["layer"] = byte_of(number, 3);
    object["origin"] = byte_of(number, 2);
    object["severity"] = byte_of(number, 1);
    object["text"] = byte_of(number, 0);
    object["sqlstate"] = language.state(number);
    object["language"] = language.get_name();
    object["line"] = line;
    out.text += json_text(object);
  } else {
    out.text += line;
  }
  out.text += '\n';
  out.flush();
  return exit_success;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  app.add_option("number", options->number, "Message number, decimal or 0x and hexadecimal")
      ->type_name("NUMBER");
  app.add_option("parameters", options->parameters, "What begins the line, then what goes into it")
      ->type_name("PARAMETER");
  app.add_option("--language", options->language, "Any name of the language (us_english)")
      ->type_name("NAME");
  app.add_flag("--json", options->json, "Print one JSON object, with the number taken apart");
  app.footer("Prints the line that an application's error callback gets: function, layer, origin\n"
             "and text. Languages: zrvcomn oid list natlang.\n"
             "\nExamples:\n"
             "  zrvcomn message 17040899 comn_init_cfg ncl.cfg\n"
             "  zrvcomn message 0x01040008 ncl.cfg 12 ']' --language de\n"
             "  zrvcomn message --json 17040906\n"
             "\nExit codes: 0 printed, 1 no such text, 2 wrong usage.");
  return [options](const std::vector<std::string> &more) {
    std::vector<std::string> &parameters = options->parameters;
    parameters.insert(parameters.end(), more.begin(), more.end());
    if (options->number.empty() && !parameters.empty()) {
      options->number = parameters.front();
      parameters.erase(parameters.begin());
    } else if (options->number.empty()) {
      throw UsageError("a message number is required");
    }
    const std::optional<CS_MSGNUM> number = parse_number(options->number);
    if (!number)
      throw UsageError(in_quotes(options->number) + " is no message number");
    if (parameters.size() > 3)
      throw UsageError("a message has three parameters at most");
    if (parameters.size() > 1 && byte_of(*number, 2) == COM_ERRORIGIN_INTL)
      throw UsageError("a message of this origin has one parameter");
    if (parameters.empty())
      parameters.push_back("zrvcomn");
    return run(*options, *number);
  };
}

const Subcommand message("message", "Print a message of the library in any language", add);

} // namespace
