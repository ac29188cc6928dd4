// Loading and compiling sort orders: the header, the entries, each failure and what it leaves behind.
#include <cstring>
#include <string>
#include <vector>

#include "allocation_probe.h"
#include "check_trap.h"
#include "io_probe.h"
#include "sort_order_reference.h"
#include "sort_orders.h"
#include "text_file.h"
#include "traced_exit.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "sortord.cpp";
constexpr const char *compiler_unit = "sortord_compile.cpp";

std::string replaced(std::string text, const std::string &old_part, const std::string &new_part) {
  const size_t at = text.find(old_part);
  EXPECT_NE(at, std::string::npos) << old_part;
  return text.replace(at, old_part.size(), new_part);
}

// The entries of all bytes but those of `others`, one each, in the order of their codes.
std::string all_but(std::string_view others) {
  std::string text;
  for (int code = 1; code < 256; ++code)
    if (others.find(static_cast<char>(code)) == std::string_view::npos)
      text += "char = " + spell(static_cast<char>(code)) + "\n";
  return text;
}

// A file whose first entries are these; the other bytes follow.
std::string order_of(const std::string &entries, std::string_view bytes_in_them) {
  return sort_order_header + entries + all_but(bytes_in_them);
}

// The same, with a weight left for an entry that names no byte by itself.
std::string roomy_order_of(const std::string &entries, std::string_view bytes_in_them) {
  return order_of(entries, std::string(bytes_in_them) + "\xfe\xff") + "char = \\xfe, \\xff\n";
}

const std::string plain = order_of("", "");

CS_RETCODE load(const std::string &text) {
  const SortOrderHome home(text);
  SortOrderSet set;
  return set.load();
}

testing::AssertionResult has_weights(const LSC &weights, int p, int s, int t, int smelist) {
  if (weights.pst.p == p && weights.pst.s == s && weights.pst.t == t &&
      weights.pst.smelist == smelist)
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << "p " << +weights.pst.p << " s " << +weights.pst.s << " t "
                                     << +weights.pst.t << " smelist " << +weights.pst.smelist;
}

// A loaded order, kept while its table is looked at.
class Compiled {
public:
  explicit Compiled(const std::string &text) : home(text), result(set.load()) {}
  SO_1CLASS *operator->() { return set.table(); }
  const LSC &of(char byte) { return set.table()->lscs[static_cast<unsigned char>(byte)]; }
  const SMEL &element(int i) { return set.table()->smels[i]; }

  SortOrderHome home;
  SortOrderSet set;
  CS_RETCODE result;
};

// ---- the views of the weights ----

TEST(SortOrderRecords, TheViewsOfTheWeightsAgree) {
  LSC weights;
  weights.lsclong = 0x04030201;
  EXPECT_TRUE(has_weights(weights, 1, 2, 3, 4));
  EXPECT_EQ(weights.ps, 0x0201);
  EXPECT_EQ(weights.p1p2s.p1, 1);
  EXPECT_EQ(weights.p1p2s.p2, 2);
  EXPECT_EQ(weights.p1p2s.s, 3);
}

// ---- the header ----

TEST(SortOrderHeader, IsKept) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  ASSERT_EQ(set.load(), CS_SUCCEED);
  const S_DESCRIPT &header = *set.cache.locsortorder->char_sort_descript;
  EXPECT_EQ(header.class_, 1);
  EXPECT_EQ(header.id, 0x33);
  EXPECT_STREQ(header.name, "order");
  EXPECT_STREQ(header.charset, "iso_1");
  EXPECT_STREQ(header.descript, "For a test");
  EXPECT_EQ(header.preference, 1);
  EXPECT_EQ(header.isbin, 0);
}

TEST(SortOrderHeader, TakesAnyOrderAndTheLastOfTwo) {
  const SortOrderHome home("[other]\nclass = \\x02\n[sortorder]\n"
                           "description = \"\"\nbinary = true\ncharset = cp850, more\n"
                           "id = \\x01\nid = \\xff\nmenuname =\\\n\"\"\nname = n\nclass = \\x01\n"
                           "preference = false\n[sortorder]\nwrong\n");
  SortOrderSet set;
  ASSERT_EQ(set.load(), CS_SUCCEED);
  const S_DESCRIPT &header = *set.cache.locsortorder->char_sort_descript;
  EXPECT_EQ(header.id, 255);
  EXPECT_STREQ(header.charset, "cp850");
  EXPECT_STREQ(header.descript, "");
  EXPECT_EQ(header.preference, 0);
  EXPECT_EQ(header.isbin, 1);
}

TEST(SortOrderHeader, NeedsItsSixEntries) {
  for (const char *const key : {"class", "id", "name", "menuname", "charset", "description"}) {
    for (const std::string &file : {plain, std::string(sort_order_header) + "binary = true\n"}) {
      const size_t at = file.find(std::string(key) + " = ");
      std::string without = file;
      without.erase(at, file.find('\n', at) + 1 - at);
      EXPECT_EQ(load(without), CS_FAIL) << key;
    }
  }
  EXPECT_EQ(load(plain), CS_SUCCEED);
  EXPECT_EQ(load(std::string(sort_order_header) + "binary = true\n"), CS_SUCCEED);
}

