// Conversion between character sets through Unicode: by the converters of libzrvunic, after the ways that
// need none.
#include "charconv.h"

#include <climits>
#include <cstring>

#include "checks.h"
#include "comnlib.h"
#include "locale_of.h"

using comn::Scratch;
using comn::TextRange;

CVTH comn__persistent_handle = nullptr;

namespace {

// What stands for a character that the destination lacks.
constexpr UChar8 substitute = '?';
constexpr UChar16 double_byte_substitute = 0x3F3F;

// A converter until the end of a call.
struct Converter {
  CVTH handle = nullptr;

  Converter() = default;
  ~Converter() {
    if (handle != nullptr)
      uniconv_HandleFree(handle);
  }
  Converter(const Converter &) = delete;
  Converter &operator=(const Converter &) = delete;
};

void set_substitutes(CVTH handle) noexcept {
  uniconv_SetSubstituteChar(handle, substitute);
  uniconv_SetDBCSSubstituteChar(handle, double_byte_substitute);
}

// Copies what fits, and returns its length.
CS_INT copy_text(TextRange text, TextRange room) noexcept {
  const CS_INT length = std::max(std::min(text.length, room.length), 0);
  std::memmove(room.bytes, text.bytes, static_cast<size_t>(length));
  return length;
}

// As copy_text, telling of a cut.
CS_RETCODE copy_whole_text(TextRange text, TextRange room, CS_INT *resultlen) noexcept {
  *resultlen = copy_text(text, room);
  return *resultlen < text.length ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// A copy of a text that ends as every converter wants it, with three NUL bytes, for sets of wide
// characters; and room for it as Unicode, in the same block.
class Source {
public:
  bool copy(TextRange text) noexcept {
    constexpr size_t terminators = 3;
    size = static_cast<size_t>(std::max(text.length, 0));
    if (!block.allocate(std::uint64_t{size} + 1 + (size + terminators + 1) / sizeof(UChar16)))
      return false;
    unicode()[size] = 0;
    std::memcpy(bytes(), text.bytes, size);
    std::memset(bytes() + size, 0, terminators);
    return true;
  }

  CS_BYTE *bytes() const noexcept { return reinterpret_cast<CS_BYTE *>(unicode() + size + 1); }
  // A unit for each byte, and one.
  UChar16 *unicode() const noexcept { return block.data(); }

private:
  Scratch<UChar16> block;
  size_t size = 0;
};

// A size for libzrvunic, which counts in int.
int size_for(CS_INT length, int terminator) noexcept {
  return static_cast<int>(std::min<std::int64_t>(std::int64_t{length} + terminator, INT_MAX));
}

bool is_converted(int status) noexcept {
  return status == UNICONV_SUCCEED || status == UNICONV_SUBSTITUTED;
}

// Reads a text as Unicode. `*units` counts the terminator.
CS_RETCODE read_as_unicode(CVTH handle, TextRange text, Source &source, int *status,
                           int *units) noexcept {
  if (!source.copy(text))
    return CS_MEM_ERROR;
  *units = 0;
  *status = uniconv_unistrFromS(handle, source.unicode(), size_for(std::max(text.length, 0), 1),
                                source.bytes(), units);
  return CS_SUCCEED;
}

// The room for what comes of Unicode text: as much as can come of it, where that is less than the room
// of the caller.
CS_INT room_for(int units, int bytes_per_unit, CS_INT room) noexcept {
  return static_cast<CS_INT>(
      std::clamp<std::int64_t>(std::int64_t{units} * bytes_per_unit, 0, std::max(room, 0)));
}

// Writes Unicode of `units` in a set, at most `room` bytes: CS_SUCCEED, CS_CONV_TRUNCATED with `*length`
// the room, CS_FAIL with `*length` 0, or CS_MEM_ERROR.
CS_RETCODE write_unicode(CVTH handle, const UChar16 *unicode, int units, CS_INT room,
                         Scratch<CS_BYTE> &text, CS_INT *length) noexcept {
  *length = 0;
  int factor = 0;
  if (uniconv_GetExpansionFactor(handle, &factor) != UNICONV_SUCCEED)
    return CS_FAIL;
  const CS_INT size = room_for(units, factor, room);
  if (!text.allocate(std::uint64_t(size) + 1))
    return CS_MEM_ERROR;
  int written = 0;
  const int status = uniconv_unistrToS(handle, text.data(), size_for(size, 1), unicode, &written);
  if (is_converted(status)) {
    *length = std::clamp(written - 1, 0, size);
    return CS_SUCCEED;
  }
  if (status != UNICONV_FULL && status != UNICONV_NOFIT)
    return CS_FAIL;
  *length = size;
  return CS_CONV_TRUNCATED;
}

// Longer UTF-8 is refused: its Unicode text would count more bytes than an int holds.
constexpr CS_INT longest_utf8 = 0x3FFFFFFF;

// Whether all bytes are ASCII: by words, of which the last may look again at what the one before it saw.
bool is_ascii(const CS_BYTE *text, size_t length) noexcept {
  using Word = std::uint64_t;
  constexpr Word high_bits = 0x8080808080808080;
  constexpr size_t stride = 4 * sizeof(Word);
  const CS_BYTE *const end = text + length;
  const auto word = [](const CS_BYTE *at) { return comn::load<Word>(at); };
  if (length < sizeof(Word))
    return std::all_of(text, end, [](CS_BYTE byte) { return byte < 0x80; });
  for (; end - text > static_cast<std::ptrdiff_t>(stride); text += stride)
    if (((word(text) | word(text + 8) | word(text + 16) | word(text + 24)) & high_bits) != 0)
      return false;
  for (; end - text > static_cast<std::ptrdiff_t>(sizeof(Word)); text += sizeof(Word))
    if ((word(text) & high_bits) != 0)
      return false;
  return (word(end - sizeof(Word)) & high_bits) == 0;
}

// From one set to another, neither of which is the other nor UTF-8. Apart from its caller, whose usual
// ways are short.
[[gnu::noinline]] CS_RETCODE convert_through_unicode(const CsCharDesc *from, TextRange text,
                                                     const CsCharDesc *to, TextRange room,
                                                     CS_INT *resultlen) noexcept {
  *resultlen = 0;
  UNICONV_CID from_cid, to_cid;
  if (comn__get_unilib_cid(from->char_attrib->cs_id, &from_cid) != CS_SUCCEED ||
      comn__get_unilib_cid(to->char_attrib->cs_id, &to_cid) != CS_SUCCEED)
    return CS_FAIL;
  Converter reader, writer;
  if (uniconv_HandleGet(from_cid, &reader.handle) != UNICONV_SUCCEED ||
      uniconv_HandleGet(to_cid, &writer.handle) != UNICONV_SUCCEED)
    return CS_FAIL;
  set_substitutes(writer.handle);

  Source source;
  int status, units;
  CS_RETCODE result = read_as_unicode(reader.handle, text, source, &status, &units);
  if (result != CS_SUCCEED)
    return result;
  const bool is_partial = status == UNICONV_PARTIAL && units > 1;
  if (!is_converted(status) && !is_partial)
    return CS_FAIL;

  Scratch<CS_BYTE> converted;
  result =
      write_unicode(writer.handle, source.unicode(), units - 1, room.length, converted, resultlen);
  if (result == CS_SUCCEED && is_partial)
    result = CS_CONV_TRUNCATED;
  if (*resultlen > 0)
    std::memcpy(room.bytes, converted.data(), static_cast<size_t>(*resultlen));
  return result;
}

// What the user registered for a pair of sets; null without it, and for an algorithm that only tells
// its multiplier.
CS_CONV_FUNC user_function(CS_CONTEXT *context, CsOID *from, CsOID *to) noexcept {
  if (context->usercharconv == nullptr)
    return nullptr;
  CsUserAlgo *algorithm;
  return comn__get_user_charconv(context, from, to, &algorithm) == CS_SUCCEED
             ? algorithm->user_conv_func
             : nullptr;
}

// A format for the UTF-8 side of an algorithm of the user's.
CS_DATAFMT utf8_format(CS_INT length) noexcept {
  CS_DATAFMT format{};
  format.datatype = CS_TYPE_CHAR;
  format.maxlength = length;
  return format;
}

CsOID *utf8_oid(const CS_CONTEXT *context) noexcept {
  const auto *const globals = context->ctxglobals;
  const auto *const utf8 =
      globals != nullptr ? static_cast<const CsCharDesc *>(globals->cmg_utf8_charset) : nullptr;
  return utf8 != nullptr ? utf8->oid : nullptr;
}

// A converter with the tables of the home directory that this library knows. CS_SUCCEED, CS_FAIL, or what
// com_path_charfile returns.
CS_RETCODE open_writer(CS_CONTEXT *context, const CsCharDesc *charset, Converter &writer) noexcept {
  UNICONV_CID cid;
  if (comn__get_unilib_cid(charset->char_attrib->cs_id, &cid) != CS_SUCCEED)
    return CS_FAIL;
  constexpr int path_size = 1024;
  CS_CHAR path[path_size];
  const CS_RETCODE result = com_path_charfile(context, const_cast<CS_CHAR *>("unicode"), nullptr,
                                              nullptr, path, path_size);
  if (result != CS_SUCCEED)
    return result;
  UChar16 unicode_path[path_size];
  {
    Converter ascii;
    int units;
    if (uniconv_HandleGet(0, &ascii.handle) != UNICONV_SUCCEED ||
        !is_converted(uniconv_unistrFromS(ascii.handle, unicode_path, path_size,
                                          reinterpret_cast<const UChar8 *>(path), &units)))
      return CS_FAIL;
  }
  I18NUNI_REQUEST request;
  i18nuni_RequestSetDefaults(&request);
  request.useCurrentDir = I18NUNI_DIR_PATH;
  if (uniconv_HandleGetU(cid, &request, unicode_path, 0, &writer.handle) != UNICONV_SUCCEED)
    return CS_FAIL;
  set_substitutes(writer.handle);
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE comn_charset_convert(CS_CONTEXT *context, CS_INT type, CS_DATAFMT *srcfmt, CS_VOID *src,
                                CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *resultlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(srcfmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destfmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(resultlen, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type >= CS_LCTYPE_CTYPE && type <= CS_LCTYPE_TIME, COMN_TRACE(CS_FAIL));
  const CS_LOCALE *const from_locale = comn::locale_of(context, srcfmt);
  const CS_LOCALE *const to_locale = comn::locale_of(context, destfmt);
  COMN_CHECK_PTR(from_locale, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to_locale, COMN_TRACE(CS_FAIL));
  CsLocCache *const from_cache = comn::cache_of(from_locale, type);
  CsLocCache *const to_cache = comn::cache_of(to_locale, type);
  COMN_CHECK_PTR(from_cache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to_cache, COMN_TRACE(CS_FAIL));
  const CsCharDesc *const from = from_cache->locchardesc;
  const CsCharDesc *const to = to_cache->locchardesc;
  COMN_CHECK_PTR(from, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to, COMN_TRACE(CS_FAIL));

  const TextRange text = comn::text_of(srcfmt, src);
  const TextRange room = comn::room_of(destfmt, dest);
  // A cut is deliberately not told here.
  if (from == to) {
    *resultlen = copy_text(text, room);
    comn::store_length(destfmt, dest, *resultlen);
    return COMN_TRACE(CS_SUCCEED);
  }
  if (const CS_CONV_FUNC convert = user_function(context, from->oid, to->oid))
    return COMN_TRACE(convert(context, srcfmt, src, destfmt, dest, resultlen));
  // Deliberate: nobody asks whether bytes below 128 are ASCII in these sets.
  if (comn__copy_ascii_only(room.bytes, room.length, text.bytes, text.length, resultlen) ==
      CS_SUCCEED) {
    comn::store_length(destfmt, dest, *resultlen);
    return COMN_TRACE(CS_SUCCEED);
  }
  // The length in front of a CS_VARCHAR is deliberately neither read nor stored on this way.
  if (comn::is_utf8(context, to)) {
    const CS_INT match_mode = type == CS_LCTYPE_MESSAGE ? 2 : 0;
    return COMN_TRACE(comn__convt_to_utf8(context, match_mode, srcfmt, from_cache, src, dest,
                                          room.length, resultlen));
  }
  COMN_CHECK_PTR(from->char_attrib, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to->char_attrib, COMN_TRACE(CS_FAIL));
  const CS_RETCODE result = convert_through_unicode(from, text, to, room, resultlen);
  comn::store_length(destfmt, dest, *resultlen);
  return COMN_TRACE(result);
}

CS_RETCODE comn__convt_to_utf8(CS_CONTEXT *context, CS_INT /*match_mode*/, CS_DATAFMT *srcfmt,
                               CsLocCache *src_lcache, CS_VOID *src, CS_VOID *dest, CS_INT destlen,
                               CS_INT *resultlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(srcfmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src_lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(resultlen, COMN_TRACE(CS_FAIL));
  const CsCharDesc *const charset = src_lcache->locchardesc;
  COMN_CHECK_PTR(charset, COMN_TRACE(CS_FAIL));

  const TextRange text = {static_cast<CS_BYTE *>(src), srcfmt->maxlength};
  const TextRange room = {static_cast<CS_BYTE *>(dest), destlen};
  if (comn::is_utf8(context, charset))
    return COMN_TRACE(copy_whole_text(text, room, resultlen));
  if (const CS_CONV_FUNC convert = user_function(context, charset->oid, utf8_oid(context))) {
    CS_DATAFMT destfmt = utf8_format(destlen);
    return COMN_TRACE(convert(context, srcfmt, src, &destfmt, dest, resultlen));
  }
  // Deliberately whatever the set, as above.
  if (comn__copy_ascii_only(room.bytes, room.length, text.bytes, text.length, resultlen) ==
      CS_SUCCEED)
    return COMN_TRACE(CS_SUCCEED);

  *resultlen = 0;
  Converter own;
  CVTH handle = comn__persistent_handle;
  if (handle == nullptr) {
    COMN_CHECK_PTR(charset->char_attrib, COMN_TRACE(CS_FAIL));
    UNICONV_CID cid;
    if (comn__get_unilib_cid(charset->char_attrib->cs_id, &cid) != CS_SUCCEED ||
        uniconv_HandleGet(cid, &own.handle) != UNICONV_SUCCEED)
      return COMN_TRACE(CS_FAIL);
    handle = own.handle;
  }
  Source source;
  int status, units;
  const CS_RETCODE result = read_as_unicode(handle, text, source, &status, &units);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  if (!is_converted(status))
    return COMN_TRACE(CS_FAIL);

  constexpr int bytes_per_unit = 3;
  const CS_INT size = room_for(units - 1, bytes_per_unit, destlen);
  Scratch<CS_BYTE> converted;
  if (!converted.allocate(std::uint64_t(size) + 1))
    return COMN_TRACE(CS_MEM_ERROR);
  int used;
  const int written =
      uniutf8_unistrToUTF8(converted.data(), size_for(size, 1), source.unicode(), &used);
  if (written < 0 && written != UNIUTF8_FULL)
    return COMN_TRACE(CS_FAIL);
  *resultlen = written == UNIUTF8_FULL ? size : std::min(written, size);
  std::memcpy(dest, converted.data(), static_cast<size_t>(*resultlen));
  return COMN_TRACE(written == UNIUTF8_FULL ? CS_CONV_TRUNCATED : CS_SUCCEED);
}

CS_RETCODE comn__convt_from_utf8(CS_CONTEXT *context, CS_INT /*match_mode*/, CS_BYTE *src,
                                 CS_INT srclen, CS_DATAFMT *destfmt, CsLocCache *dest_lcache,
                                 CS_VOID *dest, CS_INT *resultlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destfmt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest_lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(resultlen, COMN_TRACE(CS_FAIL));
  const CsCharDesc *const charset = dest_lcache->locchardesc;
  COMN_CHECK_PTR(charset, COMN_TRACE(CS_FAIL));

  const TextRange text = {src, srclen};
  const TextRange room = {static_cast<CS_BYTE *>(dest), destfmt->maxlength};
  if (comn::is_utf8(context, charset))
    return COMN_TRACE(copy_whole_text(text, room, resultlen));
  if (const CS_CONV_FUNC convert = user_function(context, utf8_oid(context), charset->oid)) {
    CS_DATAFMT srcfmt = utf8_format(srclen);
    return COMN_TRACE(convert(context, &srcfmt, src, destfmt, dest, resultlen));
  }

  *resultlen = 0;
  Converter own;
  CVTH handle = comn__persistent_handle;
  if (handle == nullptr) {
    COMN_CHECK_PTR(charset->char_attrib, COMN_TRACE(CS_FAIL));
    const CS_RETCODE result = open_writer(context, charset, own);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    handle = own.handle;
  }
  if (srclen >= longest_utf8)
    return COMN_TRACE(CS_FAIL);
  const CS_INT length = std::max(srclen, 0);
  Source source;
  if (!source.copy(text))
    return COMN_TRACE(CS_MEM_ERROR);
  int used;
  const int units =
      uniutf8_unistrFromUTF8(source.unicode(), size_for(length, 1), source.bytes(), &used);
  if (units < 0)
    return COMN_TRACE(CS_FAIL);
  Scratch<CS_BYTE> converted;
  const CS_RETCODE result =
      write_unicode(handle, source.unicode(), units, room.length, converted, resultlen);
  if (*resultlen > 0)
    std::memcpy(dest, converted.data(), static_cast<size_t>(*resultlen));
  return COMN_TRACE(result);
}

CS_RETCODE comn__copy_ascii_only(UChar8 *dest, CS_INT destlen, UChar8 *src, CS_INT srclen,
                                 CS_INT *resultlen) noexcept {
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(resultlen, COMN_TRACE(CS_FAIL));
  const CS_INT length = std::max(std::min(srclen, destlen), 0);
  *resultlen = 0;
  if (!is_ascii(src, static_cast<size_t>(length)))
    return COMN_TRACE(CS_CONV_NOXLATE);
  std::memmove(dest, src, static_cast<size_t>(length));
  *resultlen = length;
  return COMN_TRACE(length < srclen ? CS_CONV_TRUNCATED : CS_SUCCEED);
}

CS_RETCODE comn_set_persistent_handle(CVTH handle) noexcept {
  comn__persistent_handle = handle;
  return COMN_TRACE(CS_SUCCEED);
}

CVTH comn__get_persistent_handle() noexcept {
  return comn__persistent_handle;
}
