// CS_MONEY4 from and to text, integers and doubles: by way of CS_MONEY, but for the way to doubles.
#include "money.h"

namespace exact = comn::exact;

namespace {

// A value in the longer form, to be handed on.
CS_MONEY widened(const CS_MONEY4 *m4p) noexcept {
  CS_MONEY wide;
  exact::store_count(&wide, int64_t{exact::load_count(m4p)});
  return wide;
}

template <auto ToInteger, class Integer>
int to_integer(CS_MONEY4 *m4p, Integer *ip) noexcept {
  CS_MONEY wide = widened(m4p);
  return ToInteger(&wide, ip);
}

template <auto FromInteger, class Integer>
int from_integer(CS_MONEY4 *m4p, Integer *ip) noexcept {
  CS_MONEY wide;
  // What is too large for the longer form is left there unscaled, and is too large here as well.
  FromInteger(&wide, ip);
  return com__mnytomny4(&wide, m4p) < 0 ? NUME_OVERFLOW : NUME_OK;
}

double to_double(const CS_VOID *src) noexcept {
  return exact::load_count(static_cast<const CS_MONEY4 *>(src)) /
         static_cast<double>(exact::money_unit);
}

// Zero for what is no CS_MONEY either; of one, the nearest value.
template <auto FromDouble>
CS_INT from_double(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style) noexcept {
  auto *const value = static_cast<CS_MONEY4 *>(dest);
  CS_MONEY wide;
  exact::store_count(value, 0);
  if (FromDouble(src, srclen, &wide, sizeof wide, style) < 0)
    return -1;
  return com__mnytomny4(&wide, value);
}

} // namespace

// ---- text ----

int com__mny4fromchar_mb(CS_MONEY4 *m4p, CS_CHAR *icp, CS_INT ilen, CS_INT style,
                         CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(m4p, NUME_OVERFLOW);
  CS_MONEY wide;
  const int status = com__mnyfromchar_mb(&wide, icp, ilen, style, chatr);
  if (status != NUME_OK)
    return status;
  return com__mnytomny4(&wide, m4p) < 0 ? NUME_OVERFLOW : NUME_OK;
}

CS_CHAR *com__mny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len, CS_INT style) noexcept {
  COMN_CHECK_PTR(m4p, nullptr);
  CS_MONEY wide = widened(m4p);
  return com__mnytochar(&wide, cp, len, style);
}

// ---- the two sizes ----

void com__mny4tomny(CS_MONEY4 *m4p, CS_MONEY *mp) noexcept {
  COMN_CHECK_PTR(m4p);
  COMN_CHECK_PTR(mp);
  comn::store(mp, widened(m4p));
}

// ---- integers ----

int com__mny4toint(CS_MONEY4 *m4p, CS_INT *ip) noexcept {
  return exact::run_internal<to_integer<com__mnytoint, CS_INT>>(COMN_HERE, m4p, ip);
}

int com__mny4toint8(CS_MONEY4 *m4p, CS_BIGINT *ip) noexcept {
  return exact::run_internal<to_integer<com__mnytoint8, CS_BIGINT>>(COMN_HERE, m4p, ip);
}

int com__mny4touint(CS_MONEY4 *m4p, CS_UINT *ip) noexcept {
  return exact::run_internal<to_integer<com__mnytouint, CS_UINT>>(COMN_HERE, m4p, ip);
}

int com__mny4touint8(CS_MONEY4 *m4p, CS_UBIGINT *ip) noexcept {
  return exact::run_internal<to_integer<com__mnytouint8, CS_UBIGINT>>(COMN_HERE, m4p, ip);
}

int com__inttomny4(CS_MONEY4 *m4p, CS_INT *ip) noexcept {
  return exact::run_internal<from_integer<com__inttomny, CS_INT>>(COMN_HERE, m4p, ip);
}

int com__int8tomny4(CS_MONEY4 *m4p, CS_BIGINT *ip) noexcept {
  return exact::run_internal<from_integer<com__int8tomny, CS_BIGINT>>(COMN_HERE, m4p, ip);
}

int com__uinttomny4(CS_MONEY4 *m4p, CS_UINT *ip) noexcept {
  return exact::run_internal<from_integer<com__uinttomny, CS_UINT>>(COMN_HERE, m4p, ip);
}

int com__uint8tomny4(CS_MONEY4 *m4p, CS_UBIGINT *ip) noexcept {
  return exact::run_internal<from_integer<com__uint8tomny, CS_UBIGINT>>(COMN_HERE, m4p, ip);
}

// ---- doubles ----

CS_INT com__flt8tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style) noexcept {
  COMN_CHECK_PTR(dest, -1);
  return from_double<com__flt8tomny>(src, srclen, dest, style);
}

CS_INT com__flt4tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style) noexcept {
  COMN_CHECK_PTR(dest, -1);
  return from_double<com__flt4tomny>(src, srclen, dest, style);
}

CS_INT com__mny4toflt8(CS_VOID *src, CS_VOID *dest) noexcept {
  COMN_CHECK_PTR(src, -1);
  COMN_CHECK_PTR(dest, -1);
  comn::store<CS_FLOAT>(dest, to_double(src));
  return sizeof(CS_FLOAT);
}

CS_INT com__mny4toflt4(CS_VOID *src, CS_VOID *dest) noexcept {
  COMN_CHECK_PTR(src, -1);
  COMN_CHECK_PTR(dest, -1);
  comn::store(dest, static_cast<CS_REAL>(to_double(src)));
  return sizeof(CS_REAL);
}
