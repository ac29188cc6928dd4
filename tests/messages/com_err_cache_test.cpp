// The cache of message texts: what is loaded, found, dropped, and what a failure leaves behind.
#include <algorithm>
#include <climits>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "message_fixture.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;
using Names = std::vector<std::string>;

constexpr const char *unit = "com_err_cache.cpp";

// ---- tables ----

TEST(MessageTables, Rows) {
  const char *const sections[] = {"comdefaults", "comlayer", "comorigin", "comapierror"};
  for (CS_INT i = 0; i < 4; ++i) {
    EXPECT_EQ(Comlocsections[i].errtag, i + 1);
    EXPECT_STREQ(Comlocsections[i].errstr, sections[i]);
    EXPECT_EQ(Comdeferrs[i].errtag, 1);
    EXPECT_EQ(Comdeferrs[i].errnum, i + 1);
  }
}

// ---- escapes ----

std::string filtered(const std::string &input) {
  GuardedBuffer output(input.size() + 1);
  const CS_INT length = com__err_filterescape(input.c_str(), output.text());
  EXPECT_EQ(output.text()[length], '\0');
  std::string in_place = input;
  EXPECT_EQ(com__err_filterescape(in_place.c_str(), in_place.data()), length);
  EXPECT_STREQ(in_place.c_str(), output.text());
  return output.contents(static_cast<size_t>(length));
}

TEST(MessageEscapes, Each) {
  EXPECT_EQ(filtered(R"(a\nb)"), "a\nb");
  EXPECT_EQ(filtered(R"(\r)"), "\r");
  EXPECT_EQ(filtered(R"(\t)"), "\t");
  EXPECT_EQ(filtered(R"(\b)"), "\b");
  EXPECT_EQ(filtered(R"(\f)"), "\f");
  EXPECT_EQ(filtered(R"(say \"no\")"), "say \"no\"");
  EXPECT_EQ(filtered(R"(\n\r\t\b\f\")"), "\n\r\t\b\f\"");
  EXPECT_EQ(filtered(""), "");
  EXPECT_EQ(filtered("plain"), "plain");
}

TEST(MessageEscapes, AnyOtherCharacterIsLost) {
  for (int byte = 1; byte < 256; ++byte) {
    if (std::strchr("nrtbf\"", byte) != nullptr)
      continue;
    const std::string input = {'a', '\\', static_cast<char>(byte), 'b'};
    EXPECT_EQ(filtered(input), "a\\b") << byte;
  }
  EXPECT_EQ(filtered(R"(\\)"), "\\");
  EXPECT_EQ(filtered(R"(\\n)"), "\\n");
  EXPECT_EQ(filtered(R"(\q)"), "\\");
}

TEST(MessageEscapes, ABackslashAtTheEndStays) {
  EXPECT_EQ(filtered("\\"), "\\");
  EXPECT_EQ(filtered("a\\"), "a\\");
}

// ---- setting up ----

class MessageCache : public Messages {
protected:
  // com_err_init for the file of the tests, with the sections of comnlib.loc.
  CS_RETCODE init(std::vector<CS_ERRIDX> errors = {},
                  std::vector<CS_ERRSECTION> sections = {Comlocsections, Comlocsections + 4}) {
    errhan.err_locale = &locale;
    errhan.err_file = text("own.loc");
    return com_err_init(&context, &errhan, sections.data(), static_cast<CS_INT>(sections.size()),
                        errors.empty() ? nullptr : errors.data(),
                        static_cast<CS_INT>(errors.size()));
  }
  std::string own(CS_INT section, CS_MSGNUM number) {
    CS_ERRIDX index = {section, number};
    CS_CHAR *found = nullptr;
    const CS_RETCODE result = com_err_msg(&context, &errhan, &index, &found);
    return result == CS_SUCCEED ? found : "status " + std::to_string(result);
  }
  std::string state(CS_MSGNUM number, CS_INT section) {
    char buffer[8];
    CS_INT length = -1;
    const CS_RETCODE result =
        com_err_sqlstate(&context, handle(), number, section, buffer, sizeof buffer, &length);
    return result == CS_SUCCEED ? std::string(buffer, static_cast<size_t>(length))
                                : "status " + std::to_string(result);
  }

  CS_ERRHAN errhan{};
};

TEST_F(MessageCache, StartsWithTheDefaults) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  ASSERT_NE(handle(), nullptr);
  EXPECT_STREQ(handle()->err_file, "comnlib.loc");
  EXPECT_EQ(handle()->err_locale, &locale);
  EXPECT_EQ(history(), (Names{"1.4", "1.3", "1.2", "1.1"}));
  ASSERT_NE(message()->locfilecache, nullptr);
  EXPECT_STREQ(message()->locfilecache->errfilename, "comnlib.loc");
  // Each section stands before those that came before it in the file.
  const CsErrSecCache *section = message()->locfilecache->errsecs;
  for (const CS_INT tag : {4, 3, 2, 1}) {
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(section->errtag, tag);
    EXPECT_STREQ(section->errstr, Comlocsections[tag - 1].errstr);
    section = section->next;
  }
  EXPECT_EQ(section, nullptr);
  EXPECT_EQ(get(1, 4), "no text");
}

