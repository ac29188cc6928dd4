// The readers of single values: what they take, what they refuse and what is left in the output.
#include <cstring>
#include <string>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "text_file.h"
#include "zrvcomn/sortordr.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "sortord_values.cpp";

// A file with one entry, before its first value.
class Entry {
public:
  explicit Entry(std::string_view values) : text("[s]\nkey = " + std::string(values) + "\n") {
    EXPECT_EQ(intl_open(text.path(), &file), 0);
    EXPECT_STREQ(intl_nextsection(&file, nullptr), "s");
    EXPECT_STREQ(intl_nextentry(&file, nullptr), "key");
  }
  ~Entry() { EXPECT_EQ(intl_close(&file), 0); }

  CS_RETCODE byte(CS_BYTE *value) { return comn__get_byteval(&context, &file, value); }
  CS_RETCODE two(CS_USHORT *value) { return comn__get_shortval(&context, &file, value); }
  CS_RETCODE four(CS_UINT *value) { return comn__get_longval(&context, &file, value); }
  CS_RETCODE truth(CS_BOOL *value) { return comn__get_boolval(&context, &file, value); }
  CS_RETCODE string(CS_CHAR *value, CS_BOOL is_alnum, CS_INT maxlen) {
    return comn__get_string(&context, &file, value, is_alnum, maxlen);
  }

  CS_CONTEXT context{};

private:
  TextFile text;

public:
  INTL_LOCFILE file;
};

TEST(ReadValue, NumbersAreTheFirstBytes) {
  struct {
    const char *value;
    CS_BYTE byte;
    CS_USHORT two;
    CS_UINT four;
  } const rows[] = {
      {"\\x01", 1, 0x0100, 0x01000000},
      {"\\x00\\x00\\x05\\x05", 0, 0, 0x00000505},
      {"\\xff\\xfe\\xfd\\xfc\\xfb", 0xff, 0xfffe, 0xfffefdfc},
      {"\\x80", 0x80, 0x8000, 0x80000000},
      {"1", 0x31, 0x3100, 0x31000000}, // not the number that the digit stands for
      {"abcde", 0x61, 0x6162, 0x61626364},
      {"\"\"", 0, 0, 0},
  };
  for (const auto &row : rows) {
    // What an earlier value left behind does not count.
    Entry entry("\\xee\\xee\\xee\\xee\\xee, " + std::string(row.value) + ", " + row.value + ", " +
                row.value);
    CS_BYTE byte = 0x55;
    CS_USHORT two = 0x5555;
    CS_UINT four = 0x55555555;
    EXPECT_EQ(entry.four(&four), CS_SUCCEED);
    EXPECT_EQ(entry.byte(&byte), CS_SUCCEED);
    EXPECT_EQ(entry.two(&two), CS_SUCCEED);
    EXPECT_EQ(entry.four(&four), CS_SUCCEED);
    EXPECT_EQ(byte, row.byte) << row.value;
    EXPECT_EQ(two, row.two) << row.value;
    EXPECT_EQ(four, row.four) << row.value;
    EXPECT_EQ(entry.context.ctxintlerr, 0);
  }
}

TEST(ReadValue, TruthIsTwoTexts) {
  Entry entry("true, false, \"true\"");
  CS_BOOL truth = -1;
  EXPECT_EQ(entry.truth(&truth), CS_SUCCEED);
  EXPECT_EQ(truth, 1);
  EXPECT_EQ(entry.truth(&truth), CS_SUCCEED);
  EXPECT_EQ(truth, 0);
  EXPECT_EQ(entry.truth(&truth), CS_SUCCEED);
  EXPECT_EQ(truth, 1);
  for (const char *const value :
       {"True", "TRUE", "tru", "true1", "\"true \"", "FALSE", "fals", "falsey", "0", "1", "\"\""}) {
    Entry other(value);
    truth = -1;
    EXPECT_EQ(other.truth(&truth), CS_FAIL) << value;
    EXPECT_EQ(truth, -1) << value;
  }
}

TEST(ReadValue, TextsFitWithTheirTerminator) {
  for (const size_t length : {0U, 1U, 8U, 9U, 10U, 11U, 40U}) {
    const std::string text(length, 't');
    Entry entry("\"" + text + "\", next");
    GuardedBuffer buffer(10);
    EXPECT_EQ(entry.string(buffer.text(), 0, 10), length < 10 ? CS_SUCCEED : CS_FAIL) << length;
    if (length < 10) {
      EXPECT_EQ(buffer.contents(length + 1), text + '\0');
      EXPECT_TRUE(buffer.is_untouched(length + 1));
    } else {
      EXPECT_TRUE(buffer.is_untouched());
    }
    EXPECT_EQ(entry.string(nullptr, 0, 0), CS_SUCCEED); // a refused value is read all the same
    EXPECT_EQ(entry.string(nullptr, 0, 0), CS_FAIL);
  }
}

TEST(ReadValue, NoRoomForATextAtAll) {
  GuardedBuffer buffer(1);
  for (const CS_INT room : {0, -1, -2147483647 - 1}) {
    Entry entry("\"\", t");
    EXPECT_EQ(entry.string(buffer.text(), 0, room), CS_FAIL);
    EXPECT_EQ(entry.string(buffer.text(), 0, room), CS_FAIL);
    EXPECT_TRUE(buffer.is_untouched());
  }
  Entry entry("\"\", t");
  EXPECT_EQ(entry.string(buffer.text(), 0, 1), CS_SUCCEED);
  EXPECT_EQ(buffer.contents(), std::string(1, '\0'));
  EXPECT_EQ(entry.string(buffer.text(), 0, 1), CS_FAIL);
}

