// Conversions of locators: the token as hexadecimal text, the prefetched data as text, bytes or 16-bit
// text, and whole records.
//
// A record, like any value, may stand at any address; its token and its chunks are blocks of the heap.
#include <algorithm>
#include <cstring>

#include "conv_func.h"
#include "pad.h"
#include "zrvintl.h"

namespace {

constexpr comn::TypeSet locator_types{CS_TYPE_TEXTLOCATOR, CS_TYPE_IMAGELOCATOR,
                                      CS_TYPE_UNITEXTLOCATOR};

void release(CsBlobChunk *chunk) noexcept {
  comn_free(chunk->data);
  comn_free(chunk);
}

// From the second on, then the first.
void release_chain(CsBlobChunk *first) noexcept {
  if (first == nullptr)
    return;
  for (CsBlobChunk *chunk = first->pnext; chunk != nullptr;) {
    CsBlobChunk *const next = chunk->pnext;
    release(chunk);
    chunk = next;
  }
  release(first);
}

// What a chunk has to give. Of an empty one the address means nothing, but is one.
struct Piece {
  CS_VOID *bytes;
  CS_INT length;

  explicit Piece(CsBlobChunk &chunk) noexcept
      : bytes(chunk.data), length(std::max<CS_INT>(chunk.len, 0)) {
    if (bytes == nullptr || length == 0) {
      bytes = &chunk;
      length = 0;
    }
  }
};

// A zeroed block with a copy of `length` bytes; null when it could not be had.
template <class T>
T *copied(const CS_VOID *bytes, CS_INT length) noexcept {
  auto *const block = static_cast<T *>(comn_calloc(1, static_cast<size_t>(length)));
  if (block != nullptr)
    std::memcpy(block, bytes, static_cast<size_t>(length));
  return block;
}

// A chunk of its own with the same data; null, and nothing is left, when it could not be had.
CsBlobChunk *copied(CsBlobChunk &source) noexcept {
  const Piece piece(source);
  auto *const chunk = static_cast<CsBlobChunk *>(comn_calloc(1, sizeof(CsBlobChunk)));
  if (chunk == nullptr)
    return nullptr;
  chunk->len = piece.length;
  if (piece.length > 0)
    chunk->data = copied<CS_VOID>(piece.bytes, piece.length);
  if (piece.length > 0 && chunk->data == nullptr) {
    comn_free(chunk);
    return nullptr;
  }
  return chunk;
}

// A copy of a chain, in its order; false, and nothing is left, when there is no memory for all of it.
bool copy_chain(CsBlobChunk *source, CsBlobChunk *&first) noexcept {
  first = nullptr;
  for (CsBlobChunk **link = &first; source != nullptr; source = source->pnext) {
    *link = copied(*source);
    if (*link == nullptr) {
      release_chain(first);
      first = nullptr;
      return false;
    }
    link = &(*link)->pnext;
  }
  return true;
}

// ---- token and record ----

CS_RETCODE token_to_text(COMN_CONV_PARAMETERS) noexcept {
  const auto source = comn::load<CS_LOCATOR>(src);
  CS_DATAFMT format = *srcfmt;
  format.datatype = CS_TYPE_BINARY;
  format.maxlength = source.locatorlen;
  // An empty record has no token, and no bytes of it are read.
  const bool is_empty = source.locator == nullptr && source.locatorlen == 0;
  return comn_bintochar(context, &format, is_empty ? src : source.locator, destfmt, dest, destlen);
}

CS_RETCODE text_to_token(COMN_CONV_PARAMETERS) noexcept {
  constexpr CS_INT longest = 65535;
  *destlen = 0;
  auto *const record = static_cast<CS_LOCATOR *>(dest);
  if (comn__locator_clean(record) == 0)
    return CS_FAIL;
  const CS_INT digits = std::max<CS_INT>(srcfmt->maxlength, 0);
  const CS_INT length = digits / 2 + digits % 2;
  if (length > longest)
    return CS_CONV_OVERFLOW;
  auto result = comn::load<CS_LOCATOR>(record);
  result.locator =
      static_cast<CS_BYTE *>(comn_calloc(1, static_cast<size_t>(std::max<CS_INT>(length, 1))));
  if (result.locator == nullptr)
    return CS_MEM_ERROR;
  result.locatortype = destfmt->datatype;
  comn::store(record, result);

  const CS_INT own_type = destfmt->datatype, own_length = destfmt->maxlength;
  destfmt->datatype = CS_TYPE_BINARY;
  destfmt->maxlength = length;
  const CS_RETCODE status = comn_chartobin(context, srcfmt, src, destfmt, result.locator, destlen);
  // Deliberate: the format is not put back, and the block stays with the record.
  if (status != CS_SUCCEED)
    return status;
  destfmt->datatype = own_type;
  destfmt->maxlength = own_length;
  result.locatorlen = static_cast<CS_USMALLINT>(*destlen);
  comn::store(record, result);
  return CS_SUCCEED;
}

CS_RETCODE copy_record(COMN_CONV_PARAMETERS) noexcept {
  (void)context;
  *destlen = 0;
  auto *const record = static_cast<CS_LOCATOR *>(dest);
  const auto source = comn::load<CS_LOCATOR>(src);
  // Emptied first, a record would have nothing left to copy onto itself.
  if (src == dest) {
    if (source.locatortag != CS_LOCATOR_TAG || srcfmt->datatype != destfmt->datatype)
      return CS_FAIL;
    *destlen = source.locatorlen;
    return CS_SUCCEED;
  }
  if (comn__locator_clean(record) == 0 || srcfmt->datatype != destfmt->datatype)
    return CS_FAIL;
  auto result = comn::load<CS_LOCATOR>(record);
  if (source.locator != nullptr && source.locatorlen > 0) {
    result.locator = copied<CS_BYTE>(source.locator, source.locatorlen);
    if (result.locator == nullptr)
      return CS_MEM_ERROR;
    result.locatorlen = source.locatorlen;
  }
  result.locatortype = source.locatortype;
  result.totalloblen = source.totalloblen;
  const bool is_whole = copy_chain(source.prefetchdata, result.prefetchdata);
  if (is_whole)
    result.prefetchlen = source.prefetchlen;
  comn::store(record, result);
  *destlen = result.locatorlen;
  return is_whole ? CS_SUCCEED : CS_MEM_ERROR;
}

// ---- prefetched data ----

// Chunk by chunk behind one another: the first goes through `convert_first`, the others through the member
// for text. The format's bits wait for the last.
template <class Unit, CS_INT type, CS_CONV_FUNC convert_first>
CS_RETCODE move_chunks(COMN_CONV_PARAMETERS) noexcept {
  const auto source = comn::load<CS_LOCATOR>(src);
  const CS_INT room = destfmt->maxlength, format = destfmt->format;
  *destlen = 0;
  if (source.prefetchdata == nullptr) {
    if (room >= CS_INT{sizeof(Unit)})
      comn::store(dest, Unit{});
    return CS_SUCCEED;
  }
  CS_DATAFMT piece_format = *srcfmt;
  piece_format.datatype = type;
  destfmt->format = 0;
  CS_CONV_FUNC convert = convert_first;
  CS_RETCODE status = CS_SUCCEED;
  for (CsBlobChunk *chunk = source.prefetchdata; chunk != nullptr && status == CS_SUCCEED;
       chunk = chunk->pnext) {
    if (chunk->pnext == nullptr)
      destfmt->format = format;
    const Piece piece(*chunk);
    piece_format.maxlength = piece.length;
    const bool is_full = destfmt->maxlength <= 0;
    CS_INT written = 0;
    status = convert(context, &piece_format, piece.bytes, destfmt,
                     static_cast<CS_BYTE *>(dest) + *destlen, &written);
    // The member for text does not mind text without any room.
    if (status == CS_SUCCEED && is_full && piece.length > 0)
      status = CS_CONV_TRUNCATED;
    written = std::max<CS_INT>(written, 0);
    *destlen += written;
    destfmt->maxlength -= written;
    // Deliberate: for 16-bit text too, which it refuses. A value of several chunks ends there.
    convert = comn_chartochar;
  }
  destfmt->format = format;
  destfmt->maxlength = room;
  return status;
}

// Deliberate: every chunk goes to the start of the destination, only the count moves on.
CS_RETCODE overlay_chunks(COMN_CONV_PARAMETERS) noexcept {
  (void)context, (void)srcfmt;
  const auto source = comn::load<CS_LOCATOR>(src);
  *destlen = 0;
  if (source.prefetchdata == nullptr)
    return CS_SUCCEED;
  CS_INT room = std::max<CS_INT>(destfmt->maxlength, 0);
  for (CsBlobChunk *chunk = source.prefetchdata; chunk != nullptr; chunk = chunk->pnext) {
    const Piece piece(*chunk);
    const CS_INT length = std::min(piece.length, room);
    std::memmove(dest, piece.bytes, static_cast<size_t>(length));
    *destlen += length;
    room -= length;
    if (length < piece.length)
      return CS_CONV_TRUNCATED;
  }
  return comn::pad_binary(*destlen, destfmt->format, destfmt->maxlength, dest, destlen);
}

} // namespace

