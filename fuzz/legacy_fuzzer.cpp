// Every conversion for callers without a context, on any bytes and any room: never a byte beyond the
// room, a result that the family has, and the same result twice. Text between the shapes, hexadecimal
// digits and raw bytes are compared with the slow reading of the tests.
//
// Of the input, two bytes are the room from -2 up, one the options; the rest is the source of each
// member.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_input.h"
#include "legacy_members.h"
#include "legacy_shapes.h"
#include "test_charset.h"

using zrvfuzz::require;

namespace {

const std::vector<zrvtest::LegacyMember> &members() {
  static const std::vector<zrvtest::LegacyMember> all = zrvtest::legacy_members();
  return all;
}

struct Run {
  CS_INT result;
  std::string bytes;
};

// Source and destination end where their blocks do.
Run run(const zrvtest::LegacyMember &member, const std::string &source, CS_INT srclen,
        CS_INT destlen, size_t size, const zrvtest::LegacyOptions &options) {
  const std::unique_ptr<char[]> src(new char[source.size()]);
  const std::unique_ptr<char[]> dest(new char[size + (size == 0)]);
  std::memcpy(src.get(), source.data(), source.size());
  std::memset(dest.get(), zrvtest::legacy_filler, size + (size == 0));
  const CS_INT result = member(src.get(), srclen, dest.get(), destlen, options);
  require(size != 0 || dest[0] == zrvtest::legacy_filler);
  return {result, std::string(dest.get(), size)};
}

struct Input {
  std::string source;
  CS_INT destlen;
  unsigned choice;
};

void check(const zrvtest::LegacyMember &member, const Input &input) {
  std::string source = input.source;
  // Dates as text take every negative room for no limit.
  const bool is_date_text = member.source.starts_with("date") && member.is_to_text();
  const CS_INT destlen = is_date_text ? std::max(input.destlen, -1) : input.destlen;
  const unsigned choice = input.choice;
  auto srclen = static_cast<CS_INT>(source.size());
  if (const CS_INT width = member.source_width(); width != 0) {
    source.resize(static_cast<size_t>(width));
    srclen = width;
  } else if (member.is_from_record()) {
    source = zrvtest::legacy_header(srclen) + source;
  }

  zrvtest::TestCharset set =
      (choice & 1) != 0 ? zrvtest::TestCharset::double_byte() : zrvtest::TestCharset::utf8();
  zrvtest::LegacyOptions options;
  options.precision = static_cast<CS_INT>(choice % 80);
  options.scale = static_cast<CS_INT>(choice / 2 % 80);
  options.style = static_cast<CS_INT>(choice % 150);
  options.dateorder_id = static_cast<int>(choice % 8) - 1;
  options.chatr = (choice & 2) != 0 ? set.get() : nullptr;
  char formats[][8] = {"%.2f", "%10g", "%.*e", "%d"};
  options.fltfmt = (choice & 4) != 0 ? formats[choice / 8 % 4] : nullptr;

  // A type of one width needs its bytes, text and binary those of the room; without a limit as many
  // as any source can give.
  const bool has_width = member.width() != 0;
  const size_t room =
      has_width ? static_cast<size_t>(member.width())
                : zrvtest::legacy_size(member.destination == "bin" ? "binary" : member.destination,
                                       destlen, 2 * source.size() + 512);
  // No room for digits is no limit of them.
  const bool hex_unlimited = member.is_from_binary() && member.is_to_text() && destlen == 0;
  const size_t bytes = room + (hex_unlimited ? 2 * source.size() : 0);
  const Run first = run(member, source, srclen, destlen, bytes, options);
  require(first.result >= -8 || first.result == CS_CONV_TRUNCATED);
  require(first.result != -4 && first.result != -5);
  require(first.result <= static_cast<CS_INT>(bytes));
  const Run second = run(member, source, srclen, destlen, bytes, options);
  require(first.result == second.result && first.bytes == second.bytes);

  const std::string value = member.is_from_record() ? source.substr(2) : source;
  const bool is_slow_text = member.is_from_text() && member.is_to_text();
  const bool is_slow_hex = member.is_from_binary() && member.is_to_text() && !hex_unlimited;
  const bool is_slow_bytes =
      (member.is_from_binary() || member.source == "any") && member.is_to_bytes();
  if (!is_slow_text && !is_slow_hex && !is_slow_bytes)
    return;
  std::string kept = value;
  if (is_slow_text && member.destination == "ntbstring")
    kept.erase(kept.find_last_not_of(' ') + 1);
  const std::string shape = member.destination == "bin" ? "binary" : member.destination;
  zrvtest::Shaped expected = is_slow_hex ? zrvtest::shape_hex(shape, kept, destlen)
                                         : zrvtest::shape_text(shape, kept, destlen, false);
  require(first.result == expected.result);
  expected.bytes.resize(first.bytes.size(), zrvtest::legacy_filler);
  require(first.bytes == expected.bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 4 || size > 1024)
    return 0;
  const Input input = {std::string(reinterpret_cast<const char *>(data) + 3, size - 3),
                       (data[0] | (data[1] & 3) << 8) - 2, data[2]};
  for (const zrvtest::LegacyMember &member : members())
    check(member, input);
  return 0;
}
