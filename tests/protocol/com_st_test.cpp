// Questions about state tables, asked of small tables for every state and event.
#include <map>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_value.h"
#include "zrvcomn/commaps.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_st.cpp";

// Three states; the last one has empty lists. Event 7 stands twice: its first row counts. Behind
// the three stand lists that belong to no state and must not be asked.
CS_EVENT allowed_idle[] = {1, 7, 0, 254, 255};
CS_EVENT allowed_busy[] = {7, 255};
CS_EVENT allowed_never[] = {255};
CS_EVENT *allowed[] = {allowed_idle, allowed_busy, allowed_never, allowed_busy};

CS_DEPEND depends[] = {{7, 1}, {0, 255}, {7, 2}, {255, 9}};

CS_EVENT_NS from_idle[] = {{1, 1}, {7, 149}, {7, 2}, {0, 254}, {254, 0}, {255, 3}};
CS_EVENT_NS from_busy[] = {{7, 0}, {149, 149}, {255, 255}};
CS_EVENT_NS from_dead[] = {{255, 0}};
CS_EVENT_NS *transitions[] = {from_idle, from_busy, from_dead, from_busy};

CS_ST_TABLE state_table() {
  CS_ST_TABLE table{};
  table.st_numstates = 3;
  table.st_ver = allowed;
  table.st_depend = depends;
  table.st_trans = transitions;
  return table;
}

CS_NS_TABLE next_state_table() {
  CS_NS_TABLE table{};
  table.nsnumstates = 3;
  table.nstable = transitions;
  return table;
}

CS_EVENT event_of(int event) {
  return static_cast<CS_EVENT>(event);
}
CS_STATE state_of(int state) {
  return static_cast<CS_STATE>(state);
}

TEST(ComStTest, AllowedEvents) {
  CS_ST_TABLE table = state_table();
  const std::set<std::pair<int, int>> expected = {{0, 1}, {0, 7}, {0, 0}, {0, 254}, {1, 7}};
  for (int state = 0; state < 3; ++state)
    for (int event = 0; event < 256; ++event)
      EXPECT_EQ(com_st_ver(&table, state_of(state), event_of(event)),
                expected.count({state, event}) != 0)
          << state << ", " << event;
}

TEST(ComStTest, DependentEvents) {
  CS_ST_TABLE table = state_table();
  for (int event = 0; event < 256; ++event) {
    GuardedValue<CS_EVENT> depends_on;
    const CS_BOOL found = com_st_depend(&table, event_of(event), depends_on.address());
    EXPECT_EQ(found, event == 7 || event == 0) << event;
    if (event == 7)
      EXPECT_EQ(depends_on, 1);
    else if (event == 0)
      EXPECT_EQ(depends_on, 255);
    else
      EXPECT_TRUE(depends_on.is_untouched()) << event;
  }
}

TEST(ComStTest, NoDependentEvents) {
  CS_ST_TABLE table = state_table();
  table.st_depend = nullptr;
  GuardedValue<CS_EVENT> depends_on;
  for (int event = 0; event < 256; ++event)
    EXPECT_EQ(com_st_depend(&table, event_of(event), depends_on.address()), 0);
  EXPECT_TRUE(depends_on.is_untouched());
}

using Transitions = std::map<std::pair<int, int>, int>;

// 149 as a target stays; 254 is no transition, or one to a state of that number.
TEST(ComStTest, Transitions) {
  CS_ST_TABLE table = state_table();
  const Transitions expected = {{{0, 1}, 1},   {{0, 7}, 0}, {{0, 0}, 254},
                                {{0, 254}, 0}, {{1, 7}, 0}, {{1, 149}, 1}};
  for (int state = 0; state < 3; ++state)
    for (int event = 0; event < 256; ++event) {
      const auto found = expected.find({state, event});
      EXPECT_EQ(com_st_trans(&table, state_of(state), event_of(event)),
                found != expected.end() ? found->second : 254)
          << state << ", " << event;
    }
}

