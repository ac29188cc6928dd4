// The pads that end every text and binary result.
#include <climits>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "pad_reference.h"
#include "test_context.h"

using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::Padded;
using namespace std::string_literals;

namespace {

using PadFunction = CS_RETCODE (*)(CS_INT, CS_DATAFMT *, CS_VOID *, CS_INT *);
using Reference = std::function<CS_RETCODE(CS_INT, CS_INT, CS_INT, Padded &)>;

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;

struct Pad {
  const char *name;
  PadFunction function;
  Reference reference;
};

const Pad pads[] = {
    {"comn__padchar", comn__padchar,
     [](CS_INT srclen, CS_INT format, CS_INT maxlength, Padded &dest) {
       return zrvtest::reference_pad_text(1, srclen, format, maxlength, dest);
     }},
    {"comn__padunichar", comn__padunichar,
     [](CS_INT srclen, CS_INT format, CS_INT maxlength, Padded &dest) {
       return zrvtest::reference_pad_text(2, srclen, format, maxlength, dest);
     }},
    {"comn__padbin", comn__padbin, zrvtest::reference_pad_binary},
};

// One row of a table of examples: a buffer of `maxlength` bytes of '#', padded.
struct Example {
  CS_INT srclen, format, maxlength, destlen;
  CS_RETCODE status;
  CS_INT length;     // *destlen afterwards
  std::string bytes; // the buffer afterwards
};

void run(PadFunction pad, const Example &row) {
  SCOPED_TRACE(testing::Message() << "srclen " << row.srclen << " format " << row.format
                                  << " maxlength " << row.maxlength << " destlen " << row.destlen);
  CS_DATAFMT format = make_format(0, row.maxlength, row.format);
  GuardedBuffer buffer(static_cast<size_t>(std::max(row.maxlength, 0)));
  std::memset(buffer.data(), '#', buffer.size());
  CS_INT length = row.destlen;
  EXPECT_EQ(pad(row.srclen, &format, buffer.data(), &length), row.status);
  EXPECT_EQ(length, row.length);
  EXPECT_EQ(buffer.contents(), row.bytes);
}

} // namespace

TEST(PadChar, Examples) {
  const Example rows[] = {
      // no bit: nothing, with and without room
      {3, 0, 5, 3, CS_SUCCEED, 3, "#####"},
      {5, 0, 5, 5, CS_SUCCEED, 5, "#####"},
      {6, 0, 5, 5, CS_CONV_OVERFLOW, 5, "#####"},
      // the terminator alone counts in the length
      {3, N, 5, 3, CS_SUCCEED, 4, "###\0#"s},
      {4, N, 5, 4, CS_SUCCEED, 5, "####\0"s},
      {5, N, 5, 5, CS_CONV_OVERFLOW, 5, "####\0"s},
      {6, N, 5, 5, CS_CONV_OVERFLOW, 5, "####\0"s},
      {1, N, 1, 1, CS_CONV_OVERFLOW, 1, "\0"s},
      {0, N, 0, 0, CS_CONV_OVERFLOW, 0, ""},
      // NUL fill
      {3, P, 5, 3, CS_SUCCEED, 5, "###\0\0"s},
      {5, P, 5, 5, CS_SUCCEED, 5, "#####"},
      {3, P | N, 5, 3, CS_SUCCEED, 5, "###\0\0"s},
      {5, P | N, 5, 5, CS_CONV_OVERFLOW, 5, "####\0"s},
      // blank fill, the last byte a NUL if a terminator is asked for
      {3, B, 5, 3, CS_SUCCEED, 5, "###  "},
      {3, B | N, 5, 3, CS_SUCCEED, 5, "### \0"s},
      {4, B | N, 5, 4, CS_SUCCEED, 5, "####\0"s},
      {5, B, 5, 5, CS_SUCCEED, 5, "#####"},
      // both pads: refused, but only where there is room
      {3, P | B, 5, 3, CS_CONV_PADCONFLICT, 3, "#####"},
      {5, P | B, 5, 5, CS_CONV_PADCONFLICT, 5, "#####"},
      {6, P | B, 5, 5, CS_CONV_OVERFLOW, 5, "#####"},
      {5, P | B | N, 5, 5, CS_CONV_OVERFLOW, 5, "####\0"s},
      // the data ends elsewhere than at srclen
      {1, B, 5, 3, CS_SUCCEED, 5, "###  "},
      {4, B, 5, 1, CS_SUCCEED, 5, "#    "},
      // nothing is filled, terminated or counted at or behind the capacity
      {3, N, 5, 5, CS_SUCCEED, 5, "#####"},
      {3, N | B, 5, 5, CS_SUCCEED, 5, "#####"},
      {3, P, 5, 9, CS_SUCCEED, 9, "#####"},
      // a negative capacity is no room
      {0, N, -1, 0, CS_CONV_OVERFLOW, 0, ""},
      {0, P, -1, 0, CS_CONV_OVERFLOW, 0, ""},
      {0, N | B, INT_MIN, 0, CS_CONV_OVERFLOW, 0, ""},
      // other bits have no say
      {3, CS_DFMT_ESCQUOTE | 64, 5, 3, CS_SUCCEED, 3, "#####"},
      // a negative length counts as none
      {-1, N, 0, -1, CS_CONV_OVERFLOW, -1, ""},
      {-3, 0, 2, -3, CS_SUCCEED, -3, "##"},
      {-3, B | N, 2, -3, CS_SUCCEED, 2, " \0"s},
      {INT_MIN, N, 2, INT_MIN, CS_SUCCEED, 1, "\0#"s},
      // lengths at the end of the range
      {INT_MAX, N, 2, 0, CS_CONV_OVERFLOW, 0, "#\0"s},
  };
  for (const Example &row : rows)
    run(comn__padchar, row);
}

