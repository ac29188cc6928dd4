// The loader of objectid.dat: shapes of the file, failures of each kind, what is left behind.
#include <cstring>

#include "allocation_probe.h"
#include "check_trap.h"
#include "identifier_records.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_oid_load.cpp";

// ---- shapes ----

TEST(LoadGlobalId, ReadsIdentifiersAndNames) {
  const LoadedTable loaded("; a comment\n"
                           "[charset]\n"
                           "1.2.3 = utf8, UTF-8\n"
                           "1.2.4 = \"a, b\"\n"
                           "[secmech]\n"
                           "1.2.840 = x\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  EXPECT_EQ(loaded.context.ctxintlerr, 0);
  const auto charsets = loaded.identifiers(COM_OID_CHARSET);
  ASSERT_EQ(charsets.size(), 2U);
  EXPECT_EQ(text_of(charsets[0]->oidstring, charsets[0]->oidnamelen), "1.2.3");
  EXPECT_EQ(encoding_of(*charsets[0]), (Bytes{6, 2, 42, 3}));
  EXPECT_EQ(names_of(*charsets[0]), (Names{"utf8", "UTF-8"}));
  EXPECT_EQ(text_of(charsets[1]->oidstring, charsets[1]->oidnamelen), "1.2.4");
  EXPECT_EQ(names_of(*charsets[1]), Names{"a, b"});
  const auto mechanisms = loaded.identifiers(COM_OID_SECMECH);
  ASSERT_EQ(mechanisms.size(), 1U);
  EXPECT_EQ(encoding_of(*mechanisms[0]), (Bytes{6, 3, 42, 0x86, 0x48}));
  for (CS_INT oidclass = 1; oidclass < 11; ++oidclass)
    EXPECT_EQ(loaded.table->ot_oid[oidclass], nullptr) << oidclass;
}

TEST(LoadGlobalId, EverySectionHasItsClass) {
  constexpr const char *sections[] = {"charset",  "numeric", "money",    "datetime",
                                      "collate",  "natlang", "integer2", "integer4",
                                      "integer8", "float4",  "float8",   "secmech"};
  std::string text;
  for (size_t i = 12; i-- > 0;) // in any order
    text += "[" + std::string(sections[i]) + "]\n1.2." + std::to_string(i) + " = n\n";
  const LoadedTable loaded(text);
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  for (CS_INT oidclass = 0; oidclass < 12; ++oidclass) {
    const auto identifiers = loaded.identifiers(oidclass);
    ASSERT_EQ(identifiers.size(), 1U);
    EXPECT_EQ(identifiers[0]->oidber[3], oidclass);
  }
}

// Case counts, and the entries of what is no class are not even encoded.
TEST(LoadGlobalId, SkipsUnknownSections) {
  const LoadedTable loaded("[Charset]\n1 = a\n[charsets]\nno arcs = b\n"
                           "[collate]\n1.2 = binary\n[other]\n3 = c\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  EXPECT_EQ(loaded.identifiers(COM_OID_COLLATE).size(), 1U);
  EXPECT_EQ(loaded.table->ot_oid[COM_OID_CHARSET], nullptr);
}

TEST(LoadGlobalId, RepeatedSectionsAccumulate) {
  const LoadedTable loaded("[collate]\n1.2.1 = a\n[money]\n1.2.2 = b\n[collate]\n1.2.3 = c\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  const auto orders = loaded.identifiers(COM_OID_COLLATE);
  ASSERT_EQ(orders.size(), 2U);
  EXPECT_EQ(names_of(*orders[0]), Names{"a"});
  EXPECT_EQ(names_of(*orders[1]), Names{"c"});
  EXPECT_EQ(loaded.identifiers(COM_OID_MONEY).size(), 1U);
}

// One record, with the text of the first entry; also when the texts differ and the bytes do not.
TEST(LoadGlobalId, AnIdentifierKeepsOneRecordInAClass) {
  const LoadedTable loaded("[charset]\n"
                           "1.2.3 = a, b\n"
                           "1.2.4 = other\n"
                           "1..2.03 = c\n"
                           "[charset]\n"
                           "1.2.3 = a, d\n"
                           "1.2.3 =\n"
                           "[collate]\n"
                           "1.2.3 = e\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  const auto charsets = loaded.identifiers(COM_OID_CHARSET);
  ASSERT_EQ(charsets.size(), 2U);
  EXPECT_EQ(text_of(charsets[0]->oidstring, charsets[0]->oidnamelen), "1.2.3");
  EXPECT_EQ(names_of(*charsets[0]), (Names{"a", "b", "c", "a", "d"}));
  EXPECT_EQ(names_of(*charsets[1]), Names{"other"});
  const auto orders = loaded.identifiers(COM_OID_COLLATE);
  ASSERT_EQ(orders.size(), 1U);
  EXPECT_EQ(names_of(*orders[0]), Names{"e"});
  EXPECT_NE(orders[0], charsets[0]);
}

TEST(LoadGlobalId, EmptyNamesKeepTheirPlace) {
  const LoadedTable loaded("[charset]\n1.2.3 = , a, \"\", b,\n1.2.4 =\n1.2.5 = \\x00, c\\x00d\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  const auto charsets = loaded.identifiers(COM_OID_CHARSET);
  ASSERT_EQ(charsets.size(), 3U);
  EXPECT_EQ(names_of(*charsets[0]), (Names{"", "a", "", "b", ""}));
  EXPECT_EQ(charsets[0]->oidlnames->string, nullptr);
  EXPECT_EQ(charsets[0]->oidlnames->len, 0);
  EXPECT_EQ(names_of(*charsets[1]), Names{});
  EXPECT_EQ(names_of(*charsets[2]), (Names{"", "c"})); // a NUL ends a name
}

TEST(LoadGlobalId, AnEmptyFileIsAnEmptyTable) {
  for (const char *const text : {"", "\n", "; nothing\n", "[charset]\n", "[other]\n"}) {
    const LoadedTable loaded{std::string_view(text)};
    ASSERT_EQ(loaded.result, CS_SUCCEED) << text;
    for (const CsOID *oid : loaded.table->ot_oid)
      EXPECT_EQ(oid, nullptr);
  }
}

// The longest key and the longest name that the reader takes.
TEST(LoadGlobalId, LongTexts) {
  std::string key = "1.2";
  while (key.size() < 63)
    key += key.size() % 2 == 1 ? "." : "1";
  const std::string half(900, 'n'), rest(124, 'm');
  const LoadedTable loaded("[charset]\n" + key + " = " + half + "\\\n" + rest + "\n");
  ASSERT_EQ(loaded.result, CS_SUCCEED);
  const auto charsets = loaded.identifiers(COM_OID_CHARSET);
  ASSERT_EQ(charsets.size(), 1U);
  EXPECT_EQ(charsets[0]->oidnamelen, 63);
  EXPECT_EQ(names_of(*charsets[0]), Names{half + rest});
}

// ---- failures ----

struct Failure {
  const char *what;
  std::string text;
  CS_RETCODE result;
  int reader_status;
};

TEST(LoadGlobalId, FailsWithTheStatusOfTheReader) {
  const std::string good = "[charset]\n1.2.3 = a, b\n";
  const Failure failures[] = {
      {"one arc", good + "12 = c\n", CS_FAIL, 0},
      {"points alone", good + "... = c\n", CS_FAIL, 0},
      {"a line of 1,024 bytes", good + "1.2.4 = " + std::string(1016, 'n') + "\n", COM_INTL_ERROR,
       ZRVINTL_ELINE},
      {"a section name of 64 bytes", good + "[" + std::string(64, 's') + "]\n", COM_INTL_ERROR,
       ZRVINTL_ENAME},
      {"a key of 64 bytes", good + "1." + std::string(62, '2') + " = c\n", COM_INTL_ERROR,
       ZRVINTL_ENAME},
      {"a value of 1,025 bytes",
       good + "1.2.4 = " + std::string(900, 'n') + "\\\n" + std::string(125, 'n') + "\n",
       COM_INTL_ERROR, ZRVINTL_EVALUE},
      {"no equal sign", good + "1.2.4\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"no key", good + "= c\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"an open quote", good + "1.2.4 = \"c\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"an entry before any section", "1.2.4 = c\n" + good, COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"an open section name", good + "[collate\n", COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"a NUL", good + std::string("1.2.4 = c\0d\n", 12), COM_INTL_ERROR, ZRVINTL_ESYNTAX},
      {"an error in a section that is skipped", good + "[other]\nx\n", COM_INTL_ERROR,
       ZRVINTL_ESYNTAX},
  };
  for (const Failure &failure : failures) {
    const size_t descriptors = open_descriptors();
    const AllocationProbe probe;
    LoadedTable loaded(failure.text);
    EXPECT_EQ(loaded.result, failure.result) << failure.what;
    EXPECT_EQ(loaded.context.ctxintlerr, failure.reader_status) << failure.what;
    EXPECT_EQ(loaded.table, nullptr) << failure.what;
    EXPECT_EQ(probe.live_blocks(), 0U) << failure.what;
    EXPECT_EQ(open_descriptors(), descriptors) << failure.what;
  }
}

TEST(LoadGlobalId, FailsWithoutTheFile) {
  const IdentifierHome home;
  const AllocationProbe probe;
  CS_CONTEXT context{};
  CS_OID_TABLE *table = reinterpret_cast<CS_OID_TABLE *>(&context);
  EXPECT_EQ(comn_intl_load_globalid(&context, &table), COM_LOCFILE_ERROR);
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_EOPEN);
  EXPECT_EQ(table, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// No path, no file: the builder's own codes.
TEST(LoadGlobalId, FailsWithoutAPath) {
  const AllocationProbe probe;
  struct {
    size_t home;
    CS_RETCODE result;
  } const rows[] = {{1010, CS_FAIL}, {1024, CS_FAIL}, {1025, COM_INTL_ERROR}};
  for (const auto &row : rows) {
    setenv("ZARVEK", ("/" + std::string(row.home - 1, 'h')).c_str(), 1);
    CS_CONTEXT context{};
    CS_OID_TABLE *table = nullptr;
    EXPECT_EQ(comn_intl_load_globalid(&context, &table), row.result) << row.home;
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(context.ctxintlerr < 0, row.result == COM_INTL_ERROR);
  }
  unsetenv("ZARVEK");
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(LoadGlobalId, EachAllocationFailed) {
  const IdentifierHome home(
      "[charset]\n1.2.3 = a, b, \"\"\n1.2.3 = c\n[collate]\n1.2.4 = binary\n");
  const size_t descriptors = open_descriptors();
  CS_CONTEXT context{};
  CS_OID_TABLE *table = nullptr;
  // The table, the reader's block, for each entry the record, its text and its encoding; the elements
  // of the five names, and the texts of the four that have one.
  const size_t failed = fail_each_allocation(
      [] {},
      [&] {
        const CS_RETCODE result = comn_intl_load_globalid(&context, &table);
        EXPECT_EQ(table == nullptr, result != CS_SUCCEED);
        EXPECT_EQ(open_descriptors(), descriptors);
        // The reader cannot tell why it did not get its block.
        EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR || result == COM_LOCFILE_ERROR)
            << result;
        return result != CS_SUCCEED;
      },
      [&] {
        EXPECT_EQ(comn_intl_drop_globalid(&context, table), CS_SUCCEED);
        table = nullptr;
      });
  EXPECT_EQ(failed, 2U * (2 + 3 * 3 + 5 + 4));
}

TEST(LoadGlobalId, RefusesNullPointers) {
  CS_CONTEXT context{};
  CS_OID_TABLE table{}, *loaded = &table;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_load_globalid(nullptr, &loaded));
  EXPECT_EQ(loaded, &table);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_intl_load_globalid(&context, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_oidfile(nullptr, &table));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_oidfile(&context, nullptr));
}

TEST(DropGlobalId, TakesNothing) {
  CS_CONTEXT context{};
  EXPECT_EQ(comn_intl_drop_globalid(&context, nullptr), CS_SUCCEED);
  EXPECT_EQ(comn_intl_drop_globalid(nullptr, nullptr), CS_SUCCEED);
}

// ---- the steps ----

class LoaderSteps : public testing::Test {
protected:
  ~LoaderSteps() override { EXPECT_EQ(probe.live_blocks(), 0U); }

  CsOID *make(const char *dotted, const Names &names = {}) {
    CsOID *oid = nullptr;
    EXPECT_EQ(comn__new_oid(&context, Text(dotted), &oid), CS_SUCCEED);
    CS_STRING_LIST **end = &oid->oidlnames;
    for (const std::string &name : names) {
      EXPECT_EQ(comn__newstring(&context, Text(name), static_cast<CS_INT>(name.size()), end),
                CS_SUCCEED);
      end = &(*end)->next;
      ++oid->oidnumlnames;
    }
    return oid;
  }

  // Releases records by way of a table.
  void drop(std::initializer_list<CsOID *> oids) {
    auto *const table = static_cast<CS_OID_TABLE *>(comn_calloc(1, sizeof(CS_OID_TABLE)));
    CS_INT oidclass = 0;
    for (CsOID *const oid : oids)
      table->ot_oid[oidclass++] = oid;
    EXPECT_EQ(comn_intl_drop_globalid(&context, table), CS_SUCCEED);
  }

  AllocationProbe probe;
  CS_CONTEXT context{};
};

TEST_F(LoaderSteps, ANewRecord) {
  CsOID *const oid = make("1.2.3");
  EXPECT_EQ(text_of(oid->oidstring, oid->oidnamelen), "1.2.3");
  EXPECT_EQ(encoding_of(*oid), (Bytes{6, 2, 42, 3}));
  EXPECT_EQ(oid->oidlnames, nullptr);
  EXPECT_EQ(oid->oidnumlnames, 0);
  EXPECT_EQ(oid->oidnext, nullptr);
  drop({oid});
  CsOID untouched{}, *failed = &untouched;
  EXPECT_EQ(comn__new_oid(&context, Text("1"), &failed), CS_FAIL);
  EXPECT_EQ(failed, nullptr);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__new_oid(&context, nullptr, &failed));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__new_oid(&context, Text("1.2"), nullptr));
}

TEST_F(LoaderSteps, ANewName) {
  CS_STRING_LIST *element = nullptr;
  EXPECT_EQ(comn__newstring(&context, Text("name"), 3, &element), CS_SUCCEED);
  EXPECT_EQ(text_of(element->string, element->len), "nam");
  EXPECT_EQ(element->next, nullptr);
  comn_free(element->string);
  comn_free(element);
  for (const CS_INT length : {0, -1, CS_LEN_NULLTERM}) {
    EXPECT_EQ(comn__newstring(&context, Text("name"), length, &element), CS_SUCCEED);
    EXPECT_EQ(element->string, nullptr);
    EXPECT_EQ(element->len, 0);
    comn_free(element);
  }
  EXPECT_EQ(comn__newstring(&context, nullptr, 4, &element), CS_SUCCEED);
  EXPECT_EQ(element->string, nullptr);
  EXPECT_EQ(element->len, 0);
  comn_free(element);
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__newstring(&context, Text("n"), 1, nullptr));
}

// Every text of a record is a block of its own, so a table of any origin is released whole.
TEST_F(LoaderSteps, ATableMadeByHandIsReleased) {
  auto *const oid = static_cast<CsOID *>(comn_calloc(1, sizeof(CsOID)));
  oid->oidstring = static_cast<CS_CHAR *>(comn_malloc(3));
  oid->oidber = static_cast<CS_BYTE *>(comn_calloc(COM_OID_BER_SIZE, 1));
  oid->oidlnames = static_cast<CS_STRING_LIST *>(comn_calloc(1, sizeof(CS_STRING_LIST)));
  oid->oidlnames->string = static_cast<CS_CHAR *>(comn_malloc(4));
  EXPECT_EQ(probe.live_blocks(), 5U);
  drop({oid});
}

TEST_F(LoaderSteps, FailedAllocations) {
  for (size_t nth = 1; nth <= 3; ++nth) {
    CsOID untouched{}, *oid = &untouched;
    probe.fail(nth);
    EXPECT_EQ(comn__new_oid(&context, Text("1.2"), &oid), CS_MEM_ERROR);
    EXPECT_EQ(oid, nullptr);
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
  for (size_t nth = 1; nth <= 2; ++nth) {
    CS_STRING_LIST untouched{}, *element = &untouched;
    probe.fail(nth);
    EXPECT_EQ(comn__newstring(&context, Text("n"), 1, &element), CS_MEM_ERROR);
    EXPECT_EQ(element, nullptr);
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
  EXPECT_EQ(probe.failures(), 5U);
}

TEST_F(LoaderSteps, NamesAreMoved) {
  CsOID *const to = make("1.2", {"a", "b"}), *const from = make("1.3", {"c", ""});
  EXPECT_EQ(comn__cat_localnames(&context, to, from), CS_SUCCEED);
  EXPECT_EQ(names_of(*to), (Names{"a", "b", "c", ""}));
  EXPECT_EQ(names_of(*from), Names{});
  EXPECT_EQ(comn__cat_localnames(&context, from, to), CS_SUCCEED); // to a record without names
  EXPECT_EQ(names_of(*from), (Names{"a", "b", "c", ""}));
  EXPECT_EQ(comn__cat_localnames(&context, from, to), CS_SUCCEED); // from one
  EXPECT_EQ(names_of(*from), (Names{"a", "b", "c", ""}));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__cat_localnames(&context, nullptr, from));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__cat_localnames(&context, to, nullptr));
  drop({to, from});
}

TEST_F(LoaderSteps, ARecordIsTakenOrMerged) {
  CS_OID_TABLE table{};
  CsOID *const first = make("1.2.3", {"a"}), *const second = make("1.2.4", {"b"});
  EXPECT_EQ(comn__add_oid(&context, &table, 3, first), CS_SUCCEED);
  EXPECT_EQ(comn__add_oid(&context, &table, 3, second), CS_SUCCEED);
  EXPECT_EQ(table.ot_oid[3], first);
  EXPECT_EQ(first->oidnext, second);
  const size_t blocks = probe.live_blocks();
  EXPECT_EQ(comn__add_oid(&context, &table, 3, make("1.2.4", {"c"})), CS_SUCCEED);
  EXPECT_EQ(second->oidnext, nullptr);
  EXPECT_EQ(names_of(*second), (Names{"b", "c"}));
  EXPECT_EQ(probe.live_blocks(), blocks + 2); // the name: an element and its text
  CsOID *const elsewhere = make("1.2.4", {"d"});
  EXPECT_EQ(comn__add_oid(&context, &table, 4, elsewhere), CS_SUCCEED);
  EXPECT_EQ(table.ot_oid[4], elsewhere);

  CsOID *const extra = make("1.2.5");
  for (const CS_INT oidclass : {-1, 12, CS_UNUSED})
    EXPECT_ASSERTION(unit, CS_FAIL, comn__add_oid(&context, &table, oidclass, extra));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__add_oid(&context, nullptr, 0, extra));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__add_oid(&context, &table, 0, nullptr));
  drop({first, elsewhere, extra});
}

// The steps that read work on a file that is open already.
TEST_F(LoaderSteps, OneSectionAndOneEntry) {
  const IdentifierHome home("[money]\n1.2.3 = a, b\n1.2.4 = c\n[other]\n1.2.5 = d\n");
  INTL_LOCFILE file;
  ASSERT_EQ(intl_open(home.path().c_str(), &file), 0);
  ASSERT_NE(intl_nextsection(&file, nullptr), nullptr);
  ASSERT_NE(intl_nextentry(&file, nullptr), nullptr);
  CsOID *const oid = make("1.9", {"first"});
  EXPECT_EQ(comn__read_localnames(&context, &file, oid), CS_SUCCEED);
  EXPECT_EQ(names_of(*oid), (Names{"first", "a", "b"}));

  CS_OID_TABLE table{};
  EXPECT_EQ(comn__read_oidsection(&context, &file, &table, 7), CS_SUCCEED); // what is left of it
  ASSERT_NE(table.ot_oid[7], nullptr);
  EXPECT_EQ(names_of(*table.ot_oid[7]), Names{"c"});
  EXPECT_EQ(table.ot_oid[7]->oidnext, nullptr);
  EXPECT_STREQ(intl_nextsection(&file, nullptr), "other");

  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_localnames(nullptr, &file, oid));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_localnames(&context, nullptr, oid));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_localnames(&context, &file, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_oidsection(nullptr, &file, &table, 7));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_oidsection(&context, nullptr, &table, 7));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__read_oidsection(&context, &file, nullptr, 7));
  EXPECT_EQ(intl_close(&file), 0);
  drop({oid, table.ot_oid[7]});
}

// A class outside the twelve is found before anything is read for it.
TEST_F(LoaderSteps, AWrongClassLosesNothing) {
  const IdentifierHome home("[money]\n1.2.3 = a\n");
  INTL_LOCFILE file;
  ASSERT_EQ(intl_open(home.path().c_str(), &file), 0);
  ASSERT_NE(intl_nextsection(&file, nullptr), nullptr);
  CS_OID_TABLE table{};
  EXPECT_ASSERTION(unit, CS_FAIL, comn__read_oidsection(&context, &file, &table, 12));
  EXPECT_EQ(intl_close(&file), 0);
}

} // namespace
