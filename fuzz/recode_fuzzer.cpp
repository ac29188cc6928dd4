// Text in any set into any other through the engine: whatever the bytes and the room, nothing is read or
// written outside, and the status is one that is told.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "text_sets.h"

using zrvfuzz::require;

namespace {

// A set of which the engine is to know no more than its number.
struct Set : zrvfuzz::SetLocale {
  explicit Set(int number) : SetLocale(&attributes) {
    attributes.cs_id = static_cast<CS_BYTE>(number);
  }

  CHAR_ATTRIB attributes{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 3)
    return 0;
  constexpr size_t sets = sizeof csid_name / sizeof *csid_name;
  Set from(csid_name[data[0] % sets].csid), to(csid_name[data[1] % sets].csid), utf8(190);
  const size_t room = data[2];
  CsCtxGlobals globals{};
  globals.cmg_utf8_charset = &utf8.charset;
  CS_CONTEXT context{};
  context.ctxglobals = &globals;
  context.ctxlocale = &from.locale;
  CS_DATAFMT srcfmt{}, destfmt{};
  destfmt.locale = &to.locale;
  srcfmt.maxlength = static_cast<CS_INT>(size - 3);
  destfmt.maxlength = static_cast<CS_INT>(room);
  // Heap blocks of exactly the size, for the sanitizers; empty ones need an address all the same.
  std::vector<CS_BYTE> source(data + 3, data + size), destination(room, 0xA5);
  source.reserve(1);
  destination.reserve(1);
  CS_INT length = -1;
  const CS_RETCODE status = comn_charset_convert(&context, CS_LCTYPE_CTYPE, &srcfmt, source.data(),
                                                 &destfmt, destination.data(), &length);
  require(length >= 0 && static_cast<size_t>(length) <= room);
  require(status == CS_SUCCEED || status == CS_CONV_TRUNCATED ||
          (status == CS_FAIL && length == 0));
  const CS_RETCODE there = comn__convt_to_utf8(&context, 0, &srcfmt, &from.cache, source.data(),
                                               destination.data(), destfmt.maxlength, &length);
  require(length >= 0 && static_cast<size_t>(length) <= room);
  require(there == CS_SUCCEED || there == CS_CONV_TRUNCATED || (there == CS_FAIL && length == 0));
  const CS_RETCODE back = comn__convt_from_utf8(&context, 0, source.data(), srcfmt.maxlength,
                                                &destfmt, &to.cache, destination.data(), &length);
  require(length >= 0 && static_cast<size_t>(length) <= room);
  require(back == CS_SUCCEED || back == CS_CONV_TRUNCATED || (back == CS_FAIL && length == 0));
  return 0;
}
