// 16-bit text of any bytes to UTF-8, to numbers and to bytes, and any bytes to 16-bit text, in any room,
// against slow readings of the same rules. The first three bytes of the input are the room, the format
// and the place in a unit, the rest is the text.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "pad_reference.h"
#include "text_sets.h"
#include "utf_reference.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::make_format;
using zrvfuzz::require;
using zrvtest::Octets;

namespace {

// A context whose only locale is UTF-8.
struct World {
  World() {
    utf8.locale.timeptr = &utf8.cache;
    globals.cmg_utf8_charset = &utf8.charset;
    globals.cmg_utf8_ctypeptr = &utf8.cache;
    context.ctxglobals = &globals;
    context.ctxlocale = &utf8.locale;
  }

  zrvfuzz::TextSet utf8{zrvtest::TestCharset::utf8()};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
};

struct Result {
  CS_RETCODE status;
  CS_INT length;
  std::string bytes;
};

// A source and a destination of exactly their sizes, behind `shift` bytes.
Result convert(World &world, CS_CONV_FUNC function, CS_INT from, const Octets &text, CS_INT to,
               size_t room, CS_INT format, size_t shift) {
  CS_DATAFMT srcfmt = make_format(from, text.size()), destfmt = make_format(to, room, format);
  Octets source(shift, 0), dest(shift + room, 0xA5);
  source.insert(source.end(), text.begin(), text.end());
  source.reserve(source.size() + 1);
  dest.reserve(dest.size() + 1);
  Result result{0, -1, {}};
  result.status = function(&world.context, &srcfmt, source.data() + shift, &destfmt,
                           dest.data() + shift, &result.length);
  require(
      std::equal(text.begin(), text.end(), source.begin() + static_cast<std::ptrdiff_t>(shift)));
  result.bytes.assign(dest.begin() + static_cast<std::ptrdiff_t>(shift), dest.end());
  return result;
}

// What a transcoder leaves in a room, ended by the slow pad in units of `unit` bytes.
Result ended(const zrvtest::Transcoded &text, CS_INT unit, CS_INT format, size_t room) {
  const auto written = static_cast<CS_INT>(text.text.size());
  zrvtest::Padded dest{std::string(text.text.begin(), text.text.end()), written};
  dest.bytes.resize(room, '\xA5');
  if (text.result == 4)
    return {CS_CONV_BADCHAR, written, dest.bytes};
  if (text.result == 2) {
    const size_t whole = room / 2 * 2;
    if ((format & CS_DFMT_NULLTERM) != 0 && unit == 2 && whole > 0)
      dest.bytes.replace(whole - 2, 2, 2, '\0');
    if ((format & CS_DFMT_NULLTERM) != 0 && unit == 1 && written > 0)
      dest.bytes[static_cast<size_t>(written) - 1] = '\0';
    return {CS_CONV_TRUNCATED, written, dest.bytes};
  }
  CS_RETCODE status =
      zrvtest::reference_pad_text(unit, written, format, static_cast<CS_INT>(room), dest);
  if (status == CS_CONV_OVERFLOW && unit == 2)
    status = CS_CONV_TRUNCATED;
  return {status, dest.length, dest.bytes};
}

void require_equal(const Result &actual, const Result &expected) {
  require(actual.status == expected.status && actual.length == expected.length &&
          actual.bytes == expected.bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 4)
    return 0;
  static World world;
  const size_t room = data[0], shift = data[2] & 1;
  const CS_INT format = data[1] & 71; // the pads and the bit that lets every unit pass
  const bool check = (format & 64) == 0;
  const Octets text(data + 3, data + size);

  require_equal(
      convert(world, comn_unichartochar, CS_TYPE_UNICHAR, text, CS_TYPE_CHAR, room, format, shift),
      ended(zrvtest::utf16_to_utf8(text, room, check), 1, format, room));
  require_equal(
      convert(world, comn_chartounichar, CS_TYPE_CHAR, text, CS_TYPE_UNITEXT, room, format, shift),
      ended(zrvtest::utf8_to_utf16(text, room, true), 2, format, room));
  const Result copy = ended(zrvtest::utf16_to_utf16(text, room, false), 2, format, room);
  require_equal(convert(world, comn_unichartounichar, CS_TYPE_UNITEXT, text, CS_TYPE_UNICHAR, room,
                        format, shift),
                copy);
  require_equal(
      convert(world, comn_bintounichar, CS_TYPE_BINARY, text, CS_TYPE_UNICHAR, room, format, shift),
      copy);

  // Values as the members from UTF-8 read them, as long as the text fits between.
  const struct {
    CS_CONV_FUNC from_units, from_text;
    CS_INT type;
    size_t area;
  } values[] = {{comn_unichartoi4, comn_chartoi4, CS_TYPE_INT, 64},
                {comn_unichartoi8, comn_chartoi8, CS_TYPE_BIGINT, 64},
                {comn_unichartoflt8, comn_chartoflt8, CS_TYPE_FLOAT, 1024},
                {comn_unichartomoney, comn_chartomoney, CS_TYPE_MONEY, 24},
                {comn_unichartobit, comn_chartobit, CS_TYPE_BIT, 2 * text.size()}};
  for (const auto &value : values) {
    const zrvtest::Transcoded utf8 = zrvtest::utf16_to_utf8(text, value.area, true);
    const Result result =
        convert(world, value.from_units, CS_TYPE_UNICHAR, text, value.type, 8, 0, shift);
    if (utf8.result == 0)
      require_equal(result, convert(world, value.from_text, CS_TYPE_CHAR, utf8.text, value.type, 8,
                                    0, shift));
    else
      require(result.status == (utf8.result == 4 ? CS_CONV_BADCHAR : CS_CONV_TRUNCATED) &&
              result.length == 0);
  }
  return 0;
}
