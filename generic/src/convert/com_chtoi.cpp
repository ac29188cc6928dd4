// The parsers of integers as functions of their own.
#include "checks.h"
#include "comnlib.h"
#include "parse_integer.h"

namespace {

template <class Integer, class Where>
int parse(char *text, int length, Integer *value, const CHAR_ATTRIB *set, Where where) noexcept {
  if (value == nullptr || (text == nullptr && length > 0)) [[unlikely]] {
    comn::raise_null(where);
    return comn::parse_syntax;
  }
  const auto parsed =
      comn::parse_integer<Integer>(reinterpret_cast<const CS_BYTE *>(text), length, set);
  *value = parsed.value;
  return parsed.status;
}

} // namespace

#define COMN_INTEGER_PARSER(name, type)                                                            \
  int com__chto##name##_mb(char *cp, int len, type *valp, CHAR_ATTRIB *chatr) noexcept {           \
    return parse(cp, len, valp, chatr, COMN_HERE);                                                 \
  }

COMN_INTEGER_PARSER(i1, CS_TINYINT)
COMN_INTEGER_PARSER(i2, CS_SMALLINT)
COMN_INTEGER_PARSER(i4, CS_INT)
COMN_INTEGER_PARSER(i8, CS_BIGINT)
COMN_INTEGER_PARSER(ui2, CS_USMALLINT)
COMN_INTEGER_PARSER(ui4, CS_UINT)
COMN_INTEGER_PARSER(ui8, CS_UBIGINT)
