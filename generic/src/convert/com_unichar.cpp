// Conversions from and to 16-bit text. No value is parsed or laid out here: the text goes through UTF-8,
// and a member for text does the work.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "comfou.h"
#include "conv_func.h"
#include "pad.h"
#include "unitext.h"
#include "zrvintl.h"

using comn::Utf8Side;

namespace {

// An area on the heap, whose size comes from the input.
class Area {
public:
  explicit Area(CS_BIGINT wanted) noexcept {
    if (wanted > std::numeric_limits<CS_INT>::max())
      return;
    size = static_cast<CS_INT>(std::max<CS_BIGINT>(wanted, 0));
    bytes = static_cast<CS_BYTE *>(comn_malloc(static_cast<size_t>(std::max(size, 1))));
  }
  ~Area() { comn_free(bytes); }
  Area(const Area &) = delete;
  Area &operator=(const Area &) = delete;

  CS_BYTE *bytes = nullptr; // null when it could not be had
  CS_INT size = 0;
};

// A unit becomes at most three bytes of UTF-8, and a byte of any character set too.
CS_BIGINT utf8_bound_of_units(CS_INT bytes) noexcept {
  return CS_BIGINT{bytes} * 3 / 2;
}
CS_BIGINT utf8_bound_of_text(CS_INT bytes) noexcept {
  return CS_BIGINT{bytes} * 3;
}

bool refuses_noncharacters(const CS_DATAFMT *destfmt) noexcept {
  return (destfmt->format & comn::any_unit) == 0;
}

// ---- values ----

// To a value: the text as UTF-8 in an area, and the member that reads it.
template <CS_CONV_FUNC read>
CS_RETCODE read_units(COMN_CONV_PARAMETERS, CS_BYTE *area, CS_INT size) noexcept {
  *destlen = 0;
  Utf8Side utf8(context, srcfmt->locale);
  if (!utf8.is_there()) [[unlikely]]
    return CS_FAIL;
  const CS_RETCODE status =
      comn::utf16_to_utf8(src, srcfmt->maxlength, area, size, &utf8.format.maxlength, true);
  if (status != CS_SUCCEED)
    return status;
  return read(context, &utf8.format, area, destfmt, dest, destlen);
}

template <CS_CONV_FUNC read, CS_INT size>
CS_RETCODE to_value(COMN_CONV_PARAMETERS) noexcept {
  CS_BYTE area[size];
  return read_units<read>(COMN_CONV_ARGUMENTS, area, size);
}

// Of a bit the text may have any length.
CS_RETCODE to_bit(COMN_CONV_PARAMETERS) noexcept {
  const Area area(utf8_bound_of_units(srcfmt->maxlength));
  if (area.bytes == nullptr) {
    *destlen = 0;
    return CS_MEM_ERROR;
  }
  return read_units<comn_chartobit>(COMN_CONV_ARGUMENTS, area.bytes, area.size);
}

// From a value: what the member for text lays out, as 16-bit text. It ends and pads nothing, so that the
// caller's format works once, on units.
template <CS_CONV_FUNC lay_out, CS_INT size>
CS_RETCODE from_value(COMN_CONV_PARAMETERS) noexcept {
  *destlen = 0;
  Utf8Side utf8(context, destfmt->locale);
  if (!utf8.is_there()) [[unlikely]]
    return CS_FAIL;
  utf8.format.maxlength = size;
  CS_BYTE area[size];
  CS_INT length = 0;
  const CS_RETCODE status = lay_out(context, srcfmt, src, &utf8.format, area, &length);
  if (status != CS_SUCCEED)
    return status;
  return comn::utf8_to_utf16(area, length, destfmt, dest, destlen, true);
}

// ---- text ----

CS_RETCODE to_text(COMN_CONV_PARAMETERS) noexcept {
  *destlen = 0;
  if (charset_in_datafmt_equals_utf8(context, destfmt) != 0 &&
      (destfmt->format & CS_DFMT_ESCQUOTE) == 0) {
    const CS_RETCODE status = comn::utf16_to_utf8(src, srcfmt->maxlength, dest, destfmt->maxlength,
                                                  destlen, refuses_noncharacters(destfmt));
    if (status == CS_SUCCEED)
      return comn::pad_text(*destlen, destfmt->format, destfmt->maxlength, dest, destlen);
    // Deliberate: the last byte goes, whatever character it belongs to.
    if (status == CS_CONV_TRUNCATED && (destfmt->format & CS_DFMT_NULLTERM) != 0 && *destlen > 0)
      static_cast<CS_BYTE *>(dest)[*destlen - 1] = 0;
    return status;
  }
  Utf8Side utf8(context, srcfmt->locale);
  if (!utf8.is_there()) [[unlikely]]
    return CS_FAIL;
  const Area area(utf8_bound_of_units(srcfmt->maxlength));
  if (area.bytes == nullptr)
    return CS_MEM_ERROR;
  const CS_RETCODE status =
      comn::utf16_to_utf8(src, srcfmt->maxlength, area.bytes, area.size, &utf8.format.maxlength,
                          refuses_noncharacters(destfmt));
  if (status != CS_SUCCEED)
    return status;
  return comn_chartochar(context, &utf8.format, area.bytes, destfmt, dest, destlen);
}

CS_RETCODE from_text(COMN_CONV_PARAMETERS) noexcept {
  *destlen = 0;
  if (charset_in_datafmt_equals_utf8(context, srcfmt) != 0)
    return comn::utf8_to_utf16(src, srcfmt->maxlength, destfmt, dest, destlen, true);
  Utf8Side utf8(context, destfmt->locale);
  if (!utf8.is_there()) [[unlikely]]
    return CS_FAIL;
  const Area area(utf8_bound_of_text(srcfmt->maxlength));
  if (area.bytes == nullptr)
    return CS_MEM_ERROR;
  utf8.format.maxlength = area.size;
  CS_INT length = 0;
  const CS_RETCODE status =
      comn_chartochar(context, srcfmt, src, &utf8.format, area.bytes, &length);
  if (status != CS_SUCCEED)
    return status;
  return comn::utf8_to_utf16(area.bytes, length, destfmt, dest, destlen, true);
}

// ---- binary ----

CS_RETCODE copy_units(COMN_CONV_PARAMETERS) noexcept {
  (void)context;
  return comn::copy_utf16(src, srcfmt->maxlength, destfmt, dest, destlen);
}

CS_RETCODE to_binary(COMN_CONV_PARAMETERS) noexcept {
  (void)context;
  const CS_RETCODE status = comn::transcoded(com__fou_utf16_to_utf16(
      src, srcfmt->maxlength, dest, destfmt->maxlength, nullptr, destlen, nullptr, 0));
  if (status != CS_SUCCEED)
    return status;
  return comn::pad_binary(*destlen, destfmt->format, destfmt->maxlength, dest, destlen);
}

// Deliberate: the room is the caller's word.
CS_RETCODE to_image(COMN_CONV_PARAMETERS) noexcept {
  (void)context;
  *destlen = std::max<CS_INT>(srcfmt->maxlength, 0);
  std::memmove(dest, src, static_cast<size_t>(*destlen));
  return comn::pad_binary(*destlen, destfmt->format, destfmt->maxlength, dest, destlen);
}

// ---- records ----

// The member for bytes on their own, into the record.
template <CS_CONV_FUNC convert, CS_INT type, class Record>
CS_RETCODE to_record(COMN_CONV_PARAMETERS) noexcept {
  static_assert(sizeof(CS_VARCHAR) == sizeof(CS_VARBINARY));
  CS_DATAFMT format = *destfmt;
  format.datatype = type;
  format.maxlength = CS_INT{sizeof(CS_VARCHAR::str)};
  auto *const record = static_cast<CS_BYTE *>(dest);
  CS_INT length = 0;
  const CS_RETCODE status = convert(context, srcfmt, src, &format,
                                    record + offsetof(Record, len) + sizeof(CS_SMALLINT), &length);
  comn::store(record + offsetof(Record, len), static_cast<CS_SMALLINT>(length));
  *destlen = sizeof(Record);
  return status;
}

// A record's bytes on their own, and from there. Of a record that was cut the rest may still come whole.
template <CS_CONV_FUNC take_out, CS_CONV_FUNC convert, CS_INT type>
CS_RETCODE from_record(COMN_CONV_PARAMETERS, CS_BYTE *area, CS_INT size) noexcept {
  *destlen = 0;
  CS_DATAFMT format{};
  format.datatype = type;
  format.maxlength = size;
  format.locale = srcfmt->locale;
  CS_INT length = 0;
  const CS_RETCODE taken = take_out(context, srcfmt, src, &format, area, &length);
  if (taken != CS_SUCCEED && taken != CS_CONV_TRUNCATED)
    return taken;
  format.maxlength = length;
  const CS_RETCODE status = convert(context, &format, area, destfmt, dest, destlen);
  return status == CS_SUCCEED ? taken : status;
}

CS_RETCODE from_varchar(COMN_CONV_PARAMETERS) noexcept {
  const Area area(std::max(srcfmt->maxlength, destfmt->maxlength));
  if (area.bytes == nullptr) {
    *destlen = 0;
    return CS_MEM_ERROR;
  }
  return from_record<comn_varchartochar, comn_chartounichar, CS_TYPE_CHAR>(
      COMN_CONV_ARGUMENTS, area.bytes, std::max<CS_INT>(srcfmt->maxlength, 0));
}

CS_RETCODE from_varbin(COMN_CONV_PARAMETERS) noexcept {
  constexpr CS_INT size = 384;
  CS_BYTE area[size];
  return from_record<comn_varbintobin, comn_bintounichar, CS_TYPE_BINARY>(COMN_CONV_ARGUMENTS, area,
                                                                          size);
}

} // namespace

