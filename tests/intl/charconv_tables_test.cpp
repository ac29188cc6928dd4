// Conversion between character sets with the tables of the home directory.
#include <cstdlib>
#include <optional>
#include <vector>

#include "charset_world.h"
#include "io_probe.h"
#include "zrvcomn/comnlib.h"

namespace {

using namespace zrvtest;

class Converter {
public:
  explicit Converter(UNICONV_CID cid) {
    if (uniconv_HandleGet(cid, &handle) != UNICONV_SUCCEED)
      handle = nullptr;
  }
  ~Converter() { uniconv_HandleFree(handle); }
  Converter(const Converter &) = delete;
  Converter &operator=(const Converter &) = delete;

  // Nothing for a text that the set does not have all of.
  std::optional<std::string> encode(const std::u16string &text) const {
    std::string bytes(5 * text.size() + 4, '\0');
    int length = 0;
    if (uniconv_unistrToS(
            handle, reinterpret_cast<UChar8 *>(bytes.data()), static_cast<int>(bytes.size()),
            reinterpret_cast<const UChar16 *>(text.c_str()), &length) != UNICONV_SUCCEED)
      return std::nullopt;
    bytes.resize(static_cast<size_t>(length) - 1);
    return bytes;
  }

  CVTH handle = nullptr;
};

class CharConvTables : public testing::Test, protected CharsetWorld {
protected:
  CharConvTables() { setenv("ZARVEK", ZRVTEST_HOME, 1); }
  ~CharConvTables() override { unsetenv("ZARVEK"); }

