// Conversion acknowledgements, and the dumps.
#include <cstring>

#include "check_trap.h"
#include "identifier_records.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_oid_convack.cpp";

// The fields by position.
using Field = CsOID *CS_CONVACK::*;
constexpr Field fields[] = {
    &CS_CONVACK::ca_int2,     &CS_CONVACK::ca_int4,  &CS_CONVACK::ca_int8,    &CS_CONVACK::ca_flt4,
    &CS_CONVACK::ca_flt8,     &CS_CONVACK::ca_char,  &CS_CONVACK::ca_lang,    &CS_CONVACK::ca_sort,
    &CS_CONVACK::ca_datetime, &CS_CONVACK::ca_money, &CS_CONVACK::ca_numeric,
};

class Convack : public testing::Test {
protected:
  Convack() {
    expected.ca_int2 = hand.add(6, {6, 1, 1}, {"int2_lsb_low"});
    expected.ca_int4 = hand.add(7, {6, 1, 2}, {"int4_lsb_low"});
    hand.add(8, {6, 1, 12}, {"int4_lsb_low", "int8_lsb_low"});
    expected.ca_flt4 = hand.add(9, {6, 1, 3}, {"flt4_vaxf"});
    expected.ca_flt8 = hand.add(10, {6, 1, 4}, {"float_vaxd"});
    expected.ca_char = hand.add(0, {6, 1, 5}, {"name"});
    expected.ca_lang = hand.add(5, {6, 1, 6}, {"name"});
    expected.ca_sort = hand.add(4, {6, 1, 7}, {"name"});
    expected.ca_datetime = hand.add(3, {6, 1, 8}, {"name"});
    expected.ca_money = hand.add(2, {6, 1, 9}, {"name"});
    expected.ca_numeric = hand.add(1, {6, 1, 10}, {"name"});
    std::memset(&ack, 0xA5, sizeof ack);
  }

  // The arguments: four codes, and a name with a length for each of the six classes.
  struct Arguments {
    CS_INT int2 = 3, int4 = 1, int8 = 77, flt4 = 14, flt8 = 5;
    struct {
      const char *text = "name";
      CS_INT length = 4;
    } names[6]; // charset, language, sort order, date, money, numeric
  };

  CS_RETCODE init(const Arguments &a) {
    CS_CHAR *texts[6];
    for (size_t i = 0; i < 6; ++i)
      texts[i] = const_cast<CS_CHAR *>(a.names[i].text);
    return comn_init_convack(&hand.context, &ack, a.int2, a.int4, a.int8, a.flt4, a.flt8, texts[0],
                             a.names[0].length, texts[1], a.names[1].length, texts[2],
                             a.names[2].length, texts[3], a.names[3].length, texts[4],
                             a.names[4].length, texts[5], a.names[5].length);
  }

  void expect_fields(const CS_CONVACK &wanted) {
    for (size_t i = 0; i < 11; ++i)
      EXPECT_EQ(ack.*fields[i], wanted.*fields[i]) << "field " << i;
  }

  HandTable hand;
  CS_CONVACK expected{}, ack;
};

TEST_F(Convack, FillsEachFieldFromItsClass) {
  EXPECT_EQ(init({}), CS_SUCCEED);
  expect_fields(expected);
  EXPECT_EQ(ack.ca_int8, nullptr); // whatever the code
}

TEST_F(Convack, NamesWithoutALengthAreLeftOut) {
  // In the order of the arguments.
  constexpr Field named[] = {&CS_CONVACK::ca_char,  &CS_CONVACK::ca_lang,
                             &CS_CONVACK::ca_sort,  &CS_CONVACK::ca_datetime,
                             &CS_CONVACK::ca_money, &CS_CONVACK::ca_numeric};
  for (size_t i = 0; i < 6; ++i)
    for (const CS_INT length : {0, -1, CS_LEN_NULLTERM, CS_UNUSED}) {
      Arguments arguments;
      arguments.names[i] = {length == 0 ? nullptr : "name", length};
      CS_CONVACK wanted = expected;
      wanted.*named[i] = nullptr;
      EXPECT_EQ(init(arguments), CS_SUCCEED);
      expect_fields(wanted);
    }
}

