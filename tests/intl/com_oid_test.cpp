// The look-ups: by encoding, by name, by format code, and the tables of keys and texts.
#include <cstring>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "identifier_records.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_oid.cpp";

// ---- tables of keys and texts ----

struct Row {
  CS_INT key;
  const char *text;
};

constexpr Row classes[] = {
    {0, "charset"},  {1, "numeric"}, {2, "money"},    {3, "datetime"},
    {4, "collate"},  {5, "natlang"}, {6, "integer2"}, {7, "integer4"},
    {8, "integer8"}, {9, "float4"},  {10, "float8"},  {11, "secmech"},
};

constexpr Row formats[] = {
    {2, "int2_lsb_high"},       {3, "int2_lsb_low"},        {0, "int4_lsb_high"},
    {1, "int4_lsb_low"},        {6, "char_ascii"},          {7, "char_ebcdic"},
    {4, "float_ieee_lsb_high"}, {10, "float_ieee_lsb_low"}, {11, "float_nd5000"},
    {5, "float_vaxd"},          {12, "flt4_ieee_lsb_high"}, {13, "flt4_ieee_lsb_low"},
    {14, "flt4_vaxf"},          {15, "flt4_nd5000"},
};

template <size_t count>
void expect_rows(const CS_STRINGS *map, const Row (&rows)[count]) {
  for (const Row &row : rows) {
    EXPECT_EQ(map->key, row.key) << row.text;
    EXPECT_STREQ(map->string, row.text);
    ++map;
  }
  EXPECT_EQ(map->key, -99999);
  EXPECT_EQ(map->string, nullptr);
}

TEST(OidTables, HaveTheToldRows) {
  expect_rows(Com__classmap, classes);
  expect_rows(Com__dup_classmap, classes);
  expect_rows(Com__tds_lclname_map, formats);
  EXPECT_NE(static_cast<const void *>(Com__classmap), Com__dup_classmap);
}

TEST(StringToId, FindsTheKeyOfAText) {
  for (const Row &row : classes) {
    CS_INT id = 77;
    EXPECT_EQ(comn_string_to_id(nullptr, Com__classmap, Text(row.text), &id), CS_SUCCEED);
    EXPECT_EQ(id, row.key);
  }
}

TEST(StringToId, ComparesWholeTextsWithTheirCase) {
  for (const char *text : {"", "char", "charset ", "Charset", "charsets"}) {
    CS_INT id = 77;
    EXPECT_EQ(comn_string_to_id(nullptr, Com__classmap, Text(text), &id), CS_FAIL) << text;
    EXPECT_EQ(id, CS_UNUSED) << text;
  }
}

TEST(StringToId, TheFirstRowCounts) {
  const CS_STRINGS map[] = {{5, "a"}, {6, "b"}, {5, "b"}, {7, "a"}, {CS_UNUSED, nullptr}};
  CS_INT id = 77;
  EXPECT_EQ(comn_string_to_id(nullptr, map, Text("a"), &id), CS_SUCCEED);
  EXPECT_EQ(id, 5);
  EXPECT_EQ(comn_string_to_id(nullptr, map, Text("b"), &id), CS_SUCCEED);
  EXPECT_EQ(id, 6);
  CS_CHAR *text = nullptr;
  EXPECT_EQ(comn_id_to_string(nullptr, map, 5, &text), CS_SUCCEED);
  EXPECT_EQ(text, map[0].string);
}

TEST(StringToId, RefusesNullPointers) {
  CS_INT id = 77;
  Text text("charset");
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_string_to_id(nullptr, nullptr, text, &id));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_string_to_id(nullptr, Com__classmap, nullptr, &id));
  EXPECT_EQ(id, 77);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_string_to_id(nullptr, Com__classmap, text, nullptr));
}

TEST(IdToString, HandsOutTheTablesOwnText) {
  const CS_STRINGS *row = Com__tds_lclname_map;
  for (const Row &format : formats) {
    CS_CHAR *text = nullptr;
    EXPECT_EQ(comn_id_to_string(nullptr, Com__tds_lclname_map, format.key, &text), CS_SUCCEED);
    EXPECT_EQ(text, row->string);
    ++row;
  }
}

