// The shipped identifiers: what is there, under which names, and what damage to the file does.
#include <cstring>
#include <pwd.h>
#include <set>

#include "allocation_probe.h"
#include "check_trap.h"
#include "identifier_records.h"
#include "io_probe.h"
#include "test_scale.h"

namespace {

using namespace zrvtest;

const std::string arc = "1.3.6.1.4.1.32473.16";

class ShippedIdentifiers : public testing::Test {
protected:
  static void SetUpTestSuite() {
    setenv("ZARVEK", ZRVTEST_HOME, 1);
    loaded = new LoadedTable;
    unsetenv("ZARVEK");
  }
  static void TearDownTestSuite() { delete loaded; }
  void SetUp() override { ASSERT_EQ(loaded->result, CS_SUCCEED); }

  // The record of a name in a class; null without one.
  static const CsOID *find(CS_INT oidclass, const std::string &name) {
    CsOID *found = nullptr;
    comn_globalid(&loaded->context, COM_NAME_TO_OID, &found, &oidclass, CS_UNUSED, Text(name),
                  static_cast<CS_INT>(name.size()), nullptr, nullptr);
    return found;
  }

  // The canonical name behind a name; empty without one.
  static std::string canonical(CS_INT oidclass, const std::string &name) {
    const CsOID *const oid = find(oidclass, name);
    return oid != nullptr ? names_of(*oid).at(0) : "";
  }