TEST(SortOrderHeader, ChecksEachValue) {
  struct {
    const char *from, *to;
    CS_RETCODE result;
  } const rows[] = {
      {"class = \\x01", "class = \\x00", CS_FAIL},
      {"class = \\x01", "class = \\x02", CS_FAIL}, // there is no compiler for it
      {"class = \\x01", "class = \\x03", CS_FAIL},
      {"class = \\x01", "class = 1", CS_FAIL},
      {"class = \\x01", "class =", CS_FAIL},
      {"id = \\x33", "id = \\x00", CS_FAIL},
      {"id = \\x33", "id = \\x01", CS_SUCCEED},
      {"id = \\x33", "id =", CS_FAIL},
      {"name = order", "name = 1order", CS_FAIL},
      {"name = order", "name = or-der", CS_FAIL},
      {"name = order", "name = ABCDEFGHIJKLMNOPQRSTUVWXYZabc", CS_SUCCEED}, // 29 bytes
      {"name = order", "name = ABCDEFGHIJKLMNOPQRSTUVWXYZabcd", CS_FAIL},
      {"name = order", "name =", CS_FAIL},
      {"charset = iso_1", "charset = _iso", CS_FAIL},
      {"charset = iso_1", "charset = ABCDEFGHIJKLMNOPQRSTUVWXYZabc", CS_SUCCEED},
      {"charset = iso_1", "charset = ABCDEFGHIJKLMNOPQRSTUVWXYZabcd", CS_FAIL},
      {"menuname = \"An order\"", "menuname =", CS_FAIL},
      {"menuname = \"An order\"", "menuname = \"\"", CS_SUCCEED},
      {"description = \"For a test\"", "description =", CS_FAIL},
      {"description = \"For a test\"", "description = \"x\"\npreference = true", CS_SUCCEED},
      {"description = \"For a test\"", "description = \"x\"\npreference = yes", CS_FAIL},
      {"description = \"For a test\"", "description = \"x\"\nbinary = 1", CS_FAIL},
      {"description = \"For a test\"", "description = \"x\"\nbinary = false", CS_SUCCEED},
      {"[sortorder]", "[sortorders]", CS_FAIL},
      {"[sortorder]", "[Sortorder]", CS_FAIL},
      {"[sortorder]", "[sortorder", COM_INTL_ERROR},
  };
  for (const auto &row : rows)
    EXPECT_EQ(load(replaced(plain, row.from, row.to)), row.result) << row.to;
  for (const size_t length : {0U, 254U, 255U, 256U})
    EXPECT_EQ(load(replaced(plain, "For a test", std::string(length, 'd'))),
              length < 255 ? CS_SUCCEED : CS_FAIL)
        << length;
}

TEST(SortOrderHeader, EndsAtAnEntryThatIsLegalForTheClass) {
  const std::string header = sort_order_header;
  EXPECT_EQ(load(header), CS_FAIL);
  EXPECT_EQ(load(header + "binary = false\n"), CS_FAIL);
  // What follows in a binary order is not looked at, but for the first entry.
  for (const char *const key : {"char", "lig", "ignore char"})
    EXPECT_EQ(load(header + "binary = true\n" + key + " =\nnonsense\n"), CS_SUCCEED) << key;
  for (const char *const key : {"Char", "chars", "ignore", "not_found", "row", "alphabet"})
    EXPECT_EQ(load(header + "binary = true\n" + key + " =\n"), CS_FAIL) << key;
}

// The reserved entries of class 2 end a header that can be told from one that is wrong.
TEST(SortOrderHeader, OfClass2) {
  const std::string header = replaced(sort_order_header, "class = \\x01", "class = \\x02");
  const auto read = [&](const std::string &text, const char *ending) {
    const TextFile file(text);
    INTL_LOCFILE opened;
    EXPECT_EQ(intl_open(file.path(), &opened), 0);
    EXPECT_STREQ(intl_nextsection(&opened, nullptr), "sortorder");
    CS_CONTEXT context{};
    S_DESCRIPT descript{};
    CS_CHAR *key = nullptr;
    const CS_RETCODE result = comn__get_sort_description(&context, &opened, &descript, &key);
    EXPECT_STREQ(key, ending) << text;
    EXPECT_EQ(intl_close(&opened), 0);
    return result;
  };
  for (const char *const key :
       {"not_found", "lig", "char", "alphabet", "row", "row-low", "row-high", "plane", "group",
        "ignore char", "ignore row", "ignore plane", "ignore group"}) {
    const std::string file = header + key + " = x\n";
    EXPECT_EQ(read(file, key), CS_SUCCEED);
    EXPECT_EQ(load(file), CS_FAIL) << key;
  }
  EXPECT_EQ(read(header + "rows = x\n", "rows"), CS_FAIL);
  EXPECT_EQ(read(header, nullptr), CS_FAIL);
  EXPECT_EQ(read(header + "binary = true\n", nullptr), CS_SUCCEED);
  EXPECT_EQ(load(header + "binary = true\n"), CS_FAIL);
}

// ---- characters ----

TEST(SortOrderCompiler, OneCharacterAnEntry) {
  Compiled order(plain);
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_EQ(order->stat1, SO_PRIMARY);
  EXPECT_EQ(order->stat2, 0);
  EXPECT_EQ(order->last_char, 255);
  EXPECT_EQ(order->nsmels, 0);
  EXPECT_TRUE(has_weights(order.of('\0'), 0, 0, 1, 1)); // the first of weight 1 is byte 1
  for (int code = 1; code < 255; ++code)
    EXPECT_TRUE(has_weights(order->lscs[code], code, 0, 1, code + 1)) << code;
  EXPECT_TRUE(has_weights(order->lscs[255], 255, 0, 1, 0));
}

TEST(SortOrderCompiler, ValuesAndTies) {
  Compiled order(order_of("char = b, a=A, \"c = ignored\", d e f\nchar = z\n", "abcdAz") +
                 "ignore char =\n");
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_EQ(order->stat1, SO_PREFERENCE | SO_TIES); // preference is the default
  EXPECT_TRUE(has_weights(order.of('b'), 1, 0, 1, 'z'));
  EXPECT_TRUE(has_weights(order.of('a'), 1, 1, 1, 'z'));
  EXPECT_TRUE(has_weights(order.of('A'), 1, 1, 2, 'z'));
  EXPECT_TRUE(has_weights(order.of('c'), 1, 2, 1, 'z'));
  EXPECT_TRUE(has_weights(order.of('d'), 1, 3, 1, 'z'));
  EXPECT_TRUE(has_weights(order.of('z'), 2, 0, 1, 1));
  EXPECT_TRUE(has_weights(order.of('\1'), 3, 0, 1, 2));
  EXPECT_TRUE(has_weights(order.of('e'), 3 + 'e' - 1 - 5, 0, 1, 'f'));
}

