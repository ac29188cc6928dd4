// zrvcomn crypt: the hexadecimal form of the password cipher. Nothing secret comes from the
// arguments, which any process can read.
#include <cstdio>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "output.h"
#include "secret.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/netenc.h"

namespace {

using namespace zrvtool;

// "0x" and two digits for each byte is a salt of any bytes; else the salt is what stands there.
void read_salt(Secret &salt) {
  Secret line;
  read_line(line, "salt");
  const std::string_view text = line.text();
  if (text.size() == COM_ENC_SALTLEN)
    text.copy(salt.data(), COM_ENC_SALTLEN);
  else if (text.size() != 2 + 2 * COM_ENC_SALTLEN || !text.starts_with("0x") ||
           !read_hex(text.substr(2), salt.data()))
    throw StreamError("a salt has 8 bytes: 8 characters, or 0x and 16 hexadecimal digits");
  salt.resize(COM_ENC_SALTLEN);
}

int fail(const std::string &what, CS_RETCODE status) {
  std::fprintf(stderr, "zrvcomn crypt: %s: %s\n", what.c_str(), status_name(status).c_str());
  return exit_failure;
}

int encode() {
  Secret salt, text;
  read_salt(salt);
  read_line(text, "text");
  char hex[COM_ENC_HEXLEN];
  int length = 0;
  const CS_RETCODE status =
      com_initialize_hex_strings(salt.data(), salt.size(), text.data(), text.size(), hex, &length);
  if (status != CS_SUCCEED)
    return fail("a text has 1 to 30 bytes, not " + std::to_string(text.size()), status);
  Writer out(STDOUT_FILENO);
  out.text.assign(hex, static_cast<size_t>(length));
  out.text += '\n';
  out.flush();
  return exit_success;
}

int decode() {
  Secret salt, hex, text;
  read_salt(salt);
  read_line(hex, "hexadecimal form");
  int length = 0;
  const CS_RETCODE status = com_uninitialize_hex_strings(salt.data(), salt.size(), hex.data(),
                                                         hex.size(), text.data(), &length);
  if (status != CS_SUCCEED)
    return fail("this is not 0x01 and 66 hexadecimal digits of a block", status);
  text.resize(length);
  write_secret(text.text());
  return exit_success;
}

struct Options {
  std::string form, action;
  std::vector<std::string> rest;
};

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  offer(app.add_option("form", options->form, "hex: the hexadecimal form of an enciphered text")
            ->required()
            ->type_name("FORM"),
        {"hex"});
  offer(app.add_option("action", options->action, "encode or decode")
            ->required()
            ->type_name("ACTION"),
        {"encode", "decode"});
  app.add_option("rest", options->rest)->group(""); // taken, so that it is not repeated
  app.footer(
      "The first line of standard input is the salt, 8 characters or 0x and 16 hexadecimal\n"
      "digits; the second is the text, or its hexadecimal form. On a terminal the command\n"
      "asks for both and does not show them.\n"
      "\nThis cipher serves peers that are deployed; it is not protection by today's standards.\n"
      "\nExamples:\n"
      "  zrvcomn crypt hex encode\n"
      "  zrvcomn crypt hex decode <file-with-salt-and-form\n"
      "\nExit codes: 0 done, 1 no such salt, text or form, 2 wrong usage.");
  return [options](const std::vector<std::string> &more) {
    options->form = lower_case(options->form);
    options->action = lower_case(options->action);
    if (options->form != "hex")
      throw UsageError("there is no such form, only hex");
    if (options->action != "encode" && options->action != "decode")
      throw UsageError("there is no such action, only encode and decode");
    if (!options->rest.empty() || !more.empty())
      throw UsageError("salt and text come from standard input, never from the arguments");
    return options->action == "encode" ? encode() : decode();
  };
}

const Subcommand crypt("crypt", "Encode and decode the hexadecimal form of passwords", add);

} // namespace