TEST_F(MessageCache, ASecondStartLoadsNothingAgain) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(get(4, 7), "seven");
  const CS_ERRHAN *const before = handle();
  const AllocationProbe allocations;
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(handle(), before);
  EXPECT_EQ(history(), (Names{"4.7", "1.4", "1.3", "1.2", "1.1"}));
  EXPECT_EQ(message()->locfilecache->next, nullptr);
  EXPECT_EQ(allocations.live_blocks(), 0U);
}

TEST_F(MessageCache, AHandleMovesToAnotherLocale) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CsOID other_oid{};
  CsLocCache other = cache;
  other.langname = text("other");
  ASSERT_EQ(comn__intl_load_message(&context, &other_oid, &other), CS_SUCCEED);
  std::filesystem::create_directories(folder().parent_path() / "other");
  std::ofstream(folder().parent_path() / "other/comnlib.loc")
      << "[comdefaults]\n[comlayer]\n[comorigin]\n[comapierror]\n7=1,andere\n";
  CS_LOCALE other_locale = locale;
  other_locale.messageptr = &other;
  context.ctxlocale = &other_locale;
  const CS_ERRHAN *const before = handle();
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(handle(), before);
  EXPECT_EQ(handle()->err_locale, &other_locale);
  EXPECT_EQ(get(4, 7), "andere");
  EXPECT_EQ(message()->locerrcnt, 4); // the first language keeps its texts
  EXPECT_EQ(other.locmessage->locerrcnt, 1);
}

TEST_F(MessageCache, DropLeavesTheTexts) {
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
  const AllocationProbe allocations;
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  const size_t with_handle = allocations.live_blocks();
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
  EXPECT_EQ(handle(), nullptr);
  EXPECT_EQ(allocations.live_blocks(), with_handle - 2);
  EXPECT_EQ(history().size(), 4U);
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
}

TEST_F(MessageCache, StartNeedsAContextAndALocale) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_errinit(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_errdrop(nullptr));
  context.ctxlocale = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_errinit(&context));
  EXPECT_EQ(handle(), nullptr);
}

TEST_F(MessageCache, NullArgumentsOfTheLoad) {
  CS_ERRSECTION sections[] = {{1, "a"}};
  errhan = {&locale, text("own.loc")};
  EXPECT_EQ(com_err_init(nullptr, &errhan, sections, 1, nullptr, 0), CS_FAIL);
  EXPECT_EQ(com_err_init(&context, nullptr, sections, 1, nullptr, 0), CS_FAIL);
  EXPECT_EQ(com_err_init(&context, &errhan, nullptr, 1, nullptr, 0), CS_FAIL);
  errhan = {nullptr, text("own.loc")};
  EXPECT_EQ(com_err_init(&context, &errhan, sections, 1, nullptr, 0), CS_FAIL);
  errhan = {&locale, nullptr};
  EXPECT_EQ(com_err_init(&context, &errhan, sections, 1, nullptr, 0), CS_FAIL);
  errhan = {&locale, text("own.loc")};
  CS_MESSAGE *const record = cache.locmessage;
  cache.locmessage = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_err_init(&context, &errhan, sections, 1, nullptr, 0));
  cache.locmessage = record;
  cache.langname = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_err_init(&context, &errhan, sections, 1, nullptr, 0));
  cache.langname = text("plain");
  locale.messageptr = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_err_init(&context, &errhan, sections, 1, nullptr, 0));
  locale.messageptr = &cache;
}

TEST_F(MessageCache, FilesAreLinkedInTheirOrder) {
  write("[a]\n1=s,of a\n", "own.loc");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  ASSERT_EQ(init({{7, 1}}, {{7, "a"}}), CS_SUCCEED);
  EXPECT_STREQ(message()->locfilecache->errfilename, "comnlib.loc");
  EXPECT_STREQ(message()->locfilecache->next->errfilename, "own.loc");
  EXPECT_EQ(message()->locfilecache->next->next, nullptr);
  EXPECT_EQ(own(7, 1), "of a");
  EXPECT_EQ(get(7, 1), "status 0"); // not in that file
  EXPECT_EQ(history(), (Names{"7.1", "1.4", "1.3", "1.2", "1.1"}));
}

TEST_F(MessageCache, OtherSectionsAreNotCounted) {
  write("[x]\n1=s,x\n[b]\n1=s,of b\n[y]\n[a]\n1=s,of a\n[z]\nno entry\n", "own.loc");
  // The error stands behind the last section that is wanted.
  ASSERT_EQ(init({{1, 1}, {2, 1}}, {{1, "a"}, {2, "b"}}), CS_SUCCEED);
  EXPECT_EQ(history(), (Names{"1.1", "2.1"}));
  EXPECT_EQ(own(1, 1), "of a");
  EXPECT_EQ(own(2, 1), "of b");
}

