// The scanner and the parser of configuration files: what is read from a text, and what an error costs.
#include <random>

#include "config_fixture.h"
#include "test_scale.h"

namespace {

class ConfigSyntax : public zrvtest::Config {};

using std::string;

// ---- the rules of the scanner ----

TEST_F(ConfigSyntax, NothingIsAFileWithoutSections) {
  for (const char *file : {"", "\n", "  \t\f\n\r\n", "; a comment", " ;\n;\n", "   "})
    EXPECT_EQ(read(file), "") << file;
}

TEST_F(ConfigSyntax, CommentsBeginLines) {
  EXPECT_EQ(read("; [no]\n[a]\n  ; x\n\t\f;y = 1\r\nk = v ; x\nl = ;\n"), "a{k=<v ; x> l=<;>}");
}

TEST_F(ConfigSyntax, NothingElseBeginsAComment) {
  EXPECT_EQ(read("[a]\nk = #1\n# = 2\n"), "!17039368 3 <#>");
}

// Deliberate: behind a continued line a comment is a blank of the value.
TEST_F(ConfigSyntax, CommentBehindAContinuedLineIsPartOfTheValue) {
  EXPECT_EQ(read("[a]\nk = 1 \\\n ; x\\\nl = 2\n"), "a{k=<1  ; x\\> l=<2>}");
}

TEST_F(ConfigSyntax, LinesEndInNewlineWithOrWithoutReturn) {
  EXPECT_EQ(read("[a]\r\nk = 1\r\nl = 2 \t\r\n"), "a{k=<1> l=<2>}");
}

TEST_F(ConfigSyntax, LoneReturnIsAnError) {
  EXPECT_EQ(read("[a]\nk = 1\r2\n[b]\n"), "b{} !17039368 2 <\r>");
  EXPECT_EQ(read("[a]\nk = 1 \r2\n[b]\n"), "b{} !17039368 2 <\r>");
  EXPECT_EQ(read("[a]\nk = 1\r"), "!17039368 2 <\r>");
}

TEST_F(ConfigSyntax, EndOfFileEndsALine) {
  EXPECT_EQ(read("[a]\nk = v"), "a{k=<v>}");
  EXPECT_EQ(read("[a]\nk = v "), "a{k=<v >}");
  EXPECT_EQ(read("[a]\nk = v \\\n"), "a{k=<v >}");
  EXPECT_EQ(read("[a]\nk = v\n;"), "a{k=<v>}");
  EXPECT_EQ(read("[a]"), "a{}");
}

TEST_F(ConfigSyntax, TrailingBlanksAreGone) {
  EXPECT_EQ(read("[a]\nk = v \t\f \nl = v\\ \n"), "a{k=<v> l=<v\\ >}");
}

TEST_F(ConfigSyntax, InnerBlanksStay) {
  EXPECT_EQ(read("[a]\nk = \t one \t two\f3\n"), "a{k=<one \t two\f3>}");
}

TEST_F(ConfigSyntax, NamesHoldPunctuation) {
  EXPECT_EQ(read("[a!#$%&'()*+,-./:;<>?@^_`{|}~\"\\]\nb\"c\\d;e9 = 1\n"),
            "a!#$%&'()*+,-./:;<>?@^_`{|}~\"\\{b\"c\\d;e9=<1>}");
}

TEST_F(ConfigSyntax, NamesBeginWithALetter) {
  EXPECT_EQ(read("[a]\n1 = 2\n[b]\n_ = 2\n[c]\nZ = 2\n[d]\nz=2\n"),
            "c{Z=<2>} d{z=<2>} !17039368 2 <1> !17039368 4 <_>");
}

// A name ends where only a value can go on, and is all a value then.
TEST_F(ConfigSyntax, NameThatMeetsANonAsciiByteIsAValue) {
  EXPECT_EQ(read("[a]\nk = b\xE9\n"), "a{k=<b\xE9>}");
  EXPECT_EQ(read("[a]\nb\xE9 = 1\n"), "!17039368 2 <b\xE9>");
  EXPECT_EQ(read("[a]\nk = b\"\xE9\n"), "a{k=<b\"\xE9>}");
  EXPECT_EQ(read("[a]\nb\"\xE9 = 1\n"), "!17039368 2 <\xE9>");
}

TEST_F(ConfigSyntax, BackslashQuotesInValuesAndStays) {
  EXPECT_EQ(read("[a]\nk = 1\\=2\\[3\\]4\\\"5\\ 6\\\\\n"), "a{k=<1\\=2\\[3\\]4\\\"5\\ 6\\\\>}");
  EXPECT_EQ(read("[a]\nk = x\\=y\nl = \\=\n"), "a{k=<x\\=y> l=<\\=>}");
}

TEST_F(ConfigSyntax, BackslashContinuesALine) {
  EXPECT_EQ(read("[a]\nk = one \\\ntwo\n"), "a{k=<one two>}");
  EXPECT_EQ(read("[a]\nk = 1\\\r\n2\\\n3\n"), "a{k=<123>}");
  EXPECT_EQ(read("[a]\nk = \\\n\\\nv\n"), "a{k=<v>}");
  EXPECT_EQ(read("[a]\nk = \\\n\n"), "a{k=<>}");
}

// Deliberate: a backslash belongs to the word before it when that is a name.
TEST_F(ConfigSyntax, BackslashBehindANameContinuesNothing) {
  EXPECT_EQ(read("[a]\nk = one\\\nl = 2\n"), "a{k=<one\\> l=<2>}");
  EXPECT_EQ(read("[a]\nk = one\\\r\nl = 2\n"), "a{k=<one\\> l=<2>}");
}

TEST_F(ConfigSyntax, BackslashWithoutAnythingBehindItIsAnError) {
  EXPECT_EQ(read("[a]\nk = 1\\"), "!17039368 2 <\\>");
  EXPECT_EQ(read("[a]\nk = \\\rx\n"), "!17039368 2 <\\>");
  EXPECT_EQ(read("[a]\nk = \\\r"), "!17039368 2 <\\>");
}

TEST_F(ConfigSyntax, StringsTakeAnything) {
  EXPECT_EQ(read("[a]\nk = \"x = [y] ; \t\"\n"), "a{k=<x = [y] ; \t>}");
  EXPECT_EQ(read("[a]\nk = a \"b c\" d\n"), "a{k=<a b c d>}");
  EXPECT_EQ(read("[a]\nk = 1\"2\"3\n"), "a{k=<123>}");
  EXPECT_EQ(read("[a]\nk = \"one\n; two\nthree\"\n"), "a{k=<one\n; two\nthree>}");
}

// Deliberate: a quote inside a word that is a name belongs to it.
TEST_F(ConfigSyntax, QuoteInsideANameBeginsNoString) {
  EXPECT_EQ(read("[a]\nk = x\"2\"\n"), "a{k=<x\"2\">}");
  EXPECT_EQ(read("[a]\nk = x\"y z\"\n"), "a{k=<x\"y z\">}");
}

TEST_F(ConfigSyntax, StringsCanBeEmpty) {
  EXPECT_EQ(read("[a]\nk = \"\"\nl = 1\"\"2\n"), "a{k=<> l=<12>}");
}

TEST_F(ConfigSyntax, TwoQuotesInAStringAreOne) {
  EXPECT_EQ(read("[a]\nk = \"a\"\"b\"\nl = \"\"\"\"\n"), "a{k=<a\"b> l=<\">}");
}

TEST_F(ConfigSyntax, BackslashInAString) {
  EXPECT_EQ(read("[a]\nk = \"a\\\"b\\\\\"\n"), "a{k=<a\\\"b\\\\>}");
  EXPECT_EQ(read("[a]\nk = \"a\\\nb\"\n"), "a{k=<ab>}");
  EXPECT_EQ(read("[a]\nk = \"\\\n\"\n"), "a{k=<>}");
  // Deliberate: with a return in between the line is not continued.
  EXPECT_EQ(read("[a]\nk = \"a\\\r\nb\"\n"), "a{k=<a\\\r\nb>}");
}

TEST_F(ConfigSyntax, NulIsACharacterOfValues) {
  EXPECT_EQ(read(string("[a]\nk = \0x\0\n", 12)), string("a{k=<\0x\0>}", 10));
  EXPECT_EQ(read(string("[a]\nk = b\0\n", 11)), string("a{k=<b\0>}", 9));
  EXPECT_EQ(read(string("[a]\nb\0 = 1\n", 11)), "!17039368 2 <b>");
}

// ---- the rules of the grammar ----

TEST_F(ConfigSyntax, SectionNamesKeepASingleGap) {
  EXPECT_EQ(read("[A B]\n"), "A B{}");
  EXPECT_EQ(read("[ A \t B  ]\n"), "A \t B{}");
  EXPECT_EQ(read("[\nA\nB C\n]\n"), "A\nB C{}");
}

TEST_F(ConfigSyntax, SeparatorsBeforeAndBehindTheSign) {
  EXPECT_EQ(read("[a]\nk=1\nl =2\nm= 3\nn\n=\n4\n"), "a{k=<1> l=<2> m=<3> n=<4>}");
  // Only one: blanks at the begin of the line below are part of the value.
  EXPECT_EQ(read("[a]\nn =\n  4\n"), "a{n=<  4>}");
  EXPECT_EQ(read("[a]\nn\n\n= 4\n"), "!17039368 3 <\n>");
}

TEST_F(ConfigSyntax, EntriesNeedAValue) {
  EXPECT_EQ(read("[a]\nk =\n\n[b]\n"), "b{} !17039368 3 <\n>");
  EXPECT_EQ(read("[a]\nk ="), "!17039368 2 <>");
  EXPECT_EQ(read("[a]\nk\n[b]\n"), "b{} !17039368 3 <[>");
  // A value may stand in the next line, and the next entry then is not what it looks like.
  EXPECT_EQ(read("[a]\nk =\nl = 2\n"), "!17039368 3 <=>");
}

TEST_F(ConfigSyntax, ValuesHoldNoSignsOfTheSyntax) {
  for (const char *sign : {"=", "[", "]"})
    EXPECT_EQ(read(string("[a]\nk = 1") + sign + "\n[b]\n"),
              "b{} !17039368 2 <" + string(sign) + ">");
}

// Deliberate: the word is no part of a value.
TEST_F(ConfigSyntax, IncludeIsNoName) {
  EXPECT_EQ(read("[a]\nk = include\n"), "!17039368 2 <include>");
  EXPECT_EQ(read("[a]\nk = \"include\" includes 1include include\xE9\n"),
            "a{k=<include includes 1include include\xE9>}");
  EXPECT_EQ(read("[include]\n[b]\n"), "b{} !17039368 1 <include>");
}

TEST_F(ConfigSyntax, RepeatedEntriesHaveSeveralValues) {
  EXPECT_EQ(read("[a]\nk = 1\nl = x\nk = 2\nK = 3\nk = 1\n"), "a{K=<3> k=<1><2><1> l=<x>}");
}

TEST_F(ConfigSyntax, IncludesNameEarlierSections) {
  EXPECT_EQ(read("[a]\n[b]\ninclude = a\nk = 1\nInClUdE\n=\na\n"), "a{} b{k=<1> +a +a}");
}

TEST_F(ConfigSyntax, IncludeOfALaterSectionFailsTheSection) {
  EXPECT_EQ(read("[a]\nk = 1\ninclude = b\n[b]\n"), "b{} !17039367 cfg__add_include: <b>");
  EXPECT_EQ(read("[a]\ninclude = a\n[b]\n"), "b{} !17039367 cfg__add_include: <a>");
}

// A failed section does not exist for those behind it.
TEST_F(ConfigSyntax, IncludeOfAFailedSectionFails) {
  EXPECT_EQ(read("[a]\nbad line\n[b]\ninclude = a\n[c]\n"),
            "c{} !17039368 2 <line> !17039367 cfg__add_include: <a>");
}

TEST_F(ConfigSyntax, EachWrongIncludeIsReported) {
  EXPECT_EQ(read("[a]\ninclude = x\ninclude = y\n"),
            "!17039367 cfg__add_include: <x> !17039367 cfg__add_include: <y>");
  const string longest(254, 'x');
  EXPECT_EQ(read("[a]\ninclude = " + longest + "x\n"),
            "!17039367 cfg__add_include: <" + longest + ">");
}

TEST_F(ConfigSyntax, SectionsOfOneName) {
  EXPECT_EQ(read("[a]\nk = 1\n[a]\nk = 2\n"), "a{k=<1>} a{k=<2>}");
  // The failed one goes, not the other.
  EXPECT_EQ(read("[a]\nk = 1\n[a]\nk = 2\nbad line\n"), "a{k=<1>} !17039368 5 <line>");
  // The name is the section's own only while the section is the newest of its name.
  EXPECT_EQ(read("[a]\nk = 1\n[a]\ninclude = a\n"), "a{k=<1>} !17039367 cfg__add_include: <a>");
}

// ---- errors and what survives them ----

TEST_F(ConfigSyntax, BadLineLosesItsSectionAlone) {
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = 1\nbad line\nm = 2\n[c]\nn = 3\n"),
            "a{k=<1>} c{n=<3>} !17039368 5 <line>");
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = 1\nm = 2\nbad line"), "a{k=<1>} !17039368 6 <line>");
}

