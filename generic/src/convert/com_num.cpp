// Conversions from CS_NUMERIC.
#include <algorithm>

#include "conv_func.h"
#include "numeric_family.h"
#include "pad.h"
#include "raw_copy.h"
#include "shape.h"

namespace exact = comn::exact;
namespace family = comn::numeric_family;
using comn::store;

namespace {

bool is_numeric(const CS_DATAFMT *format) noexcept {
  return comn::numeric_types.contains(format->datatype);
}

const CS_NUMERIC &value_at(const CS_VOID *src) noexcept {
  static_assert(alignof(CS_NUMERIC) == 1);
  return *static_cast<const CS_NUMERIC *>(src);
}

exact::ValueText text_of(const CS_NUMERIC &value) noexcept {
  exact::Operand operand;
  exact::load_operand(operand, value);
  return {operand.magnitude, operand.scale, operand.negative};
}

template <class Destination, class Where>
CS_RETCODE to_fixed(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == Destination::code);
  *destlen = sizeof(typename Destination::Value);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  return Destination::convert(exact::describe(value), dest, where);
}

template <class Where>
CS_RETCODE to_numeric(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), is_numeric(destfmt));
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const CS_INT precision =
      destfmt->precision == CS_DFMT_FROMSOURCE ? value.precision : destfmt->precision;
  if (!exact::is_precision(precision))
    return CS_CONV_BADPRECISION;
  const CS_INT scale = destfmt->scale == CS_DFMT_FROMSOURCE ? value.scale : destfmt->scale;
  if (scale < CS_MIN_SCALE || scale > CS_MAX_SCALE)
    return CS_CONV_BADSCALE;

  exact::Operand operand;
  exact::load_operand(operand, value);
  const CS_BYTE sign = value.array[0];
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  comn::set_shape(*result, precision, scale);
  const exact::Field field = exact::field_of(*result);
  *destlen = static_cast<CS_INT>(offsetof(CS_NUMERIC, array)) + 1 + field.bytes;
  return family::to_shape(operand, sign, scale, field);
}

template <class Where>
CS_RETCODE to_text(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), comn::text_types.contains(destfmt->datatype));
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const exact::ValueText text = text_of(value);
  const CS_INT length = text.length();
  const CS_INT capacity = destfmt->maxlength;
  const CS_INT format = destfmt->format;
  if (capacity >= length) [[likely]] {
    text.write(static_cast<CS_CHAR *>(dest));
    *destlen = length;
    if ((format & comn::pad_bits) == 0)
      return CS_SUCCEED;
  } else {
    CS_CHAR whole[exact::longest_text];
    text.write(whole);
    *destlen = std::max(capacity, 0);
    std::memcpy(dest, whole, static_cast<size_t>(*destlen));
  }
  return comn::pad_text(length, format, capacity, dest, destlen);
}

template <class Where>
CS_RETCODE to_varchar(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_VARCHAR);
  *destlen = sizeof(CS_VARCHAR);
  const CS_NUMERIC &value = value_at(src);
  if (!exact::is_valid(value)) [[unlikely]]
    return CS_CONV_DOMAIN;
  const exact::ValueText text = text_of(value);
  auto *const record = static_cast<CS_CHAR *>(dest);
  text.write(record + offsetof(CS_VARCHAR, str));
  store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(text.length()));
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_binary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), comn::binary_types.contains(destfmt->datatype));
  if (!exact::is_valid(value_at(src))) [[unlikely]]
    return CS_CONV_DOMAIN;
  src = static_cast<CS_BYTE *>(src) + offsetof(CS_NUMERIC, array);
  return comn::fixed_to_binary(COMN_CONV_ARGUMENTS, sizeof(CS_NUMERIC::array));
}

template <class Where>
CS_RETCODE to_varbinary(COMN_CONV_PARAMETERS, Where where) noexcept {
  COMN_CHECK_CONV(where, is_numeric(srcfmt), destfmt->datatype == CS_TYPE_VARBINARY);
  *destlen = sizeof(CS_VARBINARY);
  if (!exact::is_valid(value_at(src))) [[unlikely]]
    return CS_CONV_DOMAIN;
  src = static_cast<CS_BYTE *>(src) + offsetof(CS_NUMERIC, array);
  return comn::fixed_to_varbinary(COMN_CONV_ARGUMENTS, sizeof(CS_NUMERIC::array));
}

} // namespace

#define COMN_NUMERIC_MEMBER(destination, ...)                                                      \
  CS_RETCODE comn_numto##destination(COMN_CONV_PARAMETERS) noexcept {                              \
    return COMN_TRACE((__VA_ARGS__(COMN_CONV_ARGUMENTS, COMN_HERE)));                              \
  }

COMN_NUMERIC_MEMBER(bit, to_fixed<family::bit>)
COMN_NUMERIC_MEMBER(i1, to_fixed<family::i1>)
COMN_NUMERIC_MEMBER(i2, to_fixed<family::i2>)
COMN_NUMERIC_MEMBER(i4, to_fixed<family::i4>)
COMN_NUMERIC_MEMBER(i8, to_fixed<family::i8>)
COMN_NUMERIC_MEMBER(ui2, to_fixed<family::ui2>)
COMN_NUMERIC_MEMBER(ui4, to_fixed<family::ui4>)
COMN_NUMERIC_MEMBER(ui8, to_fixed<family::ui8>)
COMN_NUMERIC_MEMBER(flt4, to_fixed<family::flt4>)
COMN_NUMERIC_MEMBER(flt8, to_fixed<family::flt8>)
COMN_NUMERIC_MEMBER(num, to_numeric)
COMN_NUMERIC_MEMBER(money, to_fixed<family::money>)
COMN_NUMERIC_MEMBER(mny4, to_fixed<family::mny4>)
COMN_NUMERIC_MEMBER(char, to_text)
COMN_NUMERIC_MEMBER(varchar, to_varchar)
COMN_NUMERIC_MEMBER(bin, to_binary)
COMN_NUMERIC_MEMBER(varbin, to_varbinary)