// The end row is no row, also for its own key.
TEST(IdToString, FailsWithoutARow) {
  for (const CS_INT id : {-1, 8, 9, 16, CS_UNUSED}) {
    char other[] = "other";
    CS_CHAR *text = other;
    EXPECT_EQ(comn_id_to_string(nullptr, Com__tds_lclname_map, id, &text), CS_FAIL) << id;
    EXPECT_EQ(text, nullptr) << id;
  }
}

TEST(IdToString, RefusesNullPointers) {
  CS_CHAR *text = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_id_to_string(nullptr, nullptr, 0, &text));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_id_to_string(nullptr, Com__classmap, 0, nullptr));
}

// ---- identifier to name ----

class GlobalId : public testing::Test {
protected:
  GlobalId() {
    lone = hand.add(2, {6, 1, 42}, {"lone"});
    hand.add(4, {6, 2, 42, 3}, {"four_a", "both"});
    // The same encoding in two classes, and a name in two classes.
    shared_low = hand.add(4, {6, 2, 42, 4}, {"low_1", "low_2", "", "low_4"});
    shared_high = hand.add(9, {6, 2, 42, 4}, {"high_1"});
    hand.add(9, {6, 2, 42, 5}, {"high_2", "both"});
    nameless = hand.add(11, {6, 2, 42, 6}, {});
  }

  // The name look-up of a class, or of all.
  CsOID *find(const std::string &name, CS_INT wanted) {
    CsOID *found = &untouched;
    const CS_RETCODE result =
        comn_globalid(&hand.context, COM_NAME_TO_OID, &found, &wanted, CS_UNUSED, Text(name),
                      static_cast<CS_INT>(name.size()), nullptr, nullptr);
    EXPECT_EQ(result, found == &untouched ? CS_FAIL : CS_SUCCEED);
    return found == &untouched ? nullptr : found;
  }

  CS_RETCODE name(CsOID *oid, CS_INT nameid, GuardedBuffer &buffer, CS_INT *outlen = nullptr) {
    return comn_globalid(&hand.context, COM_OID_TO_NAME, &oid, &oidclass, nameid, buffer.text(),
                         static_cast<CS_INT>(buffer.size()), &count, outlen);
  }

  HandTable hand;
  CsOID *lone, *shared_low, *shared_high, *nameless;
  CsOID untouched{};
  CS_INT oidclass = 77, count = 77;
};

