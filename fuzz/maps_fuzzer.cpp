// com_tds_maptoken and the two walks below it on any value, and the state checks on any table that
// is well formed, each against a slow reading of the same rules. A library value without a row is
// fatal, so those are left out.
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/commaps.h"

using zrvfuzz::Input;
using zrvfuzz::require;

namespace {

// A small value, one single bit, or four bytes as they come.
CS_INT take_value(Input &input) {
  const std::uint8_t kind = input.byte();
  if (kind < 128)
    return kind;
  if (kind < 192)
    return static_cast<CS_INT>(1U << kind % 32);
  std::uint32_t bits = 0;
  for (int i = 0; i < 4; ++i)
    bits = bits << 8 | input.byte();
  return static_cast<CS_INT>(bits);
}

constexpr CS_INT bit_end = COM_TDS_BIT_END;

using Rows = std::vector<TDS_TOKENMAP>; // without the end row

struct Expected {
  CS_RETCODE status;
  CS_INT destination, unmapped;
};

Expected map_by_hand(const Rows &rows, CS_INT value, bool is_unique, bool to_wire) {
  if (is_unique || value == 0) {
    for (const TDS_TOKENMAP &row : rows)
      if ((to_wire ? row.cs_tokenval : row.tds_tokenval) == value)
        return {CS_SUCCEED, to_wire ? row.tds_tokenval : row.cs_tokenval, 0};
    return {CS_FAIL, 0, value};
  }
  Expected expected{CS_SUCCEED, 0, value};
  for (const TDS_TOKENMAP &row : rows) {
    const CS_INT from = to_wire ? row.cs_tokenval : row.tds_tokenval;
    if ((from & value) != 0) {
      expected.destination |= to_wire ? row.tds_tokenval : row.cs_tokenval;
      expected.unmapped &= ~from;
    }
  }
  return expected;
}

void require_same(const Expected &expected, CS_RETCODE status, CS_INT destination,
                  CS_INT unmapped) {
  require(status == expected.status);
  require(destination == expected.destination);
  require(unmapped == expected.unmapped);
}

Rows rows_of(const TDS_MAPARRAY &entry) {
  const CS_INT end = entry.is_uniqmap ? COM_TDS_UNIQ_END : bit_end;
  Rows rows;
  for (const TDS_TOKENMAP *row = entry.map; row->cs_tokenval != end; ++row)
    rows.push_back(*row);
  return rows;
}

void map_with_the_tables(Input &input) {
  const CS_INT index = input.byte() % 24 - 1;
  const CS_INT value = take_value(input);
  CS_INT destination = 77, unmapped = 77;
  if (index < 0 || index >= COM_TDS_MAP_COUNT) {
    for (const CS_INT direction : {COM_TDS_CSTOTDS, COM_TDS_TDSTOCS})
      require(com_tds_maptoken(index, value, &destination, &unmapped, direction) == CS_CONV_DOMAIN);
    require(destination == 77 && unmapped == 77);
    return;
  }
  const TDS_MAPARRAY &entry = Com__tds_maparray[index];
  const Rows rows = rows_of(entry);
  for (const CS_INT direction : {COM_TDS_CSTOTDS, COM_TDS_TDSTOCS}) {
    const bool to_wire = direction == COM_TDS_CSTOTDS;
    const Expected expected = map_by_hand(rows, value, entry.is_uniqmap != 0, to_wire);
    if (to_wire && expected.status != CS_SUCCEED)
      continue;
    const CS_RETCODE status = com_tds_maptoken(index, value, &destination, &unmapped, direction);
    require_same(expected, status, destination, unmapped);
  }
}

// A map of the input's making. Only its last row has the values that end a map.
void map_with_a_table(Input &input) {
  const bool is_unique = input.byte() % 2 != 0;
  const CS_INT end = is_unique ? COM_TDS_UNIQ_END : bit_end;
  const CS_INT value = take_value(input);
  Rows rows;
  for (int left = input.byte() % 32; left > 0; --left) {
    const TDS_TOKENMAP row = {take_value(input), take_value(input)};
    bool ends = false;
    for (const CS_INT field : {row.cs_tokenval, row.tds_tokenval})
      ends = ends || field == COM_TDS_UNIQ_END || field == bit_end;
    if (!ends)
      rows.push_back(row);
  }
  Rows table = rows; // a heap block of exactly the rows, for the sanitizers
  table.push_back({end, end});
  table.shrink_to_fit();

  CS_INT destination = 77, unmapped = 77;
  const Expected to_wire = map_by_hand(rows, value, is_unique, true);
  if (to_wire.status == CS_SUCCEED) {
    const CS_RETCODE status =
        com__tds_cstotds_map(table.data(), value, &destination, &unmapped, is_unique);
    require_same(to_wire, status, destination, unmapped);
  }
  const CS_RETCODE status =
      com__tds_tdstocs_map(table.data(), value, &destination, &unmapped, is_unique);
  require_same(map_by_hand(rows, value, is_unique, false), status, destination, unmapped);
}

// The lists of one state; each ends with COM_ST_END.
struct State {
  std::vector<CS_EVENT> allowed;
  std::vector<CS_EVENT_NS> transitions;
};

void ask_states(Input &input) {
  std::vector<State> states(1 + input.byte() % 8);
  for (State &state : states) {
    for (int left = input.byte() % 16; left > 0; --left)
      if (const CS_EVENT event = input.byte(); event != COM_ST_END)
        state.allowed.push_back(event);
    for (int left = input.byte() % 16; left > 0; --left) {
      const CS_EVENT_NS row = {input.byte(), input.byte()};
      if (row.event != COM_ST_END)
        state.transitions.push_back(row);
    }
    state.allowed.push_back(COM_ST_END);
    state.transitions.push_back({COM_ST_END, 0});
    state.allowed.shrink_to_fit();
    state.transitions.shrink_to_fit();
  }
  std::vector<CS_DEPEND> depends;
  for (int left = input.byte() % 16; left > 0; --left) {
    const CS_DEPEND row = {input.byte(), input.byte()};
    if (row.event != COM_ST_END)
      depends.push_back(row);
  }
  depends.push_back({COM_ST_END, 0});
  depends.shrink_to_fit();

  std::vector<CS_EVENT *> allowed;
  std::vector<CS_EVENT_NS *> transitions;
  for (State &state : states) {
    allowed.push_back(state.allowed.data());
    transitions.push_back(state.transitions.data());
  }
  allowed.shrink_to_fit();
  transitions.shrink_to_fit();
  CS_ST_TABLE table{};
  CS_NS_TABLE next{};
  table.st_numstates = next.nsnumstates = static_cast<CS_INT>(states.size());
  table.st_ver = allowed.data();
  table.st_depend = input.byte() % 4 != 0 ? depends.data() : nullptr;
  table.st_trans = next.nstable = transitions.data();

  do {
    const CS_STATE state = input.byte();
    const CS_EVENT event = input.byte();
    bool is_allowed = false;
    int target = -1, depends_on = -1;
    if (state < states.size()) {
      for (const CS_EVENT one : states[state].allowed)
        is_allowed = is_allowed || (one == event && one != COM_ST_END);
      for (const CS_EVENT_NS &row : states[state].transitions)
        if (row.event == event && event != COM_ST_END && target < 0)
          target = row.nextstate;
    }
    if (table.st_depend != nullptr)
      for (const CS_DEPEND &row : depends)
        if (row.event == event && event != COM_ST_END && depends_on < 0)
          depends_on = row.depend_event;
    require(com_st_ver(&table, state, event) == is_allowed);
    require(com_ns_trans(&next, state, event) == (target < 0 ? COM_ST_SAMESTATE : target));
    if (target == COM_ST_SAMESTATE)
      target = state;
    require(com_st_trans(&table, state, event) == (target < 0 ? COM_ST_NOTRANS : target));
    CS_EVENT found = 77;
    require(com_st_depend(&table, event, &found) == (depends_on >= 0));
    require(found == (depends_on >= 0 ? depends_on : 77));
  } while (!input.is_empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  switch (input.byte() % 3) {
  case 0:
    map_with_the_tables(input);
    break;
  case 1:
    map_with_a_table(input);
    break;
  default:
    ask_states(input);
  }
  return 0;
}
