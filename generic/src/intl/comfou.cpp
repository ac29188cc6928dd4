// The table of ten character sets: which pairs convert, and by which function.
#include "comfou.h"

#include "table.h"

namespace {

constexpr CS_INT sets[COM_FOU_SETS] = {0, 1, 2, 3, 4, 5, 140, 141, 142, 255};

constexpr CS_XLATE_FUNC none = nullptr;
constexpr CS_XLATE_FUNC ascii = com__fou_ascii8_tofrom_1byte;

// A row for each source. From the Japanese sets it is deliberately by bytes, not by characters, that what
// is not ASCII is replaced: com__fou_eucjis_to_ascii8 and its like stand in no cell.
constexpr CS_XLATE_FUNC functions[COM_FOU_SETS][COM_FOU_SETS] = {
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

constexpr CS_INT type_of(int from, int to) {
  if (from == to)
    return COM_FOU_COPY;
  if (functions[from][to] == none)
    return COM_FOU_NONE;
  return functions[from][to] == ascii ? COM_FOU_ASCII : COM_FOU_MAP;
}

using XlateMap = comn::Table<CS_FOU_XLT_MAP, COM_FOU_SETS>;

consteval XlateMap make_map() {
  XlateMap map{};
  for (int from = 0; from < COM_FOU_SETS; ++from) {
    map.rows[from].csid = sets[from];
    for (int to = 0; to < COM_FOU_SETS; ++to)
      map.rows[from].fou_funcs[to] = {sets[to], type_of(from, to), functions[from][to]};
  }
  return map;
}

} // namespace

COMN_PUBLISH_TABLE(XlateMap, CS_FOU_XLT_MAP, Com_fou_xlt_map, [COM_FOU_SETS], make_map());