TEST_F(ConfigSyntax, ErrorsAreReportedAgainAfterThreeTokens) {
  // What follows an error within three tokens is part of it.
  EXPECT_EQ(read("[a]\nb c d\n"), "!17039368 2 <c>");
  EXPECT_EQ(read("[a]\nb c\nk = 1\nd e\n"), "!17039368 2 <c> !17039368 4 <e>");
  EXPECT_EQ(read("[a]\n= = ]\nk = 1\nd e\n"), "!17039368 2 <=> !17039368 4 <e>");
}

TEST_F(ConfigSyntax, FaultyHeaderLosesItsEntries) {
  EXPECT_EQ(read("[a]\nk = 1\n[b=]\nl = 1\n[c]\nm = 1\n"), "a{k=<1>} c{m=<1>} !17039368 3 <=>");
}

TEST_F(ConfigSyntax, FaultyHeaderAtTheBeginOfTheFile) {
  EXPECT_EQ(read("[=]\n[c]\nm = 1\n"), "c{m=<1>} !17039368 1 <=>");
  EXPECT_EQ(read("k = 1\n[c]\nm = 1\n"), "c{m=<1>} !17039368 1 <k>");
  EXPECT_EQ(read("["), "!17039368 1 <>");
}

TEST_F(ConfigSyntax, HeadersMayStandAnywhere) {
  EXPECT_EQ(read("[a] [b]k = 1\n [c]\n"), "a{} b{k=<1>} c{}");
  EXPECT_EQ(read("[a]k = 1\n"), "a{k=<1>}");
}