TEST_F(MessageCache, ASectionThatIsMissing) {
  write("[a]\n1=s,of a\n", "own.loc");
  EXPECT_EQ(init({{1, 1}}, {{1, "a"}, {2, "b"}}), CS_FAIL);
  EXPECT_EQ(message()->locfilecache, nullptr);
  EXPECT_EQ(history(), Names{});
  EXPECT_EQ(own(1, 1), "status 0");
  // A section that stands there twice counts twice.
  write("[a]\n1=s,first\n[a]\n1=s,second\n2=s,two\n", "own.loc");
  EXPECT_EQ(init({{1, 1}, {1, 2}}, {{1, "a"}, {2, "b"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), "first");
  EXPECT_EQ(history(), (Names{"1.2", "1.1"}));
  EXPECT_EQ(message()->locfilecache->errsecs->next, nullptr);
  EXPECT_EQ(own(2, 1), "status 0");
}

TEST_F(MessageCache, NumbersOfEntries) {
  write("[a]\n 3 = s, three\n0x5 = s, zero\n-4 = s, minus\n12abc = s, twelve\nabc=s,text\n",
        "own.loc");
  ASSERT_EQ(init({{1, 3}, {1, 0}, {1, -4}, {1, 12}, {1, 99}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 3), "three");
  EXPECT_EQ(own(1, 0), "zero"); // the first of the two that are no number
  EXPECT_EQ(own(1, -4), "minus");
  EXPECT_EQ(own(1, 12), "twelve");
  EXPECT_EQ(own(1, 99), "status 0");
}

TEST_F(MessageCache, NumbersBeyondIntAreTheNearest) {
  write("[a]\n4294967297 = s, not one\n99999999999999999999 = s, no more\n"
        "-4294967297 = s, least\n1 = s, one\n",
        "own.loc");
  ASSERT_EQ(init({{1, INT_MAX}, {1, INT_MIN}, {1, 1}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, INT_MAX), "not one"); // the first of two
  EXPECT_EQ(own(1, INT_MIN), "least");
  EXPECT_EQ(own(1, 1), "one");
}

TEST_F(MessageCache, TheTextsOfOtherSectionsAreNotWanted) {
  write("[a]\n1=s,a1\n2=s,a2\n[b]\n1=s,b1\n2=s,b2\n", "own.loc");
  ASSERT_EQ(init({{1, 2}, {2, 1}}, {{1, "a"}, {2, "b"}}), CS_SUCCEED);
  EXPECT_EQ(history(), (Names{"2.1", "1.2"}));
}

TEST_F(MessageCache, ReadingEndsWithTheLastWantedText) {
  // Behind it stands what is no text.
  write("[a]\n1=s,one\n2=s,two\nno entry\n", "own.loc");
  EXPECT_EQ(init({{1, 2}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 2), "two");
}

TEST_F(MessageCache, HowManyTextsMayBeWanted) {
  write("[a]\n5=s,five\n", "own.loc");
  std::vector<CS_ERRIDX> errors(101, CS_ERRIDX{1, 5});
  EXPECT_EQ(init(errors, {{1, "a"}}), CS_FAIL);
  EXPECT_EQ(message()->locfilecache, nullptr);
  errors.pop_back();
  EXPECT_EQ(init(errors, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 5), "five");
  // None at all.
  EXPECT_EQ(init({}, {{1, "a"}}), CS_SUCCEED);
  CS_ERRSECTION sections[] = {{1, "a"}};
  CS_ERRIDX one = {1, 6};
  EXPECT_EQ(com_err_init(&context, &errhan, sections, 1, &one, 0), CS_SUCCEED);
  EXPECT_EQ(com_err_init(&context, &errhan, sections, 1, &one, -1), CS_SUCCEED);
  CsErrSecCache *const section = message()->locfilecache->errsecs;
  for (const CS_INT count : {-1, 0, 101})
    EXPECT_EQ(com__err_load_errors(&context, &errhan, nullptr, section, &one, count), CS_FAIL);
}

// ---- entries ----

TEST_F(MessageCache, ValuesOfAnEntry) {
  write("[a]\n"
        "1 = 42000, one piece\n"
        "2 = 42000, two, \" pieces\", \" and,\", \"\", \" a third\"\n"
        "3 = 42000, \"escapes\\n in \\\"each\\\" piece\\q\", \"\\\\t\"\n"
        "4 = 42000\n"
        "5 = 42000, \"\"\n"
        "6 =, no state\n"
        "7 = 1234567, seven\n"
        "8 = 12345678, eight\n",
        "own.loc");
  ASSERT_EQ(init({}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), "one piece");
  EXPECT_EQ(own(1, 2), "two pieces and, a third");
  EXPECT_EQ(own(1, 3), "escapes\n in \"each\" piece\\\\t");
  EXPECT_EQ(own(1, 4), ""); // a state and no text
  EXPECT_EQ(own(1, 5), "");
  EXPECT_EQ(own(1, 6), "no state");
  CS_CHAR buffer[8];
  CS_INT length = -1;
  const auto state_of = [&](CS_MSGNUM number) -> std::string {
    EXPECT_EQ(com_err_sqlstate(&context, &errhan, number, 1, buffer, 8, &length), CS_SUCCEED);
    EXPECT_EQ(std::strlen(buffer), static_cast<size_t>(length));
    return buffer;
  };
  EXPECT_EQ(state_of(1), "42000");
  EXPECT_EQ(state_of(6), "");
  EXPECT_EQ(state_of(7), "1234567");
  EXPECT_EQ(state_of(8), "1234567"); // at most seven bytes are kept
}

TEST_F(MessageCache, AnEntryWithoutAValue) {
  write("[a]\n1 =\n2 = s, two\n", "own.loc");
  EXPECT_EQ(init({{1, 1}}, {{1, "a"}}), CS_FAIL);
  EXPECT_EQ(message()->locfilecache, nullptr);
  ASSERT_EQ(init({{1, 2}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), "status 0");
  EXPECT_EQ(own(1, 2), "two");
  EXPECT_EQ(context.ctxintlerr, 77);
}

TEST_F(MessageCache, TextsOfManyPieces) {
  const std::string piece(400, 'x');
  std::string entry = "[a]\n1 = s", expected;
  for (int i = 0; i < 50; ++i) {
    entry += ", \\\n" + piece;
    expected += piece;
  }
  write(entry + "\n", "own.loc");
  ASSERT_EQ(init({{1, 1}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), expected);
}

TEST_F(MessageCache, ErrorsOfTheReader) {
  for (const auto &[bytes, status] :
       {std::pair{"[a]\n1 = s, \"open\n", -6}, std::pair{"[a]\n1 = \"s\n", -6},
        std::pair{"[a]\nno entry\n", -6}, std::pair{"[a\n", -6},
        std::pair{"[x]\nno entry\n[a]\n", -6}}) {
    write(bytes, "own.loc");
    context.ctxintlerr = 77;
    EXPECT_EQ(init({{1, 1}}, {{1, "a"}}), COM_INTL_ERROR) << bytes;
    EXPECT_EQ(context.ctxintlerr, status);
    EXPECT_EQ(message()->locfilecache, nullptr);
    EXPECT_EQ(history(), Names{});
  }
}

TEST_F(MessageCache, AFileThatIsNotThere) {
  EXPECT_EQ(init({{1, 1}}), COM_LOCFILE_ERROR);
  EXPECT_EQ(context.ctxintlerr, -1);
  EXPECT_EQ(message()->locfilecache, nullptr);
  std::filesystem::remove(folder() / "comnlib.loc");
  EXPECT_EQ(com_errinit(&context), COM_LOCFILE_ERROR);
  ASSERT_NE(handle(), nullptr); // of use all the same
  EXPECT_EQ(get(1, 1), "status 0");
}

// ---- look-ups ----

TEST_F(MessageCache, TextsAreLoadedWhenTheyAreMissed) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(get(4, 9), "nine");
  EXPECT_EQ(get(2, 1), "the layer");
  EXPECT_EQ(history(), (Names{"2.1", "4.9", "1.4", "1.3", "1.2", "1.1"}));
  // Now they are found without the file.
  std::filesystem::remove(folder() / "comnlib.loc");
  EXPECT_EQ(get(4, 9), "nine");
  EXPECT_EQ(get(2, 1), "the layer");
  EXPECT_EQ(get(4, 7), "status -414");
  EXPECT_EQ(context.ctxintlerr, -1);
}

TEST_F(MessageCache, NullArgumentsOfALookUp) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CS_ERRIDX index = {4, 7};
  CS_CHAR *found = nullptr;
  CsErrorCache *entry = nullptr;
  EXPECT_EQ(com_err_msg(nullptr, handle(), &index, &found), CS_FAIL);
  EXPECT_EQ(com_err_msg(&context, nullptr, &index, &found), CS_FAIL);
  EXPECT_EQ(com_err_msg(&context, handle(), nullptr, &found), CS_FAIL);
  EXPECT_EQ(com_err_msg(&context, handle(), &index, nullptr), CS_FAIL);
  EXPECT_EQ(com__err_getcache(&context, handle(), 4, 7, nullptr), CS_FAIL);
  errhan = {nullptr, text("comnlib.loc")};
  EXPECT_EQ(com__err_getcache(&context, &errhan, 4, 7, &entry), CS_FAIL);
  errhan = {&locale, nullptr};
  EXPECT_EQ(com__err_getcache(&context, &errhan, 4, 7, &entry), CS_FAIL);
  CS_LOCALE without{};
  errhan = {&without, text("comnlib.loc")};
  EXPECT_EQ(com__err_getcache(&context, &errhan, 4, 7, &entry), CS_FAIL);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(entry, nullptr);
}

TEST_F(MessageCache, ALookUpMakesNoFileAndNoSection) {
  write("[a]\n1=s,one\n[b]\n1=s,one\n", "own.loc");
  errhan = {&locale, text("own.loc")};
  EXPECT_EQ(own(1, 1), "status 0");
  EXPECT_EQ(message()->locfilecache, nullptr);
  ASSERT_EQ(init({}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(2, 1), "status 0");
  EXPECT_EQ(message()->locfilecache->errsecs->next, nullptr);
}

// When a missed text cannot be loaded, the answer is that of the second look into the cache.
TEST_F(MessageCache, AMissThatCannotBeRead) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  write("[comapierror]\n7 = s, \"open\n");
  EXPECT_EQ(get(4, 7), "status 0");
  EXPECT_EQ(context.ctxintlerr, -6);
  write("[comapierror]\n7 =\n");
  EXPECT_EQ(get(4, 7), "status 0");
  write("[other]\n7 = s, x\n");
  EXPECT_EQ(get(4, 7), "status 0");
  context.ctxintlerr = 77;
  write("[othe");
  EXPECT_EQ(get(4, 7), "status 0");
  EXPECT_EQ(context.ctxintlerr, -6);
  // An error behind the text does not matter.
  write("[comapierror]\n7 = s, seven\nno entry\n");
  EXPECT_EQ(get(4, 7), "seven");
}

TEST_F(MessageCache, States) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(state(7, 4), "42S02");
  EXPECT_EQ(state(99, 4), "status 0");
  EXPECT_EQ(state(7, 9), "status 0");
  CS_INT length = -1;
  GuardedBuffer eight(8);
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 7, 4, eight.text(), 8, &length), CS_SUCCEED);
  EXPECT_EQ(eight.contents(), std::string("42S02\0\0\0", 8));
  EXPECT_EQ(length, 5);
  GuardedBuffer five(5);
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 7, 4, five.text(), 5, &length), CS_SUCCEED);
  EXPECT_EQ(five.contents(), "42S02");
  GuardedBuffer four(4);
  length = -1;
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 7, 4, four.text(), 4, &length), CS_FAIL);
  EXPECT_EQ(length, 5);
  EXPECT_TRUE(four.is_untouched());
  length = -1;
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 99, 4, four.text(), 4, &length), CS_FAIL);
  EXPECT_EQ(length, -1);
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 7, 4, four.text(), -1, &length), CS_FAIL);
  EXPECT_TRUE(four.is_untouched());
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_err_sqlstate(&context, handle(), 7, 4, nullptr, 8, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_err_sqlstate(&context, handle(), 7, 4, eight.text(), 8, nullptr));
}

