// The peers of the conversions.
#include "convert_peers.h"

#include <charconv>
#include <cstring>

#ifdef ZRVBENCH_WITH_BOOST
#include <boost/algorithm/hex.hpp>
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

CS_CONV_FUNC peer_table_load(const CS_CONV_FUNC *table, CS_INT srctype, CS_INT desttype) {
  return table[40 * srctype + desttype];
}

#ifdef ZRVBENCH_WITH_BOOST
size_t peer_unhex(const char *text, size_t digits, unsigned char *dest) {
  return static_cast<size_t>(boost::algorithm::unhex(text, text + digits, dest) - dest);
}
#endif
