// Any text as the token of a locator, and any bytes as its chunks: what is read comes back as it was, copies
// are whole, and nothing is written beyond the room or kept when the record is emptied. The first byte of
// the input is the room, the second cuts the rest into chunks.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "text_sets.h"
#include "zrvcomn/comnlib.h"
#include "zrvintl.h"

using zrvfuzz::make_format;
using zrvfuzz::require;

namespace {

struct World {
  World() { context.ctxlocale = &set.locale; }

  zrvfuzz::TextSet set{zrvtest::TestCharset::one_byte()};
  CS_CONTEXT context{};
};

void *allocated(const std::string &bytes) {
  void *const block = comn_calloc(1, bytes.size());
  require(block != nullptr);
  std::memcpy(block, bytes.data(), bytes.size());
  return block;
}

void append_chunk(CS_LOCATOR &record, const std::string &bytes) {
  CsBlobChunk **link = &record.prefetchdata;
  while (*link != nullptr)
    link = &(*link)->pnext;
  *link = static_cast<CsBlobChunk *>(comn_calloc(1, sizeof(CsBlobChunk)));
  require(*link != nullptr);
  (*link)->len = static_cast<CS_INT>(bytes.size());
  if (!bytes.empty())
    (*link)->data = allocated(bytes);
}

// The digits of a token, told long-hand: the decoder's own rules are another fuzzer's.
void check_token(World &world, const CS_LOCATOR &token, const std::string &text) {
  CS_LOCATOR record = token;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_TEXTLOCATOR, 0);
  std::string digits(2 * size_t{record.locatorlen} + 1, '?');
  CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, digits.size());
  CS_INT length = -1;
  require(comn_locatortochar(&world.context, &srcfmt, &record, &destfmt, digits.data(), &length) ==
          CS_SUCCEED);
  require(length == 2 * record.locatorlen && digits.back() == '?');
  digits.pop_back();
  std::string wanted;
  for (const char c : text)
    if (std::string("0123456789abcdefABCDEF").find(c) != std::string::npos)
      wanted += static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c);
  // A prefix has a digit of its own, and an odd count gets one.
  require(wanted.size() <= digits.size() + 1 && digits.size() <= wanted.size() + 1);
  const size_t common = std::min(wanted.size(), digits.size());
  require(wanted.substr(wanted.size() - common) == digits.substr(digits.size() - common));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 3)
    return 0;
  static World world;
  std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);

  CS_LOCATOR record = Comv_CS_LOCATOR, copy = Comv_CS_LOCATOR;
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, text.size());
  CS_DATAFMT destfmt = make_format(CS_TYPE_TEXTLOCATOR, 7);
  CS_INT length = -1;
  const CS_RETCODE status =
      comn_chartolocator(&world.context, &srcfmt, text.data(), &destfmt, &record, &length);
  require(status == CS_SUCCEED || status == CS_CONV_SYNTAX || status == CS_CONV_OVERFLOW);
  if (status == CS_SUCCEED) {
    require(length == record.locatorlen && destfmt.maxlength == 7);
    check_token(world, record, text);
  } else {
    require(record.locatorlen == 0 && length == 0);
  }

  const size_t piece = data[1] % 16;
  for (size_t at = 0; at < text.size() && piece > 0; at += piece)
    append_chunk(record, text.substr(at, piece));
  if (data[1] >= 128)
    append_chunk(record, "");
  const bool has_data = record.prefetchdata != nullptr;
  const std::string whole = piece > 0 ? text : "";

  srcfmt = make_format(CS_TYPE_TEXTLOCATOR, 0);
  destfmt = make_format(CS_TYPE_TEXTLOCATOR, 0);
  require(comn_locatortolocator(&world.context, &srcfmt, &record, &destfmt, &copy, &length) ==
          CS_SUCCEED);
  require(comn__locator_clean(&record) == 1);

  const size_t room = data[0];
  std::vector<char> dest(room + 1, '?');
  destfmt = make_format(CS_TYPE_TEXT, room);
  require(comn_locatortotext(&world.context, &srcfmt, &copy, &destfmt, dest.data(), &length) ==
          (whole.size() <= room ? CS_SUCCEED : CS_CONV_TRUNCATED));
  require(static_cast<size_t>(length) == std::min(whole.size(), room));
  if (has_data)
    require(std::string(dest.data(), static_cast<size_t>(length)) == whole.substr(0, room));
  else
    require(room == 0 || dest[0] == '\0');
  require(dest.back() == '?');

  srcfmt.datatype = CS_TYPE_IMAGELOCATOR;
  destfmt = make_format(CS_TYPE_IMAGE, room);
  require(comn_locatortoimage(&world.context, &srcfmt, &copy, &destfmt, dest.data(), &length) ==
          (whole.size() <= room ? CS_SUCCEED : CS_CONV_TRUNCATED));
  require(static_cast<size_t>(length) == std::min(whole.size(), room) && dest.back() == '?');
  require(comn__locator_clean(&copy) == 1 && copy.locator == nullptr &&
          copy.prefetchdata == nullptr);
  return 0;
}