TEST_F(MessageCache, AStateThatCannotBeRead) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  std::filesystem::remove(folder() / "comnlib.loc");
  GuardedBuffer eight(8);
  CS_INT length = -1;
  EXPECT_EQ(com_err_sqlstate(&context, handle(), 7, 4, eight.text(), 8, &length),
            COM_LOCFILE_ERROR);
  EXPECT_TRUE(eight.is_untouched());
  EXPECT_EQ(length, -1);
}

// ---- conversion ----

// What a conversion of the application's does: it answers each call with the next of the results, and
// copies what fits.
struct Conversion {
  std::vector<CS_RETCODE> results;
  std::vector<std::pair<CS_INT, CS_INT>> calls; // length and room
} conversion;

CS_RETCODE convert(CS_CONTEXT *, CS_DATAFMT *from, CS_VOID *source, CS_DATAFMT *to, CS_VOID *dest,
                   CS_INT *length) {
  const size_t call = conversion.calls.size();
  conversion.calls.emplace_back(from->maxlength, to->maxlength);
  *length = std::min(from->maxlength, to->maxlength);
  std::memcpy(dest, source, static_cast<size_t>(*length));
  return call < conversion.results.size() ? conversion.results[call] : CS_SUCCEED;
}

// A locale whose set is another one, with a conversion of the application's.
class MessageConversion : public MessageCache {
protected:
  MessageConversion() {
    utf8.oid = &utf8_oid;
    globals.cmg_utf8_charset = &utf8;
    algorithm.from_oid = &utf8_oid;
    algorithm.to_oid = &charset_oid;
    algorithm.user_conv_func = convert;
    context.usercharconv = &algorithm;
    conversion = Conversion{};
    write("[a]\n1 = 42000, \"some\", \" text\"\n2 = 42000\n3 =, text\n", "own.loc");
  }

