// The token maps, and the lookups in them.
#include "commaps.h"

#include <cstring>

#include "checks.h"
#include "table.h"

namespace {

constexpr TDS_TOKENMAP unique_end = {COM_TDS_UNIQ_END, COM_TDS_UNIQ_END};
constexpr TDS_TOKENMAP bit_end = {COM_TDS_BIT_END, COM_TDS_BIT_END};

} // namespace

// Library value, wire value.
COMN_DEFINE_TABLE(Com__tds_altop_map) = {
    {5370, 77}, {5371, 79}, {5372, 75}, {5373, 81}, {5374, 82}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_captype_map) = {{1, 1}, {2, 2}, unique_end};

COMN_DEFINE_TABLE(Com__tds_colinfo_map) = {
    {1, 16}, {2, 8}, {2048, 4}, {4096, 32}, {0, 0}, bit_end,
};

COMN_DEFINE_TABLE(Com__tds_curclose_map) = {{711, 1}, {CS_UNUSED, 0}, unique_end};

COMN_DEFINE_TABLE(Com__tds_dynamic_map) = {
    {717, 1},  {718, 2},   {711, 4},       {719, 8},   {720, 64},
    {320, 64}, {721, 128}, {CS_UNUSED, 0}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_optcom_map) = {{34, 1}, {35, 2}, {33, 3}, {39, 4}, unique_end};

COMN_DEFINE_TABLE(Com__tds_optboolean_map) = {{0, 0}, {1, 1}, unique_end};

