// Small services of the conversions for callers without a context: padding, copying, clearing; and money
// under its old names.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "numeric.h"
#include "oldconv.h"

// ---- padding ----

void com__padchar(CS_BYTE *dest, CS_INT destlen, CS_INT bytes_filled) noexcept {
  if (bytes_filled >= destlen)
    return;
  COMN_CHECK_PTR(dest);
  std::memset(dest + bytes_filled, ' ', static_cast<size_t>(destlen - bytes_filled));
}

void com__padstring(CS_BYTE *dest, CS_INT destlen, CS_INT bytes_filled) noexcept {
  COMN_CHECK_PTR(dest);
  com__padchar(dest, std::max(destlen, 1) - 1, bytes_filled);
  dest[destlen < 1 ? bytes_filled : destlen - 1] = 0;
}

CS_INT com__padntbstring(CS_BYTE *dest, CS_INT bytes_filled) noexcept {
  COMN_CHECK_PTR(dest, 0);
  while (bytes_filled > 1 && dest[bytes_filled - 1] == ' ')
    --bytes_filled;
  dest[bytes_filled] = 0;
  return bytes_filled;
}

// ---- bytes ----

void com_bmove(CS_VOID *from, CS_VOID *to, CS_INT cnt) noexcept {
  if (cnt <= 0)
    return;
  COMN_CHECK_PTR(from);
  COMN_CHECK_PTR(to);
  std::memmove(to, from, static_cast<size_t>(cnt));
}

void com__bzero(CS_VOID *cp, CS_INT length) noexcept {
  if (length <= 0)
    return;
  COMN_CHECK_PTR(cp);
  std::memset(cp, 0, static_cast<size_t>(length));
}

// ---- money ----

#define COMN_OLD_MONEY(name, result, operation, parameters, arguments)                             \
  result name parameters noexcept {                                                                \
    return operation arguments;                                                                    \
  }
#define COMN_OLD_MONEY_1(name, operation, type)                                                    \
  COMN_OLD_MONEY(name, int, operation, (type * mp), (mp))
#define COMN_OLD_MONEY_2(name, operation, type)                                                    \
  COMN_OLD_MONEY(name, int, operation, (type * m1, type * m2), (m1, m2))
#define COMN_OLD_MONEY_3(name, operation, type)                                                    \
  COMN_OLD_MONEY(name, int, operation, (type * m1, type * m2, type * m3), (m1, m2, m3))

COMN_OLD_MONEY_2(com_mnycopy, com__mnycopy, CS_MONEY)
COMN_OLD_MONEY_2(com_mnyminus, com__mnyminus, CS_MONEY)
COMN_OLD_MONEY_1(com_mnyinc, com__mnyinc, CS_MONEY)
COMN_OLD_MONEY_1(com_mnydec, com__mnydec, CS_MONEY)
COMN_OLD_MONEY_3(com_mnyadd, com__mnyadd, CS_MONEY)
COMN_OLD_MONEY_3(com_mnysub, com__mnysub, CS_MONEY)
COMN_OLD_MONEY_3(com_mnymul, com__mnymul, CS_MONEY)
COMN_OLD_MONEY_3(com_mnydivide, com__mnydiv, CS_MONEY)
COMN_OLD_MONEY_2(com_mnycmp, comn_mnycmp, CS_MONEY)
COMN_OLD_MONEY(com_mnyscale, int, com__mnyscale, (CS_MONEY * mp, CS_UINT mpier, CS_INT add),
               (mp, mpier, add))
COMN_OLD_MONEY(com_mnydown, int, com__mnydown, (CS_MONEY * mp, CS_INT dvsr), (mp, dvsr))
COMN_OLD_MONEY(com_mnyinit, int, com__mnyinit, (CS_MONEY * mp, CS_INT trim), (mp, trim))
COMN_OLD_MONEY(com_mnyndigit, int, com__mnyndigit, (CS_MONEY * mp, CS_CHAR *value), (mp, value))
COMN_OLD_MONEY(com_mnymaxpos, void, com__maxposmny, (CS_MONEY * mp), (mp))
COMN_OLD_MONEY(com_mnymaxneg, void, com__maxnegmny, (CS_MONEY * mp), (mp))
COMN_OLD_MONEY(com_mnyxdiv, void, comn_mnyxdiv, (CS_MONEY * num, CS_MONEY *den, CS_MONEY *res),
               (num, den, res))
COMN_OLD_MONEY(com__mny16div, void, comn__mny16div, (CS_MONEY * num, CS_INT den, CS_MONEY *res),
               (num, den, res))

// The public operation passes through the trace of codes, which a status of these does not.
int com_mnyzero(CS_MONEY *mnyptr) noexcept {
  COMN_CHECK_PTR(mnyptr, NUME_OVERFLOW);
  return com__mnyscale(mnyptr, 0, 0);
}

COMN_OLD_MONEY_2(com_mny4minus, com__mnyminus4, CS_MONEY4)
COMN_OLD_MONEY_3(com_mny4add, com__mnyadd4, CS_MONEY4)
COMN_OLD_MONEY_3(com_mny4sub, com__mnysub4, CS_MONEY4)
COMN_OLD_MONEY_3(com_mny4mul, com__mnymul4, CS_MONEY4)
COMN_OLD_MONEY_3(com_mny4divide, com__mnydiv4, CS_MONEY4)
COMN_OLD_MONEY_2(com_mny4cmp, comn_mny4cmp, CS_MONEY4)

int com_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2) noexcept {
  COMN_CHECK_PTR(mp1, NUME_OVERFLOW);
  COMN_CHECK_PTR(mp2, NUME_OVERFLOW);
  std::memmove(mp2, mp1, sizeof *mp2);
  return NUME_OK;
}

int com_mny4zero(CS_MONEY4 *mnyptr) noexcept {
  COMN_CHECK_PTR(mnyptr, NUME_OVERFLOW);
  std::memset(mnyptr, 0, sizeof *mnyptr);
  return NUME_OK;
}