  // The status of a load of one text when the conversion answers so.
  CS_RETCODE load(CS_MSGNUM number, std::vector<CS_RETCODE> results) {
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
    conversion = {std::move(results), {}};
    return init({{1, number}}, {{1, "a"}});
  }

  CsOID utf8_oid{};
  CsCharDesc utf8{};
  CsUserAlgo algorithm{};
};

TEST_F(MessageConversion, TextThenState) {
  ASSERT_EQ(load(1, {}), CS_SUCCEED);
  EXPECT_EQ(conversion.calls, (std::vector<std::pair<CS_INT, CS_INT>>{{9, 9}, {5, 7}}));
  EXPECT_EQ(own(1, 1), "some text");
}

TEST_F(MessageConversion, EmptyTextsAndStatesStayEmpty) {
  ASSERT_EQ(load(2, {}), CS_SUCCEED);
  EXPECT_EQ(conversion.calls, (std::vector<std::pair<CS_INT, CS_INT>>{{5, 7}}));
  EXPECT_EQ(own(1, 2), "");
  ASSERT_EQ(load(3, {}), CS_SUCCEED);
  EXPECT_EQ(conversion.calls, (std::vector<std::pair<CS_INT, CS_INT>>{{4, 4}}));
  EXPECT_EQ(own(1, 3), "text");
}

TEST_F(MessageConversion, ATextThatGrowsGetsThreeTimesTheRoom) {
  ASSERT_EQ(load(1, {CS_CONV_TRUNCATED}), CS_SUCCEED);
  EXPECT_EQ(conversion.calls, (std::vector<std::pair<CS_INT, CS_INT>>{{9, 9}, {9, 27}, {5, 7}}));
  EXPECT_EQ(own(1, 1), "some text");
  ASSERT_EQ(load(1, {CS_CONV_TRUNCATED, CS_CONV_PARTIAL}), CS_SUCCEED);
  EXPECT_EQ(load(1, {CS_CONV_TRUNCATED, CS_CONV_TRUNCATED}), CS_CONV_TRUNCATED);
  EXPECT_EQ(conversion.calls.size(), 2U);
  EXPECT_EQ(history(), Names{});
  EXPECT_EQ(load(1, {CS_CONV_TRUNCATED, CS_CONV_BADCHAR}), CS_CONV_BADCHAR);
}

TEST_F(MessageConversion, ResultsForTheText) {
  EXPECT_EQ(load(1, {CS_CONV_PARTIAL}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), "some text");
  for (const CS_RETCODE result : {CS_FAIL, CS_MEM_ERROR, CS_CONV_OVERFLOW, CS_CONV_NOXLATE}) {
    EXPECT_EQ(load(1, {result}), result);
    EXPECT_EQ(conversion.calls.size(), 1U);
    EXPECT_EQ(history(), Names{});
  }
}

