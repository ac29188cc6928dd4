// What every member of the integer family checks before it does anything.
#include <array>
#include <climits>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "integer_family.h"

using zrvtest::Conversion;
using zrvtest::GuardedBuffer;
using zrvtest::integer_members;
using zrvtest::IntegerMember;

namespace {

// The binary members forward to the raw copies: the checks of pointers stand there, and no datatype
// is looked at.
bool only_forwards(const IntegerMember &member) {
  return member.destination_code == CS_TYPE_BINARY || member.destination_code == CS_TYPE_VARBINARY;
}

const char *unit_of_checks(const IntegerMember &member) {
  return only_forwards(member) ? "com_bin.cpp" : member.source->unit;
}

bool accepts_destination(const IntegerMember &member, CS_INT code) {
  if (member.destination_code == CS_TYPE_CHAR)
    return code == CS_TYPE_CHAR || code == CS_TYPE_LONGCHAR || code == CS_TYPE_TEXT ||
           code == CS_TYPE_SENSITIVITY || code == CS_TYPE_BOUNDARY || code == CS_TYPE_XML;
  return code == member.destination_code;
}

// All built-in codes (with 20 and 24, which are not the integers that they look like), and others.
std::vector<CS_INT> all_codes() {
  std::vector<CS_INT> codes = {INT_MIN, -64, -1, CS_TYPE_COUNT, 64, 64 + CS_TYPE_INT, INT_MAX};
  for (CS_INT code = 0; code < CS_TYPE_COUNT; ++code)
    codes.push_back(code);
  return codes;
}

} // namespace

TEST(IntegerChecks, TheTableHasEveryMember) {
  EXPECT_EQ(integer_members.size(), 7U * 16U);
}

TEST(IntegerChecks, EachNullPointer) {
  for (const IntegerMember &member : integer_members) {
    SCOPED_TRACE(testing::Message() << member);
    Conversion convert = make_conversion(member, 8);
    zrvtest::expect_null_checks(unit_of_checks(member), member.function, convert.srcfmt,
                                convert.destfmt);
    // Pointers come before datatypes, and one report is all.
    convert.srcfmt.datatype = convert.destfmt.datatype = -1;
    EXPECT_NULL_POINTER_CHECK(unit_of_checks(member), CS_FAIL,
                              member.function(&convert.context, &convert.srcfmt, nullptr,
                                              &convert.destfmt, nullptr, nullptr));
  }
}

TEST(IntegerChecks, EachWrongDatatype) {
  const std::vector<CS_INT> codes = all_codes();
  for (const IntegerMember &member : integer_members) {
    SCOPED_TRACE(testing::Message() << member);
    const uint64_t value = 1;
    int wrong = 0;
    // One trap for all codes; which of them were refused shows in the results.
    zrvtest::CheckTrap trap;
    for (const CS_INT code : codes)
      for (const bool of_source : {true, false}) {
        Conversion convert = make_conversion(member, 8);
        (of_source ? convert.srcfmt : convert.destfmt).datatype = code;
        const bool accepted =
            only_forwards(member) ||
            (of_source ? code == member.source->code : accepts_destination(member, code));
        GuardedBuffer dest(sizeof(CS_VARCHAR));
        EXPECT_EQ(convert(&value, dest.data()), accepted ? CS_SUCCEED : CS_FAIL)
            << (of_source ? "source " : "destination ") << code;
        if (!accepted) {
          ++wrong;
          EXPECT_EQ(convert.destlen, Conversion::untouched_length);
          EXPECT_TRUE(dest.is_untouched());
        }
      }
    EXPECT_EQ(trap.finish().signals, wrong);

    if (only_forwards(member))
      continue;
    Conversion convert = make_conversion(member, 8);
    convert.srcfmt.datatype = CS_TYPE_VOID;
    GuardedBuffer dest(sizeof(CS_VARCHAR));
    EXPECT_ASSERTION(member.source->unit, CS_FAIL, convert(&value, dest.data()));
    convert = make_conversion(member, 8);
    convert.destfmt.datatype = CS_TYPE_LONG;
    EXPECT_ASSERTION(member.source->unit, CS_FAIL, convert(&value, dest.data()));
  }
}
