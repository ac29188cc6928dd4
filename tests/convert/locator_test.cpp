// Locators: tokens and their text, prefetched data, whole records.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "pad_reference.h"
#include "text_world.h"
#include "traced_exit.h"
#include "zrvintl.h"

using zrvtest::AllocationProbe;
using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using zrvtest::TextWorld;
using namespace std::string_literals;

namespace {

constexpr CS_INT N = CS_DFMT_NULLTERM, P = CS_DFMT_PADNULL, B = CS_DFMT_PADBLANK;
constexpr CS_INT locator_types[] = {CS_TYPE_TEXTLOCATOR, CS_TYPE_IMAGELOCATOR,
                                    CS_TYPE_UNITEXTLOCATOR};
const char *const unit = "com_locator.cpp";

void *allocated(const std::string &bytes) {
  void *const block = comn_calloc(1, bytes.size());
  std::memcpy(block, bytes.data(), bytes.size());
  return block;
}

// A record that owns its blocks, at an odd address.
class Locator {
public:
  explicit Locator(const std::string &token = "", const std::vector<std::string> &chunks = {},
                   CS_INT type = CS_TYPE_TEXTLOCATOR) {
    CS_LOCATOR record{};
    record.locatortag = CS_LOCATOR_TAG;
    record.locatortype = type;
    record.locatorlen = static_cast<CS_USMALLINT>(token.size());
    if (!token.empty())
      record.locator = static_cast<CS_BYTE *>(allocated(token));
    CsBlobChunk **link = &record.prefetchdata;
    for (const std::string &bytes : chunks) {
      *link = static_cast<CsBlobChunk *>(comn_calloc(1, sizeof(CsBlobChunk)));
      (*link)->len = static_cast<CS_INT>(bytes.size());
      if (!bytes.empty())
        (*link)->data = allocated(bytes);
      link = &(*link)->pnext;
      record.prefetchlen += static_cast<CS_INT>(bytes.size());
    }
    record.totalloblen = 5'000'000'000;
    buffer.set(record);
  }
  ~Locator() { comn__locator_clean(at()); }
  Locator(const Locator &) = delete;
  Locator &operator=(const Locator &) = delete;

  CS_LOCATOR *at() { return reinterpret_cast<CS_LOCATOR *>(buffer.data()); }
  CS_LOCATOR get() const { return buffer.value<CS_LOCATOR>(); }
  void set(const CS_LOCATOR &record) { buffer.set(record); }

  std::string token() const {
    const CS_LOCATOR record = get();
    return {reinterpret_cast<const char *>(record.locator), record.locatorlen};
  }
  std::vector<std::string> chunks() const {
    std::vector<std::string> all;
    for (const CsBlobChunk *chunk = get().prefetchdata; chunk != nullptr; chunk = chunk->pnext)
      all.emplace_back(static_cast<const char *>(chunk->data), static_cast<size_t>(chunk->len));
    return all;
  }
  bool is_empty() const {
    const CS_LOCATOR record = get();
    return record.locatortag == CS_LOCATOR_TAG && record.locatortype == 0 &&
           record.locatorlen == 0 && record.locator == nullptr && record.prefetchlen == 0 &&
           record.prefetchdata == nullptr && record.totalloblen == 0;
  }

private:
  GuardedBuffer buffer{sizeof(CS_LOCATOR), 1};
};

struct Result {
  CS_RETCODE status;
  CS_INT length;
  std::string bytes;

