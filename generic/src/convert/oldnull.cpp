// What stands for NULL, for callers without a context.
#include "legacy.h"
#include "number.h"

namespace {

using namespace comn::legacy;

// The value of a caller; a null one has no bytes.
struct Value {
  Value(const CS_BYTE *value, CS_INT len) noexcept
      : bytes(value), length(value == nullptr ? 0 : std::max(len, 0)) {}

  const CS_BYTE *bytes;
  CS_INT length;
};

CS_INT set_fixed(const Value &value, CS_BYTE *dest, CS_INT width) noexcept {
  const CS_INT count = std::min(value.length, width);
  if (count > 0)
    copy(dest, value.bytes, count);
  clear(dest, count, width);
  return width;
}

struct ZeroFilled : AsChar {
  using AsChar::AsChar;
  void finish(CS_INT length) const noexcept { clear(text, length, capacity); }
};

// Up to the room, and then the padding.
template <class Shape>
CS_INT set_padded(const Value &value, CS_BYTE *dest, CS_INT destlen) noexcept {
  const Shape shape(dest, destlen);
  const CS_INT count = std::min(value.length, shape.room);
  if (count > 0)
    copy(shape.text, value.bytes, count);
  shape.finish(count);
  return count < value.length ? COM_OLD_NULLCUT : count;
}

// Deliberate: a value that is cut loses one byte more than it must, and that byte stays as it was.
template <class Shape>
CS_INT set_terminated(const Value &value, CS_BYTE *dest, CS_INT destlen) noexcept {
  const Shape shape(dest, destlen);
  if (value.length <= shape.room)
    return set_padded<Shape>(value, dest, destlen);
  if (destlen > 2)
    copy(dest, value.bytes, destlen - 2);
  dest[destlen - 1] = 0;
  return COM_OLD_NULLCUT;
}

// Deliberate: the room is not tested.
CS_INT set_record(const Value &value, CS_BYTE *dest) noexcept {
  return set_padded<AsVarychar>(value, dest, -1);
}

CS_INT set_numeric(const Value &value, CS_BYTE *dest, CS_INT destlen, CS_INT precision,
                   CS_INT scale) noexcept {
  if (!comn::exact::is_precision(precision))
    return COM_OLD_BADPRECISION;
  if (scale < CS_MIN_SCALE || scale > CS_MAX_SCALE)
    return COM_OLD_BADSCALE;
  if (value.length > 0)
    return com_numtonum(const_cast<CS_BYTE *>(value.bytes), value.length, dest, destlen, precision,
                        scale);
  comn::store(dest, CS_NUMERIC{static_cast<CS_BYTE>(precision), static_cast<CS_BYTE>(scale), {}});
  return sizeof(CS_NUMERIC);
}

} // namespace

#define COMN_OLD_NULL(type, body, ...)                                                             \
  CS_INT com_set##type##null(CS_BYTE *dest, [[maybe_unused]] CS_INT destlen, CS_BYTE *bytes,       \
                             CS_INT len __VA_OPT__(, ) __VA_ARGS__) noexcept {                     \
    COMN_CHECK_PTR(dest, nothing);                                                                 \
    const Value value(bytes, len);                                                                 \
    return body;                                                                                   \
  }

COMN_OLD_NULL(i1, set_fixed(value, dest, sizeof(CS_TINYINT)))
COMN_OLD_NULL(i2, set_fixed(value, dest, sizeof(CS_SMALLINT)))
COMN_OLD_NULL(i4, set_fixed(value, dest, sizeof(CS_INT)))
COMN_OLD_NULL(bit, set_fixed(value, dest, sizeof(CS_BIT)))
COMN_OLD_NULL(flt4, set_fixed(value, dest, sizeof(CS_REAL)))
COMN_OLD_NULL(flt8, set_fixed(value, dest, sizeof(CS_FLOAT)))
COMN_OLD_NULL(money, set_fixed(value, dest, sizeof(CS_MONEY)))
COMN_OLD_NULL(mny4, set_fixed(value, dest, sizeof(CS_MONEY4)))
COMN_OLD_NULL(datetime, set_fixed(value, dest, sizeof(CS_DATETIME)))
COMN_OLD_NULL(datetime4, set_fixed(value, dest, sizeof(CS_DATETIME4)))
COMN_OLD_NULL(char, set_padded<AsChar>(value, dest, destlen))
COMN_OLD_NULL(binary, set_padded<ZeroFilled>(value, dest, destlen))
COMN_OLD_NULL(string, set_terminated<AsString>(value, dest, destlen))
COMN_OLD_NULL(ntbstring, set_terminated<AsNtbstring>(value, dest, destlen))
COMN_OLD_NULL(varychar, set_record(value, dest))
COMN_OLD_NULL(varybin, set_record(value, dest))
COMN_OLD_NULL(num, set_numeric(value, dest, destlen, precision, scale), CS_INT precision,
              CS_INT scale)
