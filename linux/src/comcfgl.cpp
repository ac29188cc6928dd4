// The scanner of configuration files: characters, tokens, and the bytes of the file that they stand for.
//
// The scanner sees each character as the one byte of ASCII that stands for it, so it reads files in any
// character set; a token is a stretch of the file's own bytes.
#include "charset.h"
#include "comnlib.h"
#include "config.h"
#include "text.h"
#include "zrvintl.h"

using namespace comn::config;

namespace {

// ---- classes of characters ----

constexpr CS_BYTE blank = 1;
constexpr CS_BYTE letter = 2;
constexpr CS_BYTE name = 4;
constexpr CS_BYTE plain_value = 8; // as it stands, without a backslash in front

// What a character without an ASCII form looks like, and the NUL, which the end of the input has.
constexpr CS_INT no_ascii = 241;

constexpr CS_BYTE classes_of(int c) {
  const bool is_blank = c == '\t' || c == '\f' || c == ' ';
  const bool is_letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  const bool is_delimiter = c == '=' || c == '[' || c == ']';
  const bool is_name = c > ' ' && c < 127 && !is_delimiter;
  const bool is_value =
      c != CFG_END && !is_blank && c != '\r' && c != '\n' && c != '"' && !is_delimiter && c != '\\';
  return static_cast<CS_BYTE>((is_blank ? blank : 0) | (is_letter ? letter : 0) |
                              (is_name ? name : 0) | (is_value ? plain_value : 0));
}

struct Classes {
  CS_BYTE of[256];
};

constexpr Classes classes = [] {
  Classes table = {};
  for (int c = 0; c < 256; ++c)
    table.of[c] = classes_of(c);
  return table;
}();

constexpr bool is(CS_INT c, CS_BYTE class_bit) {
  return (classes.of[c] & class_bit) != 0;
}

// Where a backslash has nothing behind it that it could quote.
constexpr bool ends_line(CS_INT c) {
  return c == '\r' || c == '\n' || c == CFG_END;
}

// ---- characters ----

constexpr CS_INT buffer_step = 1024;
constexpr CS_INT usual_room = 4; // for a character, before its length is known

CS_BYTE first_byte(const CfgParseInfo *info) noexcept {
  return static_cast<CS_BYTE>(info->buffer[info->buflen]);
}

// Makes the buffer larger. False without memory, which a message tells.
[[gnu::noinline]] bool grow(CS_CONFIG *cfg, CfgParseInfo *info) noexcept {
  // One pool word more than is used: a pool counts the header of a block as part of it and takes what
  // reaches into the last word for done.
  const auto wanted =
      static_cast<CS_UINT>(info->maxbuflen + buffer_step) + CS_UINT{sizeof(CS_VOID *)};
  CS_VOID *buffer = info->buffer;
  if (comn_mmrealloc(pool_of(cfg), wanted, &buffer) != CS_SUCCEED) {
    report(cfg->cfg_ctx, COM_CFGERR_MEMORY, in_init);
    info->damaged = 1;
    return false;
  }
  info->buffer = static_cast<CS_CHAR *>(buffer);
  info->maxbuflen += buffer_step;
  return true;
}

// Makes room for a character of so many bytes.
bool reserve(CS_CONFIG *cfg, CfgParseInfo *info, CS_INT length) noexcept {
  return info->buflen + length <= info->maxbuflen || grow(cfg, info);
}

[[gnu::noinline]] void report_read(CS_CONFIG *cfg, CfgParseInfo *info) noexcept {
  report(cfg->cfg_ctx, COM_CFGERR_OPEN, in_init, data_of(cfg)->cfgname);
  info->damaged = 1;
}

bool read_bytes(CS_CONFIG *cfg, CfgParseInfo *info, CS_CHAR *bytes, CS_INT count) noexcept {
  const int read = intl_iocsfread(bytes, 1, static_cast<size_t>(count), info->iocs);
  if (read < 0) [[unlikely]]
    report_read(cfg, info);
  return read == count;
}

// Reads what belongs to the byte behind `buflen`: the length of the character, 0 when the input ends in it.
CS_INT read_character(CS_CONFIG *cfg, CfgParseInfo *info, const CHAR_ATTRIB &set) noexcept {
  CS_INT length = 1, whole;
  // In a set with characters of four bytes the second byte has a say in the length.
  const auto bytes = [info] { return reinterpret_cast<CS_BYTE *>(info->buffer + info->buflen); };
  while ((whole = comn::char_length(set, comn::Within{bytes(), bytes() + length})) > length) {
    if (!reserve(cfg, info, whole))
      return 0;
    if (!read_bytes(cfg, info, info->buffer + info->buflen + length, whole - length)) {
      if (info->damaged == 0)
        report(cfg->cfg_ctx, COM_CFGERR_CHAR, data_of(cfg)->cfgname);
      return 0;
    }
    length = whole;
  }
  return length;
}

// The character behind `buflen` as the scanner sees it.
CS_INT shown(const CHAR_ATTRIB &set, const CfgParseInfo *info, CS_INT length) noexcept {
  const auto *const bytes = reinterpret_cast<const CS_BYTE *>(info->buffer + info->buflen);
  const comn::Within place = {bytes, bytes + length};
  CS_BYTE ascii = comn::to_ascii(set, place);
  if ((comn::char_map(set, place).char_type & CS_CTYPE_UPPER) != 0)
    ascii = com_toupper(ascii);
  return ascii != 0 ? ascii : no_ascii;
}

// Reads a character that may be of several bytes, or of one that has not been seen yet.
[[gnu::noinline]] void read_any_character(CS_CONFIG *cfg, CfgParseInfo *info) noexcept {
  const CHAR_ATTRIB &set = comn::charset_or_builtin(info->attr);
  const CS_INT length = read_character(cfg, info, set);
  if (length == 0) {
    info->ended = 1;
    return;
  }
  info->last_char_len[0] = length;
  info->last_char[0] = shown(set, info, length);
  ++info->ascii_count;
  if (length == 1)
    info->shown[first_byte(info)] = static_cast<CS_BYTE>(info->last_char[0]);
}

CS_INT get_character(CS_CONFIG *cfg, CfgParseInfo *info) noexcept {
  info->buflen += info->last_char_len[0];
  if (info->last_char[0] == '\n')
    ++info->line;
  info->last_char[1] = info->last_char[0];
  info->last_char_len[1] = info->last_char_len[0];
  info->last_char[0] = CFG_END;
  info->last_char_len[0] = 0;
  if (!reserve(cfg, info, usual_room) || !read_bytes(cfg, info, info->buffer + info->buflen, 1)) {
    info->ended = 1;
  } else if (const CS_BYTE known = info->shown[first_byte(info)]; known != 0) {
    info->last_char[0] = known;
    info->last_char_len[0] = 1;
    ++info->ascii_count;
  } else {
    read_any_character(cfg, info);
  }
  return info->last_char[0];
}

// ---- tokens ----

// Matches one token. It grows by take(); peek() tells what follows it, up to three characters ahead.
class Scanner {
public:
  explicit Scanner(CS_CONFIG *handle) noexcept : cfg(handle), info(parse_of(handle)) {}

