// Datatypes of the library and of the wire.
#include <array>
#include <iterator>

#include "checks.h"
#include "commaps.h"
#include "table.h"

namespace {

constexpr CS_INT unlimited = 2147483647;
constexpr CS_INT no_type = -1;
constexpr TDS_DATAMAP end_row = {no_type, no_type, -1, 0, -1};

} // namespace

// Wire type, library type, maximum length, nullable, length prefix.
COMN_DEFINE_TABLE(Com__tds_uniq_datatype_map) = {
    {45, CS_TYPE_BINARY, 255, 0, 1},
    {37, CS_TYPE_BINARY, 255, 1, 1},
    {47, CS_TYPE_CHAR, 255, 1, 1},
    {39, CS_TYPE_CHAR, 255, 1, 1},
    {48, CS_TYPE_TINYINT, 1, 0, 0},
    {52, CS_TYPE_SMALLINT, 2, 0, 0},
    {56, CS_TYPE_INT, 4, 0, 0},
    {59, CS_TYPE_REAL, 4, 0, 0},
    {62, CS_TYPE_FLOAT, 8, 0, 0},
    {58, CS_TYPE_DATETIME4, 4, 0, 0},
    {61, CS_TYPE_DATETIME, 8, 0, 0},
    {122, CS_TYPE_MONEY4, 4, 0, 0},
    {60, CS_TYPE_MONEY, 8, 0, 0},
    {50, CS_TYPE_BIT, 1, 0, 0},
    {175, CS_TYPE_LONGCHAR, unlimited, 0, 4},
    {225, CS_TYPE_LONGBINARY, unlimited, 0, 4},
    {35, CS_TYPE_TEXT, unlimited, 0, 4},
    {34, CS_TYPE_IMAGE, unlimited, 0, 4},
    {34, CS_TYPE_IMAGE, unlimited, 0, 4}, // twice, as deployed tables have it
    {108, CS_TYPE_NUMERIC, 33, 0, 1},
    {106, CS_TYPE_DECIMAL, 33, 0, 1},
    {103, CS_TYPE_SENSITIVITY, 255, 1, 1},
    {104, CS_TYPE_BOUNDARY, 255, 1, 1},
    {36, CS_TYPE_BLOB, CS_UNUSED, 0, 0},
    {31, CS_TYPE_VOID, 0, 1, 1},
    {49, CS_TYPE_DATE, 4, 0, 0},
    {51, CS_TYPE_TIME, 4, 0, 0},
    {174, CS_TYPE_UNITEXT, unlimited, 0, 4},
    {191, CS_TYPE_BIGINT, 8, 0, 0},
    {65, CS_TYPE_USMALLINT, 2, 0, 0},
    {66, CS_TYPE_UINT, 4, 0, 0},
    {67, CS_TYPE_UBIGINT, 8, 0, 0},
    {163, CS_TYPE_XML, unlimited, 0, 4},
    {187, CS_TYPE_BIGDATETIME, 8, 1, 1},
    {188, CS_TYPE_BIGTIME, 8, 1, 1},
    end_row,
};

COMN_DEFINE_TABLE(Com__tds_dup_datatype_map) = {
    {37, CS_TYPE_BINARY, 255, 1, 1},
    {39, CS_TYPE_CHAR, 255, 1, 1},
    {38, CS_TYPE_TINYINT, 1, 1, 1},
    {38, CS_TYPE_SMALLINT, 2, 1, 1},
    {38, CS_TYPE_INT, 4, 1, 1},
    {109, CS_TYPE_REAL, 4, 1, 1},
    {109, CS_TYPE_FLOAT, 8, 1, 1},
    {111, CS_TYPE_DATETIME4, 4, 1, 1},
    {111, CS_TYPE_DATETIME, 8, 1, 1},
    {110, CS_TYPE_MONEY4, 4, 1, 1},
    {110, CS_TYPE_MONEY, 8, 1, 1},
    {31, CS_TYPE_VOID, 0, 1, 1},
    {123, CS_TYPE_DATE, 4, 1, 1},
    {147, CS_TYPE_TIME, 4, 1, 1},
    {38, CS_TYPE_BIGINT, 8, 1, 1},
    {68, CS_TYPE_USMALLINT, 2, 1, 1},
    {68, CS_TYPE_UINT, 4, 1, 1},
    {68, CS_TYPE_UBIGINT, 8, 1, 1},
    end_row,
};