TEST_F(MessageConversion, ResultsForTheState) {
  for (const CS_RETCODE result : {CS_SUCCEED, CS_CONV_TRUNCATED, CS_CONV_PARTIAL}) {
    EXPECT_EQ(load(1, {CS_SUCCEED, result}), CS_SUCCEED);
    char state[8];
    CS_INT length = 0;
    EXPECT_EQ(com_err_sqlstate(&context, &errhan, 1, 1, state, 8, &length), CS_SUCCEED);
    EXPECT_STREQ(state, "42000");
  }
  for (const CS_RETCODE result : {CS_FAIL, CS_MEM_ERROR, CS_CONV_NOXLATE}) {
    EXPECT_EQ(load(1, {CS_SUCCEED, result}), result);
    EXPECT_EQ(history(), Names{});
  }
}

TEST_F(MessageConversion, NothingLeaks) {
  for (const std::vector<CS_RETCODE> &results :
       {std::vector<CS_RETCODE>{CS_FAIL}, {CS_CONV_TRUNCATED, CS_FAIL}, {CS_SUCCEED, CS_FAIL}}) {
    load(1, {});
    const AllocationProbe probe;
    conversion = {results, {}};
    EXPECT_NE(init({{1, 3}, {1, 2}}, {{1, "a"}}), CS_SUCCEED);
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
}

// The sets of the installation.
TEST_F(MessageCache, TextsComeInTheSetOfTheLocale) {
  CsOID utf8_oid{};
  CsCharDesc utf8{};
  utf8.oid = &utf8_oid;
  globals.cmg_utf8_charset = &utf8;
  CHAR_ATTRIB attribute{};
  attribute.cs_id = 1; // iso_1
  charset.char_attrib = &attribute;
  write("[a]\n1 = 42000, gr\xc3\xbc\xc3\x9f\xe4\xb8\xad\n", "own.loc");
  // The message file is in one home, the tables of the sets in another: they are linked.
  std::filesystem::create_directory_symlink(ZRVTEST_HOME "/charsets",
                                            std::filesystem::path(home) / "charsets");
  ASSERT_EQ(init({{1, 1}}, {{1, "a"}}), CS_SUCCEED);
  EXPECT_EQ(own(1, 1), "gr\xfc\xdf?");
}

// ---- the bound ----

std::string many_entries(int first, int last) {
  std::string result;
  for (int i = first; i <= last; ++i)
    result += std::to_string(i) + " = s, text " + std::to_string(i) + "\n";
  return result;
}

TEST_F(MessageCache, TheOldestGoesForTheHundredAndFirst) {
  write("[comdefaults]\n1=s,d1\n2=s,d2\n3=s,d3\n4=s,d4\n[comlayer]\n1=s,l\n[comorigin]\n1=s,o\n"
        "[comapierror]\n" +
        many_entries(1, 250));
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  for (int i = 1; i <= 96; ++i)
    EXPECT_EQ(get(4, i), "text " + std::to_string(i));
  EXPECT_EQ(message()->locerrcnt, 100);
  EXPECT_EQ(history().back(), "1.1");
  EXPECT_EQ(get(4, 97), "text 97");
  EXPECT_EQ(message()->locerrcnt, 100);
  EXPECT_EQ(history().front(), "4.97");
  EXPECT_EQ(history().back(), "1.2");
  // In the order in which they were loaded, whoever was looked at in between.
  EXPECT_EQ(get(1, 2), "d2");
  for (int i = 98; i <= 200; ++i) {
    EXPECT_EQ(get(4, i), "text " + std::to_string(i));
    const Names names = history();
    ASSERT_EQ(names.size(), 100U);
    const int oldest = i - 99;
    EXPECT_EQ(names.back(),
              oldest >= 1 ? "4." + std::to_string(oldest) : "1." + std::to_string(oldest + 4));
  }
  // What was dropped is loaded again.
  EXPECT_EQ(get(4, 1), "text 1");
  EXPECT_EQ(history().front(), "4.1");
  EXPECT_EQ(history().back(), "4.102");
}

TEST_F(MessageCache, AllFilesOfALocaleShareTheBound) {
  write("[a]\n" + many_entries(1, 60), "own.loc");
  write("[comdefaults]\n[comlayer]\n[comorigin]\n[comapierror]\n" + many_entries(1, 60));
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  ASSERT_EQ(init({}, {{7, "a"}}), CS_SUCCEED);
  for (int i = 1; i <= 60; ++i)
    EXPECT_EQ(get(4, i), "text " + std::to_string(i));
  for (int i = 1; i <= 41; ++i)
    EXPECT_EQ(own(7, i), "text " + std::to_string(i));
  EXPECT_EQ(history().size(), 100U);
  EXPECT_EQ(history().back(), "4.2");
}

TEST_F(MessageCache, ALoadOfManyTextsKeepsTheNewest) {
  write("[a]\n" + many_entries(1, 90) + "[b]\n" + many_entries(1, 90), "own.loc");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  std::vector<CS_ERRIDX> errors;
  for (int i = 41; i <= 90; ++i) {
    errors.push_back({7, i});
    errors.push_back({8, i});
  }
  ASSERT_EQ(init(errors, {{7, "a"}, {8, "b"}}), CS_SUCCEED);
  const Names names = history();
  EXPECT_EQ(names.size(), 100U);
  EXPECT_EQ(names.front(), "8.90");
  EXPECT_EQ(names.back(), "7.41"); // those that were there before are gone
  errors.clear();
  for (int i = 1; i <= 40; ++i)
    errors.push_back({7, i});
  ASSERT_EQ(init(errors, {{7, "a"}}), CS_SUCCEED);
  EXPECT_EQ(history().front(), "7.40");
  EXPECT_EQ(history().back(), "7.81");
}

// ---- failures ----

TEST_F(MessageCache, AFailedLoadLeavesEverythingAsItWas) {
  write("[comdefaults]\n[comlayer]\n[comorigin]\n[comapierror]\n" + many_entries(1, 100));
  write("[a]\n1=s,one\n2=s,two\n[b]\n3=s,three\n4=\n", "own.loc");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  for (int i = 1; i <= 100; ++i)
    EXPECT_EQ(get(4, i), "text " + std::to_string(i));
  const Names before = history();
  const CsErrorCache *const newest = message()->locerrhist;
  // A new file: nothing of it stays, and no text goes for it.
  EXPECT_EQ(init({{7, 1}, {7, 2}, {8, 3}, {8, 4}}, {{7, "a"}, {8, "b"}}), CS_FAIL);
  EXPECT_EQ(history(), before);
  EXPECT_EQ(message()->locerrhist, newest);
  EXPECT_EQ(message()->locfilecache->next, nullptr);
  // A file that is there: its sections and texts stay, the new ones do not.
  ASSERT_EQ(init({{7, 1}}, {{7, "a"}}), CS_SUCCEED);
  const Names with_one = history();
  EXPECT_EQ(with_one.front(), "7.1");
  EXPECT_EQ(init({{7, 1}, {7, 2}, {8, 3}, {8, 4}}, {{7, "a"}, {8, "b"}}), CS_FAIL);
  EXPECT_EQ(history(), with_one);
  const CsErrFileCache *const file = message()->locfilecache->next;
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->errsecs->errtag, 7);
  EXPECT_EQ(file->errsecs->next, nullptr);
  EXPECT_EQ(file->errsecs->errcache->errnum, 1);
  EXPECT_EQ(file->errsecs->errcache->next, nullptr);
}