// A null destination asks for nothing but the passing of the value.
TEST(ReadValue, PassesATextThatNobodyWants) {
  Entry entry("\"9 +\", \"\", last");
  EXPECT_EQ(entry.string(nullptr, 1, 1), CS_SUCCEED);
  EXPECT_EQ(entry.string(nullptr, 1, -5), CS_SUCCEED);
  CS_CHAR last[5];
  EXPECT_EQ(entry.string(last, 0, 5), CS_SUCCEED);
  EXPECT_STREQ(last, "last");
}

TEST(ReadValue, NamesAreAlphanumeric) {
  struct {
    const char *value;
    CS_RETCODE result;
  } const rows[] = {
      {"iso_1", CS_SUCCEED},   {"A", CS_SUCCEED},      {"z9_", CS_SUCCEED},
      {"a_0Z", CS_SUCCEED},    {"\\xc4_", CS_SUCCEED}, {"\\x8e", CS_SUCCEED},
      {"_a", CS_FAIL},         {"1a", CS_FAIL},        {"\"\"", CS_FAIL},
      {"a b", CS_FAIL},        {"a-b", CS_FAIL},       {"a.", CS_FAIL},
      {"\" a\"", CS_FAIL},     {"a\\x7f", CS_FAIL},    {"a\\x90", CS_FAIL},
      {"a\\x00-", CS_SUCCEED}, // a NUL ends a text
  };
  for (const auto &row : rows) {
    Entry entry(row.value);
    CS_CHAR name[30] = "kept";
    EXPECT_EQ(entry.string(name, 1, sizeof name), row.result) << row.value;
    EXPECT_EQ(std::strcmp(name, "kept") == 0, row.result == CS_FAIL) << row.value;
    Entry plain(row.value);
    EXPECT_EQ(plain.string(name, 0, sizeof name), CS_SUCCEED) << row.value;
  }
}

// Every reader, with an output that a failure must leave alone.
template <class Check>
void with_each_reader(std::string_view values, Check check) {
  CS_BYTE byte = 7;
  CS_USHORT two = 7;
  CS_UINT four = 7;
  CS_BOOL truth = 7;
  CS_CHAR text[8] = "kept";
  {
    Entry entry(values);
    check(entry, [&] { return entry.byte(&byte); });
  }
  {
    Entry entry(values);
    check(entry, [&] { return entry.two(&two); });
  }
  {
    Entry entry(values);
    check(entry, [&] { return entry.four(&four); });
  }
  {
    Entry entry(values);
    check(entry, [&] { return entry.truth(&truth); });
  }
  {
    Entry entry(values);
    check(entry, [&] { return entry.string(text, 1, 8); });
  }
  {
    Entry entry(values);
    check(entry, [&] { return entry.string(nullptr, 0, 8); });
  }
  EXPECT_EQ(byte + two + static_cast<int>(four) + truth, 28);
  EXPECT_STREQ(text, "kept");
}

TEST(ReadValue, TheEndOfTheEntryIsAFailure) {
  with_each_reader("", [](Entry &entry, auto read) {
    EXPECT_EQ(read(), CS_FAIL);
    EXPECT_EQ(read(), CS_FAIL);
    EXPECT_EQ(entry.context.ctxintlerr, 0);
  });
}

TEST(ReadValue, TheStatusOfTheReaderIsKept) {
  struct {
    const char *value;
    int status;
  } const rows[] = {{"\"open", ZRVINTL_ESYNTAX}, {"\"true\" x", ZRVINTL_ESYNTAX}};
  for (const auto &row : rows)
    with_each_reader(row.value, [&](Entry &entry, auto read) {
      EXPECT_EQ(read(), COM_INTL_ERROR);
      EXPECT_EQ(entry.context.ctxintlerr, row.status);
    });
  std::string too_long(1025, 'n');
  too_long.insert(900, "\\\n");
  with_each_reader(too_long, [&](Entry &entry, auto read) {
    EXPECT_EQ(read(), COM_INTL_ERROR);
    EXPECT_EQ(entry.context.ctxintlerr, ZRVINTL_EVALUE);
  });
}

TEST(ReadValue, RefusesNullPointersAndOtherRules) {
  Entry entry("true");
  CS_BYTE byte;
  CS_USHORT two;
  CS_UINT four;
  CS_BOOL truth;
  CS_CHAR text[8];
  CS_CONTEXT *const context = &entry.context;
  INTL_LOCFILE *const file = &entry.file;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_byteval(nullptr, file, &byte));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_byteval(context, nullptr, &byte));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_byteval(context, file, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_shortval(nullptr, file, &two));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_shortval(context, nullptr, &two));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_shortval(context, file, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_longval(nullptr, file, &four));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_longval(context, nullptr, &four));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_longval(context, file, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_boolval(nullptr, file, &truth));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_boolval(context, nullptr, &truth));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_boolval(context, file, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_string(nullptr, file, text, 0, 8));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_string(context, nullptr, text, 0, 8));
  for (const CS_BOOL rule : {-1, 2})
    EXPECT_ASSERTION(unit, CS_FAIL, comn__get_string(context, file, text, rule, 8));
  EXPECT_EQ(entry.truth(&truth), CS_SUCCEED); // none of them took the value
}

} // namespace