  bool operator==(const Result &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Result &result) {
  return out << result.status << ", length " << result.length << ", '" << result.bytes << "'";
}

std::string filled(std::string text, size_t room) {
  text.resize(room, '\xA5');
  return text;
}

// From a record; both formats must be as before.
Result convert(TextWorld &world, CS_CONV_FUNC function, CS_INT type, Locator &source, CS_INT to,
               size_t room, CS_INT format = 0) {
  CS_DATAFMT srcfmt = make_format(type, 12345);
  CS_DATAFMT destfmt = make_format(to, static_cast<CS_INT>(room), format);
  const CS_DATAFMT srcfmt_before = srcfmt, destfmt_before = destfmt;
  GuardedBuffer dest(room, 1);
  CS_INT length = Conversion::untouched_length;
  const CS_RETCODE status =
      function(&world.context, &srcfmt, source.at(), &destfmt, dest.data(), &length);
  EXPECT_EQ(std::memcmp(&srcfmt, &srcfmt_before, sizeof srcfmt), 0);
  EXPECT_EQ(std::memcmp(&destfmt, &destfmt_before, sizeof destfmt), 0);
  return {status, length, dest.contents()};
}

Result to_char(TextWorld &world, Locator &source, size_t room, CS_INT format = 0,
               CS_INT type = CS_TYPE_TEXTLOCATOR) {
  return convert(world, comn_locatortochar, type, source, CS_TYPE_CHAR, room, format);
}
Result to_text(TextWorld &world, Locator &source, size_t room, CS_INT format = 0) {
  return convert(world, comn_locatortotext, CS_TYPE_TEXTLOCATOR, source, CS_TYPE_TEXT, room,
                 format);
}
Result to_image(TextWorld &world, Locator &source, size_t room, CS_INT format = 0) {
  return convert(world, comn_locatortoimage, CS_TYPE_IMAGELOCATOR, source, CS_TYPE_IMAGE, room,
                 format);
}
Result to_unitext(TextWorld &world, Locator &source, size_t room, CS_INT format = 0) {
  return convert(world, comn_locatortounitext, CS_TYPE_UNITEXTLOCATOR, source, CS_TYPE_UNICHAR,
                 room, format);
}

// A token from text, and the format as the call left it.
struct FromText {
  CS_RETCODE status;
  CS_INT length;
  CS_DATAFMT destfmt;
};

FromText from_text(TextWorld &world, std::string text, Locator &dest,
                   CS_INT type = CS_TYPE_TEXTLOCATOR, CS_INT format = 0) {
  FromText result{0, Conversion::untouched_length, make_format(type, 4711, format)};
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, static_cast<CS_INT>(text.size()));
  result.status = comn_chartolocator(&world.context, &srcfmt, text.data(), &result.destfmt,
                                     dest.at(), &result.length);
  return result;
}

CS_RETCODE copy(TextWorld &world, Locator &source, Locator &dest, CS_INT *length,
                CS_INT from = CS_TYPE_TEXTLOCATOR, CS_INT to = CS_TYPE_TEXTLOCATOR) {
  CS_DATAFMT srcfmt = make_format(from, 0), destfmt = make_format(to, 0);
  return comn_locatortolocator(&world.context, &srcfmt, source.at(), &destfmt, dest.at(), length);
}

} // namespace

// ---- records ----

TEST(LocatorClean, ReleasesEverything) {
  for (const size_t count : {0, 1, 2, 100}) {
    AllocationProbe probe;
    std::vector<std::string> chunks(count, "data");
    if (count > 1)
      chunks[1].clear();
    Locator locator("token", chunks);
    EXPECT_GT(probe.live_blocks(), 0U);
    EXPECT_EQ(comn__locator_clean(locator.at()), 1);
    EXPECT_EQ(probe.live_blocks(), 0U);
    EXPECT_TRUE(locator.is_empty());
    EXPECT_EQ(comn__locator_clean(locator.at()), 1);
  }
}

TEST(LocatorClean, RefusesWhatIsNoRecord) {
  EXPECT_EQ(comn__locator_clean(nullptr), 0);
  for (const CS_INT tag : {0, 779, -778, -780}) {
    CS_LOCATOR record;
    std::memset(&record, 0x5A, sizeof record);
    record.locatortag = tag;
    const CS_LOCATOR before = record;
    EXPECT_EQ(comn__locator_clean(&record), 0);
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
  }
  CS_LOCATOR record = Comv_CS_LOCATOR;
  EXPECT_EQ(comn__locator_clean(&record), 1);
}

// ---- tokens ----

TEST(LocatorToChar, EveryRoomAndPad) {
  TextWorld world;
  Locator locator("\xAB\xCD", {"data"});
  for (size_t room = 0; room <= 7; ++room)
    for (CS_INT format = 0; format < 8; ++format) {
      const auto maxlength = static_cast<CS_INT>(room);
      zrvtest::Padded dest{filled("abcd"s.substr(0, room / 2 * 2), room), std::min(maxlength, 4)};
      const CS_RETCODE status =
          room < 4 ? CS_CONV_TRUNCATED : zrvtest::reference_pad_text(1, 4, format, maxlength, dest);
      for (const CS_INT type : locator_types)
        EXPECT_EQ(to_char(world, locator, room, format, type),
                  (Result{status, dest.length, dest.bytes}))
            << room << ", format " << format;
    }
}