TEST_F(GlobalId, TellsClassAndCount) {
  struct {
    CsOID *oid;
    CS_INT oidclass, count;
  } const rows[] = {{lone, 2, 1}, {shared_low, 4, 4}, {nameless, 11, 0}};
  for (const auto &row : rows) {
    CsOID *oid = row.oid;
    EXPECT_EQ(comn_globalid(&hand.context, COM_OID_TO_NAME, &oid, &oidclass, CS_UNUSED, nullptr,
                            CS_UNUSED, &count, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(oid, row.oid);
    EXPECT_EQ(oidclass, row.oidclass);
    EXPECT_EQ(count, row.count);
  }
  EXPECT_EQ(comn_globalid(&hand.context, COM_OID_TO_NAME, &lone, &oidclass, CS_UNUSED, nullptr,
                          CS_UNUSED, nullptr, nullptr),
            CS_SUCCEED);
}

// Only the encoding is looked at, and the class that comes in is no filter.
TEST_F(GlobalId, TheLowestClassWithTheEncodingWins) {
  Bytes encoding = {6, 2, 42, 4, 99};
  CsOID probe{};
  probe.oidber = encoding.data();
  probe.oidberlen = 4;
  for (CsOID *oid : {shared_high, &probe}) {
    oidclass = 9;
    GuardedBuffer buffer(5);
    EXPECT_EQ(name(oid, 1, buffer), CS_SUCCEED);
    EXPECT_EQ(buffer.contents(), "low_1");
    EXPECT_EQ(oidclass, 4);
    EXPECT_EQ(count, 4);
  }
}

TEST_F(GlobalId, TellsNamesByPosition) {
  const Names expected = {"low_1", "low_2", "", "low_4"};
  for (CS_INT nameid = 1; nameid <= 4; ++nameid) {
    const std::string &wanted = expected[static_cast<size_t>(nameid) - 1];
    GuardedBuffer buffer(8);
    CS_INT length = 77;
    EXPECT_EQ(name(shared_low, nameid, buffer, &length), CS_SUCCEED);
    EXPECT_EQ(length, static_cast<CS_INT>(wanted.size()));
    EXPECT_EQ(buffer.contents(wanted.size()), wanted);
    EXPECT_TRUE(buffer.is_untouched(wanted.size())); // no terminator
  }
}

TEST_F(GlobalId, FailsBehindTheLastName) {
  for (const CS_INT nameid : {5, 6, 1 << 30}) {
    oidclass = count = 77;
    GuardedBuffer buffer(8);
    CS_INT length = 77;
    EXPECT_EQ(name(shared_low, nameid, buffer, &length), CS_FAIL);
    EXPECT_EQ(oidclass, 4);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(length, 77);
    EXPECT_TRUE(buffer.is_untouched());
  }
  GuardedBuffer buffer(8);
  EXPECT_EQ(name(nameless, 1, buffer), CS_FAIL);
  EXPECT_EQ(oidclass, 11);
  EXPECT_EQ(count, 0);
}

TEST_F(GlobalId, ANameMustFitWhole) {
  for (const size_t size : {0, 4}) {
    GuardedBuffer buffer(size);
    CS_INT length = 77;
    EXPECT_EQ(name(lone, 1, buffer, &length), size == 4 ? CS_SUCCEED : CS_FAIL);
    EXPECT_EQ(length, 4);
  }
  GuardedBuffer buffer(3);
  CS_INT length = 77;
  EXPECT_EQ(name(lone, 1, buffer, &length), CS_FAIL);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(oidclass, 2);
  EXPECT_TRUE(buffer.is_untouched());
  GuardedBuffer none(0);
  EXPECT_EQ(name(shared_low, 3, none, &length), CS_SUCCEED);
  EXPECT_EQ(length, 0);
}

TEST_F(GlobalId, FailsWithoutTheEncoding) {
  Bytes encodings[] = {{6, 2, 42, 9}, {6, 2, 42}, {6, 2, 42, 4, 0}, {6, 1, 42, 3}, {}};
  for (Bytes &encoding : encodings) {
    CsOID probe{};
    probe.oidber = encoding.data();
    probe.oidberlen = static_cast<CS_INT>(encoding.size());
    GuardedBuffer buffer(8);
    CS_INT length = 77;
    EXPECT_EQ(name(&probe, 1, buffer, &length), CS_FAIL);
    EXPECT_EQ(oidclass, 77);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(length, 77);
    EXPECT_TRUE(buffer.is_untouched());
  }
}

TEST_F(GlobalId, RefusesWhatTheNameDoesNotTake) {
  CsOID *oid = lone, *null = nullptr;
  char text[8];
  CS_INT length = 77;
  CS_CONTEXT *const context = &hand.context;
  const auto ask = [&](CsOID **gidp, CS_INT *classp, CS_INT nameid, CS_CHAR *localnp, CS_INT len,
                       CS_INT *outlen) {
    return comn_globalid(context, COM_OID_TO_NAME, gidp, classp, nameid, localnp, len, &count,
                         outlen);
  };
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, 1, nullptr, CS_UNUSED, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, CS_UNUSED, nullptr, 8, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, CS_UNUSED, nullptr, CS_UNUSED, &length));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, 0, text, 8, &length));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, CS_UNUSED, text, 8, &length));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, 1, text, -1, &length));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&oid, &oidclass, 1, text, CS_LEN_NULLTERM, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, ask(nullptr, &oidclass, 1, text, 8, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, ask(&null, &oidclass, 1, text, 8, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, ask(&oid, nullptr, 1, text, 8, &length));
  EXPECT_EQ(oidclass, 77);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(length, 77);
}

