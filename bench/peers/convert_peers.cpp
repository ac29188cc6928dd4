// The peers of the conversions.
#include "convert_peers.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef ZRVBENCH_WITH_BOOST
#include <boost/algorithm/hex.hpp>
#endif
#ifdef ZRVBENCH_WITH_FMT
#include <fmt/format.h>
#endif

#define PEER_PARAMETERS                                                                            \
  CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,       \
      CS_INT *destlen
#define PEER_CHECK(source, destination)                                                            \
  do {                                                                                             \
    if (!context || !src || !srcfmt || !dest || !destfmt || !destlen)                              \
      return CS_FAIL;                                                                              \
    if (srcfmt->datatype != (source) || destfmt->datatype != (destination))                        \
      return CS_FAIL;                                                                              \
  } while (0)

namespace {

template <class Integer>
CS_RETCODE print(CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) {
  Integer value;
  std::memcpy(&value, src, sizeof value);
  auto *text = static_cast<char *>(dest);
  const auto [end, error] = std::to_chars(text, text + destfmt->maxlength, value);
  *destlen = static_cast<CS_INT>(end - text);
  return error == std::errc() ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

template <class Number>
CS_RETCODE read(const CS_VOID *src, CS_DATAFMT *srcfmt, CS_VOID *dest, CS_INT *destlen) {
  const auto *text = static_cast<const char *>(src);
  Number value;
  const auto [end, error] = std::from_chars(text, text + srcfmt->maxlength, value);
  *destlen = sizeof value;
  if (error != std::errc())
    return CS_CONV_OVERFLOW;
  std::memcpy(dest, &value, sizeof value);
  return end == text + srcfmt->maxlength ? CS_SUCCEED : CS_CONV_SYNTAX;
}

template <class Integer>
CS_RETCODE copy(CS_VOID *src, CS_VOID *dest, CS_INT *destlen) {
  std::memcpy(dest, src, sizeof(Integer));
  *destlen = sizeof(Integer);
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE peer_i4_to_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_INT, CS_TYPE_CHAR);
  return print<CS_INT>(src, destfmt, dest, destlen);
}

CS_RETCODE peer_i8_to_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_BIGINT, CS_TYPE_CHAR);
  return print<CS_BIGINT>(src, destfmt, dest, destlen);
}

CS_RETCODE peer_copy_8(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_BIGINT, CS_TYPE_BIGINT);
  return copy<CS_BIGINT>(src, dest, destlen);
}

CS_RETCODE peer_copy_4(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_INT, CS_TYPE_INT);
  return copy<CS_INT>(src, dest, destlen);
}

CS_RETCODE peer_memcpy(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_BINARY, CS_TYPE_BINARY);
  std::memcpy(dest, src, static_cast<size_t>(srcfmt->maxlength));
  *destlen = srcfmt->maxlength;
  return CS_SUCCEED;
}

CS_RETCODE peer_memset(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_CHAR);
  std::memset(static_cast<char *>(dest) + *destlen, ' ',
              static_cast<size_t>(destfmt->maxlength - *destlen));
  *destlen = destfmt->maxlength;
  return CS_SUCCEED;
}

CS_RETCODE peer_i4_from_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_INT);
  return read<CS_INT>(src, srcfmt, dest, destlen);
}

CS_RETCODE peer_i8_from_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_BIGINT);
  return read<CS_BIGINT>(src, srcfmt, dest, destlen);
}

CS_RETCODE peer_flt8_from_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_FLOAT);
  return read<CS_FLOAT>(src, srcfmt, dest, destlen);
}

CS_RETCODE peer_strtod(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_FLOAT);
  char text[1024];
  const auto length = static_cast<size_t>(srcfmt->maxlength);
  if (length >= sizeof text)
    return CS_CONV_SYNTAX;
  std::memcpy(text, src, length);
  text[length] = '\0';
  char *end;
  const CS_FLOAT value = std::strtod(text, &end);
  std::memcpy(dest, &value, sizeof value);
  *destlen = sizeof value;
  return end == text + length ? CS_SUCCEED : CS_CONV_SYNTAX;
}

CS_RETCODE peer_flt8_to_chars(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_FLOAT, CS_TYPE_CHAR);
  CS_FLOAT value;
  std::memcpy(&value, src, sizeof value);
  auto *text = static_cast<char *>(dest);
  const auto [end, error] =
      std::to_chars(text, text + destfmt->maxlength, value, std::chars_format::general, 17);
  *destlen = static_cast<CS_INT>(end - text);
  return error == std::errc() ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

CS_RETCODE peer_snprintf_17(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_FLOAT, CS_TYPE_CHAR);
  CS_FLOAT value;
  std::memcpy(&value, src, sizeof value);
  *destlen = std::snprintf(static_cast<char *>(dest), static_cast<size_t>(destfmt->maxlength),
                           "%.17g", value);
  return CS_SUCCEED;
}

CS_RETCODE peer_copy_text(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_CHAR);
  std::memcpy(dest, src, static_cast<size_t>(srcfmt->maxlength));
  *destlen = srcfmt->maxlength;
  return CS_SUCCEED;
}

const unsigned char *peer_widths;

CS_RETCODE peer_copy_characters(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_CHAR, CS_TYPE_CHAR);
  const auto *const text = static_cast<const unsigned char *>(src);
  const CS_INT length = srcfmt->maxlength, room = destfmt->maxlength;
  CS_INT kept = 0;
  while (kept < length) {
    const CS_INT bytes = peer_widths[text[kept]];
    if (kept + bytes > room)
      break;
    kept += bytes;
  }
  std::memcpy(dest, text, static_cast<size_t>(kept));
  *destlen = kept;
  return kept == length ? CS_SUCCEED : CS_CONV_TRUNCATED;
}

#ifdef ZRVBENCH_WITH_FMT
CS_RETCODE peer_fmt_amount(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_FLOAT, CS_TYPE_CHAR);
  CS_FLOAT value;
  std::memcpy(&value, src, sizeof value);
  auto *const text = static_cast<char *>(dest);
  *destlen = static_cast<CS_INT>(fmt::format_to(text, "{:.2f}", value) - text);
  return CS_SUCCEED;
}
#endif

CS_CONV_FUNC peer_table_load(const CS_CONV_FUNC *table, CS_INT srctype, CS_INT desttype) {
  return table[40 * srctype + desttype];
}

#ifdef ZRVBENCH_WITH_BOOST
size_t peer_unhex(const char *text, size_t digits, unsigned char *dest) {
  return static_cast<size_t>(boost::algorithm::unhex(text, text + digits, dest) - dest);
}

CS_RETCODE peer_hex_lower(PEER_PARAMETERS) {
  PEER_CHECK(CS_TYPE_BINARY, CS_TYPE_CHAR);
  const auto *const bytes = static_cast<const unsigned char *>(src);
  auto *const text = static_cast<char *>(dest);
  *destlen = static_cast<CS_INT>(
      boost::algorithm::hex_lower(bytes, bytes + srcfmt->maxlength, text) - text);
  return CS_SUCCEED;
}
#endif