TEST(LocatorToChar, NoToken) {
  TextWorld world;
  Locator locator;
  EXPECT_EQ(to_char(world, locator, 3), (Result{CS_SUCCEED, 0, filled("", 3)}));
  EXPECT_EQ(to_char(world, locator, 3, B), (Result{CS_SUCCEED, 3, "   "}));
}

// A length without a token is a fault, and the check of the member beneath finds it.
TEST(LocatorToChar, TokenThatIsNotThere) {
  TextWorld world;
  Locator locator;
  CS_LOCATOR record = locator.get();
  record.locatorlen = 3;
  locator.set(record);
  EXPECT_NULL_POINTER_CHECK("com_bin.cpp", CS_FAIL, to_char(world, locator, 8).status);
}

TEST(CharToLocator, Tokens) {
  TextWorld world;
  const struct {
    std::string text, token;
  } cases[] = {
      {"abcd", "\xAB\xCD"}, {"ABCD", "\xAB\xCD"}, {"f", "\x0F"}, {"0x1ff", "\x01\xFF"},
      {" 12 ", "\x12"},     {"00", "\0"s},        {"0X", ""},
  };
  for (const auto &c : cases)
    for (const CS_INT type : locator_types)
      for (const CS_INT format : {0, N, B}) {
        Locator dest("old token", {"old", "data"}, CS_TYPE_IMAGELOCATOR);
        const FromText result = from_text(world, c.text, dest, type, format);
        EXPECT_EQ(result.status, CS_SUCCEED) << c.text;
        EXPECT_EQ(dest.token(), c.token) << c.text;
        // The length is the one that was decoded, not that of the block.
        EXPECT_EQ(result.length, static_cast<CS_INT>(c.token.size()));
        EXPECT_EQ(dest.get().locatortype, type);
        EXPECT_TRUE(dest.chunks().empty());
        EXPECT_EQ(dest.get().prefetchlen, 0);
        EXPECT_EQ(dest.get().totalloblen, 0);
        EXPECT_EQ(result.destfmt.datatype, type);
        EXPECT_EQ(result.destfmt.maxlength, 4711);
        EXPECT_EQ(result.destfmt.format, format);
      }
}

TEST(CharToLocator, LongestToken) {
  TextWorld world;
  for (const size_t digits : {131069U, 131070U}) {
    Locator dest;
    EXPECT_EQ(from_text(world, std::string(digits, '7'), dest).status, CS_SUCCEED);
    EXPECT_EQ(dest.get().locatorlen, 65535);
    EXPECT_EQ(to_char(world, dest, 131070).bytes.substr(2), std::string(131068, '7'));
  }
  for (const size_t digits : {131071U, 131072U, 300000U}) {
    AllocationProbe probe;
    Locator dest("token");
    const FromText result = from_text(world, std::string(digits, '7'), dest);
    EXPECT_EQ(result.status, CS_CONV_OVERFLOW);
    EXPECT_EQ(result.length, 0);
    EXPECT_TRUE(dest.is_empty());
    EXPECT_EQ(probe.live_blocks(), 0U);
    EXPECT_EQ(result.destfmt.maxlength, 4711);
  }
}