// stat1 tells what differences an order has; the second value of an entry is no secondary weight yet.
TEST(SortOrderCompiler, PropertiesOfTheOrder) {
  struct {
    const char *header, *entry, *bytes;
    int stat1;
  } const rows[] = {
      {"", "char = a", "a", 1},
      {"", "char = a, b", "ab", 1},
      {"", "char = a, b, c", "abc", 2},
      {"", "char = a=b", "ab", 4 | 8},
      {"", "char = a, b, c=d", "abcd", 4 | 8},
      {"", "char = a=b, c, d, e", "abcde", 4 | 8},
      {"preference = false\n", "char = a=b", "ab", 1 | 8},
      {"preference = false\n", "char = a, b, c=d", "abcd", 2 | 8},
      {"preference = true\n", "char = a=b", "ab", 4 | 8},
      {"", "char = a, ab", "a", 1 | 16},
      {"", "lig = a,after bb", "a", 1 | 16 | 32},
      {"", "lig = a=c,after bb", "ac", 1 | 8 | 16 | 32},
      {"", "lig = a,c,equal bb", "ac", 1 | 16 | 32},
  };
  for (const auto &row : rows) {
    Compiled order(replaced(order_of(std::string(row.entry) + "\n", row.bytes), "description",
                            std::string(row.header) + "description"));
    ASSERT_EQ(order.result, CS_SUCCEED) << row.entry;
    EXPECT_EQ(order->stat1, row.stat1) << row.header << row.entry;
  }
}

// The next character of a weight skips weights that begin with a double character.
TEST(SortOrderCompiler, NextCharacters) {
  Compiled order(sort_order_header +
                 std::string("char = a, A\nchar = ab\nchar =\nchar = ac, c\n"
                             "char = b, B\n") +
                 all_but("aAcbB"));
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_TRUE(has_weights(order.of('A'), 1, 1, 1, 'b')); // over weights 2, 3 and 4
  EXPECT_TRUE(has_weights(order.of('c'), 4, 1, 1, 'b'));
  EXPECT_TRUE(has_weights(order.of('B'), 5, 1, 1, 1));
  EXPECT_TRUE(has_weights(order.of('\0'), 0, 0, 1, 'a'));
  EXPECT_TRUE(has_weights(order.element(0).smel_types.sm_1type.lsc1, 2, 0, 1, 'b'));
}

TEST(SortOrderCompiler, LastCharacter) {
  const std::string rest = all_but("aAbc");
  EXPECT_EQ(Compiled(sort_order_header + rest + "char = c\nchar = a, b=A\n")->last_char, 'A');
  EXPECT_EQ(Compiled(sort_order_header + rest + "char = c\nchar = b, A\nchar = a, bc\n")->last_char,
            'b'); // the first byte of a double character
  EXPECT_EQ(Compiled(sort_order_header + rest + "char = a, A, c\nchar = b\nchar =\n")->last_char,
            'b'); // an entry without values has none
}

// What a value may and may not look like. Each is the whole entry of the bytes behind it.
TEST(SortOrderCompiler, FormOfAValue) {
  struct {
    const char *value, *bytes;
    CS_RETCODE result;
  } const rows[] = {
      {"a", "a", CS_SUCCEED},
      {"\"a \"", "a", CS_SUCCEED},
      {"\"a b=c\"", "a", CS_SUCCEED},
      {"\\x20", " ", CS_SUCCEED},
      {"\"  x\"", " ", CS_SUCCEED},
      {"=", "=", CS_SUCCEED},
      {"==a", "=a", CS_SUCCEED},
      {"a==", "=a", CS_SUCCEED},
      {"\"a= \"", "a ", CS_SUCCEED},
      {"\"\"", "", CS_FAIL},
      {"a,,b", "ab", CS_FAIL},
      {"\\x00", "", CS_FAIL}, // an end of the value
      {"a\\x00b", "a", CS_SUCCEED},
      {"a=", "a", CS_FAIL},
      {"a=b=", "ab", CS_FAIL},
      {"a=bc", "abc", CS_FAIL},
      {"a=bc", "ab", CS_FAIL}, // the first character tells how long they are
      {"a=b\\x3d=c", "ab=c", CS_FAIL},
      {"ab", "", CS_SUCCEED},
      {"ab=cd", "", CS_SUCCEED},
      {"\"ab cd\"", "", CS_SUCCEED},
      {"ab=c", "", CS_FAIL},
      {"\"ab=c \"", "", CS_FAIL},
      {"ab=c=d", "", CS_FAIL},
      {"ab=", "", CS_FAIL},
      {"abc", "", CS_FAIL},
      {"ab=cde", "", CS_FAIL},
      {"a,a", "a", CS_FAIL},
      {"a=a", "a", CS_FAIL},
      {"ab,ab", "", CS_FAIL},
      {"ab,ba", "", CS_SUCCEED},
      {"ab=cb=cd", "", CS_SUCCEED},
  };
  for (const auto &row : rows)
    EXPECT_EQ(load(roomy_order_of("char = " + std::string(row.value) + "\n", row.bytes)),
              row.result)
        << row.value;
}

TEST(SortOrderCompiler, EveryByteIsListedOnce) {
  EXPECT_EQ(load(plain), CS_SUCCEED);
  for (int code = 1; code < 256; ++code)
    EXPECT_EQ(load(sort_order_header + all_but(std::string(1, static_cast<char>(code)))), CS_FAIL)
        << code;
  EXPECT_EQ(load(order_of("char = a\n", "")), CS_FAIL); // and again in its place
}

// 255 weights and no more: what follows them is not read, whatever it is.
TEST(SortOrderCompiler, TwoHundredAndFiftyFiveWeights) {
  EXPECT_EQ(load(plain + "char = a, a\n"), CS_SUCCEED);
  EXPECT_EQ(load(plain + "nonsense = 1\n"), CS_SUCCEED);
  EXPECT_EQ(load(plain + "nonsense\n"), COM_INTL_ERROR); // the key is
  EXPECT_EQ(load(order_of("char = a, b\n", "ab") + "nonsense = 1\n"), CS_FAIL);
  // Entries without values use weights up.
  EXPECT_EQ(load(order_of("char =\n", "")), CS_FAIL);
  EXPECT_EQ(load(order_of("char =\nchar = a, b\n", "ab")), CS_SUCCEED);
}

