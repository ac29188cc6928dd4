// Conversions from CS_BIT. Every member refuses a source that is neither 0 nor 1 first, with nothing
// written.
#include <cstddef>

#include "conv_func.h"
#include "numeric.h"
#include "pad.h"
#include "shape.h"

using comn::store;

namespace {

template <class Destination>
CS_RETCODE to_fixed(CS_BIT value, CS_VOID *dest, CS_INT *destlen) noexcept {
  *destlen = sizeof(Destination);
  store(dest, static_cast<Destination>(value));
  return CS_SUCCEED;
}

template <class Where>
CS_RETCODE to_num(CS_BIT value, const CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                  Where where) noexcept {
  *destlen = sizeof(CS_NUMERIC);
  if (const CS_RETCODE refused = comn::check_shape(destfmt->precision, destfmt->scale);
      refused != CS_SUCCEED)
    return refused;
  auto *const result = static_cast<CS_NUMERIC *>(dest);
  comn::set_shape(*result, destfmt->precision, destfmt->scale);
  const int status = com__longtoexctnume(value, result->array, comn_num_getlen(destfmt->precision),
                                         &result->precision, &result->scale);
  if (status == NUME_OVERFLOW)
    return CS_CONV_OVERFLOW;
  return status == NUME_OK ? CS_SUCCEED : comn::raise_bomb(where);
}

CS_CHAR digit_of(CS_BIT value) noexcept {
  return value == 0 ? '0' : '1';
}

using Pad = CS_RETCODE (*)(CS_INT, CS_INT, CS_INT, CS_VOID *, CS_INT *) noexcept;

// A single byte, and the padding that the format asks for.
template <Pad pad>
CS_RETCODE to_byte(CS_BYTE byte, const CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen) noexcept {
  *destlen = 1;
  if (destfmt->maxlength > 0)
    store(dest, byte);
  return pad(1, destfmt->format, destfmt->maxlength, dest, destlen);
}

// Deliberate: both varying records get the digit as a character, the binary one too.
template <class Record>
CS_RETCODE to_record(CS_BIT value, CS_VOID *dest, CS_INT *destlen) noexcept {
  auto *const record = static_cast<CS_BYTE *>(dest);
  store(record + offsetof(Record, len), CS_SMALLINT{1});
  store(record + sizeof(CS_SMALLINT), digit_of(value));
  *destlen = sizeof(Record);
  return CS_SUCCEED;
}

} // namespace

#define COMN_BIT_MEMBER(destination, destfmt_condition, ...)                                       \
  COMN_CHECKED_CONV(comn_bitto##destination, srcfmt->datatype == CS_TYPE_BIT, destfmt_condition,   \
                    const auto value = comn::load<CS_BIT>(src);                                    \
                    if (value != 0 && value != 1) return CS_CONV_DOMAIN; return __VA_ARGS__;)
#define COMN_BIT_TO_FIXED(destination, code, type)                                                 \
  COMN_BIT_MEMBER(destination, destfmt->datatype == (code), to_fixed<type>(value, dest, destlen))

COMN_BIT_TO_FIXED(bit, CS_TYPE_BIT, CS_BIT)
COMN_BIT_TO_FIXED(i1, CS_TYPE_TINYINT, CS_TINYINT)
COMN_BIT_TO_FIXED(i2, CS_TYPE_SMALLINT, CS_SMALLINT)
COMN_BIT_TO_FIXED(i4, CS_TYPE_INT, CS_INT)
COMN_BIT_TO_FIXED(i8, CS_TYPE_BIGINT, CS_BIGINT)
COMN_BIT_TO_FIXED(ui2, CS_TYPE_USMALLINT, CS_USMALLINT)
COMN_BIT_TO_FIXED(ui4, CS_TYPE_UINT, CS_UINT)
COMN_BIT_TO_FIXED(ui8, CS_TYPE_UBIGINT, CS_UBIGINT)
COMN_BIT_TO_FIXED(flt4, CS_TYPE_REAL, CS_REAL)
COMN_BIT_TO_FIXED(flt8, CS_TYPE_FLOAT, CS_FLOAT)
COMN_BIT_MEMBER(num, comn::numeric_types.contains(destfmt->datatype),
                to_num(value, destfmt, dest, destlen, COMN_HERE))
COMN_BIT_MEMBER(char, comn::text_types.contains(destfmt->datatype),
                to_byte<comn::pad_text>(static_cast<CS_BYTE>(digit_of(value)), destfmt, dest,
                                        destlen))
COMN_BIT_MEMBER(bin, comn::binary_types.contains(destfmt->datatype),
                to_byte<comn::pad_binary>(value, destfmt, dest, destlen))
COMN_BIT_MEMBER(varchar, destfmt->datatype == CS_TYPE_VARCHAR,
                to_record<CS_VARCHAR>(value, dest, destlen))
COMN_BIT_MEMBER(varbin, destfmt->datatype == CS_TYPE_VARBINARY,
                to_record<CS_VARBINARY>(value, dest, destlen))
