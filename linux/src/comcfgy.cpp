// The parser of configuration files.
//
// Each rule of the grammar stands above the function that reads it. Rules compete where `sep` may be
// nothing: a token that can be taken is taken, else the rule ends that stands first here. No rule looks
// further than one token ahead, and none looks ahead that ends in either case, so an action comes before
// the messages of what follows it.
//
// Errors are recovered from as in a parser that keeps a stack of states: what was read since the last
// list of sections or entries is thrown away, then tokens until the list can go on. The states that such
// a parser would have on its stack are counted, because their number is limited.
#include "config.h"
#include "text.h"

using namespace comn::config;

namespace {

// Tokens that are joined, the first and the last of them; null for nothing.
struct Text {
  CfgTok *first;
  CfgTok *last;
};

void join(Text &text, Text more) noexcept {
  if (more.first == nullptr)
    return;
  if (text.first == nullptr)
    text.first = more.first;
  else
    text.last->catted = more.first;
  text.last = more.last;
}

class Parser {
public:
  explicit Parser(CS_CONFIG *handle) noexcept : cfg(handle), info(parse_of(handle)) {}

  // config: section_list
  //
  // section_list: section
  //             | section_list section
  //             | section_list error section_list
  //
  // A file begins behind an empty section, so that a faulty header is recovered from there as it is
  // anywhere else. Behind an error begins a list inside the list.
  CS_RETCODE config() noexcept {
    CS_INT list = states;
    bool behind_error = false;
    while (peek() != CFG_END) {
      if (section()) {
        reduce(behind_error ? 1 : 2);
        list = states;
        behind_error = false;
      } else {
        states = list;
        if (!recover())
          return CS_FAIL;
        behind_error = true;
      }
    }
    return gave_up ? CS_FAIL : CS_SUCCEED;
  }

private:
  // ---- the grammar ----
  //
  // Each function returns false when the next token does not fit or the parser has given up.

  // section: CFG_LBRACKET sep section_name sep CFG_RBRACKET {add it} entries {check it}
  //        | sep
  //
  // section_name: CFG_IDENT
  //             | section_name sep CFG_IDENT
  bool section() noexcept {
    if (at(CFG_BLANK) || at(CFG_NEWLINE))
      return sep() && reduce(1) && clear();
    Text name = {}, between = {};
    if (!expect(CFG_LBRACKET) || !sep() || !expect(CFG_IDENT, name) || !reduce(1))
      return false;
    while (sep(between) && !at(CFG_RBRACKET)) {
      join(name, between);
      if (!expect(CFG_IDENT, name) || !reduce(3))
        return false;
    }
    if (!expect(CFG_RBRACKET) || !act(cfg__add_section(cfg, name.first)) || !clear() || !reduce(0))
      return false;
    if (entries())
      return act(cfg__check_section(cfg)) && reduce(7);
    // Before the first entry there is no list of entries to recover in. The error costs the section all
    // the same.
    info->section_ok = 0;
    act(cfg__check_section(cfg));
    return false;
  }

  // entries: entry
  //        | entries entry
  //        | entries error entry {fail the section}
  bool entries() noexcept {
    if (!entry() || !reduce(1) || !clear())
      return false;
    const CS_INT list = states;
    bool behind_error = false;
    while (behind_error || !at_section_end()) {
      if (entry()) {
        reduce(behind_error ? 3 : 2);
        clear();
        if (behind_error)
          info->section_ok = 0;
        behind_error = false;
      } else {
        states = list;
        if (!recover())
          return false;
        behind_error = true;
      }
    }
    return true;
  }

  bool at_section_end() noexcept { return at(CFG_LBRACKET) || at(CFG_END); }

  // entry: entry_name sep CFG_EQUALS sep value_list CFG_NEWLINE {add it}
  //      | include_line
  //      | sep
  //
  // entry_name: CFG_IDENT
  bool entry() noexcept {
    if (at(CFG_INCLUDE))
      return include_line() && reduce(1);
    if (at(CFG_BLANK) || at(CFG_NEWLINE) || at_section_end())
      return sep() && reduce(1);
    Text name = {}, value = {};
    return expect(CFG_IDENT, name) && reduce(1) && sep() && expect(CFG_EQUALS) && sep() &&
           value_list(value) && expect(CFG_NEWLINE) &&
           act(cfg__add_entry(cfg, name.first, value.first)) && reduce(6);
  }

  // include_line: CFG_INCLUDE sep CFG_EQUALS sep entry_name {add it}
  bool include_line() noexcept {
    Text name = {};
    return expect(CFG_INCLUDE) && sep() && expect(CFG_EQUALS) && sep() && expect(CFG_IDENT, name) &&
           reduce(1) && act(cfg__add_include(cfg, name.first)) && reduce(5);
  }

  // value_list: value_item
  //           | value_list value_item
  bool value_list(Text &value) noexcept {
    if (!value_item(value) || !reduce(1))
      return false;
    while (!at(CFG_NEWLINE))
      if (!value_item(value) || !reduce(2))
        return false;
    return true;
  }