TEST(SortOrderCompiler, IgnoreEndsTheReading) {
  const std::string missing = sort_order_header + all_but("z");
  EXPECT_EQ(load(plain.substr(0, plain.size()) + "ignore char = a\n"), CS_SUCCEED);
  EXPECT_EQ(load(order_of("char = a, b\n", "ab") + "ignore char = \"\"\nchar = a, a\nnonsense\n"),
            CS_SUCCEED);
  EXPECT_EQ(load(missing + "ignore char = z\n"), CS_FAIL);
  EXPECT_EQ(load(missing + "ignore char = z\nchar = z\n"), CS_FAIL);
  EXPECT_EQ(load(missing + "char = z\n"), CS_SUCCEED);
}

TEST(SortOrderCompiler, EntriesInTheirPlaces) {
  EXPECT_EQ(load(order_of("char = a\nlig = z,after bc\n", "az")), CS_FAIL);
  EXPECT_EQ(load(order_of("lig = z,after bc\nclass = \\x01\n", "z")), CS_FAIL);
  EXPECT_EQ(load(order_of("char = a\nbinary = true\n", "a")), CS_FAIL);
  EXPECT_EQ(load(sort_order_header + std::string("lig = z,after bc\n")), CS_FAIL);
  EXPECT_EQ(load(sort_order_header + std::string("lig = z,after bc\nx\n")), COM_INTL_ERROR);
}

// A weight is one byte, so an entry with more values than a byte counts is refused.
TEST(SortOrderCompiler, SecondaryWeightsAreOneByte) {
  std::string values = "char = ";
  for (int code = 1; code < 256; ++code)
    values += (code > 1 ? code % 50 == 0 ? ", \\\n" : ", " : "") + spell(static_cast<char>(code));
  Compiled order(sort_order_header + values + ", \\x01\\x01\n");
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_TRUE(has_weights(order.element(0).smel_types.sm_1type.lsc1, 1, 255, 1, 0));
  EXPECT_EQ(load(sort_order_header + values + ", \\x01\\x01, \\x01\\x02\n"), CS_FAIL);
}

// Nor may a ligature take a weight behind the largest: "d" has what is left when "c" has reserved a
// weight for each of them, and the last one finds none.
TEST(SortOrderCompiler, SecondaryWeightsOfLigaturesAreOneByte) {
  const auto order = [](std::string_view ligatures) {
    std::string entries, values;
    for (const char ligature : ligatures)
      entries += "lig = " + spell(ligature) + ",after cd\n";
    int count = 0;
    for (int code = 1; code < 256; ++code)
      if (code != 'd' && ligatures.find(static_cast<char>(code)) == std::string_view::npos)
        values += spell(static_cast<char>(code)) + (++count % 50 == 0 ? ", \\\n" : ", ");
    return sort_order_header + entries + "char = " + values + "d\n";
  };
  Compiled one(order("z"));
  ASSERT_EQ(one.result, CS_SUCCEED);
  EXPECT_TRUE(has_weights(one.of('d'), 1, 254, 1, 0));
  EXPECT_EQ(one.element(0).smel_types.sm_3type.lsc2.pst.s, 255);
  EXPECT_EQ(load(order("zy")), CS_FAIL);
}

// ---- double characters ----

TEST(SortOrderCompiler, DoubleCharacters) {
  Compiled order(order_of("char = c, C\nchar = ch=Ch, cH=CH\nchar = h\n", "cCh"));
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_EQ(order->stat1, SO_PREFERENCE | SO_TIES | SO_EXPANDS);
  EXPECT_EQ(order->nsmels, 6);
  // The newest of a byte first, the byte by itself last.
  const LSC &c = order.of('c');
  EXPECT_TRUE(has_weights(c, 0, 0, 0, 2));
  EXPECT_TRUE(has_weights(order.of('C'), 0, 0, 0, 3));
  struct {
    int type, next, xtraw, p, s, t;
  } const elements[] = {{1, 5, 'h', 2, 0, 1}, {1, 4, 'h', 2, 0, 2}, {1, 0, 'H', 2, 1, 1},
                        {1, 1, 'H', 2, 1, 2}, {0, 255, 0, 1, 1, 1}, {0, 255, 0, 1, 0, 1}};
  for (int i = 0; i < 6; ++i) {
    const SMEL &element = order.element(i);
    EXPECT_EQ(element.type_smel, elements[i].type) << i;
    EXPECT_EQ(element.next_smel, elements[i].next) << i;
    EXPECT_EQ(element.noxtraw, elements[i].type) << i;
    EXPECT_EQ(element.pad, 0);
    const bool is_double = element.type_smel == SMEL_DOUBLE;
    EXPECT_TRUE(
        has_weights(is_double ? element.smel_types.sm_1type.lsc1 : element.smel_types.sm_0type.lsc1,
                    elements[i].p, elements[i].s, elements[i].t, 'h'))
        << i;
    if (is_double) {
      EXPECT_EQ(element.smel_types.sm_1type.xtraw, elements[i].xtraw);
    }
  }
  for (int i = 6; i < SMEL_COUNT; ++i)
    EXPECT_EQ(order.element(i).next_smel, SMEL_NONE);
}

TEST(SortOrderCompiler, TheFirstByteOfADoubleCharacterIsListedByItself) {
  EXPECT_EQ(load(roomy_order_of("char = ch\n", "c")), CS_FAIL);
  EXPECT_EQ(load(roomy_order_of("char = ch\n", "")), CS_SUCCEED);
  EXPECT_EQ(load(roomy_order_of("char = ch\n", "") + "ignore char =\n"), CS_SUCCEED);
}

