// Questions about state machines whose tables belong to the layers above.
#include "checks.h"
#include "commaps.h"

namespace {

// The list of a state, or null where the table has none. A table that does not count its states is
// taken at its word.
template <class Item>
const Item *list_of(Item **lists, CS_INT states, CS_STATE state) noexcept {
  return lists != nullptr && (states <= 0 || state < states) ? lists[state] : nullptr;
}

// The first row of an event, or null.
template <class Row>
const Row *find_event(const Row *row, CS_EVENT event) noexcept {
  if (row == nullptr)
    return nullptr;
  for (; row->event != COM_ST_END; ++row)
    if (row->event == event)
      return row;
  return nullptr;
}

} // namespace

CS_BOOL com_st_ver(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event) noexcept {
  COMN_CHECK_PTR(table, 0);
  const CS_EVENT *allowed = list_of(table->st_ver, table->st_numstates, state);
  if (allowed == nullptr)
    return 0;
  for (; *allowed != COM_ST_END; ++allowed)
    if (*allowed == event)
      return 1;
  return 0;
}

CS_BOOL com_st_depend(CS_ST_TABLE *table, CS_EVENT event, CS_EVENT *depend_event) noexcept {
  COMN_CHECK_PTR(table, 0);
  COMN_CHECK_PTR(depend_event, 0);
  const CS_DEPEND *row = find_event<CS_DEPEND>(table->st_depend, event);
  if (row == nullptr)
    return 0;
  *depend_event = row->depend_event;
  return 1;
}

CS_STATE com_st_trans(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event) noexcept {
  COMN_CHECK_PTR(table, COM_ST_NOTRANS);
  const CS_EVENT_NS *row = find_event(list_of(table->st_trans, table->st_numstates, state), event);
  if (row == nullptr)
    return COM_ST_NOTRANS;
  return row->nextstate == COM_ST_SAMESTATE ? state : row->nextstate;
}

CS_STATE com_ns_trans(CS_NS_TABLE *table, CS_STATE state, CS_EVENT event) noexcept {
  COMN_CHECK_PTR(table, COM_ST_SAMESTATE);
  const CS_EVENT_NS *row = find_event(list_of(table->nstable, table->nsnumstates, state), event);
  return row != nullptr ? row->nextstate : COM_ST_SAMESTATE;
}