TEST_F(Convack, AFailureClearsEveryField) {
  Arguments failing[10];
  failing[0].int2 = 2; // a name that the class does not have
  failing[1].int4 = 8; // no code at all
  failing[2].flt4 = CS_UNUSED;
  failing[3].flt8 = 14;
  for (size_t i = 0; i < 6; ++i)
    failing[4 + i].names[i] = {"other", 5};
  for (const Arguments &arguments : failing) {
    std::memset(&ack, 0xA5, sizeof ack);
    EXPECT_EQ(init(arguments), CS_FAIL);
    expect_fields(CS_CONVACK{});
  }
}

TEST_F(Convack, ATerminatorMayBeCounted) {
  Arguments arguments;
  arguments.names[0].length = 5;
  EXPECT_EQ(init(arguments), CS_SUCCEED);
  expect_fields(expected);
}

TEST_F(Convack, RefusesNullPointers) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_init_convack(&hand.context, nullptr, 3, 1, 0, 14, 5, nullptr, 0,
                                              nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0,
                                              nullptr, 0));
  Arguments arguments;
  arguments.names[3].text = nullptr; // with a length
  EXPECT_NULL_POINTER_CHECK("com_oid.cpp", CS_FAIL, init(arguments));
  expect_fields(CS_CONVACK{});
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_copy_convack(nullptr, nullptr, &ack));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_copy_convack(nullptr, &ack, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_cmp_convack(nullptr, nullptr, &ack));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn_cmp_convack(nullptr, &ack, nullptr));
}

TEST_F(Convack, CopiesThePointers) {
  expected.ca_int8 = hand.table.ot_oid[8];
  EXPECT_EQ(comn_copy_convack(nullptr, &expected, &ack), CS_SUCCEED);
  expect_fields(expected);
}

// By encoding, not by record; and the last five fields do not take part.
TEST_F(Convack, ComparesTheFirstSixFields) {
  expected.ca_int8 = hand.table.ot_oid[8];
  CsOID *const other = hand.make({6, 1, 99}, {});
  EXPECT_EQ(comn_cmp_convack(nullptr, &expected, &expected), 1);
  for (size_t i = 0; i < 11; ++i) {
    const CS_BOOL counts = i < 6;
    ack = expected;
    ack.*fields[i] = other;
    EXPECT_EQ(comn_cmp_convack(nullptr, &expected, &ack), !counts) << i;
    ack.*fields[i] = nullptr;
    EXPECT_EQ(comn_cmp_convack(nullptr, &expected, &ack), !counts) << i;
    CsOID *const twin = hand.make(encoding_of(*(expected.*fields[i])), {"twin"});
    ack.*fields[i] = twin;
    EXPECT_EQ(comn_cmp_convack(nullptr, &expected, &ack), 1) << i;
  }
  CsOID empty{};
  ack = expected;
  ack.ca_int8 = &empty;
  expected.ca_int8 = nullptr;
  EXPECT_EQ(comn_cmp_convack(nullptr, &expected, &ack), 1);
}

// ---- dumps ----

const std::string heavy = std::string(68, '=') + "\n";
const std::string light = "  " + std::string(66, '-') + "\n";

template <class Print>
std::string printed(Print print) {
  return capture_stdout([&] { EXPECT_EQ(print(), CS_SUCCEED); });
}

TEST(OidDump, ARecord) {
  HandTable hand;
  CsOID *const oid = hand.make({6, 2, 0x2A, 0xFF}, {"iso_1", "", "latin1"});
  Text dotted("1.2.255 and more");
  oid->oidstring = dotted;
  oid->oidnamelen = 7;
  EXPECT_EQ(printed([&] { return comn_dbg_print_oid(nullptr, oid); }),
            "OID: \t1.2.255 (7)\n"
            "\t\tglobal id: 0x6 0x2 0x2a 0xff (4)\n"
            "\t\tnumber of local names: 3\n"
            "\t\tlocal names\n"
            "\t\t\tiso_1 (5)\n"
            "\t\t\t (0)\n"
            "\t\t\tlatin1 (6)\n");
}

