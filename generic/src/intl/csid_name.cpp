// The numbers and the names of the character sets, and their converters.
#include <cstring>

#include "any_address.h"
#include "checks.h"
#include "comloc.h"
#include "table.h"

namespace {

constexpr size_t set_count = sizeof csid_name / sizeof *csid_name;

struct Set {
  int csid;
  CS_BYTE name[10]; // NUL-terminated
  UNICONV_CID converter;
};

constexpr UNICONV_CID none = UNICONV_CID_NONE;

// In the order in which look-ups scan.
constexpr Set sets[set_count] = {
    {0, "ascii_8", 0},
    {1, "iso_1", 1},
    {2, "cp850", 2},
    {3, "cp437", 3},
    {4, "roman8", 4},
    {5, "mac", 5},
    {6, "decmcs", none},
    {7, "ebcdic", none},
    {8, "iso646", 0},
    {9, "cp860", 860},
    {10, "cp863", 863},
    {11, "ascii_7", 0},
    {12, "teletex", none},
    {13, "cp1252", 1252},
    {14, "iso15", 21},
    {15, "cp861", 861},
    {16, "iso6937", none},
    {20, "iso88592", 12},
    {21, "cp852", 852},
    {22, "cp1250", 1250},
    {23, "mac_ee", 27},
    {24, "mac_croat", none},
    {25, "mac_ice", none},
    {26, "mac_rom", none},
    {27, "mac_ukr", none},
    {29, "cp273", 273},
    {30, "cp1257", 1257},
    {31, "iso13", 42},
    {32, "cp280", 280},
    {33, "cp284", 284},
    {34, "cp285", 285},
    {35, "cp297", 297},
    {36, "cp277", 277},
    {37, "cp775", 775},
    {38, "cp870", 870},
    {39, "cp871", none},
    {40, "iso88593", 19},
    {41, "iso88594", 20},
    {42, "iso10", 18},
    {43, "cp865", 865},
    {44, "cp1122", none},
    {45, "cp278", 278},
    {46, "cp921", 921},
    {47, "cp922", none},
    {48, "cp1123", none},
    {49, "cp1124", none},
    {50, "iso88595", 13},
    {51, "cp855", 855},
    {52, "cp866", 866},
    {53, "cp1251", 1251},
    {54, "cp880", none},
    {55, "koi8", 32},
    {56, "mac_cyr", 26},
    {57, "cp1025", none},
    {58, "cp1112", none},
    {59, "mac_farsi", none},
    {60, "iso88596", 14},
    {61, "arabic8", none},
    {62, "cp1256", 1256},
    {63, "mac_arab", none},
    {64, "ibm420", none},
    {65, "ibm918", none},
    {66, "cp864", 864},
    {67, "cp868", none},
    {68, "cp1097", none},
    {69, "cp1098", none},
    {70, "iso88597", 15},
    {71, "greek8", 30},
    {72, "cp869", 869},
    {73, "cp1253", 1253},
    {74, "macgrk2", none},
    {75, "macgreek", 28},
    {76, "cp737", 737},
    {77, "cp875", 875},
    {80, "iso88598", 16},
    {81, "cp1255", 1255},
    {82, "mac_hebr", none},
    {83, "hebrew8", none},
    {84, "cp856", 856},
    {85, "cp424", 424},
    {86, "cp862", 862},
    {90, "iso88599", 17},
    {91, "turkish8", 31},
    {92, "cp1254", 1254},
    {93, "cp857", 857},
    {94, "macturk", 29},
    {95, "cp1026", 1026},
    {100, "tis620", 33},
    {101, "cp874", 874},
    {102, "macthai", 41},
    {103, "cp838", none},
    {104, "ibm874", none},
    {110, "cp037", 37},
    {111, "cp500", 500},
    {112, "cp1047", 1047},
    {120, "cp1258", 1258},
    {125, "cp942", none},
    {126, "cp290", 290},
    {128, "cp930", 930},
    {129, "cp930yen", 3000},
    {130, "cp1006", 1006},
    {131, "cp5026", 5026},
    {132, "cp5026yen", 3002},
    {133, "cp939", 939},
    {134, "cp939yen", 3001},
    {136, "cp5035", 5035},
    {137, "cp5035yen", 3003},
    {138, "cp954", 954},
    {139, "cp33722", none},
    {140, "eucjis", 49},
    {141, "sjis", 50},
    {142, "deckanji", 8},
    {143, "jis", none},
    {144, "cp932", 932},
    {145, "cp932ms", 11},
    {150, "eucksc", 36},
    {151, "kscpack", none},
    {152, "cp934", none},
    {153, "korea15", none},
    {154, "cp949", 949},
    {155, "cp933", 933},
    {160, "euccns", 9},
    {161, "big5", 34},
    {168, "big5hk", 47},
    {162, "cp938", none},
    {163, "roc15", none},
    {164, "cns", none},
    {165, "cp950", 950},
    {166, "cp964", none},
    {167, "cp937", 937},
    {170, "eucgb", 10},
    {171, "cp936", 936},
    {172, "gb80", none},
    {173, "gb18030", 48},
    {175, "cp935", 935},
    {176, "cp1381", none},
    {177, "cp1383", none},
    {180, "iso5426", none},
    {181, "blecs", none},
    {182, "alacs", none},
    {183, "iso5427", none},
    {184, "iso5428", none},
    {185, "iso6438", none},
    {190, "utf8", UNICONV_CID_UTF8},
    {191, "ucs2", none},
    {192, "utf16", UNICONV_CID_UTF16},
    {193, "opoce", none},
    {194, "ucs4", none},
    {195, "mac_sym", none},
    {196, "mac_ding", none},
    {199, "cp1046", none},
    {200, "iso14", 43},
    {201, "cp1140", 1140},
    {202, "cp1141", 1141},
    {203, "cp1142", 1142},
    {204, "cp1143", 1143},
    {205, "cp1144", 1144},
    {206, "cp1145", 1145},
    {207, "cp1146", 1146},
    {208, "cp1147", 1147},
    {209, "cp1148", 1148},
    {210, "cp1149", 1149},
    {211, "cp420", 420},
    {197, "cp858", 858},
    {213, "cp871v1", 871},
    {214, "cp874ibm", 46},
    {215, "cp923", 923},
    {216, "mac_euro", 45},
    {217, "rcsu", UNICONV_CID_RCSU},
    {218, "roman9", 44},
    {87, "kz1048", 54},
    {255, "zrvchar", none},
};

using NameTable = comn::Table<CSID_CSNAME, set_count>;

consteval NameTable make_table() {
  NameTable table{};
  for (size_t i = 0; i < set_count; ++i) {
    int length = 0;
    while (sets[i].name[length] != 0)
      ++length;
    table[i] = {sets[i].csid, const_cast<CS_BYTE *>(sets[i].name), length, sets[i].converter};
  }
  return table;
}

} // namespace

COMN_PUBLISH_TABLE(NameTable, CSID_CSNAME, csid_name, [set_count], make_table());

CS_RETCODE comn__get_unilib_cid(int csid, UNICONV_CID *cid) noexcept {
  COMN_CHECK_PTR(cid, COMN_TRACE(CS_FAIL));
  for (const CSID_CSNAME &row : csid_name_storage.rows)
    if (row.csid == csid) {
      *cid = row.unilib_cid;
      return COMN_TRACE(CS_SUCCEED);
    }
  return COMN_TRACE(CS_FAIL);
}

CS_RETCODE com_get_csid(CS_CHAR *charname, CS_VOID *cuid) noexcept {
  COMN_CHECK_PTR(charname, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cuid, COMN_TRACE(CS_FAIL));
  const size_t length = std::strlen(charname);
  for (const CSID_CSNAME &row : csid_name_storage.rows)
    if (length == static_cast<size_t>(row.len) && std::memcmp(charname, row.csname, length) == 0) {
      comn::store(cuid, row.unilib_cid);
      return COMN_TRACE(CS_SUCCEED);
    }
  return COMN_TRACE(CS_FAIL);
}
