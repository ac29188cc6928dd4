// Conversion by the table of ten character sets: which pairs convert, and by which function.
#include "comfou.h"

#include <cstring>

#include "charconv.h"
#include "checks.h"
#include "locale_of.h"
#include "table.h"

namespace {

constexpr CS_INT sets[COM_FOU_SETS] = {0, 1, 2, 3, 4, 5, 140, 141, 142, 255};

// What converts a pair: a function of the pair's own unless it says otherwise.
struct Conversion {
  CS_XLATE_FUNC function;
  CS_INT type;
  constexpr Conversion(CS_XLATE_FUNC converter, CS_INT kind = COM_FOU_MAP)
      : function(converter), type(kind) {}
};
constexpr Conversion none{nullptr, COM_FOU_NONE};
constexpr Conversion ascii{com__fou_ascii8_tofrom_1byte, COM_FOU_ASCII};

// A row for each source. From the Japanese sets it is deliberately by bytes, not by characters, that what
// is not ASCII is replaced: com__fou_eucjis_to_ascii8 and its like stand in no cell.
constexpr Conversion conversions[COM_FOU_SETS][COM_FOU_SETS] = {
    /* ascii_8 */
    {none, ascii, ascii, ascii, ascii, ascii, ascii, ascii, ascii, com__fou_caseswap},
    /* iso_1 */
    {ascii, none, com__fou_iso1_to_cp850, com__fou_iso1_to_cp437, com__fou_iso1_to_roman8,
     com__fou_iso1_to_mac, ascii, ascii, ascii, com__fou_caseswap},
    /* cp850 */
    {ascii, com__fou_cp850_to_iso1, none, com__fou_cp850_to_cp437, com__fou_cp850_to_roman8,
     com__fou_cp850_to_mac, ascii, ascii, ascii, none},
    /* cp437 */
    {ascii, com__fou_cp437_to_iso1, com__fou_cp437_to_cp850, none, com__fou_cp437_to_roman8,
     com__fou_cp437_to_mac, ascii, ascii, ascii, none},
    /* roman8 */
    {ascii, com__fou_roman8_to_iso1, com__fou_roman8_to_cp850, com__fou_roman8_to_cp437, none,
     com__fou_roman8_to_mac, ascii, ascii, ascii, none},
    /* mac */
    {ascii, com__fou_mac_to_iso1, com__fou_mac_to_cp850, com__fou_mac_to_cp437,
     com__fou_mac_to_roman8, none, ascii, ascii, ascii, none},
    /* eucjis */
    {ascii, ascii, ascii, ascii, ascii, ascii, none, com__fou_eucjis_to_sjis,
     com__fou_eucjis_to_deckanji, none},
    /* sjis */
    {ascii, ascii, ascii, ascii, ascii, ascii, com__fou_sjis_to_eucjis_deckanj, none,
     com__fou_sjis_to_eucjis_deckanj, none},
    /* deckanji */
    {ascii, ascii, ascii, ascii, ascii, ascii, com__fou_deckanji_to_eucjis,
     com__fou_deckanji_to_sjis, none, none},
    /* zrvchar */
    {ascii, ascii, none, none, none, none, none, none, none, none},
};

using XlateMap = comn::Table<CS_FOU_XLT_MAP, COM_FOU_SETS>;

consteval XlateMap make_map() {
  XlateMap map{};
  for (int from = 0; from < COM_FOU_SETS; ++from) {
    map.rows[from].csid = sets[from];
    for (int to = 0; to < COM_FOU_SETS; ++to) {
      const Conversion &conversion = conversions[from][to];
      map.rows[from].fou_funcs[to] = {sets[to], from == to ? COM_FOU_COPY : conversion.type,
                                      conversion.function};
    }
  }
  return map;
}

} // namespace

COMN_PUBLISH_TABLE(XlateMap, CS_FOU_XLT_MAP, Com_fou_xlt_map, [COM_FOU_SETS], make_map());