TEST(SortOrderCompiler, SixtyFourElements) {
  const auto doubles = [](int count, int firsts) {
    std::string entry = "char = ";
    for (int i = 0; i < count; ++i)
      entry += (i > 0 ? i % 20 == 0 ? ", \\\n" : ", " : "") +
               spell(std::string{static_cast<char>('a' + i % firsts), static_cast<char>(200 - i)});
    return entry + "\n";
  };
  // The bytes that begin them take an element each, at the end.
  EXPECT_EQ(load(roomy_order_of(doubles(63, 1), "")), CS_SUCCEED);
  EXPECT_EQ(load(roomy_order_of(doubles(64, 1), "")), CS_FAIL);
  EXPECT_EQ(load(roomy_order_of(doubles(62, 2), "")), CS_SUCCEED);
  EXPECT_EQ(load(roomy_order_of(doubles(63, 2), "")), CS_FAIL);
  EXPECT_EQ(load(roomy_order_of(doubles(65, 2), "")), CS_FAIL);
  // And so does each byte of a ligature.
  EXPECT_EQ(load(roomy_order_of("lig = z,equal ab\n" + doubles(62, 1), "z")), CS_SUCCEED);
  EXPECT_EQ(load(roomy_order_of("lig = z=y,equal ab\n" + doubles(62, 1), "zy")), CS_FAIL);
  EXPECT_EQ(load(roomy_order_of("lig = z=y,equal ab\n" + doubles(64, 1), "zy")), CS_FAIL);
}

// Without double characters a table is full at 64 bytes of ligatures.
TEST(SortOrderCompiler, SixtyFourBytesOfLigatures) {
  for (const int count : {63, 64, 65}) {
    std::string entries, bytes;
    for (int i = 0; i < count; ++i) {
      bytes += static_cast<char>(128 + i);
      const bool is_last = i % 10 == 9 || i == count - 1;
      entries +=
          (i % 10 == 0 ? "lig = " : "=") + spell(bytes.back()) + (is_last ? ",equal ab\n" : "");
    }
    EXPECT_EQ(load(order_of(entries, bytes)), count <= 64 ? CS_SUCCEED : CS_FAIL) << count;
  }
}

// ---- ligatures ----

TEST(SortOrderCompiler, Ligatures) {
  Compiled order(order_of("lig = \" \\xe6 = \\xc6 \",after ae\n"
                          "lig = \\xdf,equal  ss,nonsense\n"
                          "lig = \\x8c,\\x9c,after oe\n"
                          "char = a, A\nchar = e, E\nchar = o=O, Q\nchar = s=S, x\n",
                          "\xe6\xc6\xdf\x8c\x9c"
                          "aAeEoOQsSx"));
  ASSERT_EQ(order.result, CS_SUCCEED);
  EXPECT_EQ(order->stat1, SO_PREFERENCE | SO_TIES | SO_EXPANDS | SO_LIGATURES);
  EXPECT_EQ(order->nsmels, 5);
  // Each "after" ligature reserves a weight behind each of its characters.
  EXPECT_TRUE(has_weights(order.of('a'), 1, 0, 1, 'e'));
  EXPECT_TRUE(has_weights(order.of('A'), 1, 2, 1, 'e'));
  EXPECT_TRUE(has_weights(order.of('E'), 2, 4, 1, 'o')); // three of them
  EXPECT_TRUE(has_weights(order.of('Q'), 3, 3, 1, 's'));
  EXPECT_TRUE(has_weights(order.of('x'), 4, 1, 1, 1)); // an "equal" one reserves nothing
  struct {
    char byte;
    int p1, s1, p2, s2, t, next1, next2;
  } const ligatures[] = {
      {'\xe6', 1, 1, 2, 1, 1, 'e', 'o'}, {'\xc6', 1, 1, 2, 1, 2, 'e', 'o'},
      {'\xdf', 4, 0, 4, 0, 1, 1, 1},     {'\x8c', 3, 1, 2, 2, 1, 's', 'o'},
      {'\x9c', 3, 2, 2, 3, 1, 's', 'o'},
  };
  for (int i = 0; i < 5; ++i) {
    const auto &row = ligatures[i];
    EXPECT_TRUE(has_weights(order.of(row.byte), 0, 0, 0, i));
    const SMEL &element = order.element(i);
    EXPECT_EQ(element.type_smel, SMEL_LIGATURE);
    EXPECT_EQ(element.next_smel, SMEL_NONE);
    EXPECT_EQ(element.noxtraw, 0);
    EXPECT_TRUE(has_weights(element.smel_types.sm_3type.lsc1, row.p1, row.s1, row.t, row.next1))
        << i;
    EXPECT_TRUE(has_weights(element.smel_types.sm_3type.lsc2, row.p2, row.s2, row.t, row.next2))
        << i;
  }
}

// Deliberate: behind a ligature that sorts after one of its characters an "equal" ligature takes the
// weights reserved so far, and sorts as its characters only where it comes first.
TEST(SortOrderCompiler, EqualLigaturesCountTheReservedWeights) {
  Compiled order(order_of("lig = z,equal ae\nlig = y,after ab\nlig = x,equal ae\n"
                          "lig = w,after aa\nlig = v,equal ba\n",
                          "zyxwv"));
  ASSERT_EQ(order.result, CS_SUCCEED);
  const int told[][2] = {{0, 0}, {1, 1}, {1, 0}, {2, 2}, {1, 3}};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(order.element(i).smel_types.sm_3type.lsc1.pst.s, told[i][0]) << i;
    EXPECT_EQ(order.element(i).smel_types.sm_3type.lsc2.pst.s, told[i][1]) << i;
  }
}