// Here 149 is what comes when there is none, and a target of 149 is handed out as it is.
TEST(ComStTest, NextStates) {
  CS_NS_TABLE table = next_state_table();
  const Transitions expected = {{{0, 1}, 1},   {{0, 7}, 149}, {{0, 0}, 254},
                                {{0, 254}, 0}, {{1, 7}, 0},   {{1, 149}, 149}};
  for (int state = 0; state < 3; ++state)
    for (int event = 0; event < 256; ++event) {
      const auto found = expected.find({state, event});
      EXPECT_EQ(com_ns_trans(&table, state_of(state), event_of(event)),
                found != expected.end() ? found->second : 149)
          << state << ", " << event;
    }
}

// States that the table does not have, and states without a list.
TEST(ComStTest, StatesWithoutEvents) {
  CS_ST_TABLE table = state_table();
  CS_NS_TABLE next = next_state_table();
  for (const int state : {3, 4, 149, 254, 255}) {
    EXPECT_EQ(com_st_ver(&table, state_of(state), 7), 0) << state;
    EXPECT_EQ(com_st_trans(&table, state_of(state), 7), 254) << state;
    EXPECT_EQ(com_ns_trans(&next, state_of(state), 7), 149) << state;
  }
  CS_EVENT *no_events[] = {nullptr};
  CS_EVENT_NS *no_transitions[] = {nullptr};
  table.st_numstates = next.nsnumstates = 1;
  table.st_ver = no_events;
  table.st_trans = next.nstable = no_transitions;
  EXPECT_EQ(com_st_ver(&table, 0, 7), 0);
  EXPECT_EQ(com_st_trans(&table, 0, 7), 254);
  EXPECT_EQ(com_ns_trans(&next, 0, 7), 149);
  table.st_ver = nullptr;
  table.st_trans = next.nstable = nullptr;
  EXPECT_EQ(com_st_ver(&table, 0, 7), 0);
  EXPECT_EQ(com_st_trans(&table, 0, 7), 254);
  EXPECT_EQ(com_ns_trans(&next, 0, 7), 149);
}

// A table that does not count its states is asked for the states that its owner knows of.
TEST(ComStTest, TableWithoutACount) {
  CS_ST_TABLE table = state_table();
  CS_NS_TABLE next = next_state_table();
  for (const CS_INT count : {0, -1}) {
    table.st_numstates = next.nsnumstates = count;
    EXPECT_EQ(com_st_ver(&table, 1, 7), 1);
    EXPECT_EQ(com_st_trans(&table, 0, 1), 1);
    EXPECT_EQ(com_ns_trans(&next, 1, 7), 0);
  }
}

// One state is counted, although the lists of others stand behind it.
TEST(ComStTest, TableOfOneState) {
  CS_ST_TABLE table = state_table();
  CS_NS_TABLE next = next_state_table();
  table.st_numstates = next.nsnumstates = 1;
  EXPECT_EQ(com_st_ver(&table, 0, 7), 1);
  EXPECT_EQ(com_st_trans(&table, 0, 1), 1);
  EXPECT_EQ(com_ns_trans(&next, 0, 1), 1);
  EXPECT_EQ(com_st_ver(&table, 1, 7), 0);
  EXPECT_EQ(com_st_trans(&table, 1, 7), 254);
  EXPECT_EQ(com_ns_trans(&next, 1, 7), 149);
}

TEST(ComStTest, NullPointers) {
  CS_ST_TABLE table = state_table();
  CS_EVENT depends_on = 77;
  EXPECT_NULL_POINTER_CHECK(unit, 0, com_st_ver(nullptr, 0, 1));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com_st_depend(nullptr, 7, &depends_on));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com_st_depend(&table, 7, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 254, com_st_trans(nullptr, 0, 1));
  EXPECT_NULL_POINTER_CHECK(unit, 149, com_ns_trans(nullptr, 0, 1));
  EXPECT_EQ(depends_on, 77);
}

} // namespace