TEST(PadBin, Examples) {
  const Example rows[] = {
      {3, 0, 5, 3, CS_SUCCEED, 3, "#####"},
      {3, P, 5, 3, CS_SUCCEED, 5, "###\0\0"s},
      {5, P, 5, 5, CS_SUCCEED, 5, "#####"},
      {6, P, 5, 5, CS_SUCCEED, 5, "#####"},
      // the blank and terminator bits have no effect, and the two pads do not conflict
      {3, B, 5, 3, CS_SUCCEED, 3, "#####"},
      {3, N, 5, 3, CS_SUCCEED, 3, "#####"},
      {3, P | B | N, 5, 3, CS_SUCCEED, 5, "###\0\0"s},
      // the fill starts at srclen, wherever the data ends
      {1, P, 5, 3, CS_SUCCEED, 5, "#\0\0\0\0"s},
      {4, P, 5, 1, CS_SUCCEED, 5, "####\0"s},
      {1, P, 5, 5, CS_SUCCEED, 5, "#\0\0\0\0"s},
      {1, P, 5, 9, CS_SUCCEED, 5, "#\0\0\0\0"s},
      {0, P, -1, 0, CS_SUCCEED, 0, ""},
      {0, P, INT_MIN, 0, CS_SUCCEED, 0, ""},
      {INT_MIN, P, 2, INT_MIN, CS_SUCCEED, 2, "\0\0"s},
      {-1, P, 0, -1, CS_SUCCEED, -1, ""},
  };
  for (const Example &row : rows)
    run(comn__padbin, row);
}

TEST(PadUnichar, Examples) {
  const Example rows[] = {
      {2, 0, 6, 2, CS_SUCCEED, 2, "######"},
      {2, N, 6, 2, CS_SUCCEED, 4, "##\0\0##"s},
      {4, N, 6, 4, CS_SUCCEED, 6, "####\0\0"s},
      // the terminator needs two bytes
      {4, N, 5, 4, CS_CONV_OVERFLOW, 4, "##\0\0#"s},
      {6, N, 6, 6, CS_CONV_OVERFLOW, 6, "####\0\0"s},
      {7, 0, 6, 6, CS_CONV_OVERFLOW, 6, "######"},
      {2, N, 1, 0, CS_CONV_OVERFLOW, 0, "#"},
      {2, P, 6, 2, CS_SUCCEED, 6, "##\0\0\0\0"s},
      {2, B, 6, 2, CS_SUCCEED, 6, "## \0 \0"s},
      {2, B | N, 6, 2, CS_SUCCEED, 6, "## \0\0\0"s},
      {2, P | B, 6, 2, CS_CONV_PADCONFLICT, 2, "######"},
      // an odd last byte stays untouched and is not counted
      {2, P, 7, 2, CS_SUCCEED, 6, "##\0\0\0\0#"s},
      {2, B, 7, 2, CS_SUCCEED, 6, "## \0 \0#"s},
      {2, B | N, 7, 2, CS_SUCCEED, 6, "## \0\0\0#"s},
      {2, P, 3, 2, CS_SUCCEED, 2, "###"},
      {2, B, 3, 2, CS_SUCCEED, 2, "###"},
      // the units start where the data ends, also at an odd place
      {1, B, 6, 1, CS_SUCCEED, 5, "# \0 \0#"s},
      {1, N, 6, 1, CS_SUCCEED, 3, "#\0\0###"s},
      {0, N, -2, 0, CS_CONV_OVERFLOW, 0, ""},
      {0, N | P, INT_MIN, 0, CS_CONV_OVERFLOW, 0, ""},
      {INT_MAX, N, 3, 0, CS_CONV_OVERFLOW, 0, "\0\0#"s},
      {-1, P, 3, -1, CS_SUCCEED, 2, "\0\0#"s},
      {INT_MIN, N, 1, INT_MIN, CS_CONV_OVERFLOW, INT_MIN, "#"},
  };
  for (const Example &row : rows)
    run(comn__padunichar, row);
}

