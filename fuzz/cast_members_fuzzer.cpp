// Every cast-context member on any bytes, in any room and format. The input begins with the member (two
// bytes), the room, the format, the flags and the character set, the style of dates (two bytes), and the
// shapes of both sides (four); the rest are the source's bytes. Source and capacity are heap blocks of
// their very length, but for fixed types, which are as long as the type.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_input.h"
#include "test_charset.h"
#include "zrvcomn/castctx.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"

using zrvfuzz::require;

namespace {

using Member = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

struct Row {
  const char *source, *destination;
  Member function;
};

#define ZRVFUZZ_ROW(source, destination) {#source, #destination, comnb_##source##to##destination},
constexpr Row members[] = {ZRV_CAST_MEMBERS(ZRVFUZZ_ROW)};
#undef ZRVFUZZ_ROW

// The bytes of a fixed type; 0 for what has a length of its own.
CS_INT width_of(const std::string &type) {
  for (const char *narrow : {"bit", "i1"})
    if (type == narrow)
      return 1;
  for (const char *narrow : {"i2", "ui2"})
    if (type == narrow)
      return 2;
  for (const char *narrow : {"i4", "ui4", "flt4", "mny4", "date4", "time4", "datea", "timea"})
    if (type == narrow)
      return 4;
  for (const char *wide :
       {"i8", "ui8", "flt8", "money", "date", "datetime", "bigdatetime", "bigdate", "bigtime"})
    if (type == wide)
      return 8;
  return 0;
}

bool is_known(CS_RETCODE status) {
  switch (status) {
  case CS_SUCCEED:
  case CS_CONV_OVERFLOW:
  case CS_CONV_UNDERFLOW:
  case CS_CONV_BADPRECISION:
  case CS_CONV_BADSCALE:
  case CS_CONV_SYNTAX:
  case CS_CONV_PADCONFLICT:
  case CS_CONV_DOMAIN:
  case CS_CONV_TRUNCATED:
  case CS_CONV_DATEBUFFER:
    return true;
  default:
    return false;
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  constexpr size_t head = 12;
  if (size < head || size > 2048)
    return 0;
  zrvfuzz::Input input(data, size);
  const Row &member = members[input.word() % std::size(members)];
  const CS_INT room = input.byte();
  CAST_CONTEXT context{};
  context.format = input.byte();
  context.flags = input.byte();
  zrvtest::TestCharset sets[] = {zrvtest::TestCharset::one_byte(),
                                 zrvtest::TestCharset::double_byte(),
                                 zrvtest::TestCharset::four_byte(), zrvtest::TestCharset::utf8()};
  const unsigned set = input.byte() % 5U;
  context.char_attrib = set < 4 ? sets[set].get() : nullptr;
  const unsigned style = input.word();
  context.style = static_cast<CS_INT>(style % 256);
  context.dateorder = static_cast<CS_INT>(style / 256 % 7);
  context.months = style & 0x8000 ? nullptr : com__get_months();
  context.shrtmonths = style & 0x4000 ? nullptr : com__get_shortmonths();
  __CONSTANT src{}, dest{};
  src.prec = input.byte();
  src.scale = input.byte();
  dest.prec = input.byte();
  dest.scale = input.byte();

  const bool whole_bytes =
      member.source == std::string("bin"); // its first byte is read in any case
  const CS_INT given = static_cast<CS_INT>(size - head), fixed = width_of(member.source);
  src.len = std::max<CS_INT>(given, fixed != 0 ? fixed : whole_bytes ? 1 : 0);
  const std::unique_ptr<CS_BYTE[]> source(new CS_BYTE[static_cast<size_t>(src.len)]());
  std::copy(data + head, data + size, source.get());
  src.value = source.get();

  const CS_INT width = width_of(member.destination);
  dest.maxlen = width != 0 ? width : room;
  dest.type = context.flags & 2 ? CAST_TYPE_FLT8 : context.flags & 4 ? CAST_TYPE_FLT4 : 0;
  const std::unique_ptr<CS_BYTE[]> bytes(new CS_BYTE[static_cast<size_t>(dest.maxlen)]());
  dest.value = bytes.get();

  const CAST_CONTEXT told = context;
  const std::string before(reinterpret_cast<const char *>(src.value), static_cast<size_t>(src.len));
  const CS_RETCODE status = member.function(&context, &src, &dest);
  require(is_known(status));
  require(dest.len >= 0 && dest.len <= dest.maxlen);
  require(std::memcmp(&context, &told, sizeof told) == 0);
  require(std::memcmp(before.data(), src.value, before.size()) == 0);
  // What is fixed comes whole.
  if (status == CS_SUCCEED && width != 0)
    require(dest.len == width);
  return 0;
}