// An error in the first thing behind a header, without even a blank, is one of the list of sections. It
// costs the section as an error further down does, and with it all up to the next header.
TEST_F(ConfigSyntax, ErrorRightBehindAHeader) {
  EXPECT_EQ(read("[a]=\nk = 1\n[b]\n"), "b{} !17039368 1 <=>");
  EXPECT_EQ(read("[a]k 1\nk = 1\n[b]\n"), "b{} !17039368 1 <1>");
  EXPECT_EQ(read("[a]\nl = 1\n[a]=\nk = 1\n"), "a{l=<1>} !17039368 3 <=>");
  EXPECT_EQ(read("[a]=\n[b]\ninclude = a\n[c]\n"),
            "c{} !17039368 1 <=> !17039367 cfg__add_include: <a>");
}

TEST_F(ConfigSyntax, UnfinishedStringFailsTheFile) {
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = \"x\n[c]\n"), "failed !17039368 6 <>");
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = 1 \"x\\"), "failed !17039368 4 <\\>");
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = \"\"\""), "failed !17039368 4 <>");
  // Not even a string yet.
  EXPECT_EQ(read("[a]\nk = 1\n[b]\nl = \""), "a{k=<1>} !17039368 4 <>");
}

TEST_F(ConfigSyntax, ErrorsTellTheLine) {
  EXPECT_EQ(read("[a]\nk = \"1\n2\n3\" = 4\n"), "!17039368 4 <=>");
  EXPECT_EQ(read("[a]\r\nk = 1 \\\r\n\\\r\n=\r\n"), "!17039368 4 <=>");
}

