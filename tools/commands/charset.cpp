// zrvcomn charset: the character sets of the installation.
#include <algorithm>
#include <iostream>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "charset_matrix.h"
#include "identifiers.h"
#include "listing.h"
#include "output.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/charset.h"

namespace {

using namespace zrvtool;

// Character sets as a context has them loaded.
class Charsets {
public:
  ~Charsets() { com_intl_chardesc_drop(identifiers.get()); }

  const Identifiers &known() const { return identifiers; }

  // The identifier of a set by any of its names, or null.
  CsOID *find(const std::string &name) { return identifiers.find(COM_OID_CHARSET, name); }

  // A set, or null; the status tells why.
  CHAR_ATTRIB *load(CsOID *oid, CS_RETCODE &status) {
    std::string directory(name_of(*oid->oidlnames));
    CsLocCache cache{};
    cache.charname = directory.data();
    cache.charnamelen = static_cast<CS_INT>(directory.size());
    identifiers.get()->ctxintlerr = 0;
    status = comn__intl_load_charset(identifiers.get(), oid, &cache, nullptr, 0);
    return status == CS_SUCCEED ? cache.locchardesc->char_attrib : nullptr;
  }

  std::string failure(CS_RETCODE status) { return failure_text(status, *identifiers.get()); }

private:
  Identifiers identifiers;
};

struct Options {
  std::string action, what;
  Listing listing;
};

std::string names_behind(const CS_STRING_LIST *name) {
  std::string text;
  for (; name != nullptr; name = name->next) {
    text += text.empty() ? "" : ", ";
    append_visible(text, name_of(*name));
  }
  return text;
}

// Every identifier of a set that has a file. A file that is there and cannot be loaded is reported.
int list(Charsets &charsets, const Listing &listing, Writer &out) {
  int code = exit_success;
  if (!listing.is_for_programs())
    out.text += "set          id  class  bytes  other names\n";
  for (const CsOID *oid = charsets.known().first(COM_OID_CHARSET); oid != nullptr;
       oid = oid->oidnext) {
    if (oid->oidlnames == nullptr)
      continue;
    CS_RETCODE status;
    const CHAR_ATTRIB *const set = charsets.load(const_cast<CsOID *>(oid), status);
    std::string name;
    append_visible(name, name_of(*oid->oidlnames));
    if (set == nullptr) {
      if (status != COM_LOCFILE_ERROR) {
        std::cerr << "zrvcomn charset: " << name << ": " << charsets.failure(status) << '\n';
        code = exit_failure;
      }
      continue;
    }
    if (listing.is_for_programs()) {
      nlohmann::ordered_json object;
      object["name"] = name_of(*oid->oidlnames);
      object["id"] = set->cs_id;
      object["class"] = set->cs_class;
      object["longest"] = set->cs_maxcharlen;
      object["names"] = nlohmann::json::array();
      for (const CS_STRING_LIST *each = oid->oidlnames; each != nullptr; each = each->next)
        object["names"].push_back(name_of(*each));
      listing.add(out.text, object);
    } else {
      const std::string id = std::to_string(set->cs_id);
      std::string line = padded(name, 11) + std::string(4 - std::min<size_t>(id.size(), 4), ' ') +
                         id + "  " + padded(std::to_string(set->cs_class), 7) +
                         padded(std::to_string(set->cs_maxcharlen), 7) +
                         names_behind(oid->oidlnames->next);
      out.text += line.erase(line.find_last_not_of(' ') + 1) + "\n";
    }
    out.settle();
  }
  return code;
}

// How a byte is shown: what it is as a character, or how many bytes one has that begins with it.
struct Mark {
  char sign;
  const char *colour;
  const char *meaning;
};
constexpr Mark marks[] = {
    {'U', "\033[34m", "upper case"}, {'l', "\033[36m", "lower case"},
    {'a', "\033[32m", "letter"},     {'0', "\033[33m", "digit"},
    {'_', "\033[7m", "white space"}, {'!', "\033[35m", "punctuation"},
    {'+', "\033[1m", "other"},       {'.', "\033[2m", "none"},
    {'2', "\033[31m", "2 bytes"},    {'3', "\033[31m", "3 bytes"},
    {'4', "\033[31m", "4 bytes"},    {'*', "\033[31m", "2 or 4 bytes"},
};
constexpr const char *plain_text = "\033[0m";

char sign_of(CHAR_ATTRIB *set, CS_BYTE byte) {
  CS_BYTE character[] = {byte, 0};
  if (const CS_INT length = comn_char_width(set, character); length > 1) {
    character[1] = '0';
    return comn_char_width(set, character) != length ? '*' : static_cast<char>('0' + length);
  }
  const bool upper = comn_isupper(set, character) != 0, lower = comn_islower(set, character) != 0;
  if (upper || lower)
    return upper && lower ? 'a' : upper ? 'U' : 'l';
  return comn_isdigit(set, character)   ? '0'
         : comn_isspace(set, character) ? '_'
         : comn_ispunct(set, character) ? '!'
         : comn_isgraph(set, character) ? '+'
                                        : '.';
}

const Mark &mark_of(char sign) {
  return *std::find_if(std::begin(marks), std::end(marks),
                       [sign](const Mark &mark) { return mark.sign == sign; });
}

void append_mark(Writer &out, const Mark &mark) {
  if (out.has_colour())
    out.text += mark.colour;
  out.text += mark.sign;
  if (out.has_colour())
    out.text += plain_text;
}

void show_picture(CHAR_ATTRIB *set, Writer &out) {
  constexpr char digits[] = "0123456789abcdef";
  std::string seen;
  out.text += "\n    ";
  for (const char digit : std::string_view(digits))
    out.text += std::string(" ") + digit;
  out.text += '\n';
  for (int row = 0; row < 16; ++row) {
    out.text += std::string("  ") + digits[row] + " ";
    for (int column = 0; column < 16; ++column) {
      const char sign = sign_of(set, static_cast<CS_BYTE>(row * 16 + column));
      out.text += ' ';
      append_mark(out, mark_of(sign));
      seen += sign;
    }
    out.text += '\n';
  }
  out.text += '\n';
  for (const Mark &mark : marks)
    if (seen.find(mark.sign) != std::string::npos) {
      out.text += "  ";
      append_mark(out, mark);
      out.text += std::string(" ") + mark.meaning + "\n";
    }
}

void show_json(CHAR_ATTRIB *set, const CsOID &oid, Writer &out) {
  nlohmann::ordered_json object;
  object["name"] = name_of(*oid.oidlnames);
  object["id"] = set->cs_id;
  object["class"] = set->cs_class;
  object["longest"] = set->cs_maxcharlen;
  nlohmann::json types, uppers, lowers, lengths, columns;
  for (int byte = 0; byte < 256; ++byte) {
    CS_BYTE character[] = {static_cast<CS_BYTE>(byte), 0};
    const CHAR_MAP &entry = set->cs_type_map->chmap[byte];
    types.push_back(entry.char_type);
    uppers.push_back(entry.char_upper);
    lowers.push_back(entry.char_lower);
    lengths.push_back(comn_char_width(set, character));
    columns.push_back(comn_disp_width(set, character));
  }
  object["types"] = types;
  object["upper"] = uppers;
  object["lower"] = lowers;
  object["length"] = lengths;
  object["columns"] = columns;
  out.text += json_text(object) + "\n";
}

int show(Charsets &charsets, const Options &options, Writer &out) {
  CsOID *const oid = charsets.find(options.what);
  if (oid == nullptr)
    throw UsageError("there is no character set " + in_quotes(options.what));
  CS_RETCODE status;
  CHAR_ATTRIB *const set = charsets.load(oid, status);
  if (set == nullptr) {
    std::cerr << "zrvcomn charset: " << name_of(*oid->oidlnames) << ": " << charsets.failure(status)
              << '\n';
    return exit_failure;
  }
  if (options.listing.json) {
    show_json(set, *oid, out);
    return exit_success;
  }
  out.text += "set          " + std::string(name_of(*oid->oidlnames)) + "\nother names  " +
              names_behind(oid->oidlnames->next) + "\nid           " + std::to_string(set->cs_id) +
              "\nclass        " + std::to_string(set->cs_class) + "\nlongest      " +
              std::to_string(set->cs_maxcharlen) + " bytes\n";
  show_picture(set, out);
  return exit_success;
}

int run(const Options &options) {
  Charsets charsets;
  Writer out(STDOUT_FILENO);
  const int code = options.action == "list" ? list(charsets, options.listing, out)
                                            : show(charsets, options, out);
  out.flush();
  return code;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", {"list", "show", "matrix"},
             "list, show or matrix")
      ->required();
  CLI::Option *const set =
      app.add_option("set", options->what, "show, matrix: a character set, by any of its names")
          ->type_name("SET");
  add_listing(app, options->listing, "set, with matrix for each pair");
  app.footer(
      "list: the character sets of the installation. show: one of them, as a picture of what\n"
      "each byte is. matrix: what converts each set into each other.\n"
      "\nExamples:\n"
      "  zrvcomn charset list\n"
      "  zrvcomn charset show latin1\n"
      "  zrvcomn charset show --json sjis\n"
      "  zrvcomn charset matrix cp850\n"
      "\nExit codes: 0 shown, 1 not loaded, 2 wrong usage.");
  return [options, set](const Words &more) -> int {
    take_word(set, options->what, more, "set");
    if (options->action == "show" && options->what.empty())
      throw UsageError("show needs a set");
    if (options->action == "show" && options->listing.plain)
      throw UsageError("--plain is for list and matrix");
    if (options->action == "list" && !options->what.empty())
      throw UsageError("list takes no set");
    if (options->action == "matrix") {
      Writer out(STDOUT_FILENO);
      append_charset_matrix(out.text, options->what, options->listing);
      out.flush();
      return exit_success;
    }
    return run(*options);
  };
}

const Subcommand charset("charset", "List and show the character sets of the installation", add);

} // namespace
