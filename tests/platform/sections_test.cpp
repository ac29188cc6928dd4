// The section reader: each rule of the syntax with a literal file, each limit on both sides, each kind
// of malformed file with its status and line, every failure of the system; and random files against a
// slow reader.
#include <array>
#include <climits>
#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "io_probe.h"
#include "section_reference.h"
#include "test_scale.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

using zrvtest::AllocationProbe;
using zrvtest::IoProbe;
using zrvtest::SectionEvent;
using zrvtest::TextFile;

namespace {

// Libraries that are built apart share the record.
static_assert(offsetof(INTL_LOCFILE, comment_char) == 28);
static_assert(offsetof(INTL_LOCFILE, line) == 33);
static_assert(offsetof(INTL_LOCFILE, section) == 1057);
static_assert(offsetof(INTL_LOCFILE, entry) == 1121);
static_assert(offsetof(INTL_LOCFILE, value) == 1185);
static_assert(offsetof(INTL_LOCFILE, file) == (sizeof(void *) == 4 ? 2212 : 2216));
static_assert(sizeof(INTL_LOCFILE) == (sizeof(void *) == 4 ? 2224 : 2232));

// A record as a caller has it, with anything in it, on a file that must be there.
class Reader {
public:
  explicit Reader(const char *path) {
    std::memset(&file, 0xA5, sizeof file);
    EXPECT_EQ(intl_open(path, &file), 0) << path;
  }
  explicit Reader(const TextFile &text) : Reader(text.path()) {}
  ~Reader() {
    if (file.file != nullptr) {
      EXPECT_EQ(intl_close(&file), 0);
    }
  }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;

  const char *section() { return intl_nextsection(&file, &status); }
  const char *entry() { return intl_nextentry(&file, &status); }
  const char *value() { return intl_nextvalue(&file, &status); }