COMN_DEFINE_TABLE(Com__tds_optdatefirst_map) = {
    {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_optdatefmt_map) = {
    {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_optisolation_map) = {
    {0, 0}, {1, 1}, {2, 2}, {3, 3}, {11, 11}, {12, 12}, {13, 13}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_optisolationmode_map) = {{0, 0}, {1, 1}, {2, 2}, unique_end};

// Several library values share a wire value here and the other way round: the first row counts.
COMN_DEFINE_TABLE(Com__tds_paramstat_map) = {
    {1024, 1}, {32, 32}, {1056, 33},     {1024, 192}, {1056, 224},
    {256, 0},  {320, 0}, {CS_UNUSED, 0}, {0, 0},      unique_end,
};

COMN_DEFINE_TABLE(Com__tds_rpcopt_map) = {{188, 1}, {189, 0}, {CS_UNUSED, 0}, unique_end};

COMN_DEFINE_TABLE(Com__tds_rpcstat_map) = {{1024, 1}, {16384, 2}, {256, 0}, unique_end};

COMN_DEFINE_TABLE(Com__tds_retval_map) = {
    {1024, 1}, {256, 0}, {320, 0}, {0, 0}, unique_end,
};

COMN_DEFINE_TABLE(Com__tds_rowfmt_map) = {
    {1, 1},      {2, 2},       {4, 4},      {8, 8}, {16, 16}, {32, 32},
    {32768, 64}, {65536, 128}, {1024, 192}, {0, 0}, bit_end,
};

namespace {

// The long maps are numbered alike on both sides. What each number means is defined by the layers
// above, which replace these rows by theirs where they differ.
template <size_t Rows>
consteval comn::Table<TDS_TOKENMAP, Rows> numbered(CS_INT first_library) {
  comn::Table<TDS_TOKENMAP, Rows> map{};
  for (size_t row = 0; row + 1 < Rows; ++row) {
    const auto number = static_cast<CS_INT>(row);
    map[row] = {first_library + number, number + 1};
  }
  map[Rows - 1] = unique_end;
  return map;
}

// The options 3 and 4 are crossed.
consteval comn::Table<TDS_TOKENMAP, 48> option_rows() {
  auto map = numbered<48>(5001);
  map[2] = {5004, 4};
  map[3] = {5003, 3};
  return map;
}

// A cursor is declared without options, or with one of twenty.
consteval comn::Table<TDS_TOKENMAP, 22> curdecl_rows() {
  auto map = numbered<22>(1);
  map[20] = {CS_UNUSED, 0};
  return map;
}

// One bit for each thing that can be told of a cursor, and nothing.
consteval comn::Table<TDS_TOKENMAP, 17> curinfo_rows() {
  comn::Table<TDS_TOKENMAP, 17> map{};
  for (size_t row = 0; row < 15; ++row)
    map[row] = {1 << row, 1 << row};
  map[15] = {0, 0};
  map[16] = bit_end;
  return map;
}

template <size_t Rows>
using TokenTable = comn::Table<TDS_TOKENMAP, Rows>;

} // namespace

COMN_PUBLISH_TABLE(TokenTable<108>, TDS_TOKENMAP, Com__tds_cap_req_map, [108], numbered<108>(1));
COMN_PUBLISH_TABLE(TokenTable<74>, TDS_TOKENMAP, Com__tds_cap_resp_map, [74], numbered<74>(1));
COMN_PUBLISH_TABLE(TokenTable<48>, TDS_TOKENMAP, Com__tds_option_map, [48], option_rows());
COMN_PUBLISH_TABLE(TokenTable<22>, TDS_TOKENMAP, Com__tds_curdecl_map, [22], curdecl_rows());
COMN_PUBLISH_TABLE(TokenTable<17>, TDS_TOKENMAP, Com__tds_curinfo_map, [17], curinfo_rows());

namespace {

// By index: the map, and whether it is one of values.
template <bool Own>
consteval comn::Table<TDS_MAPARRAY, COM_TDS_MAP_COUNT> map_rows() {
#define MAP(name) COMN_TABLE_NAME(Own, name)
  return {{
      {0, MAP(Com__tds_altop_map), 1},
      {1, MAP(Com__tds_captype_map), 1},
      {2, MAP(Com__tds_cap_req_map), 1},
      {3, MAP(Com__tds_cap_resp_map), 1},
      {4, MAP(Com__tds_colinfo_map), 0},
      {5, MAP(Com__tds_curclose_map), 1},
      {6, MAP(Com__tds_curdecl_map), 1},
      {7, MAP(Com__tds_curinfo_map), 0},
      {8, MAP(Com__tds_dynamic_map), 1},
      {9, MAP(Com__tds_optcom_map), 1},
      {10, MAP(Com__tds_option_map), 1},
      {11, MAP(Com__tds_optboolean_map), 1},
      {12, MAP(Com__tds_optdatefirst_map), 1},
      {13, MAP(Com__tds_optdatefmt_map), 1},
      {14, MAP(Com__tds_optisolation_map), 1},
      {15, MAP(Com__tds_paramstat_map), 1},
      {16, MAP(Com__tds_rpcopt_map), 1},
      {17, MAP(Com__tds_rpcstat_map), 1},
      {18, MAP(Com__tds_retval_map), 1},
      {19, MAP(Com__tds_rowfmt_map), 0},
      {20, MAP(Com__tds_optisolationmode_map), 1},
  }};
#undef MAP
}

} // namespace

COMN_PUBLISH_LINKED_TABLE(Com__tds_maparray, map_rows);

namespace {

constexpr bool ends_with(const TDS_TOKENMAP &row, CS_INT end) {
  return row.cs_tokenval == end && row.tds_tokenval == end;
}

// True when no value stands twice on either side and only the last row ends the map.
template <class Map>
constexpr bool is_one_to_one(const Map &map, size_t rows, CS_INT end) {
  for (size_t i = 0; i + 1 < rows; ++i) {
    if (ends_with(map[i], end))
      return false;
    for (size_t j = 0; j < i; ++j)
      if (map[i].cs_tokenval == map[j].cs_tokenval || map[i].tds_tokenval == map[j].tds_tokenval)
        return false;
  }
  return ends_with(map[rows - 1], end);
}
template <size_t Rows>
constexpr bool is_one_to_one(const TDS_TOKENMAP (&map)[Rows]) {
  return is_one_to_one(map, Rows, COM_TDS_UNIQ_END);
}
template <size_t Rows>
constexpr bool is_one_to_one(const comn::Table<TDS_TOKENMAP, Rows> &map) {
  return is_one_to_one(map, Rows, COM_TDS_UNIQ_END);
}

static_assert(is_one_to_one(own_Com__tds_altop_map));
static_assert(is_one_to_one(own_Com__tds_captype_map));
static_assert(is_one_to_one(numbered<108>(1)));
static_assert(is_one_to_one(numbered<74>(1)));
static_assert(is_one_to_one(own_Com__tds_curclose_map));
static_assert(is_one_to_one(curdecl_rows()));
static_assert(is_one_to_one(curinfo_rows(), 17, COM_TDS_BIT_END));
static_assert(is_one_to_one(own_Com__tds_optcom_map));
static_assert(is_one_to_one(option_rows()));
static_assert(is_one_to_one(own_Com__tds_optboolean_map));
static_assert(is_one_to_one(own_Com__tds_optdatefirst_map));
static_assert(is_one_to_one(own_Com__tds_optdatefmt_map));
static_assert(is_one_to_one(own_Com__tds_optisolation_map));
static_assert(is_one_to_one(own_Com__tds_rpcstat_map));
static_assert(is_one_to_one(own_Com__tds_optisolationmode_map));
static_assert(ends_with(own_Com__tds_dynamic_map[8], COM_TDS_UNIQ_END));
static_assert(ends_with(own_Com__tds_paramstat_map[9], COM_TDS_UNIQ_END));
static_assert(ends_with(own_Com__tds_rpcopt_map[3], COM_TDS_UNIQ_END));
static_assert(ends_with(own_Com__tds_retval_map[4], COM_TDS_UNIQ_END));
static_assert(ends_with(own_Com__tds_colinfo_map[5], COM_TDS_BIT_END));
static_assert(ends_with(own_Com__tds_rowfmt_map[10], COM_TDS_BIT_END));

// One direction: which field of a row is looked at and which one answers.
using Field = CS_INT TDS_TOKENMAP::*;

template <Field From, Field To>
CS_RETCODE map_value(const TDS_TOKENMAP *row, CS_INT end, CS_INT srcval, CS_INT *destval,
                     CS_INT *unmapval) noexcept {
  while (row->*From != srcval && (row->*From != end || row->*To != end))
    ++row;
  // A source that looks like the end row stops there as well.
  if (ends_with(*row, end)) [[unlikely]] {
    *unmapval = srcval;
    return CS_FAIL;
  }
  *destval = row->*To;
  return CS_SUCCEED;
}

// From library to wire only the library field ends a bit map, and a row whose wire field differs
// ends it only for values that it does not claim; the other way either field does.
template <Field From>
bool ends_bits(const TDS_TOKENMAP &row, CS_INT srcval) noexcept {
  const bool ends_wire = row.tds_tokenval == COM_TDS_BIT_END;
  if (row.cs_tokenval != COM_TDS_BIT_END)
    return From == &TDS_TOKENMAP::tds_tokenval && ends_wire;
  return From == &TDS_TOKENMAP::tds_tokenval || ends_wire || (row.cs_tokenval & srcval) == 0;
}

template <Field From, Field To>
void map_bits(const TDS_TOKENMAP *row, CS_INT srcval, CS_INT *destval, CS_INT *unmapval) noexcept {
  CS_INT mapped = 0, claimed = 0;
  for (; !ends_bits<From>(*row, srcval); ++row)
    if ((row->*From & srcval) != 0) {
      mapped |= row->*To;
      claimed |= row->*From;
    }
  *destval = mapped;
  *unmapval = srcval & ~claimed;
}

// The value 0 shares no bit with any row, so it is looked up whole.
template <Field From, Field To>
CS_RETCODE map_token(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval, CS_INT *unmapval,
                     CS_BOOL is_uniq) noexcept {
  *destval = 0;
  *unmapval = 0;
  if (is_uniq || srcval == 0)
    return map_value<From, To>(map, is_uniq ? COM_TDS_UNIQ_END : COM_TDS_BIT_END, srcval, destval,
                               unmapval);
  map_bits<From, To>(map, srcval, destval, unmapval);
  return CS_SUCCEED;
}

// The library's own values are all known; what comes from the wire need not be.
CS_RETCODE map_to_wire(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval, CS_INT *unmapval,
                       CS_BOOL is_uniq) noexcept {
  const CS_RETCODE status = map_token<&TDS_TOKENMAP::cs_tokenval, &TDS_TOKENMAP::tds_tokenval>(
      map, srcval, destval, unmapval, is_uniq);
  COMN_CHECK(status == CS_SUCCEED, CS_FAIL);
  return status;
}

CS_RETCODE map_to_library(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval, CS_INT *unmapval,
                          CS_BOOL is_uniq) noexcept {
  return map_token<&TDS_TOKENMAP::tds_tokenval, &TDS_TOKENMAP::cs_tokenval>(map, srcval, destval,
                                                                            unmapval, is_uniq);
}

struct Version {
  CS_INT symbol;
  CS_BYTE bytes[4];
  int significant; // leading bytes that count on the way in
};

constexpr Version versions[] = {
    {COM_TDS_VERSION_40, {4, 0, 0, 0}, 2}, {COM_TDS_VERSION_42, {4, 2, 0, 0}, 2},
    {COM_TDS_VERSION_46, {4, 6, 0, 0}, 2}, {COM_TDS_VERSION_495, {4, 9, 5, 0}, 3},
    {COM_TDS_VERSION_50, {5, 0, 0, 0}, 2},
};
constexpr CS_INT version_length = sizeof(Version::bytes);

bool is_direction(CS_INT direction) noexcept {
  return direction == COM_TDS_CSTOTDS || direction == COM_TDS_TDSTOCS;
}

} // namespace

CS_RETCODE com__tds_cstotds_map(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval,
                                CS_INT *unmapval, CS_BOOL is_uniq) noexcept {
  COMN_CHECK_PTR(map, CS_FAIL);
  COMN_CHECK_PTR(destval, CS_FAIL);
  COMN_CHECK_PTR(unmapval, CS_FAIL);
  return map_to_wire(map, srcval, destval, unmapval, is_uniq);
}

CS_RETCODE com__tds_tdstocs_map(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval,
                                CS_INT *unmapval, CS_BOOL is_uniq) noexcept {
  COMN_CHECK_PTR(map, CS_FAIL);
  COMN_CHECK_PTR(destval, CS_FAIL);
  COMN_CHECK_PTR(unmapval, CS_FAIL);
  return map_to_library(map, srcval, destval, unmapval, is_uniq);
}

CS_RETCODE com_tds_maptoken(CS_INT mapindex, CS_INT srcval, CS_INT *destval, CS_INT *unmapval,
                            CS_INT direction) noexcept {
  COMN_CHECK_PTR(destval, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(unmapval, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_direction(direction), COMN_TRACE(CS_FAIL));
  if (mapindex < 0 || mapindex >= COM_TDS_MAP_COUNT)
    return COMN_TRACE(CS_CONV_DOMAIN);
  const TDS_MAPARRAY &entry = own_Com__tds_maparray[mapindex];
  COMN_CHECK(entry.index == mapindex, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(direction == COM_TDS_CSTOTDS
                        ? map_to_wire(entry.map, srcval, destval, unmapval, entry.is_uniqmap)
                        : map_to_library(entry.map, srcval, destval, unmapval, entry.is_uniqmap));
}

CS_RETCODE com_tds_version_map(CS_BYTE *tdsarray, CS_INT arraylen, CS_INT *tdssymbol,
                               CS_INT direction, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(tdsarray, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(tdssymbol, COMN_TRACE(CS_FAIL));
  COMN_CHECK(arraylen >= version_length, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_direction(direction), COMN_TRACE(CS_FAIL));
  if (direction == COM_TDS_CSTOTDS) {
    if (outlen != nullptr)
      *outlen = version_length;
    for (const Version &version : versions)
      if (version.symbol == *tdssymbol) {
        std::memcpy(tdsarray, version.bytes, sizeof version.bytes);
        return COMN_TRACE(CS_SUCCEED);
      }
    return COMN_TRACE(CS_FAIL);
  }
  for (const Version &version : versions)
    if (std::memcmp(tdsarray, version.bytes, static_cast<size_t>(version.significant)) == 0) {
      *tdssymbol = version.symbol;
      return COMN_TRACE(CS_SUCCEED);
    }
  return COMN_TRACE(CS_FAIL);
}

CS_RETCODE com_tds_seclogin(CS_BYTE *seclogin_mask, CS_BOOL *extendedencrypt, CS_BOOL *encrypt,
                            CS_BOOL *challenge, CS_BOOL *negotiate, CS_BOOL *appdefined,
                            CS_INT direction) noexcept {
  struct Bit {
    CS_BYTE mask;
    CS_BOOL *flag;
  };
  const Bit bits[] = {
      {COM_SECLOGIN_EXTENDEDENCRYPT, extendedencrypt},
      {COM_SECLOGIN_ENCRYPT, encrypt},
      {COM_SECLOGIN_CHALLENGE, challenge},
      {COM_SECLOGIN_NEGOTIATE, negotiate},
      {COM_SECLOGIN_APPDEFINED, appdefined},
  };
  COMN_CHECK_PTR(seclogin_mask, COMN_TRACE(CS_FAIL));
  for (const Bit &bit : bits)
    COMN_CHECK_PTR(bit.flag, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_direction(direction), COMN_TRACE(CS_FAIL));
  if (direction == COM_TDS_TDSTOCS) {
    for (const Bit &bit : bits)
      *bit.flag = (*seclogin_mask & bit.mask) != 0;
    return COMN_TRACE(CS_SUCCEED);
  }
  for (const Bit &bit : bits)
    COMN_CHECK(*bit.flag == 0 || *bit.flag == 1, COMN_TRACE(CS_FAIL));
  for (const Bit &bit : bits)
    if (*bit.flag == 1)
      *seclogin_mask = static_cast<CS_BYTE>(*seclogin_mask | bit.mask);
  return COMN_TRACE(CS_SUCCEED);
}