TEST(SortOrderCompiler, FormOfALigature) {
  struct {
    const char *values, *bytes;
    CS_RETCODE result;
  } const rows[] = {
      {"z,after ab", "z", CS_SUCCEED},
      {"z,equal ab", "z", CS_SUCCEED},
      {"z,\"  after   ab\"", "z", CS_SUCCEED},
      {"z,after aa", "z", CS_SUCCEED},
      {"z,\"after a \"", "z", CS_SUCCEED}, // the second character may be a blank
      {"z,after ab,more,of=it", "z", CS_SUCCEED},
      {"z=y=x,after ab", "xyz", CS_SUCCEED},
      {"\" z = y \",after ab", "yz", CS_SUCCEED},
      {"z,y,after ab", "yz", CS_SUCCEED},
      {"==z,after ab", "=z", CS_SUCCEED},
      {"0=1=2=3=4=5=6=7=8=9,after ab", "0123456789", CS_SUCCEED},
      {"0=1=2=3=4=5=6=7=8=9=z,after ab", "0123456789z", CS_FAIL},
      {"after ab", "", CS_FAIL}, // nothing that sorts so
      {"", "", CS_FAIL},
      {"z", "z", CS_FAIL},
      {"z,after", "z", CS_FAIL},
      {"z,afterab", "z", CS_FAIL},
      {"z,After ab", "z", CS_FAIL},
      {"z,\"after \"", "z", CS_FAIL},
      {"z,after a", "z", CS_FAIL},
      {"z,after abc", "z", CS_FAIL},
      {"z,\"after ab \"", "z", CS_FAIL},
      {"z,after az", "z", CS_FAIL},
      {"z,after za", "z", CS_FAIL},
      {"\"\",after ab", "", CS_FAIL},
      {"\"  \",after ab", "", CS_FAIL},
      {"z=,after ab", "z", CS_FAIL},
      {"\"z= \",after ab", "z", CS_FAIL},
      {"zy,after ab", "zy", CS_FAIL},
      {"\"z y\",after ab", "zy", CS_FAIL},
      {"z=z,after ab", "z", CS_FAIL},
      {"z,z,after ab", "z", CS_FAIL},
      {"z,after ab\nlig = z,after ab", "z", CS_FAIL},
      {"z,after ab\nlig = y,after ab", "zy", CS_SUCCEED},
      {"z,after ab\nlig = a,after cd", "za", CS_FAIL}, // a character of an earlier one
      {"z,after ab\nlig = b,after cd", "zb", CS_FAIL},
      {"z,after ab\nlig = y,after cz", "zy", CS_FAIL},
      {"z,after ab", "", CS_FAIL},             // listed as well
      {"z,after ab\nchar = zb", "z", CS_FAIL}, // nor may a double character have it
      {"z,after ab\nchar = bz", "z", CS_FAIL},
      {"z,after ab\nchar = bc", "z", CS_SUCCEED},
  };
  for (const auto &row : rows)
    EXPECT_EQ(load(order_of("lig = " + std::string(row.values) + "\n", row.bytes)), row.result)
        << row.values;
}

TEST(SortOrderCompiler, FiftyLigatures) {
  for (const int count : {49, 50, 51}) {
    for (const bool is_one_entry : {false, true}) {
      std::string entries, bytes;
      for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(128 + i);
        entries += (i == 0 || !is_one_entry ? "lig = " : ", \\\n") + spell(bytes.back()) +
                   (i == count - 1 || !is_one_entry ? ",equal ab\n" : "");
      }
      EXPECT_EQ(load(order_of(entries, bytes)), count <= 50 ? CS_SUCCEED : CS_FAIL) << count;
    }
  }
}

// ---- loading ----

TEST(LoadSortOrder, BinaryOrdersHaveNoTable) {
  const SortOrderHome home(std::string(sort_order_header) + "binary = true\n");
  SortOrderSet set;
  ASSERT_EQ(set.load(), CS_SUCCEED);
  EXPECT_EQ(set.cache.locsortorder->char_sort_class, nullptr);
  CsLocale locale{};
  locale.collateptr = &set.cache;
  CS_VOID *table = &set;
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_SUCCEED);
  EXPECT_EQ(table, nullptr);
}

TEST(LoadSortOrder, OnceForEachIdentifier) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  CsOID second{};
  ASSERT_EQ(set.load(), CS_SUCCEED);
  CsSortDesc *const first = set.cache.locsortorder;
  EXPECT_EQ(first->oid, &set.oid);
  EXPECT_EQ(first->sortnext, nullptr);
  ASSERT_EQ(set.load(&second), CS_SUCCEED);
  EXPECT_NE(set.cache.locsortorder, first);
  EXPECT_EQ(set.description.sort_order, set.cache.locsortorder); // the newest first
  EXPECT_EQ(set.cache.locsortorder->sortnext, first);
  EXPECT_EQ(set.cache.locsortorder->oid, &second);
  // Both are found without their file, and without an allocation.
  home.write("nothing");
  const AllocationProbe probe;
  EXPECT_EQ(set.load(), CS_SUCCEED);
  EXPECT_EQ(set.cache.locsortorder, first);
  EXPECT_EQ(set.load(&second), CS_SUCCEED);
  EXPECT_EQ(set.cache.locsortorder, set.description.sort_order);
  EXPECT_EQ(probe.allocations(), 0U);
}

TEST(LoadSortOrder, TellsThePath) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  CS_CHAR path[300] = "";
  EXPECT_EQ(comn__intl_load_sortorder(&set.context, &set.oid, &set.cache, path, sizeof path),
            CS_SUCCEED);
  EXPECT_EQ(path, home.path());
  CS_CHAR cut[6] = "";
  set.drop();
  EXPECT_EQ(comn__intl_load_sortorder(&set.context, &set.oid, &set.cache, cut, sizeof cut),
            CS_SUCCEED);
  EXPECT_EQ(cut, home.path().substr(0, 5));
}

// The set and the cache stay as they were, with what they had.
TEST(LoadSortOrder, FailuresChangeNothing) {
  struct {
    const char *what;
    std::string text;
    CS_RETCODE result;
    int reader_status;
  } const rows[] = {
      {"an empty file", "", CS_FAIL, 0},
      {"a wrong entry", sort_order_header + std::string("wrong = 1\n"), CS_FAIL, 0},
      {"a wrong byte", sort_order_header + all_but("a"), CS_FAIL, 0},
      {"a malformed section", "[other]\nx\n" + plain, COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"a malformed header", "[sortorder]\nx\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"a malformed entry", order_of("char = \"a\n", "a"), COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"a malformed ligature", order_of("lig = \"z\n", "z"), COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"a long key", plain.substr(0, plain.rfind("char")) + std::string(64, 'k') + " = 1\n",
       COM_INTL_ERROR, ZRVINTL_ENAME},
  };
  const SortOrderHome home(plain);
  SortOrderSet set;
  ASSERT_EQ(set.load(), CS_SUCCEED);
  CsSortDesc *const kept = set.cache.locsortorder;
  for (const auto &row : rows) {
    home.write(row.text);
    const size_t descriptors = open_descriptors();
    const AllocationProbe probe;
    CsOID other{};
    set.context.ctxintlerr = 0;
    EXPECT_EQ(set.load(&other), row.result) << row.what;
    EXPECT_EQ(set.context.ctxintlerr, row.reader_status) << row.what;
    EXPECT_EQ(set.cache.locsortorder, kept) << row.what;
    EXPECT_EQ(set.description.sort_order, kept) << row.what;
    EXPECT_EQ(kept->sortnext, nullptr);
    EXPECT_EQ(probe.live_blocks(), 0U) << row.what;
    EXPECT_EQ(open_descriptors(), descriptors) << row.what;
  }
}