TEST(OidDump, AnEmptyRecord) {
  CsOID oid{};
  EXPECT_EQ(printed([&] { return comn_dbg_print_oid(nullptr, &oid); }),
            "OID: \t (0)\n\t\tglobal id: (0)\n\t\tnumber of local names: 0\n\t\tlocal names\n");
}

// Without a line end, on purpose.
TEST(OidDump, NoRecord) {
  EXPECT_EQ(printed([&] { return comn_dbg_print_oid(nullptr, nullptr); }), "OID: \tNULL");
}

TEST(OidDump, ATable) {
  HandTable hand;
  hand.add(0, {6, 1, 1}, {"a"});
  hand.add(0, {6, 1, 2}, {"b"});
  hand.add(11, {6, 1, 3}, {});
  constexpr const char *classes[] = {"charset",  "numeric", "money",    "datetime",
                                     "collate",  "natlang", "integer2", "integer4",
                                     "integer8", "float4",  "float8",   "secmech"};
  const auto record = [](const char *byte, const std::string &names, int count) {
    return "OID: \t (0)\n\t\tglobal id: 0x6 0x1 " + std::string(byte) +
           " (3)\n\t\tnumber of local names: " + std::to_string(count) + "\n\t\tlocal names\n" +
           names;
  };
  std::string expected = heavy + "OID TABLE\n" + heavy;
  for (int i = 0; i < 12; ++i) {
    expected += "  CLASS: " + std::string(classes[i]) + "\n" + light;
    if (i == 0)
      expected += record("0x1", "\t\t\ta (1)\n", 1) + record("0x2", "\t\t\tb (1)\n", 1);
    if (i == 11)
      expected += record("0x3", "", 0);
    expected += heavy;
  }
  EXPECT_EQ(printed([&] { return comn_dbg_print_oidtable(&hand.context, &hand.table); }), expected);
}

TEST(OidDump, NoTable) {
  EXPECT_EQ(printed([&] { return comn_dbg_print_oidtable(nullptr, nullptr); }),
            heavy + "OID TABLE\n" + heavy + "\tNULL\n" + heavy);
}

TEST(OidDump, AnAcknowledgement) {
  constexpr const char *names[] = {"integer2", "integer4", "integer8", "float4",
                                   "float8",   "charset",  "natlang",  "collate",
                                   "datetime", "money",    "numeric"};
  HandTable hand;
  for (size_t filled = 0; filled < 11; ++filled) {
    CS_CONVACK ack{};
    ack.*fields[filled] = hand.make({6, 1, 1}, {});
    std::string expected = heavy + "CONVACK\n" + heavy;
    for (size_t i = 0; i < 11; ++i) {
      expected += "CLASS: " + std::string(names[i]) + "\n" + light;
      expected += i == filled ? "OID: \t (0)\n\t\tglobal id: 0x6 0x1 0x1 (3)\n"
                                "\t\tnumber of local names: 0\n\t\tlocal names\n"
                              : "OID: \tNULL";
      expected += light;
    }
    EXPECT_EQ(printed([&] { return comn_dbg_print_convack(nullptr, &ack); }), expected + heavy);
  }
}

TEST(OidDump, NoAcknowledgement) {
  EXPECT_EQ(printed([&] { return comn_dbg_print_convack(nullptr, nullptr); }),
            heavy + "CONVACK\n" + heavy + "\tNULL\n" + heavy);
}

TEST(OidDump, DataFunctions) {
  CS_DATAFUNCS datafuncs{};
  for (CS_DATAFUNCS *const record : {&datafuncs, static_cast<CS_DATAFUNCS *>(nullptr)})
    EXPECT_EQ(printed([&] { return comn_dbg_print_datafuncs(nullptr, record); }),
              heavy + "DATAFUNCS\n" + heavy + heavy);
}

} // namespace
