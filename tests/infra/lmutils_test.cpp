// Node pools, and the copies of names and bytes.
#include "guarded_buffer.h"
#include "list_fixture.h"

namespace {

using namespace zrvtest;

TEST_F(ListTest, ThePoolSparesTheAllocator) {
  defaults(10, 5);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    const size_t allocations = arena.allocations;
    for (int round = 0; round < 10; ++round) {
      for (int i = 0; i < 5; ++i)
        ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, kind == LM_DLINK ? nullptr : text("key"),
                             kind == LM_DLINK ? LM_OP_LAST : 3, nullptr, nullptr),
                  CS_SUCCEED);
      EXPECT_EQ(list->free_nodes, 0);
      for (int i = 0; i < 5; ++i)
        ASSERT_EQ(lm_list_op(list, LM_OP_DELETE, kind == LM_DLINK ? nullptr : text("key"),
                             kind == LM_DLINK ? 0 : 3, nullptr, nullptr),
                  CS_SUCCEED);
      EXPECT_EQ(list->free_nodes, 5);
      EXPECT_EQ(list->free_DLN_list->state, LM_UNINITIALIZED);
    }
    EXPECT_EQ(arena.allocations, allocations);
  }
}

CS_RETCODE resize_pool(LM_HANDLE *list, CS_INT size) {
  return lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr);
}

TEST_F(ListTest, PoolSizes) {
  LM_HANDLE *const list = make(LM_QUEUE);
  EXPECT_EQ(resize_pool(list, -1), CS_FAIL);
  EXPECT_EQ(list->hdlprop->max_poolsize, 0);
  EXPECT_EQ(resize_pool(list, 6), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 6U);
  EXPECT_EQ(list->free_nodes, 6);
  EXPECT_EQ(list->free_DLN_list->state, LM_INITIALIZED);
  EXPECT_EQ(resize_pool(list, 6), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 6U);
  EXPECT_EQ(resize_pool(list, 4), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 4U);
  EXPECT_EQ(list->free_nodes, 4);
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(op(list, LM_OP_INSERT), CS_SUCCEED);
  EXPECT_EQ(resize_pool(list, 2), CS_SUCCEED); // there is only one to release
  EXPECT_EQ(pool_length(list), 0U);
  EXPECT_EQ(list->free_nodes, 0);
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 2U);
  // Clear goes back to the context's size.
  defaults(10, 3);
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, LM_HDL_MAX_POOLSIZE, nullptr, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 3U);
  EXPECT_ASSERTION("lmutils.cpp", CS_FAIL, lm__api_dlink_mpool_init(list, 3));
  EXPECT_EQ(arena.uncleared, 0U);
}

// Deliberate: a pool that fails to grow gives up all its nodes and leaves the count as it was. The
// list goes on all the same.
TEST_F(ListTest, FailedGrowthOfThePool) {
  for (const size_t nth : {1U, 3U, 5U}) {
    LM_HANDLE *const list = make(LM_QUEUE);
    ASSERT_EQ(resize_pool(list, 4), CS_SUCCEED);
    ASSERT_EQ(op(list, LM_OP_INSERT, nullptr, "first"), CS_SUCCEED);
    const size_t blocks = arena.live.size();
    arena.fail(nth);
    EXPECT_EQ(resize_pool(list, 9), CS_MEM_ERROR);
    EXPECT_EQ(list->hdlprop->max_poolsize, 4);
    EXPECT_EQ(list->free_nodes, 3);
    EXPECT_EQ(list->free_DLN_list, nullptr);
    EXPECT_EQ(arena.live.size(), blocks - 3) << "the older nodes, and the new ones";
    EXPECT_EQ(current(list), "first");
    EXPECT_EQ(load(list), 1);
    // Clear fails in the same way.
    defaults(10, 9);
    arena.fail(1);
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, LM_HDL_MAX_POOLSIZE, nullptr, 0, nullptr),
              CS_MEM_ERROR);
    EXPECT_EQ(list->hdlprop->max_poolsize, 4);
    // Nodes come from the allocator now, and go back to the pool as far as its count has room.
    for (int i = 0; i < 5; ++i)
      ASSERT_EQ(op(list, LM_OP_INSERT, nullptr, "x"), CS_SUCCEED);
    EXPECT_EQ(arena.live.size(), blocks - 3 + 5);
    EXPECT_EQ(list->free_nodes, 3);
    for (int i = 0; i < 6; ++i)
      ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
    EXPECT_EQ(list->free_nodes, 4);
    EXPECT_EQ(pool_length(list), 1U);
    EXPECT_EQ(resize_pool(list, 9), CS_SUCCEED);
    EXPECT_EQ(pool_length(list), 6U);
    EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_SUCCEED);
    EXPECT_EQ(arena.live.size(), 2U);
  }
}