TEST_F(MessageCache, EachAllocationOfTheStartFails) {
  const auto start = [&] {
    const CS_RETCODE result = com_errinit(&context);
    if (result == CS_SUCCEED)
      return false;
    EXPECT_TRUE(result == CS_MEM_ERROR || result == COM_LOCFILE_ERROR) << result;
    EXPECT_EQ(message()->locfilecache, nullptr);
    EXPECT_EQ(history(), Names{});
    return true;
  };
  const auto stop = [&] {
    EXPECT_EQ(history().size(), 4U);
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(com__errfile_cache_drop(message()->locfilecache), CS_SUCCEED);
    message()->locfilecache = nullptr;
    message()->locerrhist = nullptr;
    message()->locerrcnt = 0;
  };
  // Handle, name; file and its name; the reader; four sections and their names; for each of four
  // texts its pieces, its entry and its block.
  EXPECT_GE(fail_each_allocation([] {}, start, stop), 2 * (2 + 2 + 1 + 8 + 4 * 3U));
}

TEST_F(MessageCache, EachAllocationOfAMissFails) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  const auto miss = [&] {
    const std::string found = get(4, 9);
    if (found == "nine")
      return false;
    EXPECT_TRUE(found == "status 0" || found == "status -414") << found;
    EXPECT_EQ(history().size(), 4U);
    return true;
  };
  const auto forget = [&] {
    EXPECT_EQ(com__errfile_cache_drop(message()->locfilecache), CS_SUCCEED);
    message()->locfilecache = nullptr;
    message()->locerrhist = nullptr;
    message()->locerrcnt = 0;
  };
  // The probe counts from its own start, so everything is made within a round.
  const auto prepare = [&] {
    forget();
    ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  };
  forget();
  EXPECT_GE(fail_each_allocation(prepare, miss, forget), 4U);
}

TEST_F(MessageCache, EachReadOfTheStartFails) {
  const auto start = [&] {
    const CS_RETCODE result = com_errinit(&context);
    if (result == CS_SUCCEED) {
      EXPECT_EQ(history().size(), 4U);
      EXPECT_EQ(com__errfile_cache_drop(message()->locfilecache), CS_SUCCEED);
      message()->locfilecache = nullptr;
      message()->locerrhist = nullptr;
      message()->locerrcnt = 0;
      return false;
    }
    EXPECT_TRUE(result == COM_INTL_ERROR || result == COM_LOCFILE_ERROR) << result;
    EXPECT_TRUE(context.ctxintlerr == -1 || context.ctxintlerr == -2);
    EXPECT_EQ(message()->locfilecache, nullptr);
    EXPECT_EQ(history(), Names{});
    return true;
  };
  EXPECT_GE(fail_each_io(start), 3U);
}

TEST_F(MessageCache, AFailingCloseOfAMissIsTold) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  {
    IoProbe probe;
    EXPECT_EQ(get(4, 9), "nine");
    const size_t calls = probe.calls();
    probe.fail(calls); // the last of as many, which is the close
    context.ctxintlerr = 77;
    EXPECT_EQ(get(4, 7), "status -301");
    EXPECT_EQ(context.ctxintlerr, -2);
    EXPECT_EQ(probe.open_files(), 0U);
  }
  EXPECT_EQ(get(4, 7), "seven"); // it was loaded all the same
  EXPECT_EQ(history().front(), "4.7");
}