namespace {

using TypeTable = comn::Table<TDS_DATAMAP, CS_TYPE_COUNT>;

template <size_t Rows>
constexpr const TDS_DATAMAP *find_library_type(const TDS_DATAMAP (&map)[Rows], CS_INT type) {
  for (const TDS_DATAMAP &row : map)
    if (row.cs_datatype == type)
      return &row;
  return nullptr;
}

// The types that the maps do not tell: those that have no wire form, and those that have the same
// one whether NULLs can occur or not.
constexpr TDS_DATAMAP special_rows[] = {
    {no_type, CS_TYPE_VARCHAR, -1, 0, -1},   {no_type, CS_TYPE_VARBINARY, -1, 0, -1},
    {no_type, CS_TYPE_LONG, -1, 0, -1},      {no_type, CS_TYPE_USHORT, -1, 0, -1},
    {225, CS_TYPE_UNICHAR, unlimited, 1, 4}, {36, CS_TYPE_BLOB, CS_UNUSED, 1, 0},
    {36, CS_TYPE_TEXTLOCATOR, 0, 1, 0},      {36, CS_TYPE_IMAGELOCATOR, 0, 1, 0},
    {36, CS_TYPE_UNITEXTLOCATOR, 0, 1, 0},
};

// The form of each type where NULLs cannot occur: its first row in the unique map.
consteval TypeTable build_fixed() {
  TypeTable table{};
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type)
    if (const TDS_DATAMAP *row = find_library_type(own_Com__tds_uniq_datatype_map, type))
      table[static_cast<size_t>(type)] = *row;
  for (const TDS_DATAMAP &row : special_rows)
    table[static_cast<size_t>(row.cs_datatype)] = row;
  return table;
}

// The form where NULLs can occur: the type's row in the duplicate map, if it has one. A type of
// fixed length is flagged as not nullable here, although this is its nullable form: deployed tables
// have it so.
consteval TypeTable build_nullable() {
  TypeTable table = build_fixed();
  for (TDS_DATAMAP &fixed : table.rows) {
    const TDS_DATAMAP *row = find_library_type(own_Com__tds_dup_datatype_map, fixed.cs_datatype);
    if (row == nullptr)
      continue;
    const bool is_fixed_length = fixed.tds_lendatalen == 0;
    fixed = *row;
    if (is_fixed_length)
      fixed.tds_nullable = 0;
  }
  return table;
}

constexpr bool is_indexed_by_type(const TypeTable &table) {
  for (CS_INT type = 0; type < CS_TYPE_COUNT; ++type)
    if (table[static_cast<size_t>(type)].cs_datatype != type)
      return false;
  return true;
}
// True when the last row ends the map, and only that one.
template <size_t Rows>
constexpr bool is_ended(const TDS_DATAMAP (&map)[Rows]) {
  return find_library_type(map, no_type) == &map[Rows - 1];
}
static_assert(is_ended(own_Com__tds_uniq_datatype_map));
static_assert(is_ended(own_Com__tds_dup_datatype_map));
static_assert(is_indexed_by_type(build_fixed()));
static_assert(is_indexed_by_type(build_nullable()));

// Where the rows of each wire type stand, so that no lookup walks a map. Wire types are bytes.
constexpr int wire_types = 256;

template <size_t Rows>
class WireIndex {
public:
  consteval explicit WireIndex(const TDS_DATAMAP (&rows)[Rows]) : map(rows) {
    for (size_t row = Rows - 1; row-- > 0;) {
      CS_BYTE &head = first[static_cast<size_t>(rows[row].tds_datatype)];
      next[row] = head;
      head = static_cast<CS_BYTE>(row + 1);
    }
  }