// Deliberate: the format keeps what the decoder was told, and the record its block.
TEST(CharToLocator, BadDigits) {
  TextWorld world;
  for (const std::string &text : {"12x4"s, "x"s, "1234567 9"s}) {
    AllocationProbe probe;
    {
      Locator dest("token", {"data"});
      const FromText result = from_text(world, text, dest, CS_TYPE_IMAGELOCATOR);
      EXPECT_EQ(result.status, CS_CONV_SYNTAX);
      EXPECT_EQ(result.length, 0);
      EXPECT_EQ(result.destfmt.datatype, CS_TYPE_BINARY);
      EXPECT_EQ(result.destfmt.maxlength, static_cast<CS_INT>(text.size() + 1) / 2);
      EXPECT_NE(dest.get().locator, nullptr);
      EXPECT_EQ(dest.get().locatorlen, 0);
      EXPECT_EQ(dest.get().locatortype, CS_TYPE_IMAGELOCATOR);
      EXPECT_EQ(probe.live_blocks(), 1U);
    }
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
}

// The reader of digits refuses an empty text.
TEST(CharToLocator, EmptyText) {
  TextWorld world;
  for (const CS_INT length : {0, -1}) {
    Locator dest;
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, length);
    CS_DATAFMT destfmt = make_format(CS_TYPE_TEXTLOCATOR, 5);
    char text[] = "12";
    CS_INT written = -1;
    EXPECT_ASSERTION(
        "com_bin.cpp", CS_FAIL,
        comn_chartolocator(&world.context, &srcfmt, text, &destfmt, dest.at(), &written));
    EXPECT_EQ(written, 0);
    EXPECT_EQ(dest.get().locatorlen, 0);
  }
}

// Filling is what the format asks for, and the token has it.
TEST(CharToLocator, PadsTheBlock) {
  TextWorld world;
  Locator dest;
  EXPECT_EQ(from_text(world, "0xabcd", dest, CS_TYPE_TEXTLOCATOR, P).length, 3);
  EXPECT_EQ(dest.token(), "\xAB\xCD\0"s);
}

TEST(CharToLocator, NeedsARecord) {
  TextWorld world;
  for (const CS_INT tag : {0, 779}) {
    Locator dest;
    CS_LOCATOR record = dest.get();
    record.locatortag = tag;
    dest.set(record);
    const FromText result = from_text(world, "12", dest);
    EXPECT_EQ(result.status, CS_FAIL);
    EXPECT_EQ(result.length, 0);
    EXPECT_EQ(std::memcmp(dest.at(), &record, sizeof record), 0);
  }
  // No record at all is the same failure, not a failed check.
  CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, 2), destfmt = make_format(CS_TYPE_TEXTLOCATOR, 5);
  char text[] = "12";
  CS_INT length = -1;
  const auto report = zrvtest::catch_check([&] {
    EXPECT_EQ(comn_chartolocator(&world.context, &srcfmt, text, &destfmt, nullptr, &length),
              CS_FAIL);
    srcfmt.datatype = CS_TYPE_TEXTLOCATOR;
    EXPECT_EQ(comn_locatortolocator(&world.context, &srcfmt, text, &destfmt, nullptr, &length),
              CS_FAIL);
  });
  EXPECT_EQ(report.signals, 0);
}

TEST(CharToLocator, EachAllocationFails) {
  TextWorld world;
  AllocationProbe probe;
  Locator dest("token", {"data"});
  probe.fail(1);
  const FromText result = from_text(world, "1234", dest);
  EXPECT_EQ(result.status, CS_MEM_ERROR);
  EXPECT_EQ(result.length, 0);
  EXPECT_TRUE(dest.is_empty());
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(result.destfmt.datatype, CS_TYPE_TEXTLOCATOR);
  EXPECT_EQ(from_text(world, "1234", dest).status, CS_SUCCEED);
}

// ---- copies ----