TEST_F(MessageCache, ADroppedTextStaysDroppedWhenTheNextOneFails) {
  write("[comdefaults]\n[comlayer]\n[comorigin]\n[comapierror]\n" + many_entries(1, 101));
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  for (int i = 1; i <= 100; ++i)
    EXPECT_EQ(get(4, i), "text " + std::to_string(i));
  {
    AllocationProbe probe;
    probe.fail(3); // the reader, the pieces, the entry
    EXPECT_EQ(get(4, 101), "status 0");
    EXPECT_EQ(probe.failures(), 1U);
  }
  EXPECT_EQ(message()->locerrcnt, 99);
  EXPECT_EQ(history().back(), "4.2");
  EXPECT_EQ(get(4, 101), "text 101");
  EXPECT_EQ(history().size(), 100U);
}

// ---- records ----

class MessageRecords : public Messages {};

TEST_F(MessageRecords, OneForEachLanguageInEachSet) {
  CsOID other_language{}, other_set{};
  CsCharDesc other_charset{};
  other_charset.oid = &other_set;
  CsLocCache caches[3] = {cache, cache, cache};
  caches[1].locchardesc = &other_charset;
  CS_MESSAGE *const first = cache.locmessage;
  EXPECT_EQ(first->lang_oid, &language_oid);
  EXPECT_EQ(first->charset_oid, &charset_oid);
  caches[0].locmessage = caches[1].locmessage = caches[2].locmessage = nullptr;
  EXPECT_EQ(comn__intl_load_message(&context, &language_oid, &caches[0]), CS_SUCCEED);
  EXPECT_EQ(caches[0].locmessage, first);
  EXPECT_EQ(comn__intl_load_message(&context, &language_oid, &caches[1]), CS_SUCCEED);
  EXPECT_NE(caches[1].locmessage, first);
  EXPECT_EQ(caches[1].locmessage->charset_oid, &other_set);
  EXPECT_EQ(comn__intl_load_message(&context, &other_language, &caches[2]), CS_SUCCEED);
  EXPECT_EQ(caches[2].locmessage->lang_oid, &other_language);
  // The newest first, and empty.
  EXPECT_EQ(globals.cmg_message, caches[2].locmessage);
  EXPECT_EQ(caches[2].locmessage->messagenext, caches[1].locmessage);
  EXPECT_EQ(caches[1].locmessage->messagenext, first);
  EXPECT_EQ(first->messagenext, nullptr);
  EXPECT_EQ(caches[2].locmessage->locfilecache, nullptr);
  EXPECT_EQ(caches[2].locmessage->locerrhist, nullptr);
  EXPECT_EQ(caches[2].locmessage->locerrcnt, 0);
  EXPECT_EQ(caches[2].locmessage->msgmtx, nullptr);
}

TEST_F(MessageRecords, WithoutMemory) {
  CsOID other_language{};
  const void *const head = globals.cmg_message;
  AllocationProbe probe;
  probe.fail(1);
  CS_MESSAGE *const before = cache.locmessage;
  EXPECT_EQ(comn__intl_load_message(&context, &other_language, &cache), CS_MEM_ERROR);
  EXPECT_EQ(cache.locmessage, before);
  EXPECT_EQ(globals.cmg_message, head);
}

TEST_F(MessageRecords, DropReleasesEverything) {
  ASSERT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_message, nullptr);
  const AllocationProbe probe;
  ASSERT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  get(4, 7);
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
  EXPECT_GT(probe.live_blocks(), 0U);
  EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(globals.cmg_message, nullptr);
  EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
  // One record alone.
  ASSERT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
  globals.cmg_message = nullptr;
  EXPECT_EQ(comn__message_drop(&context, cache.locmessage), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(MessageRecords, ATextMustHangUnderItsSection) {
  CsErrSecCache other{};
  CsErrorCache stray{};
  stray.errseccache = &other;
  auto *const file = static_cast<CsErrFileCache *>(comn_calloc(1, sizeof(CsErrFileCache)));
  auto *const section = static_cast<CsErrSecCache *>(comn_calloc(1, sizeof(CsErrSecCache)));
  file->errsecs = section;
  section->errcache = &stray;
  const CheckReport report =
      catch_check([&] { EXPECT_EQ(com__errfile_cache_drop(file), CS_SUCCEED); });
  EXPECT_TRUE(is_assertion_report(report, "com_message.cpp")) << report.text;
  comn_free(section); // which was left alone
}

TEST_F(MessageRecords, NullPointersAreFatal) {
  const char *const own_unit = "com_message.cpp";
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL,
                            comn__intl_load_message(nullptr, &language_oid, &cache));
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL,
                            comn__intl_load_message(&context, &language_oid, nullptr));
  CsLocCache without{};
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL,
                            comn__intl_load_message(&context, &language_oid, &without));
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL, comn__message_drop(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL, comn_intl_message_drop(nullptr));
  CS_CONTEXT bare{};
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL, comn_intl_message_drop(&bare));
  EXPECT_NULL_POINTER_CHECK(own_unit, CS_FAIL,
                            comn__intl_load_message(&bare, &language_oid, &cache));
}

} // namespace