// A node of the pool that was released behind the list's back is reported and stays where it is.
TEST_F(ListTest, ReleasedNodesAreNotPopped) {
  defaults(10, 2);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    CS_VOID *const key = kind == LM_DLINK ? nullptr : text("key");
    const CS_INT key_size = kind == LM_DLINK ? LM_OP_LAST : 3;
    DLinkNode *const first = list->free_DLN_list;
    first->state = LM_RELEASED;
    EXPECT_ASSERTION("lmutils.cpp", CS_FAIL,
                     lm_list_op(list, LM_OP_INSERT, key, key_size, text("d"), nullptr));
    EXPECT_EQ(list->free_DLN_list, first);
    EXPECT_EQ(list->free_nodes, 2);
    EXPECT_EQ(load(list), 0);
    EXPECT_EQ(list->cur_ptr, nullptr);
    first->state = LM_INITIALIZED;
    EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, key, key_size, text("d"), nullptr), CS_SUCCEED);
    EXPECT_EQ(list->cur_ptr, first);
  }
}

TEST_F(ListTest, PoolsOfNothing) {
  LM_HANDLE *const list = make(LM_QUEUE);
  DLinkNode *node = nullptr;
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__get_dlinknode(nullptr, &node));
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__get_dlinknode(list, nullptr));
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__free_dlinknode(nullptr, node));
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__free_dlinknode(list, nullptr));
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__api_dlink_mpool_init(nullptr, 0));
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL, lm__api_dlink_mpool_drop(nullptr, 0));
}

// A node of its own, while the pool is empty; back to the allocator, where the pool has no room.
TEST_F(ListTest, NodesOutsideThePool) {
  LM_HANDLE *const list = make(LM_QUEUE);
  const size_t blocks = arena.live.size(), stamped = arena.stamped;
  DLinkNode *node = nullptr;
  ASSERT_EQ(lm__get_dlinknode(list, &node), CS_SUCCEED);
  EXPECT_EQ(node->state, LM_ALLOCATED);
  EXPECT_EQ(node->key, nullptr);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(arena.live.size(), blocks + 1);
  EXPECT_EQ(lm__free_dlinknode(list, node), CS_SUCCEED);
  EXPECT_EQ(arena.live.size(), blocks);
  EXPECT_EQ(arena.stamped, stamped + 1);
  EXPECT_EQ(arena.unstamped, 0U);
}

// Everything that shows of a list: an insertion that fails changes none of it.
struct Appearance {
  std::vector<CS_VOID *> contents;
  CS_VOID *cursor;
  CS_INT load, free_nodes;
  size_t pool_length, blocks;
  bool operator==(const Appearance &) const = default;
};

class FailedInsertion : public ListTest {
protected:
  Appearance appearance(LM_HANDLE *list) {
    return {contents(list),   list->cur_ptr,     load(list),
            list->free_nodes, pool_length(list), arena.live.size()};
  }
  // Fails an insertion, and makes it then.
  void fail_and_insert(LM_HANDLE *list, CS_VOID *key, CS_INT key_size, CS_VOID *data) {
    const Appearance before = appearance(list);
    CS_VOID *out = text("untouched");
    CS_VOID *place = &out;
    CS_VOID **const data_out = list->hdlprop->list_type == LM_STACK ? &place : &out;
    arena.failures = 0;
    arena.fail(1);
    EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, key, key_size, data, data_out), CS_MEM_ERROR);
    EXPECT_EQ(arena.failures, 1U);
    EXPECT_STREQ(static_cast<char *>(out), "untouched");
    EXPECT_EQ(place, &out);
    EXPECT_EQ(appearance(list), before);
    EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, key, key_size, data, data_out), CS_SUCCEED);
    EXPECT_EQ(out, data);
    EXPECT_EQ(load(list), before.load + 1);
  }
};

