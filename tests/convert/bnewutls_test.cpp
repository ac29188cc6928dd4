// The pads of the cast-context conversions, against their rules told one byte at a time.
#include <gtest/gtest.h>

#include "cast_call.h"
#include "cast_pad_reference.h"
#include "check_trap.h"

using zrvtest::CastPadded;
using zrvtest::GuardedBuffer;
using zrvtest::reference_cast_pad;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK,
                 H = CAST_DFMT_PADHEAD;

// The first `len` bytes of "abcdef" in a capacity of `room`, padded; "." stands for what was not written.
template <class Pad>
CastPadded pad(Pad function, CS_INT format, CS_INT len, CS_INT room) {
  GuardedBuffer buffer(static_cast<size_t>(room));
  std::string bytes = std::string("abcdef").substr(0, static_cast<size_t>(std::max(len, 0)));
  bytes.resize(static_cast<size_t>(room), '.');
  std::memcpy(buffer.data(), bytes.data(), bytes.size());
  CAST_CONTEXT context{};
  context.format = format;
  __CONSTANT dest{};
  dest.len = len;
  dest.maxlen = room;
  dest.value = buffer.data();
  const CS_RETCODE status = function(&context, &dest);
  return {status, dest.len, buffer.contents()};
}

} // namespace

TEST(CastPad, TextInEveryFormatAndRoom) {
  for (CS_INT format = 0; format < 16; ++format)
    for (CS_INT len = 0; len <= 6; ++len)
      for (CS_INT room = 0; room <= 14; ++room)
        if (room >= len) {
          EXPECT_EQ(pad(comnb__padchar, format, len, room),
                    reference_cast_pad(std::string("abcdef").substr(0, static_cast<size_t>(len)),
                                       format, room))
              << "format " << format << ", len " << len << ", room " << room;
        }
}

TEST(CastPad, TextExamples) {
  using namespace std::string_literals;
  const auto text = [](CS_INT format, CS_INT len, CS_INT room) {
    return pad(comnb__padchar, format, len, room);
  };
  EXPECT_EQ(text(0, 3, 5), (CastPadded{CS_SUCCEED, 3, "abc.."}));
  EXPECT_EQ(text(0, 3, 3), (CastPadded{CS_SUCCEED, 3, "abc"}));
  EXPECT_EQ(text(N, 3, 5), (CastPadded{CS_SUCCEED, 4, "abc\0."s}));
  EXPECT_EQ(text(N, 3, 3), (CastPadded{CS_CONV_OVERFLOW, 3, "abc"}));
  EXPECT_EQ(text(P, 3, 5), (CastPadded{CS_SUCCEED, 5, "abc\0\0"s}));
  EXPECT_EQ(text(B, 3, 5), (CastPadded{CS_SUCCEED, 5, "abc  "}));
  EXPECT_EQ(text(B | N, 3, 5), (CastPadded{CS_SUCCEED, 5, "abc \0"s}));
  EXPECT_EQ(text(P | B, 3, 5), (CastPadded{CS_CONV_PADCONFLICT, 3, "abc.."}));
  // The room is tested before the bits are.
  EXPECT_EQ(text(P | B | N, 3, 3), (CastPadded{CS_CONV_OVERFLOW, 3, "abc"}));
  EXPECT_EQ(text(B | H | N, 3, 5), (CastPadded{CS_CONV_PADCONFLICT, 3, "abc.."}));
  // The bit for the head counts with blanks alone.
  EXPECT_EQ(text(H, 3, 5), (CastPadded{CS_SUCCEED, 3, "abc.."}));
  EXPECT_EQ(text(H | N, 3, 5), (CastPadded{CS_SUCCEED, 4, "abc\0."s}));
  EXPECT_EQ(text(H | P, 3, 5), (CastPadded{CS_SUCCEED, 5, "abc\0\0"s}));
}

// Deliberate: the value does not make way, so the blanks replace its first bytes, and what lies behind
// it stays.
TEST(CastPad, BlanksAtTheHeadOverwriteTheValue) {
  EXPECT_EQ(pad(comnb__padchar, B | H, 3, 5), (CastPadded{CS_SUCCEED, 5, "  c.."}));
  EXPECT_EQ(pad(comnb__padchar, B | H, 3, 6), (CastPadded{CS_SUCCEED, 6, "   ..."}));
  EXPECT_EQ(pad(comnb__padchar, B | H, 2, 6), (CastPadded{CS_SUCCEED, 6, "    .."}));
  EXPECT_EQ(pad(comnb__padchar, B | H, 3, 3), (CastPadded{CS_SUCCEED, 3, "abc"}));
}

TEST(CastPad, LengthsOutOfRange) {
  EXPECT_EQ(pad(comnb__padchar, P, -2, 2), (CastPadded{CS_SUCCEED, 2, std::string(2, '\0')}));
  EXPECT_EQ(pad(comnb__padchar, N, -2, 2), (CastPadded{CS_SUCCEED, 1, std::string("\0.", 2)}));
  EXPECT_EQ(pad(comnb__padbin, B, -2, 2), (CastPadded{CS_SUCCEED, 2, "  "}));
  // A length beyond the capacity is no text that fits.
  GuardedBuffer buffer(3);
  CAST_CONTEXT context{};
  context.format = B;
  __CONSTANT dest{};
  dest.len = 4;
  dest.maxlen = 3;
  dest.value = buffer.data();
  EXPECT_EQ(comnb__padchar(&context, &dest), CS_CONV_OVERFLOW);
  EXPECT_EQ(dest.len, 4);
  EXPECT_TRUE(buffer.is_untouched());
  // The binary pad knows no failure.
  EXPECT_EQ(comnb__padbin(&context, &dest), CS_SUCCEED);
  EXPECT_EQ(dest.len, 3);
  EXPECT_TRUE(buffer.is_untouched());
}

// Deliberate: blanks pad binary here, which they never do in the matrix.
TEST(CastPad, BinaryTakesBlanks) {
  for (CS_INT len = 0; len <= 6; ++len)
    for (CS_INT room = len; room <= 9; ++room) {
      const std::string value = std::string("abcdef").substr(0, static_cast<size_t>(len));
      const auto rest = static_cast<size_t>(room - len);
      EXPECT_EQ(pad(comnb__padbin, B, len, room),
                (CastPadded{CS_SUCCEED, room, value + std::string(rest, ' ')}));
      for (const CS_INT format : {P, P | B, P | B | N | H})
        EXPECT_EQ(pad(comnb__padbin, format, len, room),
                  (CastPadded{CS_SUCCEED, room, value + std::string(rest, '\0')}));
      for (const CS_INT format : {0, N, H, N | H})
        EXPECT_EQ(pad(comnb__padbin, format, len, room),
                  (CastPadded{CS_SUCCEED, len, value + std::string(rest, '.')}));
    }
}

TEST(CastPad, NoConversionBetweenCharacterSets) {
  CAST_CONTEXT context{};
  __CONSTANT src{}, dest{};
  EXPECT_ASSERTION("bnewutls.cpp", CS_CONV_OVERFLOW, comb__intl_xlate(&context, &src, &dest));
}