  static LoadedTable *loaded;
};
LoadedTable *ShippedIdentifiers::loaded;

struct NumberedName {
  int number;
  const char *name;
};

// Every character set by its number.
constexpr NumberedName charsets[] = {
    {0, "ascii_8"},    {1, "iso_1"},       {2, "cp850"},       {3, "cp437"},     {4, "roman8"},
    {5, "mac"},        {6, "decmcs"},      {7, "ebcdic"},      {8, "iso646"},    {9, "cp860"},
    {10, "cp863"},     {11, "ascii_7"},    {12, "teletex"},    {13, "cp1252"},   {14, "iso15"},
    {15, "cp861"},     {16, "iso6937"},    {20, "iso88592"},   {21, "cp852"},    {22, "cp1250"},
    {23, "mac_ee"},    {24, "mac_croat"},  {25, "mac_ice"},    {26, "mac_rom"},  {27, "mac_ukr"},
    {29, "cp273"},     {30, "cp1257"},     {31, "iso13"},      {32, "cp280"},    {33, "cp284"},
    {34, "cp285"},     {35, "cp297"},      {36, "cp277"},      {37, "cp775"},    {38, "cp870"},
    {39, "cp871"},     {40, "iso88593"},   {41, "iso88594"},   {42, "iso10"},    {43, "cp865"},
    {44, "cp1122"},    {45, "cp278"},      {46, "cp921"},      {47, "cp922"},    {48, "cp1123"},
    {49, "cp1124"},    {50, "iso88595"},   {51, "cp855"},      {52, "cp866"},    {53, "cp1251"},
    {54, "cp880"},     {55, "koi8"},       {56, "mac_cyr"},    {57, "cp1025"},   {58, "cp1112"},
    {59, "mac_farsi"}, {60, "iso88596"},   {61, "arabic8"},    {62, "cp1256"},   {63, "mac_arab"},
    {64, "ibm420"},    {65, "ibm918"},     {66, "cp864"},      {67, "cp868"},    {68, "cp1097"},
    {69, "cp1098"},    {70, "iso88597"},   {71, "greek8"},     {72, "cp869"},    {73, "cp1253"},
    {74, "macgrk2"},   {75, "macgreek"},   {76, "cp737"},      {77, "cp875"},    {80, "iso88598"},
    {81, "cp1255"},    {82, "mac_hebr"},   {83, "hebrew8"},    {84, "cp856"},    {85, "cp424"},
    {86, "cp862"},     {90, "iso88599"},   {91, "turkish8"},   {92, "cp1254"},   {93, "cp857"},
    {94, "macturk"},   {95, "cp1026"},     {100, "tis620"},    {101, "cp874"},   {102, "macthai"},
    {103, "cp838"},    {104, "ibm874"},    {110, "cp037"},     {111, "cp500"},   {112, "cp1047"},
    {120, "cp1258"},   {125, "cp942"},     {126, "cp290"},     {128, "cp930"},   {129, "cp930yen"},
    {130, "cp1006"},   {131, "cp5026"},    {132, "cp5026yen"}, {133, "cp939"},   {134, "cp939yen"},
    {136, "cp5035"},   {137, "cp5035yen"}, {138, "cp954"},     {139, "cp33722"}, {140, "eucjis"},
    {141, "sjis"},     {142, "deckanji"},  {143, "jis"},       {144, "cp932"},   {145, "cp932ms"},
    {150, "eucksc"},   {151, "kscpack"},   {152, "cp934"},     {153, "korea15"}, {154, "cp949"},
    {155, "cp933"},    {160, "euccns"},    {161, "big5"},      {168, "big5hk"},  {162, "cp938"},
    {163, "roc15"},    {164, "cns"},       {165, "cp950"},     {166, "cp964"},   {167, "cp937"},
    {170, "eucgb"},    {171, "cp936"},     {172, "gb80"},      {173, "gb18030"}, {175, "cp935"},
    {176, "cp1381"},   {177, "cp1383"},    {180, "iso5426"},   {181, "blecs"},   {182, "alacs"},
    {183, "iso5427"},  {184, "iso5428"},   {185, "iso6438"},   {190, "utf8"},    {191, "ucs2"},
    {192, "utf16"},    {193, "opoce"},     {194, "ucs4"},      {195, "mac_sym"}, {196, "mac_ding"},
    {199, "cp1046"},   {200, "iso14"},     {201, "cp1140"},    {202, "cp1141"},  {203, "cp1142"},
    {204, "cp1143"},   {205, "cp1144"},    {206, "cp1145"},    {207, "cp1146"},  {208, "cp1147"},
    {209, "cp1148"},   {210, "cp1149"},    {211, "cp420"},     {197, "cp858"},   {213, "cp871v1"},
    {214, "cp874ibm"}, {215, "cp923"},     {216, "mac_euro"},  {217, "rcsu"},    {218, "roman9"},
    {87, "kz1048"},    {255, "zrvchar"},
};

TEST_F(ShippedIdentifiers, EveryCharacterSet) {
  for (const auto &[number, name] : charsets) {
    const CsOID *const oid = find(COM_OID_CHARSET, name);
    ASSERT_NE(oid, nullptr) << name;
    EXPECT_EQ(names_of(*oid)[0], name);
    EXPECT_EQ(text_of(oid->oidstring, oid->oidnamelen), arc + ".0." + std::to_string(number));
  }
  EXPECT_EQ(std::size(charsets), 172U);
  // And the two character formats of the capability exchange.
  EXPECT_EQ(loaded->identifiers(COM_OID_CHARSET).size(), 174U);
}

TEST_F(ShippedIdentifiers, CharacterSetsByOtherNames) {
  constexpr struct {
    const char *name, *canonical;
  } rows[] = {
      {"utf-8", "utf8"},          {"UTF-8", "utf8"},
      {"UTF8", "utf8"},           {"latin1", "iso_1"},
      {"ISO-8859-1", "iso_1"},    {"iso-8859-1", "iso_1"},
      {"iso88591", "iso_1"},      {"ISO-8859-15", "iso15"},
      {"latin9", "iso15"},        {"latin2", "iso88592"},
      {"iso-8859-2", "iso88592"}, {"iso-8859-5", "iso88595"},
      {"iso-8859-7", "iso88597"}, {"iso-8859-9", "iso88599"},
      {"iso-8859-10", "iso10"},   {"iso-8859-13", "iso13"},
      {"iso-8859-14", "iso14"},   {"windows-1250", "cp1250"},
      {"windows-1251", "cp1251"}, {"windows-1252", "cp1252"},
      {"windows-1258", "cp1258"}, {"ibm850", "cp850"},
      {"IBM437", "cp437"},        {"macintosh", "mac"},
      {"us-ascii", "ascii_7"},    {"ANSI_X3.4-1968", "ascii_7"},
      {"koi8-r", "koi8"},         {"euc-jp", "eucjis"},
      {"eucJP", "eucjis"},        {"shift_jis", "sjis"},
      {"windows-31j", "cp932ms"}, {"euc-kr", "eucksc"},
      {"big5-hkscs", "big5hk"},   {"gbk", "cp936"},
      {"GB18030", "gb18030"},     {"gb2312", "eucgb"},
      {"euc-tw", "euccns"},       {"tis-620", "tis620"},
      {"ucs-2", "ucs2"},          {"utf-16", "utf16"},
  };
  for (const auto &row : rows)
    EXPECT_EQ(canonical(COM_OID_CHARSET, row.name), row.canonical) << row.name;
}

TEST_F(ShippedIdentifiers, FortyThreeLanguages) {
  constexpr const char *languages[] = {
      "us_english",
      "uk_english",
      "german",
      "french",
      "spanish",
      "italian",
      "portuguese",
      "brazilian",
      "dutch",
      "danish",
      "norwegian",
      "swedish",
      "finnish",
      "icelandic",
      "polish",
      "czech",
      "slovak",
      "hungarian",
      "slovenian",
      "croatian",
      "serbian",
      "romanian",
      "bulgarian",
      "greek",
      "turkish",
      "russian",
      "ukrainian",
      "estonian",
      "latvian",
      "lithuanian",
      "hebrew",
      "arabic",
      "persian",
      "hindi",
      "thai",
      "vietnamese",
      "indonesian",
      "malay",
      "korean",
      "japanese",
      "simplified_chinese",
      "traditional_chinese",
      "kazakh",
  };
  for (const char *const language : languages)
    EXPECT_EQ(canonical(COM_OID_NATLANG, language), language);
  // English, Portuguese and Chinese have two forms each.
  EXPECT_EQ(std::size(languages), 40U + 3U);
  EXPECT_EQ(loaded->identifiers(COM_OID_NATLANG).size(), std::size(languages));
  EXPECT_EQ(canonical(COM_OID_NATLANG, "de"), "german");
  EXPECT_EQ(canonical(COM_OID_NATLANG, "english"), "us_english");
  EXPECT_EQ(canonical(COM_OID_NATLANG, "pt_BR"), "brazilian");
}

// What every start of the library asks for.
TEST_F(ShippedIdentifiers, WhatStartUpNeeds) {
  EXPECT_EQ(canonical(COM_OID_CHARSET, "utf8"), "utf8");
  EXPECT_EQ(canonical(COM_OID_CHARSET, "ucs2"), "ucs2");
  EXPECT_EQ(canonical(COM_OID_COLLATE, "binary"), "binary");
  for (const char *const order : {"dictionary", "nocase", "noaccent", "nocasepref"})
    EXPECT_EQ(canonical(COM_OID_COLLATE, order), order);
}

TEST_F(ShippedIdentifiers, FormatsOfTheCapabilityExchange) {
  constexpr struct {
    CS_INT oidclass, code;
  } rows[] = {{6, 2},   {6, 3},   {7, 0},  {7, 1},  {0, 6},  {0, 7},  {10, 4},
              {10, 10}, {10, 11}, {10, 5}, {9, 12}, {9, 13}, {9, 14}, {9, 15}};
  for (const auto &row : rows) {
    CsOID *oid = nullptr;
    ASSERT_EQ(comn_tds_to_oid(&loaded->context, row.oidclass, row.code, &oid), CS_SUCCEED)
        << row.code;
    CS_INT code = 77;
    EXPECT_EQ(comn_oid_to_tds(&loaded->context, oid, &code), CS_SUCCEED);
    EXPECT_EQ(code, row.code);
  }
}

// Everything stands under the one arc, by class; encodings are unique in all classes, names in each.
TEST_F(ShippedIdentifiers, EachIdentifierAndEachNameIsUnique) {
  std::set<Bytes> encodings;
  for (CS_INT oidclass = 0; oidclass < COM_OID_CLASS_COUNT; ++oidclass) {
    const auto identifiers = loaded->identifiers(oidclass);
    EXPECT_GE(identifiers.size(), 1U) << oidclass;
    std::set<std::string> names;
    for (const CsOID *const oid : identifiers) {
      const std::string dotted = text_of(oid->oidstring, oid->oidnamelen);
      EXPECT_EQ(dotted.find(arc + "." + std::to_string(oidclass) + "."), 0U) << dotted;
      EXPECT_TRUE(encodings.insert(encoding_of(*oid)).second) << dotted;
      EXPECT_GE(oid->oidnumlnames, 1) << dotted;
      for (const std::string &name : names_of(*oid)) {
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(find(oidclass, name), oid) << name;
      }
      CsOID *probe = const_cast<CsOID *>(oid);
      CS_INT found = 77;
      EXPECT_EQ(comn_globalid(&loaded->context, COM_OID_TO_NAME, &probe, &found, CS_UNUSED, nullptr,
                              CS_UNUSED, nullptr, nullptr),
                CS_SUCCEED);
      EXPECT_EQ(found, oidclass);
    }
  }
  EXPECT_EQ(encoding_of(*find(COM_OID_CHARSET, "utf8")),
            (Bytes{6, 12, 43, 6, 1, 4, 1, 0x81, 0xFD, 0x59, 16, 0, 0x81, 0x3E}));
}

// A build can be used where it is, without any variable set.
TEST(ShippedFile, IsFoundWithoutAVariable) {
  if (getpwnam("zarvek") != nullptr)
    GTEST_SKIP() << "this host has an installation of its own";
  unsetenv("ZARVEK");
  const LoadedTable loaded;
  EXPECT_EQ(loaded.result, CS_SUCCEED);
}

// ---- damage ----

std::string shipped_text() {
  std::FILE *const file = std::fopen(ZRVTEST_HOME "/config/objectid.dat", "r");
  std::string text(1 << 20, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  return text;
}

// A file that is damaged and loaded again and again: each time a told status, nothing left behind, and
// a table that can be released.
class DamagedFile : public testing::Test {
protected:
  DamagedFile() { EXPECT_GE(file, 0); }
  ~DamagedFile() override { close(file); }

  void load(const std::string &damaged, size_t at) {
    ASSERT_EQ(pwrite(file, damaged.data(), damaged.size(), 0),
              static_cast<ssize_t>(damaged.size()));
    ASSERT_EQ(ftruncate(file, static_cast<off_t>(damaged.size())), 0);
    const IoProbe files;
    CS_CONTEXT context{};
    CS_OID_TABLE *table = nullptr;
    const CS_RETCODE result = comn_intl_load_globalid(&context, &table);
    const std::string what = "damage at " + std::to_string(at) + " of:\n" + damaged;
    ASSERT_TRUE(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR) << what;
    ASSERT_EQ(table != nullptr, result == CS_SUCCEED) << what;
    ASSERT_EQ(context.ctxintlerr < 0, result == COM_INTL_ERROR) << what;
    ASSERT_EQ(files.open_files(), 0U) << what;
    ++(result == CS_SUCCEED ? loaded : result == CS_FAIL ? unencoded : unread);
    ASSERT_EQ(comn_intl_drop_globalid(&context, table), CS_SUCCEED);
    ASSERT_EQ(allocations.live_blocks(), 0U) << what;
  }

  // Cuts a text at a byte, and changes that byte.
  void damage(const std::string &whole, size_t at) {
    constexpr char bytes[] = {'\0', '\n', '"', '[', ']', '=', ',', ';', '\\', ' ', '.', '\xFF'};
    load(whole.substr(0, at), at);
    std::string changed = whole;
    changed[at] = bytes[at % std::size(bytes)];
    load(changed, at);
  }

  const std::string text = shipped_text();
  const IdentifierHome home{text};
  const int file = open(home.path().c_str(), O_WRONLY | O_CLOEXEC);
  const AllocationProbe allocations;
  size_t loaded = 0, unencoded = 0, unread = 0; // loads by their result
};

// What a line comes to hangs on its section and the lines beside it alone.
TEST_F(DamagedFile, EachByteOfEachLine) {
  const size_t step = sanitized ? 7 : 1;
  std::string section, before;
  for (size_t begin = 0; begin < text.size();) {
    const size_t end = text.find('\n', begin) + 1;
    const std::string line = text.substr(begin, end - begin);
    const std::string after = text.substr(end, text.find('\n', end) + 1 - end);
    if (line[0] == '[')
      section = line;
    const std::string head = section == line ? before : section + before;
    for (size_t at = begin % step; at < line.size() && !HasFatalFailure(); at += step)
      damage(head + line + after, head.size() + at);
    before = line;
    begin = end;
  }
  const size_t damages = text.size() / step;
  EXPECT_GT(loaded, damages);
  EXPECT_GT(unencoded, 0U);
  EXPECT_GT(unread, damages / 10);
}

TEST_F(DamagedFile, BytesOfTheWholeFile) {
  const size_t step = sanitized ? 1999 : 307;
  for (auto at = static_cast<size_t>(random_seed() % step); at < text.size() && !HasFatalFailure();
       at += step)
    damage(text, at);
  EXPECT_GT(loaded, 0U);
}

TEST_F(DamagedFile, EachCallOfTheSystemFailed) {
  CS_CONTEXT context{};
  CS_RETCODE first = CS_SUCCEED, last = CS_SUCCEED;
  const size_t failed = fail_each_io([&] {
    CS_OID_TABLE *table = nullptr;
    context.ctxintlerr = 0;
    const CS_RETCODE result = comn_intl_load_globalid(&context, &table);
    EXPECT_EQ(table != nullptr, result == CS_SUCCEED);
    EXPECT_EQ(comn_intl_drop_globalid(&context, table), CS_SUCCEED);
    if (result == CS_SUCCEED)
      return false;
    // A file that cannot be opened, then what the reader met.
    if (first == CS_SUCCEED)
      first = result;
    last = result;
    EXPECT_LT(context.ctxintlerr, 0);
    return true;
  });
  EXPECT_EQ(first, COM_LOCFILE_ERROR);
  EXPECT_EQ(last, COM_INTL_ERROR); // the close
  EXPECT_GE(failed, 2 + text.size() / 4096 + 1);
}

} // namespace
