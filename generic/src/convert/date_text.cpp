// Dates and times as text, in the style and with the names of the destination's locale.
//
// A value is laid out in an area of its own, as UTF-8, and goes from there into the character set of the
// destination, whether that is text on its own or a record.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "comloc.h"
#include "date_value.h"
#include "locale_of.h"
#include "pad.h"
#include "zrvintl.h"

namespace {

using namespace comn::date_value;

constexpr CS_INT no_such_type = std::numeric_limits<CS_INT>::min();

// The length of the text, 0 when it was cut, or one of the failures of the layouts.
template <class... Kinds>
CS_INT lay_out(CS_INT type, const CS_VOID *src, CS_CHAR *area, CS_INT room, CS_INT style,
               CS_CHAR **shortmonths) noexcept {
  CS_INT length = no_such_type;
  const auto write = [&]<class Of>(Of) {
    length = Of::write(src, area, room, style, shortmonths);
    return true;
  };
  (void)((type == Kinds::code && write(Kinds{})) || ...);
  return length;
}

// The text of a value at `room` bytes, before it is padded: the status of the conversion from UTF-8, or
// CS_CONV_TRUNCATED for a text that was cut in its area.
template <class... Kinds, class Where>
CS_RETCODE write_text(COMN_CONV_PARAMETERS, CS_INT room, bool &cut, Where where) noexcept {
  *destlen = 0;
  const CS_LOCALE *const locale = comn::locale_of(context, destfmt);
  if (locale == nullptr || locale->ctypeptr == nullptr) [[unlikely]]
    return comn::raise_null(where);

  constexpr CS_INT wide_room = 2048;
  const CS_INT size = std::max<CS_INT>(room > wide_room ? wide_room : 3 * room, 1);
  auto *const area = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(size)));
  if (area == nullptr)
    return CS_MEM_ERROR;
  CS_INT length = lay_out<Kinds...>(srcfmt->datatype, src, area, size,
                                    comn_get_datetochar_fmt(context, srcfmt, destfmt),
                                    com_intl_shortmonths(context, destfmt));
  CS_RETCODE status = layout_failure(length);
  if (length >= 0) {
    cut = length == 0;
    if (cut)
      length = size;
    CS_DATAFMT format = *destfmt;
    format.datatype = CS_TYPE_CHAR;
    format.maxlength = room;
    status = comn__convt_from_utf8(context, 1, reinterpret_cast<CS_BYTE *>(area), length, &format,
                                   static_cast<CsLocCache *>(locale->ctypeptr), dest, destlen);
  }
  comn_free(area);
  return status;
}

template <class... Kinds>
struct Members {
  template <class Where>
  static CS_RETCODE to_text(COMN_CONV_PARAMETERS, Where where) noexcept {
    COMN_CHECK_CONV(where, true,
                    comn::text_types.contains(destfmt->datatype) && destfmt->maxlength >= 0);
    bool cut = false;
    const CS_RETCODE status =
        write_text<Kinds...>(COMN_CONV_ARGUMENTS, destfmt->maxlength, cut, where);
    const CS_RETCODE padded =
        comn::has_converted(status)
            ? comn::pad_text(*destlen, destfmt->format, destfmt->maxlength, dest, destlen)
            : status;
    if (cut)
      return CS_CONV_TRUNCATED;
    return status == CS_SUCCEED ? padded : status;
  }

  template <class Where>
  static CS_RETCODE to_varchar(COMN_CONV_PARAMETERS, Where where) noexcept {
    COMN_CHECK_CONV(where, true, destfmt->datatype == CS_TYPE_VARCHAR);
    constexpr CS_INT room = sizeof(CS_VARCHAR::str);
    auto *const record = static_cast<CS_CHAR *>(dest);
    dest = record + offsetof(CS_VARCHAR, str);
    bool cut = false;
    const CS_RETCODE status = write_text<Kinds...>(COMN_CONV_ARGUMENTS, room, cut, where);
    if (!comn::has_converted(status) && status != CS_CONV_TRUNCATED)
      return status;
    comn::store(record + offsetof(CS_VARCHAR, len), static_cast<CS_SMALLINT>(*destlen));
    *destlen = sizeof(CS_VARCHAR);
    if (cut)
      return CS_CONV_TRUNCATED;
    return status == CS_CONV_TRUNCATED ? CS_CONV_OVERFLOW : CS_SUCCEED;
  }
};

} // namespace

// The members of a source, with the types that it serves.
#define COMN_DATE_TEXT(source, ...)                                                                \
  CS_RETCODE comn_##source##tochar(COMN_CONV_PARAMETERS) noexcept {                                \
    return COMN_TRACE((Members<__VA_ARGS__>::to_text(COMN_CONV_ARGUMENTS, COMN_HERE)));            \
  }                                                                                                \
  CS_RETCODE comn_##source##tovarchar(COMN_CONV_PARAMETERS) noexcept {                             \
    return COMN_TRACE((Members<__VA_ARGS__>::to_varchar(COMN_CONV_ARGUMENTS, COMN_HERE)));         \
  }

COMN_DATE_TEXT(date, date, bigdatetime)
COMN_DATE_TEXT(date4, date4)
COMN_DATE_TEXT(datea, datea)
COMN_DATE_TEXT(timea, timea, bigtime)