TEST_F(GlobalId, RefusesAnotherType) {
  for (const CS_INT type : {-1, 0, 3, CS_UNUSED})
    EXPECT_ASSERTION(unit, CS_FAIL,
                     comn_globalid(&hand.context, type, &lone, &oidclass, CS_UNUSED, nullptr,
                                   CS_UNUSED, nullptr, nullptr));
}

TEST_F(GlobalId, NeedsATable) {
  CS_CONTEXT bare{};
  CsCtxGlobals empty{};
  CS_CONTEXT without_table{};
  without_table.ctxglobals = &empty;
  for (CS_CONTEXT *const context : {static_cast<CS_CONTEXT *>(nullptr), &bare, &without_table}) {
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                              comn_globalid(context, COM_OID_TO_NAME, &lone, &oidclass, CS_UNUSED,
                                            nullptr, CS_UNUSED, nullptr, nullptr));
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                              comn_globalid(context, COM_NAME_TO_OID, &lone, nullptr, CS_UNUSED,
                                            Text("lone"), 4, nullptr, nullptr));
    CsOID *oid = nullptr;
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                              comn_gid_to_oid(context, 0, lone->oidber, lone->oidberlen, &oid));
  }
}

TEST_F(GlobalId, EveryExitIsTraced) {
  CS_INT none = CS_UNUSED;
  std::string text;
  com_errset(3);
  text = capture_stdout([&] {
    comn_globalid(&hand.context, COM_NAME_TO_OID, &lone, &none, CS_UNUSED, Text("no"), 2, nullptr,
                  nullptr);
  });
  com_errset(1);
  EXPECT_EQ(text.substr(0, text.find(',')), "(CS_FAIL) file com_oid.cpp");
}

// ---- name to identifier ----

TEST_F(GlobalId, FindsNamesInEveryPosition) {
  EXPECT_EQ(find("lone", CS_UNUSED), lone);
  for (const char *const each : {"low_1", "low_2", "low_4"})
    EXPECT_EQ(find(each, CS_UNUSED), shared_low) << each;
  EXPECT_EQ(find("high_1", CS_UNUSED), shared_high);
}