TEST(LoadSortOrder, WithoutAFile) {
  const SortOrderHome home;
  const AllocationProbe probe;
  SortOrderSet set;
  CS_CHAR path[300] = "";
  EXPECT_EQ(comn__intl_load_sortorder(&set.context, &set.oid, &set.cache, path, sizeof path),
            COM_LOCFILE_ERROR);
  EXPECT_EQ(path, home.path());
  EXPECT_EQ(set.context.ctxintlerr, ZRVINTL_EOPEN);
  EXPECT_EQ(set.cache.locsortorder, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(LoadSortOrder, EachAllocationFailed) {
  const SortOrderHome home(plain);
  const size_t descriptors = open_descriptors();
  SortOrderSet set;
  // The order, the reader's block, the header, the table.
  const size_t failed = fail_each_allocation(
      [] {},
      [&] {
        const CS_RETCODE result = set.load();
        EXPECT_EQ(set.description.sort_order == nullptr, result != CS_SUCCEED);
        EXPECT_EQ(set.cache.locsortorder, set.description.sort_order);
        EXPECT_EQ(open_descriptors(), descriptors);
        EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR || result == COM_LOCFILE_ERROR)
            << result;
        return result != CS_SUCCEED;
      },
      [&] { set.drop(); });
  EXPECT_EQ(failed, 2U * 4);
}

TEST(LoadSortOrder, EachCallFailed) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  const size_t failed = fail_each_io([&] {
    const AllocationProbe probe;
    set.drop();
    const CS_RETCODE result = set.load();
    EXPECT_TRUE(result == CS_SUCCEED || result == COM_INTL_ERROR || result == COM_LOCFILE_ERROR);
    EXPECT_EQ(set.description.sort_order == nullptr, result != CS_SUCCEED);
    if (result != CS_SUCCEED) {
      EXPECT_LT(set.context.ctxintlerr, 0);
    }
    set.drop();
    EXPECT_EQ(probe.live_blocks(), 0U);
    return result != CS_SUCCEED;
  });
  EXPECT_GE(failed, 3U);
}

// ---- damage ----

// A small file with everything in it: a header, both kinds of ligature, double characters, ties.
std::string everything() {
  std::string entries = "lig = \\xe6=\\xc6,after ae\nlig = \\xdf,equal ss\n"
                        "char = a=A, \\xe4=\\xc4\nchar = ch\nchar = ";
  const std::string named = "\xe6\xc6\xdf"
                            "aA\xe4\xc4";
  bool is_first = true;
  int in_line = 0;
  for (int code = 1; code < 256; ++code)
    if (named.find(static_cast<char>(code)) == std::string::npos) {
      if (++in_line % 60 == 0)
        entries += "\nchar = ", is_first = true;
      entries += (is_first ? "" : ",") + spell(static_cast<char>(code));
      is_first = false;
    }
  return sort_order_header + entries + "\n";
}

void expect_as_slowly(const SortOrderHome &home, const std::string &text, const std::string &what) {
  const AllocationProbe probe;
  {
    SortOrderSet set;
    const CS_RETCODE result = set.load(home, text);
    const SlowOrder slow = compile_slowly(text);
    ASSERT_EQ(result, slow.result) << what;
    EXPECT_EQ(set.context.ctxintlerr, slow.reader_status) << what;
    if (result == CS_SUCCEED && set.table() != nullptr) {
      EXPECT_EQ(std::memcmp(set.table(), &slow.table, sizeof(SO_1CLASS)), 0) << what;
    }
  }
  EXPECT_EQ(probe.live_blocks(), 0U) << what;
}

// The list of bytes repeats itself, so its middle is passed faster.
size_t after(size_t i, const std::string &whole) {
  return i + (i < 260 || i + 20 > whole.size() ? 1 : 7);
}

TEST(LoadSortOrder, CutAtEveryByte) {
  const SortOrderHome home;
  const std::string whole = everything();
  for (size_t length = 0; length <= whole.size(); length = after(length, whole))
    expect_as_slowly(home, whole.substr(0, length), std::to_string(length));
  EXPECT_EQ(load(whole), CS_SUCCEED);
}

// By every byte that means something up to the list, by one of them within the list.
TEST(LoadSortOrder, EachByteChanged) {
  const SortOrderHome home;
  const std::string whole = everything();
  const std::string bytes("\0\n=, \"\\[xa7", 11);
  for (size_t i = 0; i < whole.size(); i = after(i, whole))
    for (size_t k = 0; k < (i < 260 ? bytes.size() : 1); ++k) {
      std::string changed = whole;
      changed[i] = bytes[(i + k) % bytes.size()];
      expect_as_slowly(home, changed, std::to_string(i) + " " + std::to_string(k));
      if (HasFatalFailure())
        return;
    }
}

// ---- the table of a locale ----