  CS_INT length() const noexcept { return taken; }

  // The code of the next token.
  CS_INT match() noexcept { return info->in_string != 0 ? match_string() : match_normal(); }

private:
  // The character that lies so many behind the token.
  CS_INT peek(CS_INT ahead = 0) noexcept {
    const CS_INT behind = info->ascii_count - taken - ahead;
    // The end stands in line like a character.
    return behind > 0 ? info->last_char[behind - 1 + info->ended] : read_up_to(ahead);
  }

  [[gnu::noinline]] CS_INT read_up_to(CS_INT ahead) noexcept {
    while (info->ascii_count <= taken + ahead) {
      if (info->ended != 0)
        return CFG_END;
      get_character(cfg, info);
    }
    return info->last_char[0];
  }

  void take(CS_INT count = 1) noexcept { taken += count; }

  CS_INT take(CS_INT count, CS_INT code) noexcept {
    take(count);
    return code;
  }

  CS_INT match_normal() noexcept {
    while (is(peek(), blank))
      take();
    const CS_INT first = peek();
    if (first == ';' && at_line_start())
      return match_comment();
    if (const CS_INT end = line_end(0); end > 0)
      return take(end, CFG_NEWLINE);
    if (taken > 0)
      return CFG_BLANK;
    if (is(first, letter))
      return match_name();
    if (is(first, plain_value))
      return match_value();
    switch (first) {
    case CFG_END:
      return match_end();
    case '"':
      info->in_string = 1;
      return take(1, CFG_STRING_START);
    case '[':
      return take(1, CFG_LBRACKET);
    case ']':
      return take(1, CFG_RBRACKET);
    case '=':
      return take(1, CFG_EQUALS);
    case '\\':
      if (!ends_line(peek(1)))
        return match_value();
      if (const CS_INT end = line_end(1); end > 0)
        return take(1 + end, CFG_LINE_CONT);
    }
    return take(1, CFG_UNKNOWN);
  }