TEST_F(ConfigSyntax, LongTokensAreCutInMessages) {
  const string token(254, '1');
  EXPECT_EQ(read("[a]\n" + token + "2\n"), "!17039368 2 <" + token + ">");
}

// Each faulty header nests a list of sections in the one before, and the parser keeps 500 states.
TEST_F(ConfigSyntax, StatesOfTheParser) {
  const auto headers = [](int count) {
    string file;
    for (int i = 0; i < count; ++i)
      file += "[=]\n\n\n\n";
    return file + "[a]\nk = v\n";
  };
  for (int count : {1, 100, 200, 240})
    EXPECT_TRUE(read(headers(count)).starts_with("a{k=<v>} !")) << count;
  for (int count : {250, 251, 300})
    EXPECT_TRUE(read(headers(count)).starts_with("failed !")) << count;
}

// Deliberate: so does each blank and each line behind a faulty header, up to the next header.
TEST_F(ConfigSyntax, LongSectionBehindAFaultyHeader) {
  const auto entries = [](int count) {
    string file = "[=]\n";
    for (int i = 0; i < count; ++i)
      file += "k = 1\n";
    return file + "[a]\n";
  };
  EXPECT_EQ(read(entries(80)), "a{} !17039368 1 <=>");
  EXPECT_EQ(read(entries(85)), "failed !17039368 1 <=> !17039368 84 <1>");
}