// Every combination of bits with all small lengths, at every alignment, against the reference.
TEST(Pads, EveryCombinationOfBitsAndSmallLengths) {
  for (const Pad &pad : pads)
    for (CS_INT bits = 0; bits < 8; ++bits)
      for (CS_INT maxlength = -2; maxlength <= 9; ++maxlength)
        for (CS_INT srclen = -2; srclen <= 10; ++srclen)
          for (CS_INT destlen = -2; destlen <= 10; ++destlen) {
            CS_DATAFMT format = make_format(0, maxlength, bits);
            const auto room = static_cast<size_t>(std::max(maxlength, 0));
            GuardedBuffer buffer(room, static_cast<size_t>(srclen + destlen + 4) % 4);
            Padded expected{buffer.contents(), destlen};
            const CS_RETCODE status = pad.reference(srclen, bits, maxlength, expected);
            CS_INT length = destlen;
            ASSERT_EQ(pad.function(srclen, &format, buffer.data(), &length), status)
                << pad.name << " bits " << bits << " maxlength " << maxlength << " srclen "
                << srclen << " destlen " << destlen;
            ASSERT_EQ(length, expected.length)
                << pad.name << " bits " << bits << " maxlength " << maxlength << " srclen "
                << srclen << " destlen " << destlen;
            ASSERT_EQ(buffer.contents(), expected.bytes)
                << pad.name << " bits " << bits << " maxlength " << maxlength << " srclen "
                << srclen << " destlen " << destlen;
            ASSERT_TRUE(buffer.is_intact());
          }
}

TEST(Pads, LongFillsAtEveryAlignment) {
  for (const Pad &pad : pads)
    for (const CS_INT bits : {N, P, B, B | N})
      for (const CS_INT maxlength : {63, 64, 65, 66, 67, 255, 256, 257, 1000, 5001})
        for (CS_INT misalignment = 0; misalignment < 64; ++misalignment) {
          CS_DATAFMT format = make_format(0, maxlength, bits);
          GuardedBuffer buffer(static_cast<size_t>(maxlength), static_cast<size_t>(misalignment));
          Padded expected{buffer.contents(), 2};
          CS_INT length = 2;
          ASSERT_EQ(pad.function(2, &format, buffer.data(), &length),
                    pad.reference(2, bits, maxlength, expected));
          ASSERT_EQ(length, expected.length) << pad.name << " bits " << bits;
          ASSERT_EQ(buffer.contents(), expected.bytes)
              << pad.name << " bits " << bits << " misalignment " << misalignment;
        }
}

TEST(Pads, NullPointersAreFatal) {
  for (const Pad &pad : pads) {
    SCOPED_TRACE(pad.name);
    CS_DATAFMT format = make_format(0, 4, P);
    GuardedBuffer buffer(4);
    CS_INT length = 1;
    EXPECT_NULL_POINTER_CHECK("com_pad.cpp", CS_FAIL,
                              pad.function(1, nullptr, buffer.data(), &length));
    EXPECT_NULL_POINTER_CHECK("com_pad.cpp", CS_FAIL, pad.function(1, &format, nullptr, &length));
    EXPECT_NULL_POINTER_CHECK("com_pad.cpp", CS_FAIL,
                              pad.function(1, &format, buffer.data(), nullptr));
    EXPECT_EQ(length, 1);
    EXPECT_TRUE(buffer.is_untouched());
  }
}