TEST(SortOrderOfALocale, IsTheOneOfItsCache) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  CsLocale locale{};
  int untouched;
  CS_VOID *table = &untouched;
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_FAIL);
  locale.collateptr = &set.cache;
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_FAIL); // the set has none
  CsOID second{};
  ASSERT_EQ(set.load(), CS_SUCCEED);
  CS_VOID *const first = set.table();
  ASSERT_EQ(set.load(&second), CS_SUCCEED);
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_SUCCEED);
  EXPECT_EQ(table, set.table());
  ASSERT_EQ(set.load(), CS_SUCCEED); // not the newest of the set
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_SUCCEED);
  EXPECT_EQ(table, first);
  table = &untouched;
  CsSortDesc *const kept = set.cache.locsortorder;
  set.cache.locsortorder = nullptr;
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_FAIL);
  set.cache.locsortorder = kept;
  set.cache.locchardesc = nullptr;
  EXPECT_EQ(com_intl_sortorder(&locale, &table), CS_FAIL);
  EXPECT_EQ(table, &untouched);
  set.cache.locchardesc = &set.description;
}

// ---- programmers' faults ----

TEST(LoadSortOrder, RefusesNullPointers) {
  SortOrderSet set;
  CS_VOID *table;
  CsLocale locale{};
  CsLocCache empty{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_sortorder(nullptr, &set.oid, &set.cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, comn__intl_load_sortorder(&set.context, nullptr, &set.cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_sortorder(&set.context, &set.oid, nullptr, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_sortorder(&set.context, &set.oid, &empty, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__sortorder_drop(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_sortorder(nullptr, &table));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_sortorder(&locale, nullptr));
}

TEST(LoadSortOrder, ExitsAreTraced) {
  const SortOrderHome home(plain);
  SortOrderSet set;
  CsLocale locale{};
  CS_VOID *table;
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return set.load(); }), "(CS_SUCCEED) file sortord.cpp");
  EXPECT_EQ(exit_of(CS_FAIL, [&] { return com_intl_sortorder(&locale, &table); }),
            "(CS_FAIL) file sortord.cpp");
}

// ---- the steps by themselves ----

TEST(SortOrderCompiler, StepsRefuseNullPointers) {
  CS_CONTEXT context{};
  INTL_LOCFILE file;
  S_DESCRIPT descript{};
  CS_CHAR *key = nullptr;
  CsSortDesc order{};
  LIGSTRUCT ligs[LIG_COUNT]{};
  CS_INT count = 0;
  CS_BYTE nextchar[256]{}, character[2] = {'a', 'b'};
  SO_1CLASS so{};
  LSC weights{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__get_sort_description(nullptr, &file, &descript, &key));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__get_sort_description(&context, nullptr, &descript, &key));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__get_sort_description(&context, &file, nullptr, &key));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__get_sort_description(&context, &file, &descript, nullptr));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__build_class1(nullptr, &file, key, &order));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__build_class1(&context, nullptr, key, &order));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__build_class1(&context, &file, key, nullptr));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__build_class1(&context, &file, key, &order));
  order.char_sort_descript = &descript;
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__build_class1(&context, &file, nullptr, &order));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__get_lig(nullptr, &file, ligs, &count));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__get_lig(&context, nullptr, ligs, &count));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_lig(&context, &file, nullptr, &count));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__get_lig(&context, &file, ligs, nullptr));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_char(nullptr, &file, 1, ligs, 0, 1, nextchar, &so));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_char(&context, nullptr, 1, ligs, 0, 1, nextchar, &so));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_char(&context, &file, 1, nullptr, 0, 1, nextchar, &so));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_char(&context, &file, 1, ligs, 0, 1, nullptr, &so));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__get_char(&context, &file, 1, ligs, 0, 1, nextchar, nullptr));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL,
                            comn__add_smel(nullptr, character, 1, &weights));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__add_smel(&so, nullptr, 1, &weights));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__add_smel(&so, character, 1, nullptr));
  for (const CS_INT length : {0, 3})
    EXPECT_ASSERTION(compiler_unit, CS_FAIL, comn__add_smel(&so, character, length, &weights));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__do_ligs(nullptr, ligs, 0));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__do_ligs(&so, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__check_sort(nullptr, nextchar));
  EXPECT_NULL_POINTER_CHECK(compiler_unit, CS_FAIL, comn__check_sort(&so, nullptr));
}

// Lists that no file makes: elements of other types in them.
TEST(SortOrderCompiler, ForeignElements) {
  const auto table = [](int first_type, int second_type) {
    SO_1CLASS so{};
    for (LSC &weights : so.lscs)
      weights.pst.smelist = SMEL_NONE;
    so.lscs['a'].pst.smelist = 0;
    so.smels[0].type_smel = static_cast<CS_BYTE>(first_type);
    so.smels[0].next_smel = 1;
    so.smels[1].type_smel = static_cast<CS_BYTE>(second_type);
    so.smels[1].next_smel = SMEL_NONE;
    so.smels[0].smel_types.sm_1type.xtraw = so.smels[1].smel_types.sm_1type.xtraw = 'x';
    so.nsmels = 2;
    return so;
  };
  LSC weights{};
  weights.pst.t = 1;
  CS_BYTE byte[] = {'a', 'b'}, same[] = {'a', 'x'};
  // Before the last element of a byte's list only double characters may stand.
  for (int type = 0; type < 8; ++type) {
    SO_1CLASS so = table(type, 1);
    EXPECT_EQ(comn__add_smel(&so, byte, 1, &weights), type == 1 ? CS_SUCCEED : CS_FAIL) << type;
    so = table(1, type);
    EXPECT_EQ(comn__add_smel(&so, byte, 1, &weights), CS_SUCCEED) << type;
    // A double character joins a list of double characters and of elements without content.
    so = table(2, type);
    EXPECT_EQ(comn__add_smel(&so, byte, 2, &weights), type == 1 || type == 2 ? CS_SUCCEED : CS_FAIL)
        << type;
    so = table(2, type);
    EXPECT_EQ(comn__add_smel(&so, same, 2, &weights), type == 2 ? CS_SUCCEED : CS_FAIL) << type;
    // Finishing knows three types.
    so = table(3, type);
    for (int code = 1; code < 256; ++code)
      if (code != 'a')
        so.lscs[code].pst.t = 1;
    CS_BYTE nextchar[256]{};
    EXPECT_EQ(comn__check_sort(&so, nextchar),
              type == 0 || type == 1 || type == 3 ? CS_SUCCEED : CS_FAIL)
        << type;
  }
}

} // namespace
