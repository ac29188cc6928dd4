// Cast-context conversions of bytes as they stand.
#include <cmath>

#include "binary.h"
#include "bridge.h"

namespace {

using comn::load;
namespace binary = comn::binary;

// Bytes, with what the matrix reports of bytes on their own.
struct Bytes {
  static constexpr CS_RETCODE cut = binary::bin::cut;
  static constexpr bool tests_dates = true;
  explicit Bytes(const __CONSTANT *src) noexcept : bytes(src->value), length(src->len) {}

  const CS_BYTE *bytes;
  CS_INT length;
};

CS_RETCODE to_var(COMNB_PARAMETERS) noexcept {
  dest->len = std::max(std::min(src->len, dest->maxlen), 0);
  std::memmove(dest->value, src->value, static_cast<size_t>(dest->len));
  return dest->len < src->len ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// A float that is not whole is none yet.
template <class Float>
CS_RETCODE finite_only(const __CONSTANT *dest) noexcept {
  if (dest->len < CS_INT{sizeof(Float)})
    return CS_SUCCEED;
  return std::isfinite(load<Float>(dest->value)) ? CS_SUCCEED : CS_CONV_DOMAIN;
}

CS_RETCODE to_fixed(COMNB_PARAMETERS) noexcept {
  if (to_var(context, src, dest) == CS_CONV_TRUNCATED)
    return CS_CONV_TRUNCATED;
  comnb__padbin(context, dest);
  switch (dest->type) {
  case CAST_TYPE_FLT4:
    return finite_only<CS_REAL>(dest);
  case CAST_TYPE_FLT8:
    return finite_only<CS_FLOAT>(dest);
  default:
    return CS_SUCCEED;
  }
}

CS_RETCODE to_bit(COMNB_PARAMETERS) noexcept {
  return binary::to_bit(Bytes(src), dest->value, &dest->len);
}

CS_RETCODE to_num(COMNB_PARAMETERS) noexcept {
  if (const CS_RETCODE status = comn::bridge::open_field(dest); status != CS_SUCCEED)
    return status;
  CS_INT copied;
  return binary::to_fixed(Bytes(src), std::min<CS_INT>(dest->maxlen, sizeof(CS_NUMERIC::array)),
                          dest->value, &copied);
}

template <class Value>
CS_RETCODE to_value(COMNB_PARAMETERS) noexcept {
  return binary::to_fixed(Bytes(src), sizeof(Value), dest->value, &dest->len);
}

template <class Value, int (*CheckRange)(Value *)>
CS_RETCODE to_date(COMNB_PARAMETERS) noexcept {
  return binary::to_date<Bytes, Value, CheckRange>(Bytes(src), dest->value, &dest->len);
}

} // namespace

COMNB_MEMBER(any, var, to_var)
COMNB_MEMBER(any, fixed, to_fixed)
COMNB_MEMBER(bin, bit, to_bit)
COMNB_MEMBER(bin, num, to_num)
COMNB_MEMBER(bin, date, to_value<CS_DATETIME>)
COMNB_MEMBER(bin, datea, to_date<CS_DATE, com__datea_check_range>)
COMNB_MEMBER(bin, timea, to_date<CS_TIME, com__timea_check_range>)
COMNB_MEMBER(bin, bigdatetime, to_value<CS_BIGDATETIME>)
COMNB_MEMBER(bin, bigtime, to_value<CS_BIGTIME>)