CS_INT comn__locator_clean(CS_LOCATOR *locator) noexcept {
  if (locator == nullptr)
    return 0;
  auto record = comn::load<CS_LOCATOR>(locator);
  if (record.locatortag != CS_LOCATOR_TAG)
    return 0;
  release_chain(record.prefetchdata);
  comn_free(record.locator);
  record = {};
  record.locatortag = CS_LOCATOR_TAG;
  comn::store(locator, record);
  return 1;
}

#define COMN_FROM_LOCATOR(destination, destination_types, ...)                                     \
  COMN_CHECKED_CONV(comn_locatorto##destination, locator_types.contains(srcfmt->datatype),         \
                    (destination_types).contains(destfmt->datatype),                               \
                    return __VA_ARGS__(COMN_CONV_ARGUMENTS);)
// No record to write into is a failure of the data, not of a check.
#define COMN_TO_LOCATOR(source, source_types, ...)                                                 \
  static CS_RETCODE source##_to_locator(COMN_CONV_PARAMETERS) noexcept {                           \
    if (dest == nullptr)                                                                           \
      return CS_FAIL;                                                                              \
    COMN_CHECK_CONV(COMN_HERE, (source_types).contains(srcfmt->datatype),                          \
                    locator_types.contains(destfmt->datatype));                                    \
    return __VA_ARGS__(COMN_CONV_ARGUMENTS);                                                       \
  }                                                                                                \
  COMN_CONV(comn_##source##tolocator, source##_to_locator)

COMN_FROM_LOCATOR(char, comn::text_types, token_to_text)
COMN_TO_LOCATOR(char, comn::text_types, text_to_token)
COMN_TO_LOCATOR(locator, locator_types, copy_record)
COMN_FROM_LOCATOR(text, comn::text_types, move_chunks<CS_CHAR, CS_TYPE_CHAR, comn_chartochar>)
COMN_FROM_LOCATOR(image, comn::binary_types, overlay_chunks)
COMN_FROM_LOCATOR(unitext, comn::unitext_types,
                  move_chunks<CS_UNICHAR, CS_TYPE_UNICHAR, comn_unichartounichar>)