namespace {

constexpr CS_FOU_FUNCS same = {0, COM_FOU_COPY, nullptr};
constexpr CS_FOU_FUNCS missing = {0, COM_FOU_NONE, nullptr};

const CS_FOU_FUNCS &cell_of(CS_INT from, CS_INT to) noexcept {
  if (from == to)
    return same;
  for (const CS_FOU_XLT_MAP &row : Com_fou_xlt_map_storage.rows)
    if (row.csid == from)
      for (const CS_FOU_FUNCS &cell : row.fou_funcs)
        if (cell.csid == to)
          return cell;
  return missing;
}

const CHAR_ATTRIB *charset_of(const CS_LOCALE *locale) noexcept {
  const auto *const cache = static_cast<const CsLocCache *>(locale->ctypeptr);
  return cache->locchardesc != nullptr ? cache->locchardesc->char_attrib : nullptr;
}

// How text of one format becomes text of another; null after a failed check.
const CS_FOU_FUNCS *find_cell(CS_CONTEXT *context, CS_DATAFMT *srcfmt,
                              CS_DATAFMT *destfmt) noexcept {
  COMN_CHECK_PTR(context, nullptr);
  COMN_CHECK_PTR(srcfmt, nullptr);
  COMN_CHECK_PTR(destfmt, nullptr);
  CS_LOCALE *const from = comn::locale_of(context, srcfmt);
  CS_LOCALE *const to = comn::locale_of(context, destfmt);
  COMN_CHECK_PTR(from, nullptr);
  COMN_CHECK_PTR(to, nullptr);
  COMN_CHECK_PTR(from->ctypeptr, nullptr);
  COMN_CHECK_PTR(to->ctypeptr, nullptr);
  if (from == to)
    return &same;
  const CHAR_ATTRIB *const from_set = charset_of(from);
  const CHAR_ATTRIB *const to_set = charset_of(to);
  COMN_CHECK_PTR(from_set, nullptr);
  COMN_CHECK_PTR(to_set, nullptr);
  return &cell_of(from_set->cs_id, to_set->cs_id);
}

} // namespace

CS_INT com__intl_get_csid(CS_LOCALE *locale) noexcept {
  COMN_CHECK_PTR(locale, 0);
  COMN_CHECK_PTR(locale->ctypeptr, 0);
  const CHAR_ATTRIB *const set = charset_of(locale);
  COMN_CHECK_PTR(set, 0);
  return set->cs_id;
}

CS_RETCODE com__intl_get_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_DATAFMT *destfmt,
                               CS_XLATE_FUNC *xlate_func) noexcept {
  COMN_CHECK_PTR(xlate_func, COMN_TRACE(CS_FAIL));
  const CS_FOU_FUNCS *const cell = find_cell(context, srcfmt, destfmt);
  if (cell == nullptr)
    return COMN_TRACE(CS_FAIL);
  *xlate_func = cell->xlate_func;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_intl_will_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_DATAFMT *destfmt,
                               CS_INT *xlate_type) noexcept {
  COMN_CHECK_PTR(xlate_type, COMN_TRACE(CS_FAIL));
  const CS_FOU_FUNCS *const cell = find_cell(context, srcfmt, destfmt);
  if (cell == nullptr)
    return COMN_TRACE(CS_FAIL);
  *xlate_type = cell->xlate_type;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_intl_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *srcused,
                          CS_INT *destused) noexcept {
  COMN_CHECK_PTR(src, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(srcused, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destused, COMN_TRACE(CS_FAIL));
  const CS_FOU_FUNCS *const cell = find_cell(context, srcfmt, destfmt);
  if (cell == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (cell->xlate_type == COM_FOU_NONE) {
    *srcused = *destused = 0;
    return COMN_TRACE(CS_CONV_NOXLATE);
  }
  const comn::TextRange text = comn::text_of(srcfmt, src);
  const comn::TextRange room = comn::room_of(destfmt, dest);
  COMN_CHECK(text.length >= 1, COMN_TRACE(CS_FAIL));
  COMN_CHECK(room.length >= 0, COMN_TRACE(CS_FAIL));

  if (cell->xlate_type == COM_FOU_COPY) {
    const CS_INT length = std::min(text.length, room.length);
    // Deliberately from the very start of the source, also where a length stands in front of its text.
    if (text.bytes != room.bytes)
      std::memmove(room.bytes, src, static_cast<size_t>(length));
    *srcused = *destused = length;
    comn::store_length(destfmt, dest, length);
    return COMN_TRACE(length < text.length ? CS_CONV_OVERFLOW : CS_SUCCEED);
  }

  const int bits =
      cell->xlate_func(text.bytes, text.length, room.bytes, room.length, srcused, destused);
  comn::store_length(destfmt, dest, *destused);
  if ((bits & COM_FOU_BADCHAR) != 0)
    return COMN_TRACE(CS_CONV_BADCHAR);
  return COMN_TRACE((bits & COM_FOU_OVERFLOW) != 0 ? CS_CONV_OVERFLOW : CS_SUCCEED);
}