TEST(LocatorToLocator, DeepCopies) {
  TextWorld world;
  for (const size_t count : {0, 1, 2, 100}) {
    std::vector<std::string> chunks;
    for (size_t i = 0; i < count; ++i)
      chunks.push_back(i % 3 == 1 ? "" : "chunk " + std::to_string(i));
    AllocationProbe probe;
    {
      Locator dest("old", {"old"}, CS_TYPE_IMAGELOCATOR);
      CS_INT length = -1;
      {
        Locator source("a token\0!"s, chunks);
        EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
        EXPECT_EQ(source.chunks(), chunks);
      }
      EXPECT_EQ(length, 9);
      EXPECT_EQ(dest.token(), "a token\0!"s);
      EXPECT_EQ(dest.chunks(), chunks);
      EXPECT_EQ(dest.get().locatortype, CS_TYPE_TEXTLOCATOR);
      EXPECT_EQ(dest.get().totalloblen, 5'000'000'000);
      size_t bytes = 0;
      for (const std::string &chunk : chunks)
        bytes += chunk.size();
      EXPECT_EQ(dest.get().prefetchlen, static_cast<CS_INT>(bytes));
    }
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
}

TEST(LocatorToLocator, TokenOfOneByte) {
  TextWorld world;
  Locator source("x"), dest;
  CS_INT length = -1;
  EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
  EXPECT_EQ(length, 1);
  EXPECT_EQ(dest.token(), "x");
}

TEST(LocatorToLocator, EmptyRecord) {
  TextWorld world;
  AllocationProbe probe;
  Locator source, dest("old", {"old"});
  CS_INT length = -1;
  EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(dest.token(), "");
  EXPECT_EQ(dest.get().prefetchdata, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// A token has bytes and a length, or it is none.
TEST(LocatorToLocator, HalfATokenIsNone) {
  TextWorld world;
  for (const CS_USMALLINT told : {CS_USMALLINT{0}, CS_USMALLINT{5}}) {
    Locator source(told == 0 ? "t" : ""), dest;
    CS_LOCATOR record = source.get();
    record.locatorlen = told;
    source.set(record);
    CS_INT length = -1;
    EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(dest.get().locator, nullptr);
    EXPECT_EQ(dest.get().locatorlen, 0);
  }
}

// Chunks that tell a length without data, or none that is one, are empty.
TEST(LocatorToLocator, MalformedChunks) {
  TextWorld world;
  Locator source("t", {"", "x", "y"}), dest;
  source.get().prefetchdata->len = 7;
  source.get().prefetchdata->pnext->len = -1;
  CS_INT length = -1;
  EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
  EXPECT_EQ(dest.chunks(), (std::vector<std::string>{"", "", "y"}));
  EXPECT_EQ(to_text(world, source, 4), (Result{CS_SUCCEED, 1, filled("y", 4)}));
}

TEST(LocatorToLocator, RefusedPairs) {
  TextWorld world;
  AllocationProbe probe;
  {
    Locator source("token"), dest("old", {"old"});
    CS_INT length = -1;
    EXPECT_EQ(copy(world, source, dest, &length, CS_TYPE_TEXTLOCATOR, CS_TYPE_IMAGELOCATOR),
              CS_FAIL);
    EXPECT_EQ(length, 0);
    EXPECT_TRUE(dest.is_empty());
    CS_LOCATOR record = dest.get();
    record.locatortag = 0;
    dest.set(record);
    EXPECT_EQ(copy(world, source, dest, &length), CS_FAIL);
    EXPECT_EQ(std::memcmp(dest.at(), &record, sizeof record), 0);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(LocatorToLocator, OntoItself) {
  TextWorld world;
  AllocationProbe probe;
  {
    Locator locator("token", {"a", "b"});
    const CS_LOCATOR before = locator.get();
    CS_INT length = -1;
    EXPECT_EQ(copy(world, locator, locator, &length), CS_SUCCEED);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(std::memcmp(locator.at(), &before, sizeof before), 0);
    EXPECT_EQ(locator.chunks(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(copy(world, locator, locator, &length, CS_TYPE_TEXTLOCATOR, CS_TYPE_IMAGELOCATOR),
              CS_FAIL);
    EXPECT_EQ(length, 0);
    CS_LOCATOR record = before;
    record.locatortag = 0;
    locator.set(record);
    EXPECT_EQ(copy(world, locator, locator, &length), CS_FAIL);
    locator.set(before);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(LocatorToLocator, EachAllocationFails) {
  TextWorld world;
  Locator source("token", {"a", "", "c"});
  for (const bool from_then_on : {false, true})
    for (size_t nth = 1; nth <= 6; ++nth) {
      AllocationProbe probe;
      {
        Locator dest("old", {"old"});
        CS_INT length = -1;
        probe.fail(nth,
                   from_then_on ? AllocationProbe::fail_from_then_on : AllocationProbe::fail_once);
        EXPECT_EQ(copy(world, source, dest, &length), CS_MEM_ERROR) << nth;
        EXPECT_EQ(dest.get().prefetchdata, nullptr);
        EXPECT_EQ(dest.get().prefetchlen, 0);
        EXPECT_EQ(dest.token(), nth == 1 ? "" : "token");
        EXPECT_EQ(length, nth == 1 ? 0 : 5);
        EXPECT_EQ(probe.live_blocks(), nth == 1 ? 0U : 1U);
        probe.succeed();
        EXPECT_EQ(copy(world, source, dest, &length), CS_SUCCEED);
        EXPECT_EQ(dest.chunks(), source.chunks());
      }
      EXPECT_EQ(probe.live_blocks(), 0U);
    }
}

// ---- prefetched data ----

TEST(LocatorToText, ChunksInEveryRoomAndPad) {
  TextWorld world;
  const std::string text = "abcdefg";
  const std::vector<std::string> chains[] = {
      {"abcdefg"}, {"ab", "cdefg"}, {"", "abc", "", "d", "efg"}, {"abcdefg", ""}};
  for (const auto &chunks : chains) {
    Locator locator("", chunks);
    const size_t before_last = text.size() - chunks.back().size();
    for (size_t room = 0; room <= 10; ++room)
      for (CS_INT format = 0; format < 8; ++format) {
        SCOPED_TRACE(testing::Message() << chunks.size() << " chunks, " << room << ", " << format);
        const auto maxlength = static_cast<CS_INT>(room);
        zrvtest::Padded dest{filled(text.substr(0, room), room),
                             std::min<CS_INT>(maxlength, static_cast<CS_INT>(text.size()))};
        CS_RETCODE status = CS_CONV_TRUNCATED;
        // A text that is cut in the last chunk has its terminator; one that is cut before it has none,
        // and a last chunk without any room cannot have one.
        if (room >= text.size())
          status = zrvtest::reference_pad_text(1, static_cast<CS_INT>(text.size()), format,
                                               maxlength, dest);
        else if (room > before_last && (format & N) != 0)
          dest.bytes.back() = '\0';
        if (status == CS_CONV_OVERFLOW)
          status = CS_CONV_TRUNCATED;
        // The pad of the last chunk looks at its bits before the cut is told.
        if (room >= before_last && room < text.size() && (format & (N | P | B)) == (P | B))
          status = CS_CONV_PADCONFLICT;
        if (room == text.size() && (format & N) != 0 && chunks.back().empty())
          dest.bytes = text;
        EXPECT_EQ(to_text(world, locator, room, format), (Result{status, dest.length, dest.bytes}));
      }
  }
}

TEST(LocatorToText, HundredChunks) {
  TextWorld world;
  std::vector<std::string> chunks;
  std::string text;
  for (int i = 0; i < 100; ++i) {
    chunks.push_back(std::string(static_cast<size_t>(i % 7), static_cast<char>('a' + i % 26)));
    text += chunks.back();
  }
  Locator locator("", chunks);
  EXPECT_EQ(to_text(world, locator, 400, B),
            (Result{CS_SUCCEED, 400, text + std::string(400 - text.size(), ' ')}));
  EXPECT_EQ(to_text(world, locator, 100), (Result{CS_CONV_TRUNCATED, 100, text.substr(0, 100)}));
}

// A room that the chunks before have filled is too small for anything more.
TEST(LocatorToText, NoRoomAtAll) {
  TextWorld world;
  Locator two("", {"ab", "cd"}), one("", {"ab"}), empty("", {"ab", ""});
  EXPECT_EQ(to_text(world, two, 2), (Result{CS_CONV_TRUNCATED, 2, "ab"}));
  EXPECT_EQ(to_text(world, one, 0), (Result{CS_CONV_TRUNCATED, 0, ""}));
  EXPECT_EQ(to_text(world, empty, 2), (Result{CS_SUCCEED, 2, "ab"}));
  for (Locator *const locator : {&one, &two}) {
    CS_DATAFMT srcfmt = make_format(CS_TYPE_TEXTLOCATOR, 0),
               destfmt = make_format(CS_TYPE_TEXT, -3);
    GuardedBuffer dest(4);
    CS_INT length = -1;
    EXPECT_EQ(
        comn_locatortotext(&world.context, &srcfmt, locator->at(), &destfmt, dest.data(), &length),
        CS_CONV_TRUNCATED);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(destfmt.maxlength, -3);
    EXPECT_TRUE(dest.is_untouched());
  }
}

// Each chunk is converted between the sets.
TEST(LocatorToText, BetweenSets) {
  TextWorld world;
  Locator locator("", {"caf\xE9", "\xE9!"});
  CS_DATAFMT srcfmt = make_format(CS_TYPE_TEXTLOCATOR, 0),
             destfmt = make_format(CS_TYPE_TEXT, 10, B);
  destfmt.locale = &world.utf8.locale;
  GuardedBuffer dest(10, 1);
  CS_INT length = -1;
  EXPECT_EQ(
      comn_locatortotext(&world.context, &srcfmt, locator.at(), &destfmt, dest.data(), &length),
      CS_SUCCEED);
  EXPECT_EQ(dest.contents(), "caf\xC3\xA9\xC3\xA9!  ");
  EXPECT_EQ(length, 10);
}

TEST(LocatorData, None) {
  TextWorld world;
  Locator locator("token");
  EXPECT_EQ(to_text(world, locator, 3, B), (Result{CS_SUCCEED, 0, filled("\0"s, 3)}));
  EXPECT_EQ(to_text(world, locator, 0), (Result{CS_SUCCEED, 0, ""}));
  EXPECT_EQ(to_image(world, locator, 3, P), (Result{CS_SUCCEED, 0, filled("", 3)}));
  EXPECT_EQ(to_unitext(world, locator, 5, B), (Result{CS_SUCCEED, 0, filled("\0\0"s, 5)}));
  EXPECT_EQ(to_unitext(world, locator, 1), (Result{CS_SUCCEED, 0, filled("", 1)}));
}

TEST(LocatorToImage, SingleChunk) {
  TextWorld world;
  const std::string bytes = "\0\xFF 1"s;
  Locator locator("", {bytes});
  for (size_t room = 0; room <= 7; ++room)
    for (const CS_INT format : {0, N, B, P}) {
      zrvtest::Padded dest{filled(bytes.substr(0, room), room),
                           static_cast<CS_INT>(std::min<size_t>(room, 4))};
      CS_RETCODE status = CS_CONV_TRUNCATED;
      if (room >= 4)
        status = zrvtest::reference_pad_binary(4, format, static_cast<CS_INT>(room), dest);
      EXPECT_EQ(to_image(world, locator, room, format), (Result{status, dest.length, dest.bytes}))
          << room;
    }
}

// Deliberate: every chunk lies over the one before, and the length is the sum.
TEST(LocatorToImage, ChunksLieOverOneAnother) {
  TextWorld world;
  Locator locator("", {"abcd", "XY", "", "z"});
  EXPECT_EQ(to_image(world, locator, 10), (Result{CS_SUCCEED, 7, filled("zYcd", 10)}));
  EXPECT_EQ(to_image(world, locator, 10, P),
            (Result{CS_SUCCEED, 10, filled("zYcd", 7) + "\0\0\0"s}));
  EXPECT_EQ(to_image(world, locator, 7, P), (Result{CS_SUCCEED, 7, filled("zYcd", 7)}));
  EXPECT_EQ(to_image(world, locator, 6, P), (Result{CS_CONV_TRUNCATED, 6, filled("XYcd", 6)}));
  EXPECT_EQ(to_image(world, locator, 5), (Result{CS_CONV_TRUNCATED, 5, filled("Xbcd", 5)}));
  EXPECT_EQ(to_image(world, locator, 4), (Result{CS_CONV_TRUNCATED, 4, "abcd"}));
  EXPECT_EQ(to_image(world, locator, 3), (Result{CS_CONV_TRUNCATED, 3, "abc"}));
  Locator filled_exactly("", {"ab", ""});
  EXPECT_EQ(to_image(world, filled_exactly, 2), (Result{CS_SUCCEED, 2, "ab"}));
}

TEST(LocatorToUnitext, SingleChunk) {
  TextWorld world;
  const std::string text = "a\0b\0\x3D\xD8"s;
  Locator locator("", {text});
  EXPECT_EQ(to_unitext(world, locator, 8, N), (Result{CS_SUCCEED, 8, text + "\0\0"s}));
  EXPECT_EQ(to_unitext(world, locator, 11, B), (Result{CS_SUCCEED, 10, text + " \0 \0\xA5"s}));
  EXPECT_EQ(to_unitext(world, locator, 6, N),
            (Result{CS_CONV_TRUNCATED, 6, text.substr(0, 4) + "\0\0"s}));
  EXPECT_EQ(to_unitext(world, locator, 5),
            (Result{CS_CONV_TRUNCATED, 4, text.substr(0, 4) + "\xA5"}));
  EXPECT_EQ(to_unitext(world, locator, 0), (Result{CS_CONV_TRUNCATED, 0, ""}));
  Locator odd("", {"a\0b"s}), empty("", {""});
  EXPECT_EQ(to_unitext(world, odd, 8), (Result{CS_CONV_BADCHAR, 2, filled("a\0"s, 8)}));
  EXPECT_EQ(to_unitext(world, empty, 4, N), (Result{CS_SUCCEED, 2, filled("\0\0"s, 4)}));
}

// Deliberate: the second chunk goes to the member for text, which does not take 16-bit text. The formats
// are put back all the same.
TEST(LocatorToUnitext, ASecondChunkIsFatal) {
  TextWorld world;
  for (const std::string &second : {"b\0"s, ""s})
    for (const size_t room : {2, 8}) {
      Locator locator("", {"a\0"s, second});
      Result result;
      EXPECT_ASSERTION("com_char.cpp", CS_FAIL,
                       (result = to_unitext(world, locator, room, N)).status);
      EXPECT_EQ(result, (Result{CS_FAIL, 2, filled("a\0"s, room)}));
    }
  // Unless the first is cut.
  Locator locator("", {"a\0b\0"s, "c\0"s});
  EXPECT_EQ(to_unitext(world, locator, 2), (Result{CS_CONV_TRUNCATED, 2, "a\0"s}));
}

// ---- checks and traces ----

TEST(LocatorChecks, Pointers) {
  Locator locator;
  const struct {
    CS_CONV_FUNC function;
    CS_INT from, to;
    bool null_dest_is_data;
  } rows[] = {
      {comn_locatortochar, 37, 0, false},    {comn_chartolocator, 0, 37, true},
      {comn_locatortolocator, 37, 37, true}, {comn_locatortotext, 37, 4, false},
      {comn_locatortoimage, 38, 5, false},   {comn_locatortounitext, 39, 25, false},
  };
  for (const auto &row : rows) {
    CS_CONTEXT context{};
    CS_DATAFMT srcfmt = make_format(row.from, 2), destfmt = make_format(row.to, 2);
    CS_INT length = -1;
    for (int missing = 0; missing < 6; ++missing) {
      if (missing == 4 && row.null_dest_is_data)
        continue;
      EXPECT_NULL_POINTER_CHECK(
          unit, CS_FAIL,
          row.function(missing == 0 ? nullptr : &context, missing == 1 ? nullptr : &srcfmt,
                       missing == 2 ? nullptr : locator.at(), missing == 3 ? nullptr : &destfmt,
                       missing == 4 ? nullptr : locator.at(), missing == 5 ? nullptr : &length));
      EXPECT_EQ(length, -1);
    }
    const auto refuses = [&](CS_INT from, CS_INT to) {
      CS_DATAFMT source = make_format(from, 2), destination = make_format(to, 2);
      Locator dest("token");
      EXPECT_ASSERTION(
          unit, CS_FAIL,
          row.function(&context, &source, locator.at(), &destination, dest.at(), &length));
      EXPECT_EQ(dest.token(), "token");
      EXPECT_EQ(length, -1);
    };
    refuses(CS_TYPE_INT, row.to);
    refuses(row.from, CS_TYPE_INT);
  }
}

TEST(LocatorTrace, Exits) {
  TextWorld world;
  Locator locator("t", {"a\0"s}), dest;
  CS_INT length;
  const std::string line = "(CS_SUCCEED) file com_locator.cpp";
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return to_char(world, locator, 8).status; }), line);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return to_text(world, locator, 8).status; }), line);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return to_image(world, locator, 8).status; }), line);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return to_unitext(world, locator, 8).status; }),
            line);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return from_text(world, "1", dest).status; }), line);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return copy(world, locator, dest, &length); }),
            line);
}