TEST_F(GlobalId, SearchesOneClassOrAll) {
  CsOID *const low = hand.table.ot_oid[4], *const high = shared_high->oidnext;
  EXPECT_EQ(find("both", CS_UNUSED), low);
  EXPECT_EQ(find("both", 4), low);
  EXPECT_EQ(find("both", 9), high);
  for (const CS_INT other : {0, 2, 3, 5, 8, 10, 11})
    EXPECT_EQ(find("both", other), nullptr) << other;
  CsOID *found = nullptr;
  EXPECT_EQ(comn_globalid(&hand.context, COM_NAME_TO_OID, &found, nullptr, CS_UNUSED, Text("both"),
                          4, nullptr, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(found, low);
}

TEST_F(GlobalId, ComparesExactBytes) {
  for (const char *const other : {"Lone", "LONE", "lon", "lone_", "lone ", " lone", "lonf", "mone"})
    EXPECT_EQ(find(other, CS_UNUSED), nullptr) << other;
  CsOID *const accented = hand.add(0, {6, 1, 43}, {"caf\xE9"});
  EXPECT_EQ(find("caf\xE9", CS_UNUSED), accented);
  EXPECT_EQ(find("caf\xC9", CS_UNUSED), nullptr);
}

// A caller that counted the terminator is understood, one that counted two is not.
TEST_F(GlobalId, OneTerminatorMayBeCounted) {
  EXPECT_EQ(find(std::string("lone\0", 5), CS_UNUSED), lone);
  EXPECT_EQ(find(std::string("lone\0\0", 6), CS_UNUSED), nullptr);
  EXPECT_EQ(find(std::string("lone\1", 5), CS_UNUSED), nullptr);
  EXPECT_EQ(find(std::string("lon\0", 4), CS_UNUSED), nullptr);
  // A name may hold the NUL itself: the whole probe or all but its last byte.
  CsOID *const with_nul = hand.add(0, {6, 1, 43}, {std::string("nul\0", 4)});
  EXPECT_EQ(find(std::string("nul\0", 4), CS_UNUSED), with_nul);
  EXPECT_EQ(find(std::string("nul\0\0", 5), CS_UNUSED), with_nul);
  EXPECT_EQ(find("nul", CS_UNUSED), nullptr);
}

// An empty name has no bytes to be found by, save by a terminator alone.
TEST_F(GlobalId, EmptyNames) {
  EXPECT_EQ(find("", CS_UNUSED), nullptr);
  EXPECT_EQ(find(std::string(1, '\0'), CS_UNUSED), shared_low);
  EXPECT_EQ(find(std::string(2, '\0'), CS_UNUSED), nullptr);
  CsOID *found = &untouched;
  EXPECT_EQ(comn_globalid(&hand.context, COM_NAME_TO_OID, &found, nullptr, CS_UNUSED, Text(""),
                          CS_LEN_NULLTERM, nullptr, nullptr),
            CS_FAIL);
  EXPECT_EQ(found, &untouched);
}

TEST_F(GlobalId, LengthsOfNames) {
  for (const CS_INT len : {-1, -8, -10, 0, CS_UNUSED}) {
    CsOID *found = &untouched;
    EXPECT_EQ(comn_globalid(&hand.context, COM_NAME_TO_OID, &found, nullptr, CS_UNUSED,
                            Text("lone"), len, nullptr, nullptr),
              CS_FAIL)
        << len;
    EXPECT_EQ(found, &untouched);
  }
  CsOID *found = nullptr;
  EXPECT_EQ(comn_globalid(&hand.context, COM_NAME_TO_OID, &found, nullptr, CS_UNUSED, Text("lone"),
                          CS_LEN_NULLTERM, nullptr, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(found, lone);
  EXPECT_EQ(comn_globalid(&hand.context, COM_NAME_TO_OID, &found, nullptr, CS_UNUSED,
                          Text("high_1 and more"), 6, nullptr, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(found, shared_high);
}

TEST_F(GlobalId, RefusesWhatTheIdentifierDoesNotTake) {
  Text text("lone");
  CsOID *found = &untouched;
  const auto ask = [&](CsOID **gidp, CS_INT wanted, CS_INT nameid, CS_CHAR *localnp,
                       CS_INT *numnames, CS_INT *outlen) {
    return comn_globalid(&hand.context, COM_NAME_TO_OID, gidp, &wanted, nameid, localnp, 4,
                         numnames, outlen);
  };
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&found, 2, 1, text, nullptr, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&found, 2, CS_UNUSED, text, &count, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&found, 2, CS_UNUSED, text, nullptr, &count));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&found, -1, CS_UNUSED, text, nullptr, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, ask(&found, 12, CS_UNUSED, text, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, ask(&found, 2, CS_UNUSED, nullptr, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, ask(nullptr, 2, CS_UNUSED, text, nullptr, nullptr));
  EXPECT_EQ(found, &untouched);
  EXPECT_EQ(count, 77);
}

TEST_F(GlobalId, FindsNamesOfOneRecord) {
  EXPECT_TRUE(comn__find_lclname(shared_low, Text("low_4"), 5));
  EXPECT_TRUE(comn__find_lclname(shared_low, Text("low_4"), 6)); // with its terminator
  EXPECT_FALSE(comn__find_lclname(shared_low, Text("low_4"), 4));
  EXPECT_FALSE(comn__find_lclname(shared_low, Text("low_4"), 0));
  EXPECT_FALSE(comn__find_lclname(shared_low, Text("high_1"), 6));
  EXPECT_FALSE(comn__find_lclname(nameless, Text("low_4"), 5));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn__find_lclname(nullptr, Text("a"), 1));
  EXPECT_NULL_POINTER_CHECK(unit, 0, comn__find_lclname(lone, nullptr, 1));
}

// ---- by the bytes of a peer ----

TEST_F(GlobalId, FindsEncodingsOfPeers) {
  CS_BYTE bytes[] = {6, 2, 42, 4};
  CsOID *found = nullptr;
  EXPECT_EQ(comn_gid_to_oid(&hand.context, CS_UNUSED, bytes, 4, &found), CS_SUCCEED);
  EXPECT_EQ(found, shared_low);
  EXPECT_EQ(comn_gid_to_oid(&hand.context, 9, bytes, 4, &found), CS_SUCCEED);
  EXPECT_EQ(found, shared_high);
  EXPECT_EQ(comn_gid_to_oid(&hand.context, 4, bytes, 4, &found), CS_SUCCEED);
  EXPECT_EQ(found, shared_low);
}

TEST_F(GlobalId, FailsForUnknownEncodingsOfPeers) {
  CS_BYTE bytes[] = {6, 2, 42, 4, 0};
  struct {
    CS_INT oidclass, length;
  } const rows[] = {{0, 4}, {11, 4}, {4, 3}, {4, 5}, {CS_UNUSED, 1}, {CS_UNUSED, -4}};
  for (const auto &row : rows) {
    CsOID *found = &untouched;
    EXPECT_EQ(comn_gid_to_oid(&hand.context, row.oidclass, bytes, row.length, &found), CS_FAIL);
    EXPECT_EQ(found, &untouched);
  }
}

// Nothing is looked for, and a table is not needed.
TEST_F(GlobalId, NoBytesOfAPeerAreNoIdentifier) {
  CS_BYTE byte = 6;
  for (CS_CONTEXT *const context : {&hand.context, static_cast<CS_CONTEXT *>(nullptr)}) {
    CsOID *found = &untouched;
    EXPECT_EQ(comn_gid_to_oid(context, 0, nullptr, 4, &found), CS_SUCCEED);
    EXPECT_EQ(found, nullptr);
    found = &untouched;
    EXPECT_EQ(comn_gid_to_oid(context, CS_UNUSED, &byte, 0, &found), CS_SUCCEED);
    EXPECT_EQ(found, nullptr);
  }
}

TEST_F(GlobalId, RefusesWhatAPeerCannotAsk) {
  CS_BYTE byte = 6;
  CsOID *found = &untouched;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_gid_to_oid(&hand.context, -1, &byte, 1, &found));
  EXPECT_ASSERTION(unit, CS_FAIL, comn_gid_to_oid(&hand.context, 12, nullptr, 0, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_gid_to_oid(&hand.context, 0, &byte, 1, nullptr));
  EXPECT_EQ(found, &untouched);
}

// ---- comparison ----

TEST(OidCmp, ComparesEncodings) {
  HandTable hand;
  CsOID *const a = hand.make({6, 1, 42}, {"a"}), *const same = hand.make({6, 1, 42}, {"b"}),
               *const other = hand.make({6, 1, 43}, {"a"}),
               *const longer = hand.make({6, 1, 42, 0}, {});
  EXPECT_EQ(comn_oid_cmp(nullptr, a, a), 1);
  EXPECT_EQ(comn_oid_cmp(nullptr, a, same), 1);
  EXPECT_EQ(comn_oid_cmp(nullptr, a, other), 0);
  EXPECT_EQ(comn_oid_cmp(nullptr, other, a), 0);
  EXPECT_EQ(comn_oid_cmp(nullptr, a, longer), 0);
  EXPECT_EQ(comn_oid_cmp(nullptr, longer, a), 0);
}

// A missing identifier and an empty one are the same thing.
TEST(OidCmp, NullIsARecordWithoutEncoding) {
  HandTable hand;
  CsOID *const full = hand.make({6, 1, 42}, {});
  CsOID no_bytes{}, no_length{}, other_empty{};
  CS_BYTE byte = 6;
  no_bytes.oidberlen = 3;
  no_length.oidber = &byte;
  EXPECT_EQ(comn_oid_cmp(nullptr, nullptr, nullptr), 1);
  for (CsOID *const empty : {&no_bytes, &no_length, &other_empty}) {
    EXPECT_EQ(comn_oid_cmp(nullptr, nullptr, empty), 1);
    EXPECT_EQ(comn_oid_cmp(nullptr, empty, nullptr), 1);
    EXPECT_EQ(comn_oid_cmp(nullptr, empty, full), 0);
    EXPECT_EQ(comn_oid_cmp(nullptr, full, empty), 0);
    EXPECT_EQ(comn_oid_cmp(nullptr, empty, &other_empty), 1);
  }
  EXPECT_EQ(comn_oid_cmp(nullptr, nullptr, full), 0);
  EXPECT_EQ(comn_oid_cmp(nullptr, full, nullptr), 0);
}

// ---- format codes ----

TEST(TdsFormats, CodesBecomeRecordsOfTheClass) {
  HandTable hand;
  CsOID *const int2 = hand.add(6, {6, 1, 1}, {"x", "int2_lsb_low"});
  CsOID *const elsewhere = hand.add(7, {6, 1, 2}, {"int2_lsb_low"});
  CsOID *found = nullptr;
  EXPECT_EQ(comn_tds_to_oid(&hand.context, 6, 3, &found), CS_SUCCEED);
  EXPECT_EQ(found, int2);
  EXPECT_EQ(comn_tds_to_oid(&hand.context, 7, 3, &found), CS_SUCCEED);
  EXPECT_EQ(found, elsewhere);
}

TEST(TdsFormats, EveryCodeGoesThroughItsName) {
  for (const Row &format : formats) {
    HandTable hand;
    CsOID *const record = hand.add(0, {6, 1, 1}, {format.text});
    CsOID *found = nullptr;
    EXPECT_EQ(comn_tds_to_oid(&hand.context, 0, format.key, &found), CS_SUCCEED);
    EXPECT_EQ(found, record);
    CS_INT code = 77;
    EXPECT_EQ(comn_oid_to_tds(nullptr, record, &code), CS_SUCCEED);
    EXPECT_EQ(code, format.key);
  }
}

TEST(TdsFormats, UnknownCodesAndNames) {
  HandTable hand;
  hand.add(6, {6, 1, 1}, {"int2_lsb_low"});
  CsOID untouched{}, *found = &untouched;
  for (const CS_INT code : {-1, 8, 9, 16, CS_UNUSED, 2})
    EXPECT_EQ(comn_tds_to_oid(&hand.context, 6, code, &found), CS_FAIL) << code;
  EXPECT_EQ(comn_tds_to_oid(&hand.context, 5, 3, &found), CS_FAIL);
  EXPECT_EQ(found, &untouched);
}

// The canonical name of the record itself decides, not that of the record which the table has for
// the encoding.
TEST(TdsFormats, TheFirstNameOfTheRecordCounts) {
  HandTable hand;
  hand.add(0, {6, 1, 1}, {"char_ascii"});
  CS_INT code = 77;
  EXPECT_EQ(comn_oid_to_tds(&hand.context, hand.add(6, {6, 1, 1}, {"int2_lsb_low"}), &code),
            CS_SUCCEED);
  EXPECT_EQ(code, 3);
  const Names failing[] = {{}, {""}, {"other", "int2_lsb_low"}, {"Int2_lsb_low"}};
  for (const Names &names : failing) {
    code = 77;
    EXPECT_EQ(comn_oid_to_tds(&hand.context, hand.make({6, 1, 1}, names), &code), CS_FAIL);
    EXPECT_EQ(code, CS_UNUSED);
  }
}

// 254 bytes are looked at, and then as a C string: what stands behind a NUL does not count.
TEST(TdsFormats, LengthsOfNames) {
  HandTable hand;
  struct {
    size_t length;
    CS_RETCODE result;
    CS_INT code;
  } const rows[] = {{254, CS_SUCCEED, 14}, {255, CS_FAIL, CS_UNUSED}, {1024, CS_FAIL, CS_UNUSED}};
  for (const auto &row : rows) {
    std::string name = "flt4_vaxf";
    name.resize(row.length, '\0');
    CS_INT code = 77;
    EXPECT_EQ(comn_oid_to_tds(nullptr, hand.make({6, 1, 1}, {name}), &code), row.result);
    EXPECT_EQ(code, row.code) << row.length;
  }
}

TEST(TdsFormats, RefuseWrongArguments) {
  HandTable hand;
  CsOID *found = nullptr;
  CsOID *const record = hand.add(6, {6, 1, 1}, {"int2_lsb_low"});
  CS_INT code = 77;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_tds_to_oid(&hand.context, -1, 3, &found));
  EXPECT_ASSERTION(unit, CS_FAIL, comn_tds_to_oid(&hand.context, 12, 3, &found));
  EXPECT_ASSERTION(unit, CS_FAIL, comn_tds_to_oid(&hand.context, CS_UNUSED, 3, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_tds_to_oid(&hand.context, 6, 3, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_tds_to_oid(nullptr, 6, 3, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_oid_to_tds(nullptr, nullptr, &code));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_oid_to_tds(nullptr, record, nullptr));
  EXPECT_EQ(code, 77);
}

// ---- locales ----

class LocaleToOid : public testing::Test {
protected:
  LocaleToOid() {
    ctype.charname = charset;
    ctype.charnamelen = charset.length();
    ctype.langname = wrong;
    ctype.langnamelen = wrong.length();
    message.langname = language;
    message.langnamelen = language.length();
    message.charname = wrong;
    message.charnamelen = wrong.length();
    locale.ctypeptr = &ctype;
    locale.messageptr = &message;
    set = hand.add(0, {6, 1, 1}, {"cp850", "both"});
    spoken = hand.add(5, {6, 1, 2}, {"french", "both"});
  }

  HandTable hand;
  CsOID *set, *spoken;
  Text charset{"cp850"}, language{"french"}, wrong{"wrong"};
  CsLocCache ctype{}, message{};
  CS_LOCALE locale{};
  CsOID untouched{}, *found = &untouched;
};

TEST_F(LocaleToOid, FindsCharacterSetAndLanguage) {
  EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 1, &found), CS_SUCCEED);
  EXPECT_EQ(found, set);
  EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 2, &found), CS_SUCCEED);
  EXPECT_EQ(found, spoken);
}

TEST_F(LocaleToOid, EachSearchesItsClass) {
  Text both("both");
  ctype.charname = message.langname = both;
  ctype.charnamelen = message.langnamelen = both.length();
  EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 1, &found), CS_SUCCEED);
  EXPECT_EQ(found, set);
  EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 2, &found), CS_SUCCEED);
  EXPECT_EQ(found, spoken);
  ctype.charname = language;
  ctype.charnamelen = language.length();
  found = &untouched;
  EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 1, &found), CS_FAIL);
  EXPECT_EQ(found, &untouched);
}

