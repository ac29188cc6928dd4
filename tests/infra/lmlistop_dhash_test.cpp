// The open-addressed hash table.
#include "list_fixture.h"

namespace {

using namespace zrvtest;

class OpenTest : public TableTest {
protected:
  OpenTest() {
    defaults(4, 0);
    list = make(LM_DHASH);
  }
  DHashInfo *slots() { return static_cast<DHashInfo *>(list->list_state); }
};

TEST_F(OpenTest, FixedCapacity) {
  const size_t allocations = arena.allocations;
  for (const char *const key : {"a", "b", "c", "d"})
    ASSERT_EQ(op(list, LM_OP_INSERT, key, key), CS_SUCCEED);
  EXPECT_ASSERTION("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_INSERT, "e", "e"));
  EXPECT_EQ(load(list), 4);
  EXPECT_EQ(op(list, LM_OP_DELETE, "b"), CS_SUCCEED);
  EXPECT_EQ(current(list), "(null)") << "the unset slot remains the cursor";
  EXPECT_EQ(static_cast<DLinkNode *>(list->cur_ptr)->state, LM_UNSET);
  EXPECT_EQ(find("b"), "(miss)");
  EXPECT_EQ(op(list, LM_OP_INSERT, "e", "e"), CS_SUCCEED);
  for (const char *const key : {"a", "c", "d", "e"})
    EXPECT_EQ(find(key), key);
  EXPECT_ASSERTION("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_INSERT, "f", "f"));
  EXPECT_EQ(arena.allocations, allocations) << "operations never allocate";
}

// Deliberate: the second hash shifts the start of the probe and is no stride.
TEST_F(OpenTest, ProbesOneSlotAtATime) {
  CS_UINT home = 0, increment = 0;
  ASSERT_EQ(lm__api_key_to_hash(chars("a"), 1, 4, &home), CS_SUCCEED);
  ASSERT_EQ(lm__api_key_to_hash2(chars("a"), 1, 4, &increment), CS_SUCCEED);
  for (CS_UINT i = 0; i < 4; ++i) {
    ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
    EXPECT_EQ(list->cur_ptr, slots()->table[(home + increment + i) % 4]);
  }
}

// Deliberate: as many bytes count as the search key has.
TEST_F(OpenTest, APrefixFinds) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "abcdef", "long"), CS_SUCCEED);
  EXPECT_EQ(find("abc"), "long");
  EXPECT_EQ(find(""), "long");
  EXPECT_EQ(find("abd"), "(miss)");
  EXPECT_EQ(find("abcdefg"), "(miss)");
  // A shorter key is not read past its end, whatever stands there.
  ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, text("xyz"), 2, text("short"), nullptr), CS_SUCCEED);
  EXPECT_EQ(find("xyz"), "(miss)");
  EXPECT_EQ(find("xy"), "short");
}

TEST_F(OpenTest, OtherOperations) {
  EXPECT_ASSERTION("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_NULL_POINTER_CHECK("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_PRINT));
  EXPECT_EQ(op(list, LM_OP_REPLACE), CS_FAIL);
  for (const CS_INT operation : {LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, 32, 33}) {
    EXPECT_ASSERTION("lmtable.h", CS_FAIL, op(list, operation, "a"));
  }
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "A"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_REPLACE, "a", "B"), CS_SUCCEED);
  EXPECT_EQ(find("a"), "B");
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(walked, "B");
  ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
  EXPECT_ASSERTION("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
}

TEST_F(OpenTest, DeletionOfWhatIsNoEntry) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  auto *const node = static_cast<DLinkNode *>(list->cur_ptr);
  for (const LM_NODE_STATE state : {LM_UNSET, LM_INSERTED, LM_RELEASED, LM_INITIALIZED}) {
    node->state = state;
    EXPECT_ASSERTION("lmlistop_dhash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
    EXPECT_EQ(load(list), 1);
  }
  node->state = LM_SET;
  EXPECT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
  // Nothing of the entry is left in its slot.
  EXPECT_EQ(list->cur_ptr, node);
  EXPECT_EQ(node->key, nullptr);
  EXPECT_EQ(node->key_size, 0);
  EXPECT_EQ(node->data, nullptr);
}

// A list of this kind starts without a node pool, whatever its context says. It can be given one, of
// which it has no use.
TEST_F(OpenTest, ItsNodePool) {
  defaults(4, 3);
  list = make(LM_DHASH);
  const auto poolsize = [&] {
    CS_INT size = -1;
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr),
              CS_SUCCEED);
    return size;
  };
  EXPECT_EQ(poolsize(), 0);
  EXPECT_EQ(list->free_nodes, 0);
  EXPECT_EQ(list->free_DLN_list, nullptr);
  CS_INT size = 2;
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(poolsize(), 2);
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_DELETE, "a"), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 2U);
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, LM_HDL_MAX_POOLSIZE, nullptr, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(poolsize(), 3);
  EXPECT_EQ(pool_length(list), 3U);
}

// A table needs two slots.
TEST_F(OpenTest, OneSlot) {
  defaults(1, 0);
  list = make(LM_DHASH);
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL, op(list, LM_OP_INSERT, "a", "a"));
  EXPECT_EQ(load(list), 0);
}

TEST_F(OpenTest, Walks) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "k", "d"), CS_SUCCEED);
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_SUCCEED); }),
            "Keys:\n\nData:\n\n");
  // Every slot is visited.
  size_t slot = 0;
  while (slots()->table[slot]->state != LM_SET)
    ++slot;
  const auto pass = [&](const char *value) {
    std::string result;
    for (size_t i = 0; i < 4; ++i)
      result += i == slot ? value : "(null)";
    return result;
  };
  EXPECT_EQ(walked, pass("k") + pass("d"));
  walked.clear();
  CS_PRINT_FUNC function = note;
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_SUCCEED);
  EXPECT_EQ(walked, pass("d"));
  // A failure ends its pass, and is the result.
  walked.clear();
  stop_at = "k";
  EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_FAIL); }),
            "Keys:\n\nData:\n\n");
  EXPECT_EQ(walked, pass("k").substr(0, slot * 6 + 1) + pass("d"));
}

TEST_F(OpenTest, Resize) {
  for (const char *const key : {"a", "b", "c"})
    ASSERT_EQ(op(list, LM_OP_INSERT, key, key), CS_SUCCEED);
  for (CS_INT size : {3, 9, 3}) {
    ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(slots()->table_size, size);
    for (const char *const key : {"a", "b", "c"})
      EXPECT_EQ(find(key), key);
    EXPECT_EQ(load(list), 3);
  }
  CS_INT too_small = 2;
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &too_small, 0, nullptr),
            CS_FAIL);
  EXPECT_EQ(slots()->table_size, 3);
  // An empty table: nothing is current afterwards.
  for (const char *const key : {"a", "b", "c"})
    ASSERT_EQ(op(list, LM_OP_DELETE, key), CS_SUCCEED);
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &too_small, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(current(list), "(null)");
}

} // namespace