// ---- sizes ----

TEST_F(ConfigSyntax, LongValuesNamesAndLines) {
  for (size_t length : {1019, 1020, 1024, 2030, 2040, 2044, 2048, 4090, 4096, 100'000}) {
    const string value(length, 'v'), digits(length, '1');
    EXPECT_EQ(read("[" + value + "]\n" + value + " = " + digits + "\n"),
              value + "{" + value + "=<" + digits + ">}");
    EXPECT_EQ(read("[a]\nk = \"" + value + "\" " + digits + "\n"),
              "a{k=<" + value + " " + digits + ">}");
  }
  string words = "w";
  for (int i = 0; i < 30'000; ++i)
    words += " w";
  EXPECT_EQ(read("[a]\nk = " + words + "\n"), "a{k=<" + words + ">}");
}

TEST_F(ConfigSyntax, ManySectionsAndEntries) {
  string file;
  for (int i = 0; i < 10'000; ++i)
    file += "[s" + std::to_string(i) + "]\nk = " + std::to_string(i) + "\n";
  CS_CONFIG *cfg = open(file);
  ASSERT_NE(cfg, nullptr);
  for (int i : {0, 1, 4999, 9998, 9999})
    EXPECT_EQ(get(cfg, "s" + std::to_string(i), "k"), std::to_string(i));
  drop(cfg);

  file = "[a]\n";
  for (int i = 0; i < 10'000; ++i)
    file += "k" + std::to_string(i) + " = " + std::to_string(i) + "\n";
  cfg = open(file);
  ASSERT_NE(cfg, nullptr);
  for (int i : {0, 1, 4999, 9998, 9999})
    EXPECT_EQ(get(cfg, "a", "k" + std::to_string(i)), std::to_string(i));
  drop(cfg);
  EXPECT_EQ(take_reported(), std::vector<string>());
}

// The buffer is as large as the longest entry, whatever the file's size: what is not kept takes no room.
TEST_F(ConfigSyntax, BufferStaysSmall) {
  for (const char *begin : {"", "[a]\n"}) {
    string file = begin;
    while (file.size() < 500'000)
      file += "; " + string(200, 'c') + "\n\n";
    CS_CONFIG *const cfg = open(file);
    ASSERT_NE(cfg, nullptr);
    EXPECT_LT(static_cast<MM_HANDLE *>(data(cfg)->mpool)->mmh_head->mph_totalsize, 20'000);
    drop(cfg);
  }
}

// ---- character sets ----

TEST_F(ConfigSyntax, WideCharactersAreReadLikeNarrowOnes) {
  auto set = zrvtest::TestCharset::double_byte(true);
  set_charset(set.get());
  const string ascii = "[a B]\nk = \"x\"\"y\" z\\=\ninclude = q\n[b]\ninclude = b\n";
  std::mt19937 random(1);
  for (int i = 0; i < 200; ++i) {
    const string wide = set.spell(ascii, [&] { return random() % 2 == 0; });
    // The lines end in the narrow newline alone, which has no wide form.
    const auto expected = zrvtest::read_config(wide, set.get());
    ASSERT_TRUE(expected.loaded);
    ASSERT_EQ(expected.messages.size(), 2U) << wide;
    EXPECT_EQ(read(wide).substr(0, 10), "!17039367 ");
  }
  const string wide = set.spell("[a]\nk = \"x\"\"y\"\n", [] { return true; });
  const string x = set.wide('x'), y = set.wide('y'), quote = set.wide('"');
  // An escaped quote keeps the whole first character.
  EXPECT_EQ(read(wide), set.wide('a') + "{" + set.wide('k') + "=<" + x + quote + y + ">}");
}

TEST_F(ConfigSyntax, FourByteCharacters) {
  auto set = zrvtest::TestCharset::four_byte();
  set_charset(set.get());
  const string four = "\xB0\x31\x5B\x3D", two = "\xB0\xC1";
  EXPECT_EQ(read("[a]\nk = " + four + two + four + "\n"), "a{k=<" + four + two + four + ">}");
  EXPECT_EQ(read("[a]\nk = \"" + four + "\"\n"), "a{k=<" + four + ">}");
}

TEST_F(ConfigSyntax, FileThatEndsInsideACharacter) {
  auto set = zrvtest::TestCharset::four_byte();
  set_charset(set.get());
  const string four = "\xB0\x31\x5B\x3D";
  for (size_t kept : {1, 2, 3})
    EXPECT_EQ(read("[a]\nk = v" + four.substr(0, kept)), "a{k=<v>} !17040902 cut") << kept;
  EXPECT_EQ(read("[a]\nk = v" + four), "a{k=<v" + four + ">}");
}

// A set without a form in ASCII for the signs of the syntax has nothing to read.
TEST_F(ConfigSyntax, CharactersWithoutAsciiAreValues) {
  auto set = zrvtest::TestCharset::utf8();
  set_charset(set.get());
  EXPECT_EQ(read("[a]\nk = \xE2\x82\xAC\xC3\xA9\n"), "a{k=<\xE2\x82\xAC\xC3\xA9>}");
  // This one stands for "e" in a name.
  EXPECT_EQ(read("[\xC3\xA9]\n\xC3\xA9=1\n"), "\xC3\xA9{\xC3\xA9=<1>}");
}

TEST_F(ConfigSyntax, EbcdicIsReadLikeAscii) {
  // Letters, digits and signs of code page 37.
  const auto recode = [](const string &ascii) {
    const string from = "abcdefghi klmv[]=\"1\n";
    const string to =
        "\x81\x82\x83\x84\x85\x86\x87\x88\x89\x40\x92\x93\x94\xA5\xBA\xBB\x7E\x7F\xF1\x25";
    string result;
    for (char c : ascii)
      result += to[from.find(c)];
    return result;
  };
  CS_NORM_MAP norms{};
  CS_TYPE_MAP types{};
  const string all = "abcdefghi klmv[]=\"1\n";
  for (char c : all)
    norms.norm[static_cast<unsigned char>(recode(string(1, c))[0])] = static_cast<CS_BYTE>(c);
  CHAR_ATTRIB set{};
  set.cs_norm_map = &norms;
  set.cs_type_map = &types;
  set_charset(&set);
  EXPECT_EQ(read(recode("[a b]\nk = \"1\"\"v\"\n")),
            recode("a b") + "{" + recode("k") + "=<" + recode("1\"v") + ">}");
  EXPECT_EQ(read(recode("[a]\nk 1\n[b]\n")), recode("b") + "{} !17039368 2 <" + recode("1") + ">");
}

// ---- against the slow reader ----

class ConfigRandom : public zrvtest::Config {
protected:
  // Reads a file both ways.
  void compare(const string &file, CS_ATTRIB *set) {
    const zrvtest::ConfigFile expected = zrvtest::read_config(file, set);
    CS_CONFIG *const cfg = open(file);
    std::vector<string> messages;
    for (const auto &message : expected.messages)
      if (message.number == COM_CFGERR_SYNTAX)
        messages.push_back(std::to_string(message.number) + " " + name + ": " +
                           std::to_string(message.line) + " <" + message.text + ">");
      else if (message.number == COM_CFGERR_INCLUDE)
        messages.push_back(std::to_string(message.number) + " cfg__add_include: <" + message.text +
                           ">");
      else
        messages.push_back(std::to_string(message.number) + " " + name + ": cut");
    std::vector<string> reported = take_reported();
    // Where the cut is told depends on how far the scanner looks ahead.
    std::sort(messages.begin(), messages.end());
    std::sort(reported.begin(), reported.end());
    ASSERT_EQ(cfg != nullptr, expected.loaded) << file;
    EXPECT_EQ(reported, messages) << file;
    if (cfg == nullptr)
      return;
    auto sections = expected.sections;
    std::sort(sections.begin(), sections.end());
    EXPECT_EQ(this->sections(cfg), sections) << file;
    drop(cfg);
  }
};

// What files are made of, with the faults that they have.
string random_file(std::mt19937_64 &random, bool is_tame) {
  static const char *const tame[] = {
      "[a]\n",          "[b]\n",         "[A B]\n", "k = 1\n", "l = x y\n",
      "include = a\n",  "include = b\n", "; c\n",   "\n",      "m = \"q\"\"r\" s\n",
      "k = 2 \\\n 3\n", "bad line\n",    "[=]\n"};
  static const char *const wild[] = {
      "[",  "]",    "=",    "\"",   "\"\"", "\\",  "\\\n",  "\\\r\n",  "\n",
      "\r", "\r\n", " ",    "\t",   ";",    "a",   "b",     "include", "INCLUDE",
      "k",  "1",    "\xE9", "\x01", "\\\"", "\\=", "[a]\n", "k = 1\n", "\x80"};
  string file;
  const size_t pieces = static_cast<size_t>(random() % 40);
  for (size_t i = 0; i < pieces; ++i)
    file += is_tame && random() % 4 != 0 ? tame[random() % std::size(tame)]
                                         : wild[random() % std::size(wild)];
  return file;
}

TEST_F(ConfigRandom, FilesAreReadAsTheGrammarSays) {
  const int count = zrvtest::sanitized ? 2'000 : 8'000;
  std::mt19937_64 random(20'260'119);
  for (int i = 0; i < count && !HasFailure(); ++i)
    compare(random_file(random, i % 2 == 0), com_get_charattrib());
}

TEST_F(ConfigRandom, FilesInMultiByteSets) {
  for (auto set : {zrvtest::TestCharset::double_byte(), zrvtest::TestCharset::four_byte()}) {
    set_charset(set.get());
    std::mt19937_64 random(7);
    for (int i = 0; i < 500 && !HasFailure(); ++i) {
      string file = set.spell(random_file(random, i % 2 == 0), [&] { return random() % 3 == 0; });
      compare(file, set.get());
      if (!file.empty())
        compare(file.substr(0, static_cast<size_t>(random() % file.size())), set.get());
    }
  }
}

string many(const string &piece, int count) {
  string pieces;
  for (int i = 0; i < count; ++i)
    pieces += piece;
  return pieces;
}

TEST_F(ConfigRandom, ManyFaultyHeaders) {
  for (int count = 240; count < 260 && !HasFailure(); ++count)
    for (const char *header : {"[=]\n", "[a =\n", "]\n", "[a]=\n"}) {
      const string file = many(header, count);
      compare(file, com_get_charattrib());
      compare(file + "[a]\nk = \"v\"\n", com_get_charattrib());
    }
}

// The same with errors in the middle of a rule, of which the newest parts may find no room.
TEST_F(ConfigRandom, ErrorsWhereTheStatesEnd) {
  for (int count = 236; count < 252 && !HasFailure(); ++count)
    for (const char *tail :
         {"\1[=]\n", "[=]\n\"x\"\"x\"[a[", "a =[a=]\n", "[a]\nZ=]", "[a]\nZ=][a]\n=", "[a]\nb]",
          "[a]\ninclude]", "[a]\ninclude =]", "[a b=", "[a]\nb c", "\"x\"]a=1\n\\\n[=]\n"})
      for (const char *end : {"", "[a]\n"}) {
        const string file = many("[=]\n", count) + tail + end;
        compare(file, com_get_charattrib());
        compare(" " + file, com_get_charattrib());
      }
}

// What was read is off the stack, however much it was.
TEST_F(ConfigRandom, StatesBehindLongEntries) {
  const auto check = [this](const string &file) {
    for (int count = 246; count < 251; ++count)
      compare(file + many("[=]\n", count), com_get_charattrib());
  };
  for (const char *piece : {"a ", "1", "\\\n", "\"s\"", "\"\"", "\"s\"\"s\"", "\"\"\"\"",
                            "\"\\\n\"", "\nk = 1\nk = ", "\ninclude = i\nk = "}) {
    SCOPED_TRACE(piece);
    check("[i]\n[e]\nk = " + many(piece, 300) + "1\n");
  }
  check("[a" + many(" b", 300) + "]\n");
}

const char *const small_file = "; c\n[a]\nk = 1\nk = \"x\"\"y\" \\\n z\n[b c]\ninclude = a\nl = 2\n"
                               "bad line\n[d]\n m=3\n";

TEST_F(ConfigRandom, TruncationAtEveryByte) {
  const string file = small_file;
  for (size_t length = 0; length <= file.size(); ++length)
    compare(file.substr(0, length), com_get_charattrib());
}

TEST_F(ConfigRandom, ChangeOfEveryByte) {
  for (size_t at = 0; at < string(small_file).size(); ++at)
    for (char c : {'\0', '\n', '\r', ' ', '"', '\\', '=', '[', ']', ';', 'a', '1', '\xE9'}) {
      string file = small_file;
      file[at] = c;
      compare(file, com_get_charattrib());
    }
}

} // namespace