  // value_item: CFG_IDENT | CFG_VALUE | CFG_BLANK | string | CFG_LINE_CONT
  bool value_item(Text &value) noexcept {
    switch (peek()) {
    case CFG_IDENT:
    case CFG_VALUE:
    case CFG_BLANK:
      return shift(value) && reduce(1);
    case CFG_STRING_START:
      return string(value) && reduce(1);
    case CFG_LINE_CONT:
      return shift() && reduce(1);
    }
    return false;
  }

  // string: CFG_STRING_START string_body CFG_STRING_END
  //       | CFG_STRING_START CFG_STRING_END
  //       | CFG_STRING_START string_body error {fail the section}
  //
  // string_body: string_piece
  //            | string_body string_piece
  bool string(Text &value) noexcept {
    if (!shift())
      return false;
    if (at(CFG_STRING_END))
      return shift() && reduce(2);
    if (!string_piece(value) || !reduce(1))
      return false;
    while (!at(CFG_STRING_END)) {
      if (string_piece(value)) {
        reduce(2);
      } else if (recover()) {
        token_is_read = false;
        clear();
        value = {}; // its tokens are gone
        info->section_ok = 0;
        return reduce(3);
      } else {
        return false;
      }
    }
    return shift() && reduce(3);
  }

  // string_piece: CFG_STRING_VALUE | CFG_LINE_CONT | CFG_ESC_QUOTE
  bool string_piece(Text &value) noexcept {
    switch (peek()) {
    case CFG_STRING_VALUE:
      return shift(value) && reduce(1);
    case CFG_LINE_CONT:
      return shift() && reduce(1);
    case CFG_ESC_QUOTE:
      // Two quotes stand for one.
      info->lasttok->buflen = first_character(info->lasttok);
      return shift(value) && reduce(1);
    }
    return false;
  }

  // sep: CFG_BLANK | CFG_NEWLINE | nothing
  bool sep() noexcept {
    Text text;
    return sep(text);
  }
  bool sep(Text &text) noexcept {
    text = {};
    if (at(CFG_BLANK) || at(CFG_NEWLINE))
      return shift(text) && reduce(1);
    // Nothing is read for a token that can follow it: whether there is room for its state is asked when
    // that is taken, and not when it is an error.
    ++states;
    return true;
  }

  // ---- tokens ----

  // The code of the next token. What has given up is at its end.
  CS_INT peek() noexcept {
    if (!token_is_read && !gave_up) {
      token_is_read = true;
      act(cfg__nexttok(cfg, &code));
    }
    return gave_up ? CFG_END : code;
  }

  bool at(CS_INT wanted) noexcept { return peek() == wanted; }

  bool shift() noexcept {
    token_is_read = false;
    if (shifts_to_recover > 0)
      --shifts_to_recover;
    return push();
  }

  bool shift(Text &text) noexcept {
    join(text, {info->lasttok, info->lasttok});
    return shift();
  }

  bool expect(CS_INT wanted) noexcept { return at(wanted) && shift(); }
  bool expect(CS_INT wanted, Text &text) noexcept { return at(wanted) && shift(text); }

  CS_INT first_character(const CfgTok *token) const noexcept {
    const auto *const bytes = reinterpret_cast<const CS_BYTE *>(info->buffer + token->offset);
    return static_cast<CS_INT>(
        comn::length_inside(comn::charset_or_builtin(info->attr), {bytes, bytes + token->buflen}));
  }

  // ---- states ----

  static constexpr CS_INT most_states = 500;

  bool push() noexcept {
    if (states < most_states) {
      ++states;
      return true;
    }
    report_error();
    gave_up = true;
    return false;
  }

  // The end of a rule of so many symbols, which become one.
  bool reduce(CS_INT symbols) noexcept {
    states -= symbols;
    return push();
  }

  // ---- actions and errors ----

  bool act(CS_RETCODE result) noexcept {
    if (result != CS_SUCCEED)
      gave_up = true;
    return !gave_up;
  }

  bool clear() noexcept {
    cfg__clearparse(cfg);
    return !gave_up;
  }

  // The next token fits nowhere. The first error is reported; one that comes before three tokens were
  // shifted is part of it. When not even one was, the token is in the way and is thrown away. False at
  // the end of the file, and when the parser has given up.
  bool recover() noexcept {
    constexpr int shifts_behind_error = 3;
    if (gave_up)
      return false;
    if (shifts_to_recover == shifts_behind_error) {
      gave_up = at(CFG_END);
      token_is_read = false;
    } else if (shifts_to_recover == 0) {
      report_error();
    }
    shifts_to_recover = shifts_behind_error;
    return !gave_up && push();
  }

  void report_error() noexcept {
    const CfgTok *const token = info->lasttok;
    CsErrParams ep;
    Shown text(info->buffer + token->offset, token->buflen);
    com_ep_sds(&ep, data_of(cfg)->cfgname, &info->line, text.get());
    com__error(cfg->cfg_ctx, COM_CFGERR_SYNTAX, &ep);
  }

  CS_CONFIG *cfg;
  CfgParseInfo *info;
  CS_INT code = CFG_END;      // of the next token
  bool token_is_read = false; // the next token is the newest one
  bool gave_up = false;
  CS_INT states = 2; // the start and the list of sections
  int shifts_to_recover = 0;
};

} // namespace

CS_RETCODE cfg__parse(CS_CONFIG *cfg) noexcept {
  return Parser(cfg).config();
}