TEST_F(LocaleToOid, LengthsOfNames) {
  for (const size_t length : {255, 256}) {
    Text name{std::string(length, 'n')};
    ctype.charname = name;
    ctype.charnamelen = name.length();
    CsOID *const record =
        hand.add(0, {6, 1, static_cast<CS_BYTE>(length)}, {std::string(length, 'n')});
    found = &untouched;
    EXPECT_EQ(comn_locale_to_oid(&hand.context, &locale, 1, &found),
              length == 255 ? CS_SUCCEED : CS_FAIL);
    EXPECT_EQ(found, length == 255 ? record : &untouched);
  }
}

TEST_F(LocaleToOid, RefusesWrongArguments) {
  for (const CS_INT type : {0, 3, 4, CS_UNUSED})
    EXPECT_ASSERTION(unit, CS_FAIL, comn_locale_to_oid(&hand.context, &locale, type, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_locale_to_oid(&hand.context, nullptr, 1, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_locale_to_oid(&hand.context, &locale, 1, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_locale_to_oid(nullptr, &locale, 1, &found));
  locale.ctypeptr = nullptr;
  EXPECT_NULL_POINTER_CHECK("comloc.cpp", CS_FAIL,
                            comn_locale_to_oid(&hand.context, &locale, 1, &found));
  EXPECT_EQ(found, &untouched);
}

} // namespace
