// Questions about characters and texts: thin over the rules of text.h.
#include <cstring>

#include "checks.h"
#include "text.h"

using comn::charset_or_builtin;
using comn::Complete;
using comn::Within;

#define COMN_CHAR_TEST(name, mask)                                                                 \
  CS_INT name(CS_ATTRIB *ca, CS_BYTE *p) noexcept {                                                \
    COMN_CHECK_PTR(p, 0);                                                                          \
    return comn::char_map(charset_or_builtin(ca), Complete{p}).char_type & (mask);                 \
  }

COMN_CHAR_TEST(comn_isalpha, CS_CTYPE_ALPHA)
COMN_CHAR_TEST(comn_isupper, CS_CTYPE_UPPER)
COMN_CHAR_TEST(comn_islower, CS_CTYPE_LOWER)
COMN_CHAR_TEST(comn_isdigit, CS_CTYPE_DIGIT)
COMN_CHAR_TEST(comn_isxdigit, CS_CTYPE_XDIGIT)
COMN_CHAR_TEST(comn_isspace, CS_CTYPE_SPACE)
COMN_CHAR_TEST(comn_ispunct, CS_CTYPE_PUNCT)
COMN_CHAR_TEST(comn_isgraph, CS_CTYPE_GRAPH)

CS_INT comn_get_lex(CS_ATTRIB *ca, CS_BYTE *p) noexcept {
  COMN_CHECK_PTR(p, 0);
  return comn::char_map(charset_or_builtin(ca), Complete{p}).char_lex;
}

CS_INT comn_char_width(CS_ATTRIB *ca, CS_BYTE *p) noexcept {
  COMN_CHECK_PTR(p, 0);
  return comn::char_length(charset_or_builtin(ca), Complete{p});
}

CS_INT comn_disp_width(CS_ATTRIB *ca, CS_BYTE *p) noexcept {
  COMN_CHECK_PTR(p, 0);
  const CS_BYTE *const width_map = charset_or_builtin(ca).cs_width_map;
  return width_map != nullptr ? width_map[*p] >> 4 : 1;
}

void comn_inc_char(CS_ATTRIB *ca, CS_BYTE **p) noexcept {
  COMN_CHECK_PTR(p);
  COMN_CHECK_PTR(*p);
  *p += comn::char_length(charset_or_builtin(ca), Complete{*p});
}

namespace {

// The field of the entry that holds the wanted case decides.
void write_case(const CHAR_ATTRIB &set, const CS_BYTE *src, CS_BYTE *dest,
                CS_BYTE CHAR_MAP::*wanted) noexcept {
  const CS_BYTE form = comn::char_map(set, Complete{src}).*wanted;
  if (set.cs_type_map != nullptr && (set.cs_type_map->chmap[*src].char_type & CS_CTYPE_LEAD) != 0) {
    dest[0] = src[0];
    dest[1] = form;
  } else if (form == 0) {
    std::memmove(dest, src, static_cast<size_t>(comn::char_length(set, Complete{src})));
  } else {
    *dest = form;
  }
}

} // namespace

void comn_toupper(CS_ATTRIB *ca, CS_BYTE *srcp, CS_BYTE *destp) noexcept {
  COMN_CHECK_PTR(srcp);
  COMN_CHECK_PTR(destp);
  write_case(charset_or_builtin(ca), srcp, destp, &CHAR_MAP::char_upper);
}

void comn_tolower(CS_ATTRIB *ca, CS_BYTE *srcp, CS_BYTE *destp) noexcept {
  COMN_CHECK_PTR(srcp);
  COMN_CHECK_PTR(destp);
  write_case(charset_or_builtin(ca), srcp, destp, &CHAR_MAP::char_lower);
}

CS_BYTE comn_to_ascii(CS_ATTRIB *ca, CS_BYTE *p) noexcept {
  COMN_CHECK_PTR(p, 0);
  return comn::to_ascii(charset_or_builtin(ca), Complete{p});
}

void comn_str_to_ascii(CS_BYTE *cp_src, CS_INT src_len, CS_BYTE *cp_dest, CS_INT *dest_len,
                       CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(cp_src);
  COMN_CHECK_PTR(cp_dest);
  COMN_CHECK_PTR(dest_len);
  *dest_len = comn::reduce_to_ascii(charset_or_builtin(chatr), cp_src, src_len, cp_dest);
}

void comn_whole_char(CS_ATTRIB *ca, CS_BYTE *startp, CS_BYTE *endp, CS_INT *wcbytes,
                     CS_INT *pc_part1, CS_INT *pc_part2, CS_INT *nchars) noexcept {
  COMN_CHECK_PTR(startp);
  COMN_CHECK_PTR(endp);
  COMN_CHECK_PTR(wcbytes);
  COMN_CHECK_PTR(pc_part1);
  COMN_CHECK_PTR(pc_part2);
  COMN_CHECK_PTR(nchars);
  const CHAR_ATTRIB &set = charset_or_builtin(ca);
  const CS_BYTE *at = startp;
  CS_INT count = 0;
  CS_INT inside = 0;
  CS_INT behind = 0;
  while (at < endp) {
    const CS_INT length = comn::char_length(set, Within{at, endp});
    if (length > endp - at) {
      inside = static_cast<CS_INT>(endp - at);
      behind = length - inside;
      break;
    }
    at += length;
    ++count;
  }
  *wcbytes = static_cast<CS_INT>(at - startp);
  *pc_part1 = inside;
  *pc_part2 = behind;
  *nchars = count;
}

// A character that says it is longer than the text ends with the text.
CS_BYTE *comn_mb_strchr(CS_ATTRIB *ca, CS_BYTE *buf, CS_BYTE srch_char) noexcept {
  COMN_CHECK_PTR(buf, nullptr);
  const CHAR_ATTRIB &set = charset_or_builtin(ca);
  while (*buf != 0) {
    if (*buf == srch_char)
      return buf;
    CS_INT length = comn::char_length(set, Complete{buf});
    while (length-- > 0 && *buf != 0)
      ++buf;
  }
  return nullptr;
}

CS_BYTE *comn_get_widthmap(CS_ATTRIB *chatr) noexcept {
  return charset_or_builtin(chatr).cs_width_map;
}