  HandSet sjis{141}, cp037{110}, cp930{128}, cp1252{13};
};

TEST_F(CharConvTables, SetsOfEachForm) {
  EXPECT_EQ(convert(cp1252, sjis, "\x93z\xD7", 8), (Converted{CS_SUCCEED, "\x81\x67z\x81\x7E"}));
  EXPECT_EQ(convert(sjis, cp930, "A\x93\xFA", 8), (Converted{CS_SUCCEED, "\xC1\x0E\x45\x62\x0F"}));
  EXPECT_EQ(to_utf8(sjis, "\x93\xFA", 8), (Converted{CS_SUCCEED, "\xE6\x97\xA5"}));
  EXPECT_EQ(from_utf8(sjis, "\xE6\x97\xA5z", 8), (Converted{CS_SUCCEED, "\x93\xFAz"}));
  // Only the bytes are looked at for ASCII, not the set.
  EXPECT_EQ(convert(cp037, cp1252, "\x61", 8), (Converted{CS_SUCCEED, "\x61"}));
  EXPECT_EQ(from_utf8(cp037, "/", 8), (Converted{CS_SUCCEED, "\x61"}));
}

// Everywhere the bytes of ASCII, also where a set has its question mark elsewhere.
TEST_F(CharConvTables, SubstitutesAreTheSameInAllSets) {
  EXPECT_EQ(convert(utf8, cp037, "\xE2\x82\xAC?", 8), (Converted{CS_SUCCEED, "\x3F\x6F"}));
  EXPECT_EQ(from_utf8(cp037, "\xE2\x82\xAC?", 8), (Converted{CS_SUCCEED, "\x3F\x6F"}));
  const std::string lacking = "\xC3\xBF\xF0\x9F\x98\x80";
  EXPECT_EQ(convert(utf8, cp930, lacking, 8), (Converted{CS_SUCCEED, "\x3F\x0E\x3F\x3F\x0F"}));
  EXPECT_EQ(from_utf8(cp930, lacking, 8), (Converted{CS_SUCCEED, "\x3F\x0E\x3F\x3F\x0F"}));
  EXPECT_EQ(convert(utf8, sjis, lacking, 8), (Converted{CS_SUCCEED, "???"}));
}

TEST_F(CharConvTables, CharactersAreCutWhole) {
  const std::string text = "\xE6\x97\xA5\xE6\x9C\xAC", all = "\x93\xFA\x96\x7B";
  for (size_t room = 0; room < all.size(); ++room) {
    const Converted cut{CS_CONV_TRUNCATED,
                        all.substr(0, room / 2 * 2) + std::string(room % 2, '\0')};
    EXPECT_EQ(convert(utf8, sjis, text, room), cut) << room;
    EXPECT_EQ(from_utf8(sjis, text, room), cut) << room;
  }
  EXPECT_EQ(convert(utf8, sjis, text, 4), (Converted{CS_SUCCEED, all}));
  EXPECT_EQ(from_utf8(sjis, text, 4), (Converted{CS_SUCCEED, all}));
  // The shift that ends the text needs its room too.
  EXPECT_EQ(convert(utf8, cp930, text, 6), (Converted{CS_SUCCEED, "\x0E\x45\x62\x45\x66\x0F"}));
  EXPECT_EQ(convert(utf8, cp930, text, 5),
            (Converted{CS_CONV_TRUNCATED, std::string("\x0E\x45\x62\x0F\0", 5)}));
}

// From UTF-8 the tables are those below the home directory that this library knows.
TEST_F(CharConvTables, PathsOfTables) {
  setenv("ZARVEK", "/nonexistent", 1);
  EXPECT_EQ(from_utf8(sjis, "a", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(to_utf8(sjis, "\x93\xFA", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(convert(sjis, cp1252, "\x93\xFA", 8), (Converted{CS_FAIL, ""}));
  EXPECT_EQ(from_utf8(iso_1, "a", 8), (Converted{CS_SUCCEED, "a"})); // which needs none
  setenv("ZARVEK", ("/" + std::string(1100, 'x')).c_str(), 1);
  char path[1024];
  char directory[] = "unicode";
  const CS_RETCODE status =
      com_path_charfile(&context, directory, nullptr, nullptr, path, sizeof path);
  EXPECT_NE(status, CS_SUCCEED);
  EXPECT_EQ(from_utf8(iso_1, "a", 8), (Converted{status, ""}));
}

// Whoever keeps a converter spares every conversion the file, also the one that names a directory.
TEST_F(CharConvTables, TablesInMemoryAreNotReadAgain) {
  const Converter kept(50);
  IoProbe io;
  EXPECT_EQ(from_utf8(sjis, "\xE6\x97\xA5", 8), (Converted{CS_SUCCEED, "\x93\xFA"}));
  EXPECT_EQ(to_utf8(sjis, "\x93\xFA", 8), (Converted{CS_SUCCEED, "\xE6\x97\xA5"}));
  EXPECT_EQ(convert(sjis, iso_1, "\x81\x7E", 8), (Converted{CS_SUCCEED, "\xD7"}));
  EXPECT_EQ(io.reads(), 0U);
  EXPECT_EQ(from_utf8(cp1252, "a", 8), (Converted{CS_SUCCEED, "a"}));
  EXPECT_EQ(io.reads(), 1U);
}

// ---- every pair of sets ----

constexpr const char16_t *countries[] = {
    u"België",  u"Česko",      u"Ísland",       u"Österreich", u"España",
    u"Türkiye", u"Føroyar",    u"Åland",        u"Éire",       u"México",
    u"Curaçao", u"São Tomé",   u"Shqipëria",    u"Moçambique", u"Magyarország",
    u"România", u"Lëtzebuerg", u"Kūki ‘Āirani", u"Azərbaycan", u"Việt Nam",
    u"Ελλάδα",  u"Κύπρος",     u"Россия",       u"Україна",    u"България",
    u"Србија",  u"Қазақстан",  u"Հայաստան",     u"საქართველო", u"ישראל",
    u"مصر",     u"ایران",      u"پاکستان",      u"भारत",       u"ประเทศไทย",
    u"日本",    u"ニッポン",   u"ﾆﾎﾝ",          u"中国",       u"中國",
    u"臺灣",    u"대한민국",   u"Nederland",    u"Sverige €",  u"Rzeczpospolita Polska – Łódź",
};

bool is_ascii(const std::string &text) {
  for (const char byte : text)
    if (static_cast<unsigned char>(byte) > 127)
      return false;
  return true;
}

TEST_F(CharConvTables, EveryPairOfSets) {
  struct Side {
    explicit Side(const CSID_CSNAME &row) : name(row.csname), own(row.csid), table(row.unilib_cid) {
      for (const char16_t *country : countries)
        texts.push_back(table.handle != nullptr ? table.encode(country) : std::nullopt);
    }
    bool has_texts() const {
      for (const auto &text : texts)
        if (text && !is_ascii(*text))
          return true;
      return false;
    }

    const CS_BYTE *name;
    HandSet own;
    Converter table; // keeps the set's table in memory
    std::vector<std::optional<std::string>> texts;
  };
  std::deque<Side> sides;
  std::string bare;
  for (const CSID_CSNAME &row : csid_name) {
    if (row.unilib_cid == UNICONV_CID_NONE)
      continue;
    Side &side = sides.emplace_back(row);
    if (!side.has_texts())
      bare += std::string(reinterpret_cast<const char *>(side.name)) + " ";
  }
  // Nothing but ASCII, Arabic in its joined forms, and no converter.
  EXPECT_EQ(bare, "ascii_8 iso646 ascii_7 cp864 cp930yen cp1006 cp5026yen cp939yen cp5035yen ");

  const auto set_of = [&](Side &side) -> HandSet & {
    return side.own.attributes.cs_id == 190 ? utf8 : side.own;
  };
  for (Side &from : sides)
    for (Side &to : sides)
      for (size_t i = 0; i < std::size(countries); ++i) {
        if (!from.texts[i] || !to.texts[i])
          continue;
        const std::string &text = *from.texts[i];
        const size_t room = to.texts[i]->size();
        // Text whose bytes could be ASCII passes as it is, in EBCDIC and UTF-16 too.
        const std::string &expected = is_ascii(text) && text.size() <= room ? text : *to.texts[i];
        EXPECT_EQ(convert(set_of(from), set_of(to), text, room), (Converted{CS_SUCCEED, expected}))
            << from.name << ' ' << to.name << ' ' << i;
      }
}

} // namespace