  INTL_LOCFILE file;
  int status = 77;
};

// The bytes of a value, which may contain NULs: up to the last that is not one.
std::string value_bytes(const INTL_LOCFILE &file) {
  const std::string all(file.value, sizeof file.value);
  return all.substr(0, all.find_last_not_of('\0') + 1);
}

std::vector<SectionEvent> read_everything(const char *path) {
  Reader reader(path);
  std::vector<SectionEvent> events;
  while (const char *const section = reader.section()) {
    events.push_back({SectionEvent::section, section, reader.status, 0});
    while (const char *const entry = reader.entry()) {
      events.push_back({SectionEvent::entry, entry, reader.status, 0});
      while (reader.value() != nullptr)
        events.push_back({SectionEvent::value, value_bytes(reader.file), reader.status, 0});
    }
  }
  events.push_back(
      {SectionEvent::end, "", reader.status, reader.status < 0 ? reader.file.linenum : 0});
  return events;
}

// The same in one line: [section] key= <value>, <last value>. An error ends it with its status and
// its line.
std::string transcript(const std::vector<SectionEvent> &events) {
  std::string text;
  for (const SectionEvent &event : events) {
    switch (event.kind) {
    case SectionEvent::section:
      text += " [" + event.text + "]";
      break;
    case SectionEvent::entry:
      text += " " + event.text + "=";
      break;
    case SectionEvent::value:
      text += " <" + event.text + ">" + (event.status == 1 ? "," : "");
      break;
    case SectionEvent::end:
      if (event.status != 0)
        text += " " + std::to_string(event.status) + " in line " + std::to_string(event.line);
    }
  }
  return text.empty() ? text : text.substr(1);
}

std::string read_text(std::string_view text) {
  const TextFile file(text);
  const auto events = read_everything(file.path());
  EXPECT_EQ(events, zrvtest::read_sections_slowly(text)) << text;
  return transcript(events);
}

// The values of the one entry of a file.
std::string read_values(const std::string &values) {
  const std::string text = read_text("[s]\nk =" + values + "\n");
  constexpr std::string_view head = "[s] k=";
  EXPECT_EQ(text.substr(0, head.size()), head);
  return text.size() > head.size() ? text.substr(head.size() + 1) : "";
}

// ---- syntax ----

TEST(Sections, NothingInIt) {
  EXPECT_EQ(read_text(""), "");
  EXPECT_EQ(read_text("\n"), "");
  EXPECT_EQ(read_text("\n\n \t\n"), "");
  EXPECT_EQ(read_text("; a comment\n  ; another\n;"), "");
}

TEST(Sections, SectionsAndEntries) {
  EXPECT_EQ(read_text("[one]\na = 1\nb = 2\n[two]\n[three]\na = 3\n"),
            "[one] a= <1> b= <2> [two] [three] a= <3>");
  EXPECT_EQ(read_text("[one]\n[one]\na = 1\na = 1\n"), "[one] [one] a= <1> a= <1>");
}

TEST(Sections, LineEnds) {
  EXPECT_EQ(read_text("[s]\r\na = 1\r\n\r\nb = 2\r\n"), "[s] a= <1> b= <2>");
  EXPECT_EQ(read_text("[s]\na = 1"), "[s] a= <1>") << "the last line may have none";
  EXPECT_EQ(read_text("[s]"), "[s]");
  // Anywhere else a carriage return is text.
  EXPECT_EQ(read_text("[s]\na = 1\r2\r\r\n"), "[s] a= <1\r2\r>");
  EXPECT_EQ(read_text("[s]\na = 1\r"), "[s] a= <1\r>");
}

TEST(Sections, CommentsAndBlankLinesAreSkipped) {
  EXPECT_EQ(read_text("; c\n\n[s]\n ; c = 1\n\t;[t]\na = 1\n;\n\nb = 2\n"), "[s] a= <1> b= <2>");
  // A comment is one line, whatever it ends in.
  EXPECT_EQ(read_text("[s]\n; c \\\na = 1\n"), "[s] a= <1>");
}

TEST(Sections, BlanksAroundNamesDoNotCount) {
  EXPECT_EQ(read_text(" \t[ \ts 1 ]\t \n \ta key\t =\t 1 \t\n"), "[s 1] a key= <1>");
  EXPECT_EQ(read_text("[s]\na=1\n"), "[s] a= <1>");
  EXPECT_EQ(read_text("[s]\na \v=\v1\v\n"), "[s] a \v= <\v1\v>") << "space and tab only";
}

// Syntax characters have their meaning in one place each.
TEST(Sections, SyntaxCharactersElsewhereAreText) {
  EXPECT_EQ(read_text("[s;[\"=,]\na;b]c[\"d,e = 1\n"), "[s;[\"=,] a;b]c[\"d,e= <1>");
  EXPECT_EQ(read_values("a;b [c] = d"), "<a;b [c] = d>");
  EXPECT_EQ(read_values("; not a comment"), "<; not a comment>");
  EXPECT_EQ(read_values("[x]"), "<[x]>");
  EXPECT_EQ(read_values("a\"b\", c\""), "<a\"b\">, <c\">");
  EXPECT_EQ(read_text("[\\x41]\n\\a\\\\b\\x41 = 1\n"), "[\\x41] \\a\\\\b\\x41= <1>");
}

TEST(Sections, Values) {
  EXPECT_EQ(read_values(""), "");
  EXPECT_EQ(read_values(" \t"), "");
  EXPECT_EQ(read_values("one"), "<one>");
  EXPECT_EQ(read_values("one,two , three\t"), "<one>, <two>, <three>");
  EXPECT_EQ(read_values(" one and\ttwo "), "<one and\ttwo>");
  EXPECT_EQ(read_values("\x80\xff"), "<\x80\xff>");
}

TEST(Sections, EmptyValues) {
  EXPECT_EQ(read_values("a,,b"), "<a>, <>, <b>");
  EXPECT_EQ(read_values("a, \t ,b"), "<a>, <>, <b>");
  EXPECT_EQ(read_values(","), "<>, <>") << "a comma has a value on either side";
  EXPECT_EQ(read_values("a, "), "<a>, <>");
  EXPECT_EQ(read_values(",a"), "<>, <a>");
  EXPECT_EQ(read_values("\"\""), "<>");
  EXPECT_EQ(read_values("\"\",\"\""), "<>, <>");
}

TEST(Sections, QuotedValues) {
  EXPECT_EQ(read_values(" \"a, b\" "), "<a, b>");
  EXPECT_EQ(read_values("\" ; [x] = , \t\",\"b\""), "< ; [x] = , \t>, <b>");
  EXPECT_EQ(read_values("\"a\"\t, b"), "<a>, <b>");
}

// A backslash and the byte behind it are delivered as they stand, and end nothing.
TEST(Sections, Escapes) {
  EXPECT_EQ(read_values("a\\,b"), "<a\\,b>");
  EXPECT_EQ(read_values("\"a\\\"b\""), "<a\\\"b>");
  EXPECT_EQ(read_values("\\\"a\", b"), "<\\\"a\">, <b>") << "it does not stand in quotes";
  EXPECT_EQ(read_values("a\\\\,b"), "<a\\\\>, <b>");
  EXPECT_EQ(read_values("\"a\\\\\",b"), "<a\\\\>, <b>");
  EXPECT_EQ(read_values("a\\n\\0"), "<a\\n\\0>");
  EXPECT_EQ(read_values("\\ a\\ "), "<\\ a\\ >") << "such a blank is text";
  EXPECT_EQ(read_values("\\\ta\\\t ,b"), "<\\\ta\\\t>, <b>");
}

TEST(Sections, HexEscapes) {
  EXPECT_EQ(read_values("\\x41\\x7a\\x6A"), "<Azj>");
  EXPECT_EQ(read_values("\"\\x41\""), "<A>");
  EXPECT_EQ(read_values("\\xff\\xFF\\x80"), "<\xff\xff\x80>");
  EXPECT_EQ(read_values("\\x411"), "<A1>");
  // What comes out is text, whatever byte it is.
  EXPECT_EQ(read_values("\\x20a\\x09"), "< a\t>");
  EXPECT_EQ(read_values("a\\x2cb"), "<a,b>");
  EXPECT_EQ(read_values("\\x22a"), "<\"a>");
  EXPECT_EQ(read_values("\"a\\x22b\""), "<a\"b>");
  EXPECT_EQ(read_values("\\x5c,a"), "<\\>, <a>");
  EXPECT_EQ(read_values("\\x5cx41"), "<\\x41>");
  EXPECT_EQ(read_values("\\x0a"), "<\n>");
}

TEST(Sections, WhatIsNoHexEscape) {
  EXPECT_EQ(read_values("\\x"), "<\\x>");
  EXPECT_EQ(read_values("\\x4"), "<\\x4>");
  EXPECT_EQ(read_values("\\x4g"), "<\\x4g>");
  EXPECT_EQ(read_values("\\xg4"), "<\\xg4>");
  EXPECT_EQ(read_values("\\x4,1"), "<\\x4>, <1>");
  EXPECT_EQ(read_values("\"\\x4\""), "<\\x4>");
  EXPECT_EQ(read_values("\\X41"), "<\\X41>");
  EXPECT_EQ(read_values("\\\\x41"), "<\\\\x41>");
  // The bytes beside the digits and the letters.
  for (const char *const pair : {"/0", "0/", ":0", "0:", "@0", "0@", "G0", "0G", "`0", "0`", "g0",
                                 "0g", "\x10\x30", "0\x11", "0\x19"}) {
    const std::string value = std::string("\\x") + pair;
    EXPECT_EQ(read_values(value), "<" + value + ">");
  }
}

// A NUL in a value is spelled, and the bytes behind it can be read; what is not used is zero.
TEST(Sections, RawBytes) {
  const TextFile text("[s]\nlong = a long text, \\x00\\x00\\x05\\x06, x\\x00y\n");
  Reader reader(text);
  ASSERT_STREQ(reader.section(), "s");
  ASSERT_STREQ(reader.entry(), "long");
  ASSERT_STREQ(reader.value(), "a long text");
  const char *const number = reader.value();
  ASSERT_EQ(number, reader.file.value);
  std::string expected("\0\0\5\6", 4);
  expected.resize(INTL_VALUE_SIZE);
  EXPECT_EQ(std::string(number, INTL_VALUE_SIZE), expected);
  reader.value();
  expected.assign("x\0y", 3);
  expected.resize(INTL_VALUE_SIZE);
  EXPECT_EQ(std::string(number, INTL_VALUE_SIZE), expected);
}

// The blanks that were taken off leave nothing behind either.
TEST(Sections, TheRestOfAValueIsZero) {
  const TextFile text("[s]\nk = a \t \t , b\n");
  Reader reader(text);
  reader.section();
  reader.entry();
  const char *const value = reader.value();
  std::string expected("a");
  expected.resize(INTL_VALUE_SIZE);
  EXPECT_EQ(std::string(value, INTL_VALUE_SIZE), expected);
}

TEST(Sections, JoinedLines) {
  EXPECT_EQ(read_values(" one\\\ntwo"), "<onetwo>");
  EXPECT_EQ(read_values(" one \\\n  two"), "<one   two>") << "the blanks are inside the value";
  EXPECT_EQ(read_values(" one,\\\n  two"), "<one>, <two>");
  EXPECT_EQ(read_values(" one\\\n  , two"), "<one>, <two>");
  EXPECT_EQ(read_values(" \\\n one"), "<one>");
  EXPECT_EQ(read_values("\\\n"), "");
  EXPECT_EQ(read_values("\"a\\\n b\"\\\n,\\\r\nc"), "<a b>, <c>");
  EXPECT_EQ(read_values("a\\\n\\\n\\\nb"), "<ab>");
  // What would begin something else in a line of its own does not here.
  EXPECT_EQ(read_values("a\\\n; b\\\n[c]\\\nd = e"), "<a; b[c]d = e>");
  // An escaped backslash joins nothing, a third one does.
  EXPECT_EQ(read_values("a\\\\\nb = c"), "<a\\\\> b= <c>");
  EXPECT_EQ(read_values("a\\\\\\\nb"), "<a\\\\b>");
  EXPECT_EQ(read_values("a\\,\\\nb"), "<a\\,b>");
  EXPECT_EQ(read_values("a\\ \nb = c"), "<a\\ > b= <c>") << "a blank ends the line";
  // An escape stands in one line.
  EXPECT_EQ(read_values("\\x4\\\n1"), "<\\x41>");
}

TEST(Sections, JoinedNames) {
  EXPECT_EQ(read_text("[one\\\ntwo]\nke\\\ny\\\n= 1\n"), "[onetwo] key= <1>");
  EXPECT_EQ(read_text("\\\n[s\\\n]\\\n\n  \\\n\\\n; c\n\\\nk = 1\n"), "[s] k= <1>");
  EXPECT_EQ(read_text("[s]\nk\\\\\n= 1\n"), "[s] k\\= <1>");
}

// ---- limits ----

std::string many(size_t count, char byte = 'v') {
  return std::string(count, byte);
}

TEST(SectionLimits, Line) {
  // 1023 bytes with everything: "k = " and 1019 more.
  for (const char *const end : {"\n", "\r\n", ""}) {
    EXPECT_EQ(read_text("[s]\nk = " + many(1018) + end), "[s] k= <" + many(1018) + ">");
    EXPECT_EQ(read_text("[s]\nk = " + many(1019) + end), "[s] k= <" + many(1019) + ">");
    EXPECT_EQ(read_text("[s]\nk = " + many(1020) + end), "[s] -3 in line 2");
    EXPECT_EQ(read_text("[s]\nk = " + many(1021) + end), "[s] -3 in line 2");
  }
  EXPECT_EQ(read_text("[s]\nk = " + many(1019) + "\r"), "[s] -3 in line 2") << "ends no line";
  EXPECT_EQ(read_text(";" + many(1022) + "\n[s]\n"), "[s]");
  EXPECT_EQ(read_text(";" + many(1023) + "\n[s]\n"), "-3 in line 1") << "comments too";
  EXPECT_EQ(read_text(many(1023, ' ') + "\n[s]\n"), "[s]");
  EXPECT_EQ(read_text(many(1024, ' ') + "\n[s]\n"), "-3 in line 1");
  EXPECT_EQ(read_text("[s]\n" + many(100'000)), "[s] -3 in line 2");
}

TEST(SectionLimits, JoinedLine) {
  // Each line has its own limit, and the backslash counts.
  EXPECT_EQ(read_text("[s]\nk =" + many(1019, ' ') + "\\\n" + many(1023)),
            "[s] k= <" + many(1023) + ">");
  EXPECT_EQ(read_text("[s]\nk =" + many(1020, ' ') + "\\\n" + many(1023)), "[s] -3 in line 2");
  EXPECT_EQ(read_text("[s]\nk = a,\\\n" + many(1024)), "[s] k= <a>, -3 in line 3");
}

TEST(SectionLimits, Names) {
  for (const auto &[before, after, head, wrap] :
       {std::array<std::string, 4>{"[", "]\n", "", "[]"},
        std::array<std::string, 4>{"[s]\n  ", " = 1\n", "[s] ", "="}}) {
    const size_t line = before == "[" ? 1 : 2;
    for (const size_t length : {62, 63}) {
      const std::string name = many(length, 'n');
      EXPECT_EQ(read_text(before + name + after).find(name + wrap.substr(wrap.size() - 1)),
                head.size() + wrap.size() - 1);
      EXPECT_EQ(read_text(before + "  " + name + "   " + after).find(name),
                head.size() + wrap.size() - 1)
          << "blanks around it do not count";
    }
    for (const size_t length : {64, 65, 900})
      EXPECT_EQ(read_text(before + many(length, 'n') + after),
                head + "-4 in line " + std::to_string(line));
  }
  EXPECT_EQ(read_text("[" + many(40, 'n') + many(24, ' ') + "n]"), "-4 in line 1")
      << "blanks inside it count";
}

TEST(SectionLimits, Value) {
  const std::string first = many(1000) + "\\\n";
  EXPECT_EQ(read_values("\\\n" + first + many(23)), "<" + many(1023) + ">");
  EXPECT_EQ(read_values("\\\n" + first + many(24)), "<" + many(1024) + ">");
  EXPECT_EQ(read_values("\\\n" + first + many(25)), "-5 in line 4");
  EXPECT_EQ(read_values("\\\n" + first + many(24) + ",a"), "<" + many(1024) + ">, <a>");
  EXPECT_EQ(read_values("\\\n" + first + many(25) + ",a"), "-5 in line 4");
  EXPECT_EQ(read_values("\"\\\n" + first + many(24) + "\""), "<" + many(1024) + ">");
  EXPECT_EQ(read_values("\"\\\n" + first + many(25) + "\""), "-5 in line 4");
  // Blanks count when text follows them, and not behind it.
  EXPECT_EQ(read_values("\\\n" + first + many(24) + many(900, ' ') + "\\\n   ,a"),
            "<" + many(1024) + ">, <a>");
  EXPECT_EQ(read_values("\\\n" + first + many(23) + many(900, ' ')), "<" + many(1023) + ">");
  EXPECT_EQ(read_values("\\\n" + first + many(23) + "  a"), "-5 in line 4");
  EXPECT_EQ(read_values("\\\n" + first + many(22) + " a"), "<" + many(1022) + " a>");
  // The bytes count that come out.
  std::string escapes;
  for (int i = 0; i < 1024; ++i)
    escapes += i % 200 == 0 ? "\\\n\\x41" : "\\x41";
  EXPECT_EQ(read_values(escapes), "<" + many(1024, 'A') + ">");
  EXPECT_EQ(read_values(escapes + "\\x41"), "-5 in line 8");
  EXPECT_EQ(read_values("\\\n" + first + many(22) + "\\,"), "<" + many(1022) + "\\,>");
  EXPECT_EQ(read_values("\\\n" + first + many(23) + "\\,"), "-5 in line 4");
}

TEST(SectionLimits, ManyValuesInOneEntry) {
  std::string values, expected;
  for (int i = 0; i < 5000; ++i) {
    values += std::to_string(i) + (i % 100 == 99 ? ",\\\n" : ",");
    expected += "<" + std::to_string(i) + ">, ";
  }
  EXPECT_EQ(read_values(values + "x"), expected + "<x>");
}

// ---- malformed files ----

TEST(SectionErrors, MalformedLines) {
  EXPECT_EQ(read_text("a = 1\n[s]\n"), "-6 in line 1") << "an entry before any section";
  EXPECT_EQ(read_text("; c\n\na\n"), "-6 in line 3");
  EXPECT_EQ(read_text("[s]\na = 1\nword\n"), "[s] a= <1> -6 in line 3") << "no sign";
  EXPECT_EQ(read_text("[s]\n" + many(100) + "\n"), "[s] -6 in line 2") << "before its length";
  EXPECT_EQ(read_text("[s]\n= 1\n"), "[s] -6 in line 2") << "no key";
  EXPECT_EQ(read_text("[s]\n \t = 1\n"), "[s] -6 in line 2");
  EXPECT_EQ(read_text("[s]\n\"k\n"), "[s] -6 in line 2");
  EXPECT_EQ(read_text("[s\na = 1\n"), "-6 in line 1") << "no end of the name";
  EXPECT_EQ(read_text("[]\n"), "-6 in line 1") << "no name";
  EXPECT_EQ(read_text("[ \t]\n"), "-6 in line 1");
  EXPECT_EQ(read_text("[a] b\n"), "-6 in line 1") << "text behind the name";
  EXPECT_EQ(read_text("[a] ; b\n"), "-6 in line 1");
  EXPECT_EQ(read_text("[a]]\n"), "-6 in line 1");
  EXPECT_EQ(read_text("[a]\\\nb = 1\n"), "-6 in line 2");
  EXPECT_EQ(read_text("]\n"), "-6 in line 1");
  EXPECT_EQ(read_text("\xEF\xBB\xBF[s]\n"), "-6 in line 1") << "a byte order mark is text";
}

TEST(SectionErrors, Quotes) {
  EXPECT_EQ(read_values("\"a"), "-6 in line 2");
  EXPECT_EQ(read_values("\""), "-6 in line 2");
  EXPECT_EQ(read_values("a, \"b"), "<a>, -6 in line 2");
  EXPECT_EQ(read_values("\"a\\\""), "-6 in line 2") << "an escaped quote ends nothing";
  EXPECT_EQ(read_values("\"a\nb\""), "-6 in line 2") << "nor does the line join";
  EXPECT_EQ(read_values("\"a\\\nb"), "-6 in line 3");
  EXPECT_EQ(read_values("\"a\" b"), "-6 in line 2");
  EXPECT_EQ(read_values("\"a\"b, c"), "-6 in line 2");
  EXPECT_EQ(read_values("\"a\"\"b\""), "-6 in line 2");
  EXPECT_EQ(read_values("\"a\";"), "-6 in line 2");
  EXPECT_EQ(read_values("\"a\"\\,"), "-6 in line 2");
}

TEST(SectionErrors, ABackslashWithoutANextLine) {
  for (const char *const end : {"", "\n", "\r\n"}) {
    const std::string at_the_end = std::string("\\") + end;
    EXPECT_EQ(read_text("[s]\nk = a" + at_the_end), "[s] k= -6 in line 2");
    EXPECT_EQ(read_text("[s]\nk = a," + at_the_end), "[s] k= <a>, -6 in line 2");
    EXPECT_EQ(read_text("[s]\nk = " + at_the_end), "[s] -6 in line 2");
    EXPECT_EQ(read_text("[s]\nk = \"a\"" + at_the_end), "[s] k= -6 in line 2");
    EXPECT_EQ(read_text("[s]\nk" + at_the_end), "[s] -6 in line 2");
    EXPECT_EQ(read_text("[s" + at_the_end), "-6 in line 1");
    EXPECT_EQ(read_text("[s]" + at_the_end), "-6 in line 1");
    EXPECT_EQ(read_text(at_the_end), "-6 in line 1");
  }
  EXPECT_EQ(read_text("[s]\nk = a\\\n\n"), "[s] k= <a>") << "an empty line is one";
}

TEST(SectionErrors, NulBytes) {
  const std::string nul(1, '\0');
  EXPECT_EQ(read_text(nul), "-6 in line 1");
  EXPECT_EQ(read_text("[s]\n; " + nul + "\n"), "[s] -6 in line 2") << "even in a comment";
  EXPECT_EQ(read_text("[s" + nul + "]\n"), "-6 in line 1");
  EXPECT_EQ(read_text("[s]\nk = a" + nul + "\n"), "[s] -6 in line 2");
  EXPECT_EQ(read_text("[s]\nk = a,\\\n" + nul), "[s] k= <a>, -6 in line 3");
  EXPECT_EQ(read_text("[s]\n" + many(1022) + nul + "\n"), "[s] -6 in line 2");
  EXPECT_EQ(read_text("[s]\n" + many(1023) + nul + "\n"), "[s] -3 in line 2");
}

TEST(SectionErrors, FileStaysAtTheError) {
  const TextFile text("[a]\nk = 1, \"2\" 3, 4\nl = 5\n[b]\nm = 6\n");
  Reader reader(text);
  ASSERT_STREQ(reader.section(), "a");
  ASSERT_STREQ(reader.entry(), "k");
  ASSERT_STREQ(reader.value(), "1");
  EXPECT_EQ(reader.status, 1);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(reader.value(), nullptr);
    EXPECT_EQ(reader.status, ZRVINTL_ESYNTAX);
    EXPECT_EQ(reader.entry(), nullptr);
    EXPECT_EQ(reader.status, ZRVINTL_ESYNTAX);
    EXPECT_EQ(reader.section(), nullptr);
    EXPECT_EQ(reader.status, ZRVINTL_ESYNTAX);
    EXPECT_EQ(reader.file.linenum, 2);
  }
  EXPECT_EQ(intl_close(&reader.file), 0) << "it is told once";
}

// ---- the calls ----

TEST(SectionCalls, StatusOfTheValues) {
  const TextFile text("[s]\nnone =\nsome = a, b\n");
  Reader reader(text);
  EXPECT_STREQ(reader.section(), "s");
  EXPECT_EQ(reader.status, 0);
  EXPECT_STREQ(reader.entry(), "none");
  EXPECT_EQ(reader.status, 0);
  reader.status = 77;
  EXPECT_EQ(reader.value(), nullptr);
  EXPECT_EQ(reader.status, 0);
  EXPECT_STREQ(reader.entry(), "some");
  EXPECT_STREQ(reader.value(), "a");
  EXPECT_EQ(reader.status, 1);
  EXPECT_STREQ(reader.value(), "b");
  EXPECT_EQ(reader.status, 0);
  for (int i = 0; i < 2; ++i) {
    reader.status = 77;
    EXPECT_EQ(reader.value(), nullptr);
    EXPECT_EQ(reader.status, 0);
  }
  for (int i = 0; i < 2; ++i) {
    reader.status = 77;
    EXPECT_EQ(reader.entry(), nullptr);
    EXPECT_EQ(reader.status, 0);
    reader.status = 77;
    EXPECT_EQ(reader.value(), nullptr);
    EXPECT_EQ(reader.status, 0);
  }
  for (int i = 0; i < 2; ++i) {
    reader.status = 77;
    EXPECT_EQ(reader.section(), nullptr);
    EXPECT_EQ(reader.status, 0);
  }
}

TEST(SectionCalls, BeforeTheFirstSection) {
  const TextFile text("; c\n[s]\nk = 1\n");
  Reader reader(text);
  EXPECT_EQ(reader.value(), nullptr);
  EXPECT_EQ(reader.status, 0);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(reader.entry(), nullptr);
    EXPECT_EQ(reader.status, 0);
  }
  EXPECT_STREQ(reader.section(), "s");
  EXPECT_EQ(reader.value(), nullptr) << "no entry was asked for";
  EXPECT_EQ(reader.status, 0);
  EXPECT_STREQ(reader.entry(), "k");
}

TEST(SectionCalls, TheRestIsPassedOver) {
  const TextFile text("[a]\nk = 1, 2, \\\n  [x]\nl = 3\nm = 4 \\\n[y]\n[b]\nn = 5\n");
  {
    Reader reader(text);
    EXPECT_STREQ(reader.section(), "a");
    EXPECT_STREQ(reader.section(), "b") << "a joined line begins no section";
    EXPECT_STREQ(reader.entry(), "n");
  }
  {
    Reader reader(text);
    reader.section();
    EXPECT_STREQ(reader.entry(), "k");
    EXPECT_STREQ(reader.value(), "1");
    EXPECT_STREQ(reader.entry(), "l") << "values are left";
    EXPECT_STREQ(reader.entry(), "m") << "all of them";
    EXPECT_STREQ(reader.section(), "b");
    EXPECT_EQ(reader.entry() == nullptr, false);
    EXPECT_EQ(reader.section(), nullptr);
    EXPECT_EQ(reader.status, 0);
  }
}

// What is passed over must be well formed.
TEST(SectionCalls, ErrorsInWhatIsPassedOver) {
  for (const char *const bad : {"k = \"1\" 2\n", "k\n", "k = 1, \"\n", "k = 1, 2\nx\n"}) {
    const TextFile text("[a]\n" + std::string(bad) + "[b]\n");
    Reader reader(text);
    EXPECT_STREQ(reader.section(), "a");
    EXPECT_EQ(reader.section(), nullptr) << bad;
    EXPECT_EQ(reader.status, ZRVINTL_ESYNTAX);
  }
  const TextFile text("[a]\nk = 1, \"2\nl = 3\n");
  Reader reader(text);
  reader.section();
  EXPECT_STREQ(reader.entry(), "k");
  EXPECT_EQ(reader.entry(), nullptr);
  EXPECT_EQ(reader.status, ZRVINTL_ESYNTAX);
  EXPECT_EQ(reader.file.linenum, 2);
}

// A name stays while values are read, and a value until the next call.
TEST(SectionCalls, TextsStandInTheRecord) {
  const TextFile text("[s]\nk = 1, 2\nl =\n[t]\n");
  Reader reader(text);
  const char *const section = reader.section();
  const char *const entry = reader.entry();
  const char *const value = reader.value();
  EXPECT_EQ(section, reader.file.section);
  EXPECT_EQ(entry, reader.file.entry);
  EXPECT_EQ(value, reader.file.value);
  EXPECT_EQ(reader.value(), value);
  EXPECT_STREQ(value, "2");
  EXPECT_STREQ(section, "s");
  EXPECT_STREQ(entry, "k");
  reader.entry();
  EXPECT_STREQ(entry, "l");
  EXPECT_STREQ(section, "s");
  reader.section();
  EXPECT_STREQ(section, "t");
}

TEST(SectionCalls, TheRecordTellsWhereItIs) {
  const TextFile text("\n[s]\nk = \"1\", 2\\\n3\n");
  Reader reader(text);
  EXPECT_EQ(reader.file.linenum, 0);
  reader.section();
  EXPECT_EQ(reader.file.linenum, 2);
  EXPECT_EQ(reader.file.end_of_section, 0);
  reader.entry();
  EXPECT_EQ(reader.file.linenum, 3);
  EXPECT_EQ(reader.file.end_of_list, 0);
  reader.value();
  EXPECT_EQ(reader.file.linenum, 3);
  EXPECT_EQ(reader.file.isquoted, 1);
  reader.value();
  EXPECT_EQ(reader.file.linenum, 4);
  EXPECT_EQ(reader.file.isquoted, 0);
  EXPECT_EQ(reader.file.end_of_list, 1);
  EXPECT_EQ(reader.file.eof, 0);
  reader.entry();
  EXPECT_EQ(reader.file.linenum, 4);
  EXPECT_EQ(reader.file.end_of_section, 1);
  EXPECT_EQ(reader.file.eof, 1);
}

TEST(SectionCalls, StatusMayBeNull) {
  const TextFile text("[s]\nk = 1\nx\n");
  Reader reader(text);
  EXPECT_STREQ(intl_nextsection(&reader.file, nullptr), "s");
  EXPECT_STREQ(intl_nextentry(&reader.file, nullptr), "k");
  EXPECT_STREQ(intl_nextvalue(&reader.file, nullptr), "1");
  EXPECT_EQ(intl_nextvalue(&reader.file, nullptr), nullptr);
  EXPECT_EQ(intl_nextentry(&reader.file, nullptr), nullptr);
  EXPECT_EQ(intl_nextsection(&reader.file, nullptr), nullptr);
}

// Two files do not know one another.
TEST(SectionCalls, TwoFilesAtOnce) {
  const TextFile first_text("[a]\nk = 1, 2\n"), second_text("[b]\nl = 3, 4\n");
  Reader first(first_text), second(second_text);
  EXPECT_STREQ(first.section(), "a");
  EXPECT_STREQ(second.section(), "b");
  EXPECT_STREQ(first.entry(), "k");
  EXPECT_STREQ(second.entry(), "l");
  EXPECT_STREQ(first.value(), "1");
  EXPECT_STREQ(second.value(), "3");
  EXPECT_STREQ(first.value(), "2");
  EXPECT_STREQ(second.value(), "4");
}

void expect_closed(INTL_LOCFILE *file) {
  for (const auto next : {intl_nextsection, intl_nextentry, intl_nextvalue}) {
    int status = 77;
    EXPECT_EQ(next(file, &status), nullptr);
    EXPECT_EQ(status, ZRVINTL_ECLOSED);
    EXPECT_EQ(next(file, nullptr), nullptr);
  }
  EXPECT_EQ(intl_close(file), ZRVINTL_ECLOSED);
}

TEST(SectionCalls, FileThatIsNotOpen) {
  expect_closed(nullptr);
  INTL_LOCFILE file{};
  expect_closed(&file);
  std::memset(&file, 0xA5, sizeof file);
  expect_closed(&file);
  const TextFile text("[s]\n");
  ASSERT_EQ(intl_open(text.path(), &file), 0);
  ASSERT_EQ(intl_close(&file), 0);
  expect_closed(&file);
}

TEST(SectionCalls, FileThatCannotBeOpened) {
  const IoProbe probe;
  const AllocationProbe allocations;
  for (const char *const path : {"/nowhere/at/all", "", static_cast<const char *>(nullptr)}) {
    INTL_LOCFILE file;
    std::memset(&file, 0xA5, sizeof file);
    EXPECT_EQ(intl_open(path, &file), ZRVINTL_EOPEN);
    expect_closed(&file);
  }
  EXPECT_EQ(intl_open("/dev/null", nullptr), ZRVINTL_ECLOSED);
  EXPECT_EQ(probe.open_files(), 0U);
  EXPECT_EQ(allocations.live_blocks(), 0U);
}

TEST(SectionCalls, DirectoryCannotBeRead) {
  Reader reader("/");
  EXPECT_EQ(reader.section(), nullptr);
  EXPECT_EQ(reader.status, ZRVINTL_EREAD);
}

TEST(SectionCalls, Texts) {
  const char *const texts[] = {"no error",
                               "the file cannot be opened",
                               "the file cannot be read",
                               "a line of the file is too long",
                               "a name in the file is too long",
                               "a value in the file is too long",
                               "the file has a malformed line",
                               "the file is not open",
                               "the date section of the file is incomplete",
                               "an argument is not valid",
                               "the result does not fit",
                               "the home directory cannot be found"};
  int status = 0;
  for (const char *const text : texts) {
    EXPECT_STREQ(intl_errstr(status), text);
    EXPECT_STREQ(intl_errstr(-status), text);
    ++status;
  }
  for (const int unknown : {12, -12, 255, INT_MAX, INT_MIN, INT_MIN + 1})
    EXPECT_STREQ(intl_errstr(unknown), "an error that is not known");
}

// ---- the system ----

constexpr char sample[] = "; sample\n[a]\nk = 1, \"2\", \\x33\n\n[b]\nl =\nm = a \\\n  b\n";

// Reads all of a file; true when anything is told to have gone wrong.
bool read_fails(const char *path) {
  INTL_LOCFILE file;
  std::memset(&file, 0xA5, sizeof file);
  if (intl_open(path, &file) < 0)
    return true;
  int status;
  while (intl_nextsection(&file, &status) != nullptr)
    while (intl_nextentry(&file, &status) != nullptr)
      while (intl_nextvalue(&file, &status) != nullptr)
        continue;
  const bool closed = intl_close(&file) == 0;
  return !closed || status < 0;
}

TEST(SectionSystem, EachCallFails) {
  const TextFile text(sample);
  const AllocationProbe allocations;
  // One open, the read of the file, the read of its end, one close.
  EXPECT_EQ(zrvtest::fail_each_io([&] { return read_fails(text.path()); }), 4U);
  EXPECT_EQ(allocations.live_blocks(), 0U);
}

TEST(SectionSystem, StatusOfEachFailure) {
  const TextFile text(sample);
  IoProbe probe;
  INTL_LOCFILE file;
  probe.fail(1, EMFILE);
  EXPECT_EQ(intl_open(text.path(), &file), ZRVINTL_EOPEN);

  ASSERT_EQ(intl_open(text.path(), &file), 0);
  probe.fail(1);
  int status = 0;
  EXPECT_EQ(intl_nextsection(&file, &status), nullptr);
  EXPECT_EQ(status, ZRVINTL_EREAD);
  EXPECT_EQ(file.linenum, 1);
  EXPECT_EQ(intl_nextsection(&file, &status), nullptr);
  EXPECT_EQ(status, ZRVINTL_EREAD) << "the file stays there";
  EXPECT_EQ(probe.reads(), 1U) << "and is not read again";
  probe.fail(1);
  EXPECT_EQ(intl_close(&file), ZRVINTL_EREAD);
  EXPECT_EQ(probe.open_files(), 0U);
  expect_closed(&file);
}

// In the middle of the file, in the middle of a line.
TEST(SectionSystem, ReadThatFailsLater) {
  const TextFile text("[a]\nk = 1\nlong = 2\n");
  IoProbe probe;
  probe.limit_reads(12);
  Reader reader(text);
  EXPECT_STREQ(reader.section(), "a");
  EXPECT_STREQ(reader.entry(), "k");
  probe.fail(1);
  EXPECT_EQ(reader.entry(), nullptr);
  EXPECT_EQ(reader.status, ZRVINTL_EREAD);
  EXPECT_EQ(reader.file.linenum, 3);
}

TEST(SectionSystem, ReadThatIsInterruptedGoesOn) {
  const TextFile text(sample);
  const auto expected = read_everything(text.path());
  for (size_t nth = 2; nth <= 3; ++nth) {
    IoProbe probe;
    probe.fail(nth, EINTR);
    EXPECT_EQ(read_everything(text.path()), expected);
    EXPECT_EQ(probe.failures(), 1U);
  }
}

TEST(SectionSystem, ReadsOfEverySize) {
  std::string text = "; long file\n";
  for (int i = 0; text.size() < 20'000; ++i)
    text += i % 50 == 0 ? "[s" + std::to_string(i) + "]\r\n"
                        : "k" + std::to_string(i) + " = " + many(static_cast<size_t>(i) % 700) +
                              ", \\\r\n  b\r\n";
  const TextFile file(text);
  const auto expected = zrvtest::read_sections_slowly(text);
  for (const size_t most : {1, 2, 3, 7, 500, 1023, 1024, 1025, 4095, 4096, 100'000}) {
    IoProbe probe;
    probe.limit_reads(most);
    EXPECT_EQ(read_everything(file.path()), expected) << most;
  }
}

// A line of the greatest length whose end comes with a later read, or half of it.
TEST(SectionSystem, LongestLineInTwoReads) {
  const TextFile text("[s]\nk = " + many(1019) + "\r\nl = 1\n");
  for (size_t first = 1020; first < 1035; ++first) {
    IoProbe probe;
    probe.limit_reads(first);
    EXPECT_EQ(transcript(read_everything(text.path())), "[s] k= <" + many(1019) + "> l= <1>")
        << first;
  }
}

// The kernel is asked for blocks, not for bytes or lines.
TEST(SectionSystem, ReadsInBlocks) {
  std::string text = "[s]\n";
  while (text.size() < 40'000)
    text += "key = value, value\n";
  const TextFile file(text);
  const IoProbe probe;
  read_everything(file.path());
  EXPECT_LE(probe.reads(), 40'000U / 2048);
}

// Every place of a line's end relative to the blocks.
TEST(SectionSystem, LinesAcrossBlocks) {
  for (const char *const end : {"\n", "\r\n"}) {
    for (size_t before = 4096 - 40; before < 4096 + 10; ++before) {
      std::string text = "[s]\n";
      while (text.size() + 1000 < before)
        text += ";" + many(900) + "\n";
      text += ";" + many(before - text.size() - 2) + "\n";
      ASSERT_EQ(text.size(), before);
      text += "key = one," + std::string(end) + "two = \\" + end + "  three" + end;
      EXPECT_EQ(read_text(text), "[s] key= <one>, <> two= <three>") << before;
    }
  }
}

TEST(SectionSystem, EachAllocationFails) {
  const TextFile text(sample);
  const IoProbe probe;
  EXPECT_GT(zrvtest::fail_each_allocation([] {}, [&] { return read_fails(text.path()); }, [] {}),
            0U);
  EXPECT_EQ(probe.open_files(), 0U);
}

// ---- any file ----

// A sample whose bytes come from the syntax, so that its rules meet one another.
std::string random_text(std::mt19937_64 &random) {
  const auto below = [&](size_t bound) { return static_cast<size_t>(random() % bound); };
  static const char *const parts[] = {"[",       "]",     "=",     ",",    ";",     "\"",  "\\",
                                      "\n",      "\n",    "\r\n",  "\\\n", " ",     "\t",  "\\x4",
                                      "\\x",     "41",    "a",     "key",  "\r",    "\\,", "\\\"",
                                      "\\\\",    "[s]\n", "k = ",  "k=",   "\"a\"", ", ",  " = ",
                                      "\n[b]\n", "\\x00", "\\x20", "\x80", "x\n",   "\n;"};
  std::string text = below(8) != 0 ? "[s]\n" : "";
  for (size_t count = below(60); count > 0; --count) {
    switch (below(200)) {
    case 0:
      text += '\0';
      break;
    case 1:
      text += many(below(100), 'n');
      break;
    case 2:
      text += many(950 + below(100), "v \\"[below(3)]);
      break;
    default:
      text += parts[below(std::size(parts))];
    }
  }
  return text;
}

TEST(SectionRandom, AsTheSlowReader) {
  const unsigned long long seed = zrvtest::random_seed();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937_64 random{seed};
  for (size_t step = 0; step < zrvtest::random_steps() / 100; ++step) {
    const std::string text = random_text(random);
    const TextFile file(text);
    ASSERT_EQ(read_everything(file.path()), zrvtest::read_sections_slowly(text)) << text;
  }
}

// Whatever is passed over, what is read is the same, and the first error as well.
TEST(SectionRandom, AnyOrderOfCalls) {
  const unsigned long long seed = zrvtest::random_seed();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937_64 random{seed};
  for (size_t step = 0; step < zrvtest::random_steps() / 100; ++step) {
    const std::string text = random_text(random);
    const TextFile file(text);
    const std::vector<SectionEvent> all = zrvtest::read_sections_slowly(text);
    Reader reader(file);
    for (size_t next = 0; next + 1 < all.size();) {
      const auto kind = static_cast<SectionEvent::Kind>(random() % 3);
      const char *const found = kind == SectionEvent::section ? reader.section()
                                : kind == SectionEvent::entry ? reader.entry()
                                                              : reader.value();
      // The first event of its kind, with none of a higher kind before it.
      size_t wanted = next;
      while (all[wanted].kind > kind && all[wanted].kind != SectionEvent::end)
        ++wanted;
      if (all[wanted].kind == kind) {
        ASSERT_NE(found, nullptr) << text;
        ASSERT_EQ(kind == SectionEvent::value ? value_bytes(reader.file) : found, all[wanted].text)
            << text;
        ASSERT_EQ(reader.status, all[wanted].status) << text;
        next = wanted + 1;
      } else {
        ASSERT_EQ(found, nullptr) << text;
        // An error behind the entry or the section is not seen yet.
        if (reader.status != 0 || kind == SectionEvent::section) {
          ASSERT_EQ(reader.status, all[wanted].status) << text;
        }
        next = wanted;
      }
    }
  }
}

} // namespace