  // The first row of a wire type, or null; then the next one of the same type.
  const TDS_DATAMAP *find(CS_INT wire_type) const noexcept {
    return wire_type >= 0 && wire_type < wire_types ? at(first[static_cast<size_t>(wire_type)])
                                                    : nullptr;
  }
  const TDS_DATAMAP *find_next(const TDS_DATAMAP *row) const noexcept {
    return at(next[static_cast<size_t>(row - map)]);
  }

private:
  // Rows are kept one higher, so that 0 is none.
  const TDS_DATAMAP *at(CS_BYTE row) const noexcept { return row != 0 ? map + row - 1 : nullptr; }

  const TDS_DATAMAP *map;
  CS_BYTE first[wire_types] = {};
  CS_BYTE next[Rows] = {};
};

constexpr WireIndex unique_index(own_Com__tds_uniq_datatype_map);
constexpr WireIndex duplicate_index(own_Com__tds_dup_datatype_map);

CS_RETCODE deliver_form(const TDS_DATAMAP (&table)[CS_TYPE_COUNT], CS_INT type, CS_INT *wire_type,
                        CS_INT *lendatalen, CS_INT *maxlen) noexcept {
  if (type < 0 || type >= CS_TYPE_COUNT)
    return COM_CS_BADTYPE;
  *wire_type = table[type].tds_datatype;
  *lendatalen = table[type].tds_lendatalen;
  *maxlen = table[type].tds_datamaxlen;
  return CS_SUCCEED;
}

} // namespace

COMN_PUBLISH_TABLE(TypeTable, TDS_DATAMAP, Com__tds_cs_uniq, [CS_TYPE_COUNT], build_fixed());
COMN_PUBLISH_TABLE(TypeTable, TDS_DATAMAP, Com__tds_cs_dup, [CS_TYPE_COUNT], build_nullable());

CS_RETCODE com_tds_get_tdsdatainfo(CS_INT tds_datatype, CS_INT *lendatalen,
                                   CS_BOOL *nullable) noexcept {
  COMN_CHECK_PTR(lendatalen, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(nullable, COMN_TRACE(CS_FAIL));
  const TDS_DATAMAP *row = unique_index.find(tds_datatype);
  if (row == nullptr)
    row = duplicate_index.find(tds_datatype);
  if (row == nullptr)
    return COMN_TRACE(COM_TDS_BADTYPE);
  *lendatalen = row->tds_lendatalen;
  *nullable = row->tds_nullable;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_tds_get_tdsfixedlen(CS_INT tds_datatype, CS_INT *maxlen) noexcept {
  COMN_CHECK_PTR(maxlen, COMN_TRACE(CS_FAIL));
  const TDS_DATAMAP *row = unique_index.find(tds_datatype);
  if (row == nullptr)
    return COMN_TRACE(COM_TDS_BADTYPE);
  *maxlen = row->tds_datamaxlen;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_tds_get_cstype(CS_INT tds_datatype, CS_INT datamaxlen,
                              CS_INT *cs_datatype) noexcept {
  COMN_CHECK_PTR(cs_datatype, COMN_TRACE(CS_FAIL));
  const TDS_DATAMAP *row = unique_index.find(tds_datatype);
  if (row == nullptr) {
    row = duplicate_index.find(tds_datatype);
    while (row != nullptr && row->tds_datamaxlen != datamaxlen)
      row = duplicate_index.find_next(row);
  }
  if (row == nullptr)
    return COMN_TRACE(COM_TDS_BADTYPE);
  *cs_datatype = row->cs_datatype;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_tds_get_nullable_tdstype(CS_INT cs_datatype, CS_INT *tds_datatype,
                                        CS_INT *lendatalen, CS_INT *maxlen) noexcept {
  COMN_CHECK_PTR(tds_datatype, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lendatalen, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(maxlen, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(
      deliver_form(own_Com__tds_cs_dup, cs_datatype, tds_datatype, lendatalen, maxlen));
}

CS_RETCODE com_tds_get_fixed_tdstype(CS_INT cs_datatype, CS_INT *tds_datatype, CS_INT *lendatalen,
                                     CS_INT *maxlen) noexcept {
  COMN_CHECK_PTR(tds_datatype, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lendatalen, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(maxlen, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(
      deliver_form(own_Com__tds_cs_uniq, cs_datatype, tds_datatype, lendatalen, maxlen));
}