// A value and its text: its name, the member that lays it out, the bytes of the area between, and the
// datatypes that the member from text serves.
#define COMN_INTEGERS(row)                                                                         \
  row(i1, comn_i1tochar, 64, (CS_TYPE_TINYINT)) row(i2, comn_i2tochar, 64, (CS_TYPE_SMALLINT))     \
      row(i4, comn_i4tochar, 64, (CS_TYPE_INT)) row(i8, comn_i8tochar, 64, (CS_TYPE_BIGINT))       \
          row(ui2, comn_ui2tochar, 64, (CS_TYPE_USMALLINT))                                        \
              row(ui4, comn_ui4tochar, 64, (CS_TYPE_UINT))                                         \
                  row(ui8, comn_ui8tochar, 64, (CS_TYPE_UBIGINT))
#define COMN_OTHER_VALUES(row)                                                                     \
  row(flt4, comn_flt4tochar, 1024, (CS_TYPE_REAL))                                                 \
      row(flt8, comn_flt8tochar, 1024, (CS_TYPE_FLOAT)) row(num, comn_numtochar, 79,               \
                                                            (CS_TYPE_NUMERIC, CS_TYPE_DECIMAL))    \
          row(mny4, comn_mny4tochar, 24, (CS_TYPE_MONEY4))                                         \
              row(money, comn_moneytochar, 24, (CS_TYPE_MONEY)) row(date4, comn_date4tochar, 2048, \
                                                                    (CS_TYPE_DATETIME4))           \
                  row(datetime, comn_datetochar, 2048, (CS_TYPE_DATETIME, CS_TYPE_BIGDATETIME))    \
                      row(datea, comn_dateatochar, 2048, (CS_TYPE_DATE))                           \
                          row(timea, comn_timeatochar, 2048, (CS_TYPE_TIME, CS_TYPE_BIGTIME))