TEST_F(FailedInsertion, LeavesTheListAsItWas) {
  char data[6];
  for (const CS_INT kind : {LM_CHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    // Some under the same key, some under another one.
    for (char &place : data)
      fail_and_insert(list, text("key") /* and its prefix */, &place - data < 3 ? 3 : 2, &place);
    EXPECT_EQ(contents(list).size(), 6U);
  }
  LM_HANDLE *const list = make(LM_DLINK);
  for (const CS_INT position : {LM_OP_LAST, LM_OP_FIRST, LM_POS_BEFORE, LM_POS_AFTER})
    fail_and_insert(list, nullptr, position, &data[0]);
  // Under a cursor of the caller's.
  for (const CS_INT position : {LM_OP_LAST, LM_OP_FIRST, LM_POS_BEFORE, LM_POS_AFTER}) {
    DLinkNode *cursor = nullptr;
    ASSERT_EQ(lm_list_op(list, LM_OP_FIRST, &cursor, 0, nullptr, nullptr), CS_SUCCEED);
    DLinkNode *const before = cursor;
    arena.fail(1);
    EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, &cursor, position, &data[1], nullptr), CS_MEM_ERROR);
    EXPECT_EQ(cursor, before);
  }
}

// ---- copies of bytes ----

TEST(ListBytes, CopyOrTellTheNeed) {
  char source[] = "abcdef";
  const struct {
    CS_VOID *source;
    CS_INT length;
    CS_BOOL terminate;
    std::string expected;
  } rows[] = {{source, 3, 0, "abc"},
              {source, 3, 1, std::string("abc", 4)},
              {source, CS_LEN_NULLTERM, 0, "abcdef"},
              {source, CS_LEN_NULLTERM, 1, std::string("abcdef", 7)},
              {nullptr, 5, 1, std::string("", 1)},
              {nullptr, CS_LEN_NULLTERM, 0, ""},
              {source, -3, 0, ""}};
  for (const auto &row : rows)
    for (const auto copy : {lm__api_cp_bytes, lm__api_prop_cpbytes})
      for (size_t size = 0; size < 9; ++size) {
        zrvtest::GuardedBuffer buffer(size);
        CS_INT outlen = -1;
        EXPECT_EQ(copy(row.source, row.length, row.terminate, buffer.data(),
                       static_cast<CS_INT>(size), &outlen),
                  CS_SUCCEED);
        EXPECT_EQ(outlen, static_cast<CS_INT>(row.expected.size()));
        const bool fits = size >= row.expected.size();
        EXPECT_TRUE(buffer.is_untouched(fits ? row.expected.size() : 0));
        if (fits) {
          EXPECT_EQ(buffer.contents(row.expected.size()), row.expected);
        }
      }
}

// Nothing to copy needs no place.
TEST(ListBytes, NoBytes) {
  CS_INT outlen = -1;
  EXPECT_EQ(lm__api_cp_bytes(text("abc"), 0, 0, nullptr, 0, &outlen), CS_SUCCEED);
  EXPECT_EQ(outlen, 0);
  EXPECT_EQ(lm__api_cp_bytes(text("abc"), 3, 1, nullptr, 3, &outlen), CS_SUCCEED);
  EXPECT_EQ(outlen, 4);
  EXPECT_NULL_POINTER_CHECK("lmutils.cpp", CS_FAIL,
                            lm__api_cp_bytes(text("abc"), 3, 0, nullptr, 3, &outlen));
}

TEST(ListBytes, KeptCopies) {
  AllocationProbe probe;
  CS_CHAR *copy = chars("junk");
  CS_INT length = 77;
  EXPECT_EQ(lm__api_setdata(&copy, &length, chars("abc"), CS_LEN_NULLTERM), CS_SUCCEED);
  EXPECT_STREQ(copy, "abc");
  EXPECT_EQ(length, 4);
  EXPECT_EQ(lm__api_prop_setdata(&copy, &length, chars("xyz"), 2), CS_SUCCEED);
  EXPECT_EQ(std::string(copy, 2), "xy");
  EXPECT_EQ(length, 2);
  EXPECT_EQ(probe.live_blocks(), 1U);
  // The old value goes, whatever becomes of the new one.
  probe.fail(1);
  EXPECT_EQ(lm__api_prop_setdata(&copy, &length, chars("xyz"), 2), CS_SUCCEED);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(length, 0);
  probe.fail(1);
  EXPECT_EQ(lm__api_setdata(&copy, &length, chars("xyz"), 2), CS_MEM_ERROR);
  for (const CS_INT none : {0, -1}) {
    length = 5;
    EXPECT_EQ(lm__api_setdata(&copy, &length, chars("xyz"), none), CS_SUCCEED);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(length, 0);
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

} // namespace