  CS_INT match_string() noexcept {
    for (;;) {
      const CS_INT c = peek();
      if (c == '\\' && peek(1) != '\n' && peek(1) != CFG_END)
        take(2);
      else if (c != '\\' && c != '"' && c != CFG_END)
        take();
      else
        break;
    }
    if (taken > 0)
      return CFG_STRING_VALUE;
    const CS_INT first = peek();
    if (first == CFG_END)
      return CFG_END;
    if (first == '\\')
      return peek(1) == '\n' ? take(2, CFG_LINE_CONT) : take(1, CFG_UNKNOWN);
    if (peek(1) == '"')
      return take(2, CFG_ESC_QUOTE);
    info->in_string = 0;
    return take(1, CFG_STRING_END);
  }

  CS_INT match_comment() noexcept {
    while (peek() != '\n' && peek() != CFG_END)
      take();
    return CFG_BLANK;
  }

  // A name, or a value that begins like one; the longer of the two counts, and the name where they are
  // equal. As long as both go on, a backslash and what it quotes are part of either.
  CS_INT match_name() noexcept {
    constexpr char include[] = "include";
    constexpr CS_INT include_length = sizeof include - 1;
    CS_INT same = 0; // characters of "include"
    for (;;) {
      const CS_INT c = peek();
      if (same == taken && same < include_length && (c | 0x20) == include[same])
        ++same;
      if (c == '\\' && !ends_line(peek(1))) {
        const CS_INT quoted = peek(1);
        take(2);
        if (!is(quoted, name))
          return match_value();
      } else if (!is(c, name)) {
        if (is(c, plain_value))
          return match_value();
        return taken == include_length && same == include_length ? CFG_INCLUDE : CFG_IDENT;
      } else {
        take();
        if (!is(c, plain_value))
          return match_rest_of_name();
      }
    }
  }

  CS_INT match_rest_of_name() noexcept {
    while (is(peek(), name))
      take();
    return CFG_IDENT;
  }

  CS_INT match_value() noexcept {
    for (;;) {
      if (is(peek(), plain_value))
        take();
      else if (peek() == '\\' && !ends_line(peek(1)))
        take(2);
      else
        return CFG_VALUE;
    }
  }

  // The end of the input ends its last line.
  CS_INT match_end() noexcept {
    const bool is_open = info->lastcode != CFG_NEWLINE && info->lastcode != CFG_END;
    return is_open ? CFG_NEWLINE : CFG_END;
  }

  // The length of an end of line so many characters ahead, 0 if there is none.
  CS_INT line_end(CS_INT ahead) noexcept {
    if (peek(ahead) == '\n')
      return 1;
    return peek(ahead) == '\r' && peek(ahead + 1) == '\n' ? 2 : 0;
  }

  bool at_line_start() const noexcept {
    return info->lastcode == CFG_NEWLINE || info->lastcode == CFG_LINE_CONT ||
           info->lastcode == CFG_END;
  }

  CS_CONFIG *cfg;
  CfgParseInfo *info;
  CS_INT taken = 0;
};

} // namespace

CS_INT cfg__getc(CS_CONFIG *cfg) noexcept {
  return get_character(cfg, parse_of(cfg));
}

CS_RETCODE cfg__nexttok(CS_CONFIG *cfg, CS_INT *code) noexcept {
  Scanner scanner(cfg);
  *code = scanner.match();
  parse_of(cfg)->lastcode = *code;
  return cfg__marktok(cfg, scanner.length());
}

CS_RETCODE cfg__marktok(CS_CONFIG *cfg, CS_INT count) noexcept {
  CfgParseInfo *const info = parse_of(cfg);
  CfgTok *token = info->sparetoks;
  if (token != nullptr)
    info->sparetoks = token->next;
  else if ((token = allocate<CfgTok>(cfg)) == nullptr)
    return CS_FAIL;
  info->ascii_count -= count;
  CS_INT end = info->buflen + info->last_char_len[0];
  for (CS_INT i = 0; i < info->ascii_count; ++i)
    end -= info->last_char_len[i + info->ended];
  *token = {end - info->tokenstart, info->lasttok, nullptr, info->tokenstart};
  info->tokenstart = end;
  info->lasttok = token;
  return CS_SUCCEED;
}

void cfg__clearparse(CS_CONFIG *cfg) noexcept {
  CfgParseInfo *const info = parse_of(cfg);
  if (info->lasttok == nullptr)
    return;
  while (CfgTok *const token = info->lasttok->next) {
    info->lasttok->next = token->next;
    token->next = info->sparetoks;
    info->sparetoks = token;
  }
  cfg__clearbuf(info);
}

void cfg__clearbuf(CfgParseInfo *info) noexcept {
  const CS_INT dropped = info->lasttok->offset;
  const CS_INT kept = info->buflen + info->last_char_len[0] - dropped;
  std::memmove(info->buffer, info->buffer + dropped, static_cast<size_t>(kept));
  info->lasttok->offset = 0;
  info->tokenstart -= dropped;
  info->buflen -= dropped;
  info->dropped += dropped;
}