// An empty text is no value, and the call a mistake.
#define COMN_READ_VALUE(value, types, ...)                                                         \
  COMN_CHECKED_CONV(comn_unicharto##value,                                                         \
                    srcfmt->maxlength >= 1 && comn::unitext_types.contains(srcfmt->datatype),      \
                    comn::TypeSet types.contains(destfmt->datatype),                               \
                    return __VA_ARGS__(COMN_CONV_ARGUMENTS);)
#define COMN_FROM_UNICHAR(value, lay_out, size, types)                                             \
  COMN_READ_VALUE(value, types, to_value<comn_charto##value, size>)
// The type of the value is the business of the member that lays it out.
#define COMN_TO_UNICHAR(value, lay_out, size, types)                                               \
  COMN_CHECKED_CONV(comn_##value##tounichar, true,                                                 \
                    comn::unitext_types.contains(destfmt->datatype),                               \
                    return from_value<lay_out, size>(COMN_CONV_ARGUMENTS);)
// Conversions from integers do not pass through the trace.
#define COMN_INTEGER_TO_UNICHAR(value, lay_out, size, types)                                       \
  CS_RETCODE comn_##value##tounichar(COMN_CONV_PARAMETERS) noexcept {                              \
    COMN_CHECK_CONV(COMN_HERE, true, comn::unitext_types.contains(destfmt->datatype));             \
    return from_value<lay_out, size>(COMN_CONV_ARGUMENTS);                                         \
  }

COMN_INTEGERS(COMN_FROM_UNICHAR)
COMN_INTEGERS(COMN_INTEGER_TO_UNICHAR)
COMN_OTHER_VALUES(COMN_FROM_UNICHAR)
COMN_OTHER_VALUES(COMN_TO_UNICHAR)
COMN_READ_VALUE(bit, (CS_TYPE_BIT), to_bit)
COMN_TO_UNICHAR(bit, comn_bittochar, 384, (CS_TYPE_BIT))

#define COMN_UNICHAR_MEMBER(source, source_types, destination, destination_types, ...)             \
  COMN_CHECKED_CONV(comn_##source##to##destination, (source_types).contains(srcfmt->datatype),     \
                    (destination_types).contains(destfmt->datatype),                               \
                    return __VA_ARGS__(COMN_CONV_ARGUMENTS);)

namespace {

constexpr comn::TypeSet image{CS_TYPE_IMAGE}, varchar{CS_TYPE_VARCHAR}, varbin{CS_TYPE_VARBINARY};

} // namespace

COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, char, comn::text_types, to_text)
COMN_UNICHAR_MEMBER(char, comn::text_types, unichar, comn::unitext_types, from_text)
COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, unichar, comn::unitext_types, copy_units)
COMN_UNICHAR_MEMBER(bin, comn::binary_types, unichar, comn::unitext_types, copy_units)
COMN_UNICHAR_MEMBER(image, image, unichar, comn::unitext_types, copy_units)
COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, bin, comn::binary_types, to_binary)
COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, image, image, to_image)
COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, varchar, varchar,
                    to_record<comn_unichartochar, CS_TYPE_CHAR, CS_VARCHAR>)
COMN_UNICHAR_MEMBER(unichar, comn::unitext_types, varbin, varbin,
                    to_record<comn_unichartobin, CS_TYPE_BINARY, CS_VARBINARY>)
COMN_UNICHAR_MEMBER(varchar, varchar, unichar, comn::unitext_types, from_varchar)
COMN_UNICHAR_MEMBER(varbin, varbin, unichar, comn::unitext_types, from_varbin)
