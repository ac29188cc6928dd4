// The list manager: contexts, the five kinds of list, properties, resizing, node pools, drops.
#include <climits>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/lmpriv.h"

namespace {

using zrvtest::AllocationProbe;
using zrvtest::catch_check;

CS_VOID *text(const char *string) {
  return const_cast<char *>(string);
}
CS_CHAR *chars(const char *string) {
  return const_cast<char *>(string);
}
CS_INT size_of(const char *string) {
  return static_cast<CS_INT>(std::strlen(string));
}

// An allocator that counts, fails on demand, and looks at what comes back: records of the list
// manager are stamped before they are released.
class Arena {
public:
  ~Arena() {
    EXPECT_TRUE(live.empty()) << live.size() << " blocks leaked";
    for (auto &[block, size] : live)
      std::free(block);
  }
  static void *take(void *user, size_t size) {
    auto *const self = static_cast<Arena *>(user);
    ++self->allocations;
    if (self->countdown != 0 && --self->countdown == 0) {
      ++self->failures;
      if (self->keeps_failing)
        self->countdown = 1;
      return nullptr;
    }
    void *const block = std::malloc(size == 0 ? 1 : size);
    std::memset(block, 0xDD, size);
    self->live[block] = size;
    return block;
  }
  static void give_back(void *user, void *block) {
    auto *const self = static_cast<Arena *>(user);
    ASSERT_EQ(self->live.count(block), 1U);
    int state;
    std::memcpy(&state, block, sizeof state);
    if (state == LM_RELEASED)
      ++self->stamped;
    else
      ++self->unstamped;
    self->live.erase(block);
    std::free(block);
  }
  void fail(size_t nth, bool keep = false) {
    countdown = nth;
    keeps_failing = keep;
  }

  std::map<void *, size_t> live;
  size_t allocations = 0, failures = 0, stamped = 0, unstamped = 0;

private:
  size_t countdown = 0;
  bool keeps_failing = false;
};

class ListTest : public testing::Test {
protected:
  ListTest() {
    EXPECT_EQ(lm_initlm_ex(1100, chars("context"), CS_LEN_NULLTERM, &context, Arena::take,
                           Arena::give_back, &arena),
              CS_SUCCEED);
  }
  ~ListTest() override {
    if (context != nullptr) {
      EXPECT_EQ(lm_exit(context, LM_EXIT_FORCE), CS_SUCCEED);
    }
    EXPECT_EQ(probe.live_blocks(), 0U) << "names leaked";
  }

  void defaults(CS_INT tablesize, CS_INT poolsize) {
    EXPECT_EQ(lm_property(context, LM_ACTION_SET, LM_CXT_MAX_TABLESIZE, &tablesize, 0, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(lm_property(context, LM_ACTION_SET, LM_CXT_MAX_POOLSIZE, &poolsize, 0, nullptr),
              CS_SUCCEED);
  }
  LM_HANDLE *make(CS_INT kind, const char *name = "list") {
    LM_HANDLE *handle = nullptr;
    EXPECT_EQ(lm_list_alloc(context, kind, chars(name), CS_LEN_NULLTERM, &handle), CS_SUCCEED);
    return handle;
  }
  static CS_INT load(LM_HANDLE *handle) {
    CS_INT value = -1;
    EXPECT_EQ(lm_list_prop(handle, LM_ACTION_GET, LM_HDL_HANDLE_LOAD, &value, CS_UNUSED, nullptr),
              CS_SUCCEED);
    return value;
  }
  static CS_RETCODE op(LM_HANDLE *handle, CS_INT operation, const char *key = nullptr,
                       const char *data = nullptr) {
    return lm_list_op(handle, operation, text(key), key == nullptr ? CS_UNUSED : size_of(key),
                      text(data), nullptr);
  }
  // The data of the current entry.
  static std::string current(LM_HANDLE *handle) {
    CS_VOID *out = text("untouched");
    EXPECT_EQ(lm_list_op(handle, LM_OP_CURRENT, nullptr, CS_UNUSED, nullptr, &out), CS_SUCCEED);
    return out == nullptr ? "(null)" : static_cast<const char *>(out);
  }
  static size_t pool_length(const LM_HANDLE *handle) {
    size_t length = 0;
    for (const DLinkNode *node = handle->free_DLN_list; node != nullptr; node = node->next)
      ++length;
    return length;
  }

  AllocationProbe probe;
  Arena arena;
  LM_CONTEXT *context = nullptr;
};

// ---- contexts ----

TEST_F(ListTest, ContextDefaults) {
  EXPECT_EQ(context->state, LM_INITIALIZED);
  EXPECT_EQ(std::string(context->context_name, 8), std::string("context", 8));
  EXPECT_EQ(context->length, 8);
  EXPECT_EQ(context->lmchkparam, 0);
  EXPECT_EQ(context->first_handle, nullptr);
  const LM_CXTPROP *const prop = context->cxtprop;
  EXPECT_EQ(prop->state, LM_INITIALIZED);
  EXPECT_EQ(prop->list_type, 13);
  EXPECT_EQ(prop->max_tablesize, 10);
  EXPECT_EQ(prop->max_poolsize, 0);
  EXPECT_EQ(prop->version, 1100);
  EXPECT_EQ(prop->context_load, 0);
  EXPECT_EQ(prop->cur_handlename, nullptr);
  EXPECT_EQ(prop->cur_handleaddr, nullptr);
}

TEST(ListContext, NamesOfEveryLength) {
  const struct {
    const char *name;
    CS_INT given, kept;
  } rows[] = {{"name", 4, 4}, {"name", 2, 2},  {"name", -9, 5},  {"", -9, 1},
              {"name", 0, 0}, {"name", -3, 0}, {nullptr, -9, 0}, {nullptr, 4, 0}};
  for (const auto &row : rows) {
    AllocationProbe probe;
    LM_CONTEXT *context = nullptr;
    ASSERT_EQ(lm_initlm(1100, chars(row.name), row.given, &context), CS_SUCCEED);
    EXPECT_EQ(context->length, row.kept);
    EXPECT_EQ(context->context_name == nullptr, row.kept == 0);
    if (row.kept > 0) {
      EXPECT_EQ(std::memcmp(context->context_name, row.name, static_cast<size_t>(row.kept)), 0);
    }
    EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_SUCCEED);
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
}

TEST(ListContext, OldVersionsAreRefused) {
  LM_CONTEXT *context = nullptr;
  EXPECT_ASSERTION("lminit.cpp", CS_FAIL, lm_initlm(1099, nullptr, 0, &context));
  EXPECT_EQ(context, nullptr);
  EXPECT_NULL_POINTER_CHECK("lminit.cpp", CS_FAIL, lm_initlm(1100, nullptr, 0, nullptr));
  EXPECT_NULL_POINTER_CHECK(
      "lminit.cpp", CS_FAIL,
      lm_initlm_ex(1100, nullptr, 0, &context, nullptr, Arena::give_back, nullptr));
  EXPECT_NULL_POINTER_CHECK(
      "lminit.cpp", CS_FAIL,
      lm_initlm_ex(1100, nullptr, 0, &context, Arena::take, nullptr, nullptr));
}

// A record that cannot be had is CS_FAIL, a name CS_MEM_ERROR; nothing is left.
TEST(ListContext, FailedAllocations) {
  Arena arena;
  AllocationProbe probe;
  LM_CONTEXT *context = nullptr;
  const auto init = [&] {
    return lm_initlm_ex(1100, chars("n"), 1, &context, Arena::take, Arena::give_back, &arena);
  };
  for (const size_t nth : {1U, 2U}) {
    arena.fail(nth);
    EXPECT_EQ(init(), CS_FAIL);
    EXPECT_EQ(context, nullptr);
    EXPECT_TRUE(arena.live.empty());
  }
  probe.fail(1);
  EXPECT_EQ(init(), CS_MEM_ERROR);
  EXPECT_TRUE(arena.live.empty());
  EXPECT_EQ(arena.unstamped, 0U);
  EXPECT_EQ(init(), CS_SUCCEED);
  EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(ListTest, Exit) {
  EXPECT_EQ(lm_exit(nullptr, LM_EXIT_FORCE), CS_FAIL);
  for (const CS_INT option : {0, 35, 37}) {
    EXPECT_ASSERTION("lmexit.cpp", CS_FAIL, lm_exit(context, option));
  }
  LM_HANDLE *const only = make(LM_DLINK);
  EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_FAIL);
  EXPECT_EQ(context->first_handle, only);
  LM_HANDLE *const other = make(LM_CHASH);
  EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_FAIL);
  EXPECT_EQ(context->first_handle, other);
  // A drop that fails stops the walk.
  other->hdlprop->handle_load = 1;
  CS_RETCODE result = CS_SUCCEED;
  EXPECT_EQ(catch_check([&] { result = lm_exit(context, LM_EXIT_FORCE); }).signals, 1);
  EXPECT_EQ(result, CS_FAIL);
  EXPECT_EQ(context->first_handle, other);
  // Bring the broken list to an end by hand.
  other->hdlprop->handle_load = 0;
  defaults(10, 0);
  other->list_state = arena.take(&arena, sizeof(CHashInfo));
  std::memset(other->list_state, 0, sizeof(CHashInfo));
  static_cast<CHashInfo *>(other->list_state)->table =
      static_cast<DLinkNode **>(arena.take(&arena, 8));
}

// ---- making lists ----

TEST_F(ListTest, ListDefaults) {
  defaults(7, 3);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const handle = make(kind, "abc");
    EXPECT_EQ(handle->state, LM_INITIALIZED);
    const LM_HDLPROP *const prop = handle->hdlprop;
    EXPECT_EQ(prop->state, LM_INITIALIZED);
    EXPECT_EQ(prop->list_type, kind);
    EXPECT_EQ(prop->max_tablesize, 7);
    EXPECT_EQ(prop->max_poolsize, kind == LM_DHASH ? 0 : 3);
    EXPECT_EQ(handle->free_nodes, kind == LM_DHASH ? 0 : 3);
    EXPECT_EQ(pool_length(handle), kind == LM_DHASH ? 0U : 3U);
    EXPECT_EQ(prop->handle_load, 0);
    EXPECT_EQ(prop->context, context);
    EXPECT_EQ(prop->length, 4);
    EXPECT_EQ(prop->print_func, nullptr);
    EXPECT_EQ(handle->cur_ptr, nullptr);
    EXPECT_EQ(context->first_handle, handle);
    EXPECT_EQ(context->cxtprop->cur_handleaddr, handle);
    EXPECT_EQ(context->cxtprop->cur_handlename, prop->handle_name);
  }
  EXPECT_EQ(context->cxtprop->context_load, 5);
  const auto *const dhash = static_cast<DHashInfo *>(context->first_handle->next->next->list_state);
  EXPECT_EQ(dhash->table_size, 7);
  EXPECT_EQ(dhash->home_addr_hfunc, lm__api_key_to_hash);
  EXPECT_EQ(dhash->incr_hfunc, lm__api_key_to_hash2);
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(dhash->table[i]->state, LM_INITIALIZED);
}

TEST_F(ListTest, KindsThatAreNone) {
  LM_HANDLE *handle = nullptr;
  for (const CS_INT kind : {0, 12, 15, 17, 20, -1}) {
    EXPECT_EQ(lm_list_alloc(context, kind, nullptr, 0, &handle), CS_FAIL);
  }
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(arena.live.size(), 2U);
  CS_INT kind = LM_STACK;
  ASSERT_EQ(lm_property(context, LM_ACTION_SET, LM_CXT_LIST_TYPE, &kind, 0, nullptr), CS_SUCCEED);
  handle = make(CS_UNUSED);
  EXPECT_EQ(handle->hdlprop->list_type, LM_STACK);
  // A kind that was overwritten.
  for (const CS_INT none : {15, 17}) {
    handle->hdlprop->list_type = none;
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(handle, LM_OP_CURRENT));
    EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(handle, LM_DROP_FORCE));
  }
  handle->hdlprop->list_type = LM_STACK;
  // Table sizes that are none.
  for (const CS_INT size : {0, -1}) {
    defaults(size, 0);
    LM_HANDLE *hashed = nullptr;
    EXPECT_EQ(lm_list_alloc(context, LM_CHASH, nullptr, 0, &hashed), CS_FAIL);
    EXPECT_EQ(lm_list_alloc(context, LM_DHASH, nullptr, 0, &hashed), CS_FAIL);
  }
}

TEST_F(ListTest, NullArguments) {
  LM_HANDLE *handle = nullptr;
  EXPECT_EQ(lm_list_alloc(nullptr, LM_DLINK, nullptr, 0, &handle), CS_FAIL);
  EXPECT_EQ(lm_list_alloc_ex(nullptr, LM_DLINK, nullptr, 0, &handle, Arena::take, Arena::give_back,
                             &arena),
            CS_FAIL);
  EXPECT_EQ(lm_list_op(nullptr, LM_OP_CURRENT, nullptr, 0, nullptr, nullptr), CS_FAIL);
  EXPECT_EQ(lm_list_drop(nullptr, LM_DROP_FORCE), CS_FAIL);
  CS_INT outlen = 9;
  EXPECT_EQ(lm_list_prop(nullptr, LM_ACTION_GET, LM_HDL_LIST_TYPE, &outlen, CS_UNUSED, &outlen),
            CS_FAIL);
  EXPECT_EQ(outlen, 0);
  EXPECT_EQ(lm_property(nullptr, LM_ACTION_GET, LM_CXT_VERSION, &outlen, CS_UNUSED, nullptr),
            CS_FAIL);
  EXPECT_NULL_POINTER_CHECK("lmlistal.cpp", CS_FAIL,
                            lm_list_alloc(context, LM_DLINK, nullptr, 0, nullptr));
  context->lmchkparam = 1;
  EXPECT_EQ(lm_list_alloc(context, LM_DLINK, nullptr, 0, &handle), CS_FAIL);
  EXPECT_EQ(lm_list_alloc(context, LM_DLINK, chars("n"), 1, &handle), CS_SUCCEED);
}

TEST_F(ListTest, FailedAllocationsOfLists) {
  defaults(4, 3);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE, LM_STACK})
    for (const bool keep : {false, true})
      for (size_t nth = 1;; ++nth) {
        SCOPED_TRACE(testing::Message() << "kind " << kind << ", allocation " << nth);
        arena.failures = 0;
        arena.fail(nth, keep);
        LM_HANDLE *handle = nullptr;
        const CS_RETCODE result = lm_list_alloc(context, kind, chars("abc"), 3, &handle);
        arena.fail(0);
        if (arena.failures == 0) {
          ASSERT_EQ(result, CS_SUCCEED);
          ASSERT_EQ(lm_list_drop(handle, LM_DROP_NORMAL), CS_SUCCEED);
          break;
        }
        ASSERT_EQ(result, CS_MEM_ERROR);
        ASSERT_EQ(handle, nullptr);
        ASSERT_EQ(arena.live.size(), 2U);
        ASSERT_EQ(context->first_handle, nullptr);
        ASSERT_EQ(context->cxtprop->context_load, 0);
        ASSERT_EQ(lm_list_alloc(context, kind, chars("abc"), 3, &handle), CS_SUCCEED);
        ASSERT_EQ(lm_list_drop(handle, LM_DROP_NORMAL), CS_SUCCEED);
        ASSERT_EQ(arena.live.size(), 2U);
      }
  probe.fail(1);
  LM_HANDLE *handle = nullptr;
  EXPECT_EQ(lm_list_alloc(context, LM_DLINK, chars("abc"), 3, &handle), CS_MEM_ERROR);
  EXPECT_EQ(arena.live.size(), 2U);
  // No more than the tables themselves went unstamped.
  EXPECT_GT(arena.stamped, arena.unstamped);
}

TEST_F(ListTest, AListMayHaveItsOwnAllocator) {
  Arena own;
  LM_HANDLE *handle = nullptr;
  ASSERT_EQ(lm_list_alloc_ex(context, LM_CHASH, chars("n"), 1, &handle, Arena::take,
                             Arena::give_back, &own),
            CS_SUCCEED);
  EXPECT_EQ(own.live.size(), 4U); // handle, properties, kind, table
  EXPECT_EQ(arena.live.size(), 2U);
  EXPECT_EQ(op(handle, LM_OP_INSERT, "key", "data"), CS_SUCCEED);
  EXPECT_EQ(own.live.size(), 5U);
  EXPECT_EQ(lm_list_drop(handle, LM_DROP_FORCE), CS_SUCCEED);
  EXPECT_TRUE(own.live.empty());
}

// ---- the linked list ----

class LinkedTest : public ListTest {
protected:
  LinkedTest() : list(make(LM_DLINK)) {}

  CS_RETCODE insert(const char *data, CS_INT position, DLinkNode **cursor = nullptr) {
    return lm_list_op(list, LM_OP_INSERT, cursor, position, text(data), nullptr);
  }
  CS_RETCODE step(CS_INT operation, DLinkNode **cursor = nullptr) {
    out = text("untouched");
    return lm_list_op(list, operation, cursor, 0, nullptr, &out);
  }
  std::string got() const { return out == nullptr ? "(null)" : static_cast<const char *>(out); }
  std::string all() const {
    std::string result;
    const auto *const info = static_cast<const DLinkInfo *>(list->list_state);
    const DLinkNode *previous = nullptr;
    for (const DLinkNode *node = info->head; node != nullptr; node = node->next) {
      EXPECT_EQ(node->previous, previous);
      EXPECT_EQ(node->state, LM_INSERTED);
      result += static_cast<const char *>(node->data);
      previous = node;
    }
    EXPECT_EQ(info->tail, previous);
    return result;
  }

  LM_HANDLE *list;
  CS_VOID *out = nullptr;
};

TEST_F(LinkedTest, PositionsOfInsertion) {
  EXPECT_EQ(insert("c", 12345), CS_SUCCEED); // any position will do for the first
  EXPECT_EQ(insert("a", LM_OP_FIRST), CS_SUCCEED);
  EXPECT_EQ(insert("e", LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(insert("d", LM_POS_BEFORE), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_FIRST), CS_SUCCEED);
  EXPECT_EQ(insert("b", LM_POS_AFTER), CS_SUCCEED);
  EXPECT_EQ(all(), "abcde");
  EXPECT_EQ(step(LM_OP_FIRST), CS_SUCCEED);
  EXPECT_EQ(insert("0", LM_POS_BEFORE), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(insert("f", LM_POS_AFTER), CS_SUCCEED);
  EXPECT_EQ(all(), "0abcdef");
  EXPECT_EQ(current(list), "f");
  const size_t nodes = arena.live.size();
  for (const CS_INT position : {0, LM_OP_NEXT, LM_OP_CURRENT, 34}) {
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, insert("x", position));
  }
  EXPECT_EQ(arena.live.size(), nodes);
  EXPECT_EQ(load(list), 7);
}

TEST_F(LinkedTest, WalkingBothWays) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_NEXT), CS_FAIL);
  EXPECT_EQ(got(), "untouched");
  EXPECT_EQ(current(list), "c") << "the cursor stays on the tail";
  EXPECT_EQ(step(LM_OP_PREV), CS_SUCCEED);
  EXPECT_EQ(got(), "b");
  EXPECT_EQ(step(LM_OP_PREV), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_PREV), CS_FAIL);
  EXPECT_EQ(current(list), "a");
  EXPECT_EQ(lm_list_op(list, LM_OP_REPLACE, nullptr, 0, text("A"), &out), CS_SUCCEED);
  EXPECT_EQ(got(), "A");
  EXPECT_EQ(step(LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(got(), "c");
}

// A cursor of the caller's own leaves that of the list alone.
TEST_F(LinkedTest, IndependentCursors) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  DLinkNode *first = nullptr, *second = nullptr;
  EXPECT_EQ(step(LM_OP_FIRST, &first), CS_SUCCEED);
  EXPECT_EQ(got(), "a");
  EXPECT_EQ(step(LM_OP_PREV, &second), CS_SUCCEED) << "from the list's own cursor";
  EXPECT_EQ(got(), "b");
  EXPECT_EQ(step(LM_OP_NEXT, &first), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_NEXT, &first), CS_SUCCEED);
  EXPECT_EQ(got(), "c");
  DLinkNode *const stays = first;
  EXPECT_EQ(step(LM_OP_NEXT, &first), CS_FAIL);
  EXPECT_EQ(first, stays);
  EXPECT_EQ(current(list), "c");
  EXPECT_EQ(insert("x", LM_POS_AFTER, &second), CS_SUCCEED);
  EXPECT_EQ(all(), "abxc");
  EXPECT_STREQ(static_cast<const char *>(second->data), "x");
  EXPECT_EQ(current(list), "c");
}

// The first entry becomes the list's cursor as well.
TEST_F(LinkedTest, FirstInsertionWritesTheOwnCursor) {
  DLinkNode *cursor = nullptr;
  EXPECT_EQ(insert("a", LM_OP_LAST, &cursor), CS_SUCCEED);
  EXPECT_NE(cursor, nullptr);
  EXPECT_EQ(list->cur_ptr, cursor);
  EXPECT_EQ(insert("b", LM_OP_LAST, &cursor), CS_SUCCEED);
  EXPECT_EQ(current(list), "a");
}

// Entries have no keys: what a node holds in their place is left alone.
TEST_F(LinkedTest, InsertionLeavesTheKeyAsItIs) {
  defaults(10, 1);
  list = make(LM_DLINK);
  ASSERT_EQ(insert("a", LM_OP_LAST), CS_SUCCEED);
  auto *const node = static_cast<DLinkNode *>(list->cur_ptr);
  EXPECT_EQ(node->key, nullptr);
  EXPECT_EQ(node->key_size, 0);
  node->key = text("key");
  node->key_size = 3;
  ASSERT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  ASSERT_EQ(insert("b", LM_OP_LAST), CS_SUCCEED);
  ASSERT_EQ(list->cur_ptr, node) << "the one node of the pool";
  EXPECT_STREQ(static_cast<char *>(node->key), "key");
  EXPECT_EQ(node->key_size, 3);
}

TEST_F(LinkedTest, Deletion) {
  for (const char *const data : {"a", "b", "c", "d"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_DELETE), CS_SUCCEED); // the tail
  EXPECT_EQ(got(), "c");
  EXPECT_EQ(step(LM_OP_PREV), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_DELETE), CS_SUCCEED); // in the middle
  EXPECT_EQ(got(), "a");
  EXPECT_EQ(step(LM_OP_DELETE), CS_SUCCEED); // the head
  EXPECT_EQ(got(), "c");
  EXPECT_EQ(load(list), 1);
  EXPECT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  EXPECT_EQ(got(), "(null)");
  EXPECT_EQ(all(), "");
  EXPECT_EQ(list->cur_ptr, nullptr);
  EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, step(LM_OP_DELETE));
  EXPECT_EQ(step(LM_OP_NEXT), CS_FAIL);
  EXPECT_EQ(step(LM_OP_PREV), CS_FAIL);
  EXPECT_EQ(step(LM_OP_REPLACE), CS_FAIL);
  EXPECT_EQ(step(LM_OP_FIRST), CS_SUCCEED);
  EXPECT_EQ(got(), "(null)");
}

// Deleting through a cursor of one's own never leaves the list's cursor on what is gone.
TEST_F(LinkedTest, DeletionUnderTheOwnCursor) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  DLinkNode *cursor = nullptr;
  ASSERT_EQ(step(LM_OP_LAST, &cursor), CS_SUCCEED);
  ASSERT_EQ(step(LM_OP_DELETE, &cursor), CS_SUCCEED);
  EXPECT_EQ(current(list), "b");
  while (load(list) > 0)
    ASSERT_EQ(step(LM_OP_DELETE, &cursor), CS_SUCCEED);
  EXPECT_EQ(cursor, nullptr);
  EXPECT_EQ(list->cur_ptr, nullptr);
}

// A cursor on an entry that went back to the pool is reported.
TEST_F(LinkedTest, StaleCursor) {
  CS_INT size = 4;
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr), CS_SUCCEED);
  ASSERT_EQ(insert("a", LM_OP_LAST), CS_SUCCEED);
  DLinkNode *stale = nullptr;
  ASSERT_EQ(step(LM_OP_FIRST, &stale), CS_SUCCEED);
  ASSERT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, step(LM_OP_NEXT, &stale));
  EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, step(LM_OP_DELETE, &stale));
}

TEST_F(LinkedTest, NoKeys) {
  EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, step(LM_OP_SEARCH));
  for (const CS_INT operation : {0, 19, 32, 33}) {
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, step(operation));
  }
}

std::string walked;
const char *stop_at;
CS_RETCODE note(CS_VOID *item) {
  walked += item == nullptr ? "(null)" : static_cast<const char *>(item);
  return stop_at != nullptr && item != nullptr && std::string(stop_at) == static_cast<char *>(item)
             ? CS_FAIL
             : CS_SUCCEED;
}

CS_RETCODE set_print(LM_HANDLE *handle) {
  CS_PRINT_FUNC function = note;
  walked.clear();
  stop_at = nullptr;
  return lm_list_prop(handle, LM_ACTION_SET, LM_HDL_PRINT_FUNC, &function, 0, nullptr);
}

TEST_F(LinkedTest, Walks) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  CS_PRINT_FUNC function = note, none = nullptr;
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_FAIL);
  EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_FAIL);
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, nullptr, nullptr), CS_FAIL);
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &none, nullptr), CS_FAIL);
  walked.clear();
  stop_at = nullptr;
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, &out), CS_SUCCEED);
  EXPECT_EQ(walked, "abc");
  EXPECT_EQ(got(), "c");
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_SUCCEED);
  EXPECT_EQ(walked, "cabc");
  walked.clear();
  stop_at = "b";
  EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_FAIL);
  EXPECT_EQ(walked, "ab");
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_FAIL);
}

// ---- queue and stack ----

TEST_F(ListTest, Queue) {
  LM_HANDLE *const queue = make(LM_QUEUE);
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(op(queue, LM_OP_INSERT, nullptr, data), CS_SUCCEED);
  EXPECT_EQ(current(queue), "a");
  CS_VOID *out = nullptr;
  EXPECT_EQ(lm_list_op(queue, LM_OP_DELETE, text("key"), 3, nullptr, &out), CS_SUCCEED);
  EXPECT_STREQ(static_cast<char *>(out), "b") << "the new head";
  EXPECT_EQ(op(queue, LM_OP_INSERT, nullptr, "d"), CS_SUCCEED);
  EXPECT_EQ(current(queue), "b");
  ASSERT_EQ(set_print(queue), CS_SUCCEED);
  EXPECT_EQ(op(queue, LM_OP_PRINTALL), CS_SUCCEED);
  EXPECT_EQ(op(queue, LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(walked, "bcdb");
  for (const CS_INT operation :
       {LM_OP_SEARCH, LM_OP_REPLACE, LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, 32}) {
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(queue, operation));
  }
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(lm_list_op(queue, LM_OP_DELETE, nullptr, 0, nullptr, &out), CS_SUCCEED);
  EXPECT_EQ(out, nullptr);
  EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(queue, LM_OP_DELETE));
  EXPECT_EQ(current(queue), "(null)");
}

// Deliberate: the place for a stack's result is given by the address of its address.
TEST_F(ListTest, Stack) {
  LM_HANDLE *const stack = make(LM_STACK);
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(op(stack, LM_OP_INSERT, nullptr, data), CS_SUCCEED);
  CS_VOID *out = nullptr;
  CS_VOID *place = &out;
  EXPECT_EQ(lm_list_op(stack, LM_OP_CURRENT, nullptr, 0, nullptr, &place), CS_SUCCEED);
  EXPECT_STREQ(static_cast<char *>(out), "c");
  EXPECT_EQ(place, &out);
  EXPECT_EQ(lm_list_op(stack, LM_OP_DELETE, nullptr, 0, nullptr, &place), CS_SUCCEED);
  EXPECT_STREQ(static_cast<char *>(out), "b");
  EXPECT_EQ(lm_list_op(stack, LM_OP_INSERT, nullptr, 0, text("d"), &place), CS_SUCCEED);
  EXPECT_STREQ(static_cast<char *>(out), "d");
  CS_VOID *nowhere = nullptr;
  EXPECT_EQ(lm_list_op(stack, LM_OP_CURRENT, nullptr, 0, nullptr, &nowhere), CS_SUCCEED);
  EXPECT_EQ(nowhere, nullptr);
  ASSERT_EQ(set_print(stack), CS_SUCCEED);
  EXPECT_EQ(op(stack, LM_OP_PRINTALL), CS_SUCCEED);
  EXPECT_EQ(walked, "dba");
  for (const CS_INT operation :
       {LM_OP_SEARCH, LM_OP_REPLACE, LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, 32}) {
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(stack, operation));
  }
}

// ---- the hash of a key ----

CS_UINT hash_of(const std::string &key) {
  CS_UINT hash = 0xBAD;
  EXPECT_EQ(lm___api_key_to_uint(chars(key.data()), static_cast<CS_INT>(key.size()), &hash),
            CS_SUCCEED);
  return hash;
}

// The rule once more, byte by byte.
CS_UINT slow_hash(const std::string &key) {
  const auto word_at = [&](size_t at, size_t count) {
    CS_UINT word = 0;
    for (size_t i = 0; i < 4; ++i) {
      const int byte = i < count ? static_cast<signed char>(key[at + i]) : 0x5A;
      word |= static_cast<CS_UINT>(byte) << (24 - 8 * i);
    }
    return word;
  };
  CS_UINT h = 0, pending = 0;
  size_t at = 0;
  for (; at + 4 <= key.size(); at += 4) {
    const CS_UINT w = word_at(at, 4);
    if (pending == 0) {
      pending = w;
      continue;
    }
    const CS_UINT t = h != 0 ? h * 37 + pending : pending;
    h = t * 37 + w;
    pending = 0;
  }
  if (at == key.size())
    return pending != 0 ? h * 37 + pending : h;
  if (pending != 0)
    h = h != 0 ? h * 37 + pending : pending;
  return h * 37 + word_at(at, key.size() - at);
}

TEST(KeyHash, KnownValues) {
  EXPECT_EQ(hash_of(""), 0U);
  EXPECT_EQ(hash_of("abcd"), 0x61626364U);
  EXPECT_EQ(hash_of("abcde"), 0x61626364U * 37 + 0x655A5A5AU);
  EXPECT_EQ(hash_of("abcdefgh"), 0x61626364U * 37 + 0x65666768U);
  EXPECT_EQ(hash_of("abcdefghi"), (0x61626364U * 37 + 0x65666768U) * 37 + 0x695A5A5AU);
  EXPECT_EQ(hash_of("a"), 0x615A5A5AU);
  EXPECT_EQ(hash_of("ab"), 0x61625A5AU);
  EXPECT_EQ(hash_of("abc"), 0x6162635AU);
  // A byte of 0x80 and above sets every bit above its place.
  EXPECT_EQ(hash_of("\x80"), 0x805A5A5AU);
  EXPECT_EQ(hash_of("a\x80"), 0xFF805A5AU);
  EXPECT_EQ(hash_of("ab\xE9"), 0xFFFFE95AU);
  EXPECT_EQ(hash_of("abc\xFF"), 0xFFFFFFFFU);
  EXPECT_EQ(hash_of("\x80xyz"), 0x8078797AU);
  // A word of 0 does not wait for another one.
  EXPECT_EQ(hash_of(std::string(4, '\0')), 0U);
  EXPECT_EQ(hash_of(std::string("\0\0\0\0abcd", 8)), 0x61626364U);
  EXPECT_EQ(hash_of(std::string("abcd\0\0\0\0", 8)), 0x61626364U * 37);
}

TEST(KeyHash, AgainstTheRule) {
  unsigned seed = 12345;
  const auto random = [&] { return (seed = seed * 1103515245 + 12345) >> 16; };
  for (int round = 0; round < 200'000; ++round) {
    std::string key(random() % 30, '\0');
    const unsigned kind = random() % 4;
    for (char &c : key)
      c = static_cast<char>(kind == 0   ? random()
                            : kind == 1 ? random() % 2 * 0x80
                            : kind == 2 ? 'a' + random() % 26
                                        : random() % 3 - 1);
    ASSERT_EQ(hash_of(key), slow_hash(key));
  }
  for (unsigned pair = 0; pair < 65536; ++pair) {
    const std::string key{static_cast<char>(pair), static_cast<char>(pair >> 8)};
    ASSERT_EQ(hash_of(key), slow_hash(key));
    ASSERT_EQ(hash_of("wxyz" + key), slow_hash("wxyz" + key));
  }
}

// One byte or one word that is not like the others, at every place of keys of every size.
TEST(KeyHash, EveryPlaceOfEverySize) {
  for (size_t size = 0; size <= 60; ++size) {
    std::string plain(size, '\0');
    for (size_t i = 0; i < size; ++i)
      plain[i] = static_cast<char>('a' + i % 26);
    ASSERT_EQ(hash_of(plain), slow_hash(plain)) << size;
    for (size_t at = 0; at < size; ++at) {
      for (const char odd : {'\0', '\x01', '\x7F', '\x80', '\xFF'}) {
        std::string key = plain;
        key[at] = odd;
        ASSERT_EQ(hash_of(key), slow_hash(key)) << size << " bytes, at " << at;
      }
      // A word of 0 is passed over where it would be the first of a pair, and only there.
      for (size_t words = 1; words <= 3; ++words) {
        std::string key = plain;
        for (size_t i = at; i < at + 4 * words && i < size; ++i)
          key[i] = '\0';
        ASSERT_EQ(hash_of(key), slow_hash(key)) << size << " bytes, at " << at;
      }
    }
  }
}

// Reads not one byte outside the key.
TEST(KeyHash, KeysAtTheirEdges) {
  for (size_t size = 0; size < 60; ++size) {
    std::vector<char> heap(size, 'k');
    CS_UINT hash = 0;
    EXPECT_EQ(lm___api_key_to_uint(heap.data(), static_cast<CS_INT>(size), &hash), CS_SUCCEED);
    EXPECT_EQ(hash, slow_hash(std::string(size, 'k')));
  }
}

TEST(KeyHash, Ranges) {
  CS_UINT hash = 9;
  for (const CS_INT range : {0, -1}) {
    hash = 9;
    EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, range, &hash), CS_FAIL);
    EXPECT_EQ(hash, 0U);
    hash = 9;
    EXPECT_EQ(lm__api_key_to_hash2(chars("abcd"), 4, range, &hash), CS_FAIL);
    EXPECT_EQ(hash, 0U);
  }
  EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, 10, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0x61626364U % 10);
  EXPECT_EQ(lm__api_key_to_hash2(chars("abcd"), 4, 10, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, static_cast<CS_UINT>(0x61626364U * 7ULL) % 9 + 1);
  EXPECT_EQ(lm__api_key_to_hash(chars("abcd"), 4, 1, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0U);
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL, lm__api_key_to_hash2(chars("abcd"), 4, 1, &hash));
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(chars("abcd"), -1, &hash));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(nullptr, 1, &hash));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL, lm___api_key_to_uint(chars("a"), 1, nullptr));
  EXPECT_EQ(lm___api_key_to_uint(nullptr, 0, &hash), CS_SUCCEED);
  EXPECT_EQ(hash, 0U);
}

// ---- the chained table ----

class ChainedTest : public ListTest {
protected:
  ChainedTest() : list(make(LM_CHASH)) {}
  std::string find(const std::string &key) {
    CS_VOID *out = text("untouched");
    const CS_RETCODE result = lm_list_op(list, LM_OP_SEARCH, text(key.data()),
                                         static_cast<CS_INT>(key.size()), nullptr, &out);
    if (result == LM_NOT_FOUND) {
      EXPECT_STREQ(static_cast<char *>(out), "untouched");
      return "(miss)";
    }
    EXPECT_EQ(result, CS_SUCCEED);
    return static_cast<char *>(out);
  }
  CHashInfo *info() { return static_cast<CHashInfo *>(list->list_state); }
  DLinkNode *head_of(const char *key) {
    CS_UINT home = 0;
    EXPECT_EQ(lm__api_key_to_hash(chars(key), size_of(key), info()->table_size, &home), CS_SUCCEED);
    return info()->table[home];
  }
  // Keys that share a bucket.
  std::vector<std::string> keys_in_bucket(CS_UINT bucket, size_t count,
                                          const std::string &prefix = "k") {
    std::vector<std::string> keys;
    for (int i = 0; keys.size() < count; ++i) {
      const std::string key = prefix + std::to_string(i);
      CS_UINT home = 0;
      EXPECT_EQ(lm__api_key_to_hash(chars(key.data()), static_cast<CS_INT>(key.size()),
                                    info()->table_size, &home),
                CS_SUCCEED);
      if (home == bucket)
        keys.push_back(key);
    }
    return keys;
  }

  LM_HANDLE *list;
};

TEST_F(ChainedTest, InsertFindDelete) {
  for (const char *const key : {"a", "bb", "ccc", "dddd", "eeeee"})
    ASSERT_EQ(op(list, LM_OP_INSERT, key, key), CS_SUCCEED);
  EXPECT_EQ(current(list), "eeeee");
  EXPECT_EQ(load(list), 5);
  EXPECT_EQ(find("ccc"), "ccc");
  EXPECT_EQ(current(list), "ccc");
  EXPECT_EQ(find("cc"), "(miss)");
  EXPECT_EQ(find("cccc"), "(miss)");
  EXPECT_EQ(current(list), "ccc") << "a miss leaves the current entry";
  EXPECT_EQ(op(list, LM_OP_DELETE, "zz"), LM_NOT_FOUND);
  EXPECT_EQ(op(list, LM_OP_REPLACE, "zz", "x"), LM_NOT_FOUND);
  EXPECT_EQ(op(list, LM_OP_REPLACE, "bb", "new"), CS_SUCCEED);
  EXPECT_EQ(find("bb"), "new");
  EXPECT_EQ(op(list, LM_OP_REPLACE, nullptr, "newer"), CS_SUCCEED); // the current one
  EXPECT_EQ(find("bb"), "newer");
  EXPECT_EQ(op(list, LM_OP_DELETE, "bb"), CS_SUCCEED);
  EXPECT_EQ(find("bb"), "(miss)");
  EXPECT_EQ(load(list), 4);
}

TEST_F(ChainedTest, TheNewestOfAKeyShadowsTheOlder) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "k", "old"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, "k", "new"), CS_SUCCEED);
  EXPECT_EQ(load(list), 2);
  EXPECT_EQ(find("k"), "new");
  EXPECT_EQ(op(list, LM_OP_DELETE, "k"), CS_SUCCEED);
  EXPECT_EQ(find("k"), "old");
}

// A key is the bytes that stand there now: the table has no copy and no memory of them.
TEST_F(ChainedTest, KeysMayBeRewrittenInPlace) {
  defaults(1, 0); // one bucket, where a rewritten key stays within reach
  list = make(LM_CHASH);
  for (const size_t size : {1U, 4U, 7U, 8U, 16U, 24U, 40U}) {
    std::string key(size, 'a');
    const std::string before = key;
    ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, key.data(), static_cast<CS_INT>(size), text("entry"),
                         nullptr),
              CS_SUCCEED);
    EXPECT_EQ(find(before), "entry");
    key.back() = 'b';
    EXPECT_EQ(find(before), "(miss)");
    EXPECT_EQ(find(std::string(key)), "entry");
    ASSERT_EQ(
        lm_list_op(list, LM_OP_DELETE, key.data(), static_cast<CS_INT>(size), nullptr, nullptr),
        CS_SUCCEED);
    EXPECT_EQ(load(list), 0);
  }
}

// Keys of every size that differ in one byte, wherever it stands, or in their size.
TEST_F(ChainedTest, EveryByteOfAKeyCounts) {
  defaults(1, 0);
  list = make(LM_CHASH);
  for (size_t size = 1; size <= 60; ++size) {
    // At their edges, so that a sanitizer sees a read beyond them.
    const std::vector<char> key(size, 'k');
    std::vector<char> other = key;
    const auto act = [&](CS_INT operation, const std::vector<char> &which, size_t bytes) {
      return lm_list_op(list, operation, text(which.data()), static_cast<CS_INT>(bytes), nullptr,
                        nullptr);
    };
    ASSERT_EQ(act(LM_OP_INSERT, key, size), CS_SUCCEED);
    ASSERT_EQ(act(LM_OP_SEARCH, other, size), CS_SUCCEED);
    ASSERT_EQ(act(LM_OP_SEARCH, other, size - 1), LM_NOT_FOUND);
    for (char &byte : other) {
      byte = static_cast<char>('k' ^ 0x80);
      ASSERT_EQ(act(LM_OP_SEARCH, other, size), LM_NOT_FOUND)
          << size << " bytes, at " << &byte - other.data();
      byte = 'k';
    }
    ASSERT_EQ(act(LM_OP_DELETE, other, size), CS_SUCCEED);
  }
}

TEST_F(ChainedTest, TheTablesOwnHashFunctionCounts) {
  static int calls;
  calls = 0;
  info()->home_addr_hfunc = [](CS_CHAR *key, CS_INT, CS_INT, CS_UINT *home) -> CS_RETCODE {
    ++calls;
    *home = 7;
    return *key == '?' ? CS_FAIL : CS_SUCCEED;
  };
  EXPECT_EQ(op(list, LM_OP_INSERT, "one", "1"), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_INSERT, "another", "2"), CS_SUCCEED);
  ASSERT_NE(info()->table[7], nullptr);
  EXPECT_STREQ(static_cast<char *>(info()->table[7]->next->data), "1");
  EXPECT_EQ(find("another"), "2");
  EXPECT_EQ(op(list, LM_OP_DELETE, "one"), CS_SUCCEED);
  EXPECT_EQ(calls, 4);
  EXPECT_EQ(op(list, LM_OP_INSERT, "?", "3"), CS_FAIL);
  EXPECT_EQ(op(list, LM_OP_SEARCH, "?"), CS_FAIL);
  EXPECT_EQ(load(list), 1);
}

// The table's own hash function would refuse them.
TEST_F(ChainedTest, NegativeSizesHaveNoBytes) {
  info()->home_addr_hfunc = [](CS_CHAR *, CS_INT, CS_INT, CS_UINT *home) -> CS_RETCODE {
    *home = 2;
    return CS_SUCCEED;
  };
  for (const CS_INT size : {-1, -8, CS_UNUSED, INT_MIN}) {
    const auto act = [&](CS_INT operation, char byte, CS_INT bytes, CS_VOID **out) {
      return lm_list_op(list, operation, &byte, bytes, text("entry"), out);
    };
    CS_VOID *out = nullptr;
    ASSERT_EQ(act(LM_OP_INSERT, 'a', size, nullptr), CS_SUCCEED);
    EXPECT_EQ(act(LM_OP_SEARCH, 'b', size, &out), CS_SUCCEED);
    EXPECT_STREQ(static_cast<char *>(out), "entry");
    EXPECT_EQ(act(LM_OP_SEARCH, 'a', size + 1, nullptr), LM_NOT_FOUND);
  }
}

TEST_F(ChainedTest, EmptyKeysLandInBucket0) {
  ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, text(""), 0, text("x"), nullptr), CS_SUCCEED);
  EXPECT_EQ(info()->table[0], list->cur_ptr);
  EXPECT_EQ(find(""), "x");
  ASSERT_EQ(lm_list_op(list, LM_OP_SEARCH, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
  ASSERT_EQ(lm_list_op(list, LM_OP_DELETE, text(""), 0, nullptr, nullptr), CS_SUCCEED);
  EXPECT_EQ(info()->table[0], nullptr);
}

TEST_F(ChainedTest, DeletionMovesTheCurrentEntry) {
  const auto keys = keys_in_bucket(3, 4);
  for (const auto &key : keys)
    ASSERT_EQ(op(list, LM_OP_INSERT, key.c_str(), key.c_str()), CS_SUCCEED);
  // The chain runs 3 2 1 0.
  ASSERT_EQ(op(list, LM_OP_DELETE, keys[1].c_str()), CS_SUCCEED);
  EXPECT_EQ(current(list), keys[2]) << "the predecessor";
  ASSERT_EQ(op(list, LM_OP_DELETE, keys[3].c_str()), CS_SUCCEED);
  EXPECT_EQ(current(list), keys[2]) << "the successor of a head";
  EXPECT_EQ(info()->table[3], list->cur_ptr);
  ASSERT_EQ(op(list, LM_OP_DELETE, keys[0].c_str()), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_DELETE, keys[2].c_str()), CS_SUCCEED);
  EXPECT_EQ(current(list), "(null)");
  EXPECT_EQ(info()->table[3], nullptr);
}

// Node pools that have room and that have none, keys that are hashed word for word and at once.
constexpr std::pair<CS_INT, const char *> pools_and_prefixes[] = {
    {0, "k"}, {5, "k"}, {0, "medium key "}, {5, "medium key "}};

// Deliberate: without a key the head of bucket 0 alone is corrected. The head of another bucket
// stays in the table, and never leads into released memory.
TEST_F(ChainedTest, DeletionWithoutAKeyLeavesAHead) {
  for (const auto &[poolsize, prefix] : pools_and_prefixes) {
    defaults(10, poolsize);
    list = make(LM_CHASH);
    const auto first = keys_in_bucket(0, 2, prefix), other = keys_in_bucket(4, 3, prefix);
    // The list keeps the addresses of the keys.
    for (const auto *const keys : {&first, &other})
      for (const auto &key : *keys)
        ASSERT_EQ(op(list, LM_OP_INSERT, key.c_str(), key.c_str()), CS_SUCCEED);
    // Current is the head of bucket 4.
    DLinkNode *const stale = info()->table[4];
    ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
    EXPECT_EQ(info()->table[4], stale);
    EXPECT_EQ(load(list), 4);
    EXPECT_EQ(current(list), other[1]);
    ASSERT_EQ(op(list, LM_OP_INSERT, "elsewhere", "e"), CS_SUCCEED);
    EXPECT_EQ(find(other[2]), "(miss)");
    EXPECT_EQ(find(other[1]), other[1]);
    EXPECT_EQ(find(other[0]), other[0]);
    EXPECT_NE(info()->table[4], stale);
    // And the head of bucket 0.
    EXPECT_EQ(find(first[1]), first[1]);
    ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
    EXPECT_EQ(info()->table[0], list->cur_ptr);
    // A stale head at the drop.
    EXPECT_EQ(find(other[1]), other[1]);
    ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
    EXPECT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
  }
}

// The current entry moves on to the successor, so the next deletion without a key takes that one
// and leaves two such heads in a row.
TEST_F(ChainedTest, DeletionsWithoutAKeyInARow) {
  std::vector<std::string> other;
  const auto start = [&](size_t deleted) {
    list = make(LM_CHASH);
    for (const auto &key : other)
      ASSERT_EQ(op(list, LM_OP_INSERT, key.c_str(), key.c_str()), CS_SUCCEED);
    for (size_t i = 0; i < deleted; ++i)
      ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
    ASSERT_EQ(load(list), static_cast<CS_INT>(3 - deleted));
  };
  for (const auto &[poolsize, prefix] : pools_and_prefixes) {
    defaults(10, poolsize);
    list = make(LM_CHASH);
    other = keys_in_bucket(4, 3, prefix);
    for (const size_t deleted : {size_t{2}, size_t{3}}) {
      // None of them is found, walked over or in the way.
      start(deleted);
      EXPECT_EQ(find(other[2]), "(miss)");
      EXPECT_EQ(find(other[1]), "(miss)");
      EXPECT_EQ(find(other[0]), deleted == 2 ? other[0] : "(miss)");
      EXPECT_EQ(info()->table[4] == nullptr, deleted == 3);
      CS_PRINT_FUNC no_null = [](CS_VOID *data) { return data != nullptr ? CS_SUCCEED : CS_FAIL; };
      start(deleted);
      EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &no_null, nullptr), CS_SUCCEED);
      start(deleted);
      ASSERT_EQ(op(list, LM_OP_INSERT, other[1].c_str(), "again"), CS_SUCCEED);
      EXPECT_EQ(find(other[1]), "again");
      EXPECT_EQ(static_cast<DLinkNode *>(list->cur_ptr)->next == nullptr, deleted == 3);
      EXPECT_EQ(op(list, LM_OP_DELETE, other[1].c_str()), CS_SUCCEED);
      // Nor do they come back with another table.
      start(deleted);
      CS_INT size = 100;
      ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr),
                CS_SUCCEED);
      EXPECT_EQ(load(list), static_cast<CS_INT>(3 - deleted));
      EXPECT_EQ(find(other[0]), deleted == 2 ? other[0] : "(miss)");
      // At the drop.
      start(deleted);
      EXPECT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
    }
  }
}

TEST_F(ChainedTest, DeletionOfNothing) {
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, "b", "b"), CS_SUCCEED);
  list->cur_ptr = nullptr;
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  EXPECT_EQ(op(list, LM_OP_REPLACE), CS_FAIL);
  EXPECT_EQ(load(list), 2);
}

TEST_F(ChainedTest, OtherOperations) {
  for (const CS_INT operation :
       {LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, LM_POS_BEFORE, LM_POS_AFTER}) {
    EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, operation, "a"));
  }
  EXPECT_ASSERTION("lmhash.cpp", CS_FAIL,
                   lm_list_op(list, LM_OP_SEARCH, text("a"), CS_UNUSED, nullptr, nullptr));
  EXPECT_NULL_POINTER_CHECK("lmhash.cpp", CS_FAIL,
                            lm_list_op(list, LM_OP_INSERT, nullptr, 4, nullptr, nullptr));
}

TEST_F(ChainedTest, Printing) {
  CS_INT size = 3;
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_FAIL);
  EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_FAIL);
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINT), CS_SUCCEED); }),
            "\nNULL\n");
  EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_SUCCEED); }),
            "\n***Chain empty***\n\n***Chain empty***\n\n***Chain empty***\n");
  const auto keys = keys_in_bucket(1, 2);
  ASSERT_EQ(op(list, LM_OP_INSERT, keys[0].c_str(), "one"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, keys[1].c_str(), "two"), CS_SUCCEED);
  EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_SUCCEED); }),
            "\n***Chain empty***\n\nKeys:\n\nData:\n\n\n***Chain empty***\n");
  EXPECT_EQ(walked, keys[1] + keys[0] + "twoone");
  walked.clear();
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_PRINT, keys[0].c_str()), CS_SUCCEED);
  EXPECT_EQ(op(list, LM_OP_PRINT, "none"), LM_NOT_FOUND);
  EXPECT_EQ(walked, "twoone");
  walked.clear();
  CS_PRINT_FUNC function = note;
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_SUCCEED);
  EXPECT_EQ(walked, "twoone");
  walked.clear();
  stop_at = "two";
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_FAIL);
  EXPECT_EQ(walked, "two");
}

// ---- the open-addressed table ----

class OpenTest : public ChainedTest {
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
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_INSERT, "e", "e"));
  EXPECT_EQ(load(list), 4);
  EXPECT_EQ(op(list, LM_OP_DELETE, "b"), CS_SUCCEED);
  EXPECT_EQ(current(list), "(null)") << "the unset slot remains the cursor";
  EXPECT_EQ(static_cast<DLinkNode *>(list->cur_ptr)->state, LM_UNSET);
  EXPECT_EQ(find("b"), "(miss)");
  EXPECT_EQ(op(list, LM_OP_INSERT, "e", "e"), CS_SUCCEED);
  for (const char *const key : {"a", "c", "d", "e"})
    EXPECT_EQ(find(key), key);
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_INSERT, "f", "f"));
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
  std::vector<char> exact{'x', 'y'};
  ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, exact.data(), 2, text("short"), nullptr), CS_SUCCEED);
  EXPECT_EQ(find("xyz"), "(miss)") << "a shorter key is not read past its end";
  EXPECT_EQ(find("xy"), "short");
}

TEST_F(OpenTest, OtherOperations) {
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_NULL_POINTER_CHECK("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_PRINT));
  EXPECT_EQ(op(list, LM_OP_REPLACE), CS_FAIL);
  for (const CS_INT operation : {LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, 32, 33}) {
    EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, operation, "a"));
  }
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "A"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_REPLACE, "a", "B"), CS_SUCCEED);
  EXPECT_EQ(find("a"), "B");
  EXPECT_EQ(op(list, LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(walked, "B");
  ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
  EXPECT_ASSERTION("lmlistop_hash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
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

// ---- node pools ----

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

TEST_F(LinkedTest, PoolSizes) {
  const auto resize = [&](CS_INT size) {
    return lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr);
  };
  EXPECT_EQ(resize(-1), CS_FAIL);
  EXPECT_EQ(resize(6), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 6U);
  EXPECT_EQ(resize(6), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 6U);
  EXPECT_EQ(resize(4), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 4U);
  EXPECT_EQ(list->free_nodes, 4);
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(insert("x", LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(resize(2), CS_SUCCEED); // there is only one to release
  EXPECT_EQ(pool_length(list), 0U);
  EXPECT_EQ(list->free_nodes, 0);
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 2U);
  // Clear goes back to the context's size.
  defaults(10, 3);
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, LM_HDL_MAX_POOLSIZE, nullptr, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(pool_length(list), 3U);
  EXPECT_ASSERTION("lmutils.cpp", CS_FAIL, lm__api_dlink_mpool_init(list, 3));
}

// Deliberate: a pool that fails to grow gives up all its nodes and leaves the count as it was. The
// list goes on all the same.
TEST_F(LinkedTest, FailedGrowthOfThePool) {
  CS_INT size = 3;
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr), CS_SUCCEED);
  size = 8;
  for (const size_t nth : {1U, 3U, 5U}) {
    arena.fail(nth);
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr),
              CS_MEM_ERROR);
    EXPECT_EQ(list->hdlprop->max_poolsize, 3);
    EXPECT_EQ(list->free_nodes, 3);
    EXPECT_EQ(pool_length(list), 0U);
  }
  for (int i = 0; i < 5; ++i)
    ASSERT_EQ(insert("x", LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(all(), "xxxxx");
  for (int i = 0; i < 5; ++i)
    ASSERT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_SUCCEED);
}

TEST_F(ListTest, FailedInsertionsLeaveTheListAsItWas) {
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    CS_VOID *key = kind == LM_DLINK ? nullptr : text("key");
    const CS_INT key_size = kind == LM_DLINK ? LM_OP_LAST : 3;
    for (int i = 0; i < 3; ++i) {
      void *const before = list->cur_ptr;
      CS_VOID *out = text("untouched"), *place = &out;
      arena.fail(1);
      EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, key, key_size, text("d"), &place), CS_MEM_ERROR);
      EXPECT_EQ(place, &out);
      EXPECT_EQ(list->cur_ptr, before);
      EXPECT_EQ(load(list), i);
      EXPECT_EQ(lm_list_op(list, LM_OP_INSERT, key, key_size, text("d"), nullptr), CS_SUCCEED);
    }
  }
}

// ---- resizing ----

TEST_F(ChainedTest, ResizeLosesAllButTheHeads) {
  const auto keys = keys_in_bucket(2, 3);
  for (const auto &key : keys)
    ASSERT_EQ(op(list, LM_OP_INSERT, key.c_str(), key.c_str()), CS_SUCCEED);
  const auto alone = keys_in_bucket(5, 1);
  ASSERT_EQ(op(list, LM_OP_INSERT, alone[0].c_str(), "alone"), CS_SUCCEED);
  CS_INT size = 100;
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(info()->table_size, 100);
  EXPECT_EQ(load(list), 4);
  // Deliberate: a chain of three leaves three copies of its head.
  EXPECT_EQ(find(keys[0]), "(miss)");
  EXPECT_EQ(find(keys[1]), "(miss)");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(find(keys[2]), keys[2]);
    EXPECT_EQ(op(list, LM_OP_DELETE, keys[2].c_str()), CS_SUCCEED);
  }
  EXPECT_EQ(find(keys[2]), "(miss)");
  EXPECT_EQ(load(list), 1);
  // Clear goes back to the context's size.
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, LM_HDL_MAX_TABLESIZE, nullptr, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(info()->table_size, 10);
  EXPECT_EQ(load(list), 1);
  for (CS_INT none : {0, -5})
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &none, 0, nullptr), CS_FAIL);
  EXPECT_EQ(info()->table_size, 10);
  EXPECT_EQ(list->hdlprop->max_tablesize, 10);
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

TEST_F(ListTest, ResizeOfOtherKinds) {
  CS_INT size = 20;
  for (const CS_INT kind : {LM_DLINK, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr), CS_FAIL);
    EXPECT_EQ(list->hdlprop->max_tablesize, 10);
  }
}

// Every allocation of a resize fails in turn: the old table stands, nothing leaks, and the retry
// succeeds. With a node pool the pool stays consistent.
TEST_F(ListTest, FailedResize) {
  for (const CS_INT kind : {LM_CHASH, LM_DHASH})
    for (const CS_INT poolsize : {0, 4}) {
      SCOPED_TRACE(testing::Message() << "kind " << kind << ", pool " << poolsize);
      defaults(10, poolsize);
      for (size_t nth = 1;; ++nth) {
        LM_HANDLE *const list = make(kind);
        for (const char *const key : {"a", "b", "c", "d", "e", "f"})
          ASSERT_EQ(op(list, LM_OP_INSERT, key, key), CS_SUCCEED);
        const size_t blocks = arena.live.size();
        const CS_INT free_nodes = list->free_nodes;
        void *const cursor = list->cur_ptr;
        CS_INT size = 17;
        arena.failures = 0;
        arena.fail(nth);
        const CS_RETCODE result =
            lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr);
        arena.fail(0);
        if (arena.failures != 0) {
          ASSERT_EQ(result, CS_MEM_ERROR);
          ASSERT_EQ(list->hdlprop->max_tablesize, 10);
          ASSERT_EQ(load(list), 6);
          ASSERT_EQ(list->cur_ptr, cursor);
          ASSERT_EQ(arena.live.size(),
                    blocks + pool_length(list) - static_cast<size_t>(free_nodes));
          for (const char *const key : {"a", "b", "c", "d", "e", "f"})
            ASSERT_EQ(op(list, LM_OP_SEARCH, key), CS_SUCCEED);
          ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &size, 0, nullptr),
                    CS_SUCCEED);
        }
        ASSERT_EQ(load(list), 6);
        ASSERT_EQ(static_cast<size_t>(list->free_nodes), pool_length(list));
        ASSERT_LE(list->free_nodes, list->hdlprop->max_poolsize);
        ASSERT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
        ASSERT_EQ(arena.live.size(), 2U);
        if (arena.failures == 0)
          break;
      }
    }
}

// ---- properties ----

TEST_F(ListTest, PropertiesOfAList) {
  defaults(7, 3);
  LM_HANDLE *const list = make(LM_CHASH, "name");
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  const struct {
    CS_INT property, value;
    bool get_only;
  } rows[] = {{LM_HDL_LIST_TYPE, LM_CHASH, true},
              {LM_HDL_MAX_TABLESIZE, 7, false},
              {LM_HDL_MAX_POOLSIZE, 3, false},
              {LM_HDL_HANDLE_LOAD, 1, true}};
  for (const auto &row : rows) {
    CS_INT value = -1, outlen = -1;
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, row.property, &value, CS_UNUSED, &outlen),
              CS_SUCCEED);
    EXPECT_EQ(value, row.value);
    EXPECT_EQ(outlen, 4);
    if (row.get_only) {
      EXPECT_ASSERTION("lmlistpr.cpp", CS_FAIL,
                       lm_list_prop(list, LM_ACTION_SET, row.property, &value, CS_UNUSED, &outlen));
      EXPECT_EQ(outlen, 0);
      EXPECT_ASSERTION(
          "lmlistpr.cpp", CS_FAIL,
          lm_list_prop(list, LM_ACTION_CLEAR, row.property, &value, CS_UNUSED, nullptr));
      EXPECT_ASSERTION("lmprop.h", CS_FAIL,
                       lm_list_prop(list, LM_ACTION_GET, row.property, &value, 4, nullptr));
    }
    EXPECT_NULL_POINTER_CHECK(
        "lmprop.h", CS_FAIL,
        lm_list_prop(list, LM_ACTION_GET, row.property, nullptr, CS_UNUSED, nullptr));
  }
  LM_CONTEXT *found = nullptr;
  CS_INT outlen = -1;
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, LM_HDL_CONTEXT_ADDR, &found, CS_UNUSED, &outlen),
            CS_SUCCEED);
  EXPECT_EQ(found, context);
  EXPECT_EQ(outlen, 4);
  for (const CS_INT property : {0, 4, 7, 13, -1}) {
    EXPECT_ASSERTION("lmlistpr.cpp", CS_FAIL,
                     lm_list_prop(list, LM_ACTION_GET, property, &outlen, CS_UNUSED, nullptr));
  }
  for (const CS_INT action : {0, 32, 36}) {
    EXPECT_ASSERTION("lmlistpr.cpp", CS_FAIL,
                     lm_list_prop(list, action, LM_HDL_LIST_TYPE, &outlen, CS_UNUSED, nullptr));
  }
  EXPECT_NULL_POINTER_CHECK(
      "lmlistpr.cpp", CS_FAIL,
      lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, nullptr, 0, nullptr));
}

CS_INT compare(CS_VOID *, CS_VOID *) {
  ADD_FAILURE() << "keys are compared as bytes";
  return 0;
}

TEST_F(ListTest, FunctionsOfAList) {
  LM_HANDLE *const list = make(LM_CHASH);
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  CS_PRINT_FUNC print = nullptr;
  CS_COMPARE_FUNC comparison = compare;
  CS_INT outlen = 0;
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, LM_HDL_PRINT_FUNC, &print, 0, &outlen), CS_SUCCEED);
  EXPECT_EQ(print, note);
  EXPECT_EQ(outlen, 4);
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_COMP_FUNC, &comparison, 0, nullptr),
            CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_SEARCH, "a"), CS_SUCCEED);
  comparison = nullptr;
  EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, LM_HDL_COMP_FUNC, &comparison, 0, &outlen),
            CS_SUCCEED);
  EXPECT_EQ(comparison, compare);
  for (const CS_INT property : {LM_HDL_PRINT_FUNC, LM_HDL_COMP_FUNC})
    EXPECT_EQ(lm_list_prop(list, LM_ACTION_CLEAR, property, nullptr, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(list->hdlprop->print_func, nullptr);
  EXPECT_EQ(list->hdlprop->comp_func, nullptr);
}

TEST_F(ListTest, NamesFitOrAreNotCopied) {
  const struct {
    const char *name;
    CS_INT length;
    std::string delivered;
  } rows[] = {{"abc", CS_LEN_NULLTERM, std::string("abc", 4)},
              {"abcdef", 3, std::string("abc", 4)},
              {nullptr, 0, std::string("", 1)}};
  for (const auto &row : rows) {
    LM_HANDLE *list = nullptr;
    ASSERT_EQ(lm_list_alloc(context, LM_DLINK, chars(row.name), row.length, &list), CS_SUCCEED);
    const auto needed = static_cast<CS_INT>(row.delivered.size());
    for (CS_INT size = -1; size <= needed + 2; ++size) {
      zrvtest::GuardedBuffer buffer(size < 0 ? 0 : static_cast<size_t>(size));
      CS_INT outlen = -1;
      EXPECT_EQ(lm_list_prop(list, LM_ACTION_GET, LM_HDL_HANDLE_NAME, buffer.data(), size, &outlen),
                CS_SUCCEED);
      EXPECT_EQ(outlen, needed);
      if (size < needed) {
        EXPECT_TRUE(buffer.is_untouched());
      } else {
        EXPECT_EQ(buffer.contents(row.delivered.size()), row.delivered);
        EXPECT_TRUE(buffer.is_untouched(row.delivered.size()));
      }
      CS_INT current_length = -1;
      EXPECT_EQ(lm_property(context, LM_ACTION_GET, LM_CXT_CURRENT_HANDLENAME, buffer.data(), size,
                            &current_length),
                CS_SUCCEED);
      EXPECT_EQ(current_length, needed);
    }
    EXPECT_ASSERTION("lmlistpr.cpp", CS_FAIL,
                     lm_list_prop(list, LM_ACTION_SET, LM_HDL_HANDLE_NAME, chars("x"), 1, nullptr));
  }
}

TEST_F(ListTest, PropertiesOfAContext) {
  const struct {
    CS_INT property, initial, set, cleared;
  } rows[] = {{LM_CXT_LIST_TYPE, 13, LM_STACK, 13},
              {LM_CXT_MAX_TABLESIZE, 10, 77, 10},
              {LM_CXT_MAX_POOLSIZE, 0, 5, 0}};
  for (const auto &row : rows) {
    const auto value = [&] {
      CS_INT got = -1, outlen = -1;
      EXPECT_EQ(lm_property(context, LM_ACTION_GET, row.property, &got, 0, &outlen), CS_SUCCEED);
      EXPECT_EQ(outlen, 4);
      return got;
    };
    EXPECT_EQ(value(), row.initial);
    CS_INT wanted = row.set;
    EXPECT_EQ(lm_property(context, LM_ACTION_SET, row.property, &wanted, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(value(), row.set);
    EXPECT_EQ(lm_property(context, LM_ACTION_CLEAR, row.property, nullptr, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(value(), row.cleared);
  }
  CS_INT value = -1;
  EXPECT_EQ(lm_property(context, LM_ACTION_GET, LM_CXT_VERSION, &value, CS_UNUSED, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(value, 1100);
  make(LM_DLINK);
  EXPECT_EQ(lm_property(context, LM_ACTION_GET, LM_CXT_CONTEXT_LOAD, &value, CS_UNUSED, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(value, 1);
  for (const CS_INT property : {LM_CXT_VERSION, LM_CXT_CONTEXT_LOAD, LM_CXT_CURRENT_HANDLEADDR}) {
    CS_VOID *place = nullptr;
    for (const CS_INT action : {LM_ACTION_SET, LM_ACTION_CLEAR}) {
      EXPECT_ASSERTION("lmprop.cpp", CS_FAIL,
                       lm_property(context, action, property, &place, CS_UNUSED, nullptr));
    }
    EXPECT_ASSERTION("lmprop.h", CS_FAIL,
                     lm_property(context, LM_ACTION_GET, property, &place, 4, nullptr));
  }
  for (const CS_INT property : {0, 8, -1}) {
    EXPECT_ASSERTION("lmprop.cpp", CS_FAIL,
                     lm_property(context, LM_ACTION_GET, property, &value, 0, nullptr));
  }
  EXPECT_ASSERTION("lmprop.cpp", CS_FAIL,
                   lm_property(context, 36, LM_CXT_LIST_TYPE, &value, 0, nullptr));
}

TEST_F(ListTest, TheCurrentList) {
  const auto address = [&] {
    LM_HANDLE *handle = nullptr;
    CS_INT outlen = 0;
    EXPECT_EQ(
        lm_property(context, LM_ACTION_GET, LM_CXT_CURRENT_HANDLEADDR, &handle, CS_UNUSED, &outlen),
        CS_SUCCEED);
    EXPECT_EQ(outlen, 4);
    return handle;
  };
  const auto choose = [&](const char *name, CS_INT length) {
    return lm_property(context, LM_ACTION_SET, LM_CXT_CURRENT_HANDLENAME, chars(name), length,
                       nullptr);
  };
  EXPECT_EQ(address(), nullptr);
  LM_HANDLE *const alpha = make(LM_DLINK, "alpha");
  LM_HANDLE *const beta = make(LM_DLINK, "beta");
  LM_HANDLE *const alps = make(LM_DLINK, "alps");
  EXPECT_EQ(address(), alps);
  EXPECT_EQ(choose("beta", 4), CS_SUCCEED);
  EXPECT_EQ(address(), beta);
  EXPECT_EQ(choose("al", 2), CS_SUCCEED);
  EXPECT_EQ(address(), alps) << "the first in list order";
  EXPECT_EQ(choose("alpha", 5), CS_SUCCEED);
  EXPECT_EQ(address(), alpha);
  for (const CS_INT length : {20, -1}) {
    EXPECT_ASSERTION("lmprop.cpp", CS_FAIL, choose("betaxxxxxxxxxxxxxxxxxxxx", length));
  }
  EXPECT_EQ(address(), alpha);
  EXPECT_EQ(lm_property(context, LM_ACTION_CLEAR, LM_CXT_CURRENT_HANDLENAME, nullptr, 0, nullptr),
            CS_SUCCEED);
  EXPECT_EQ(address(), alps);
  // Dropping another list changes nothing, dropping the current one takes the newest.
  EXPECT_EQ(choose("alpha", 5), CS_SUCCEED);
  EXPECT_EQ(lm_list_drop(beta, LM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(address(), alpha);
  EXPECT_EQ(choose("alps", 4), CS_SUCCEED);
  EXPECT_EQ(lm_list_drop(alps, LM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(address(), alpha);
  EXPECT_STREQ(context->cxtprop->cur_handlename, "alpha");
  EXPECT_EQ(lm_list_drop(alpha, LM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(address(), nullptr);
  EXPECT_EQ(context->cxtprop->cur_handlename, nullptr);
}

// ---- drops ----

TEST_F(ListTest, Drops) {
  defaults(10, 2);
  for (const CS_INT kind : {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const list = make(kind);
    for (const CS_INT option : {0, 36, 300}) {
      EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(list, option));
    }
    char data[] = "data";
    for (int i = 0; i < 4; ++i)
      ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, kind == LM_DLINK ? nullptr : text("key"),
                           kind == LM_DLINK ? LM_OP_LAST : 3, data, nullptr),
                CS_SUCCEED);
    EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_FAIL);
    EXPECT_EQ(load(list), 4);
    const size_t unstamped = arena.unstamped;
    EXPECT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
    EXPECT_STREQ(data, "data");
    EXPECT_EQ(arena.live.size(), 2U);
    // Every record is stamped; a table is none.
    EXPECT_EQ(arena.unstamped - unstamped, kind == LM_CHASH || kind == LM_DHASH ? 1U : 0U);
  }
  EXPECT_EQ(context->cxtprop->context_load, 0);
}

TEST_F(ListTest, UseAfterRelease) {
  LM_HANDLE *const list = make(LM_DLINK);
  const LM_NODE_STATE states[] = {list->state, list->hdlprop->state};
  for (LM_NODE_STATE *const state : {&list->state, &list->hdlprop->state}) {
    const LM_NODE_STATE saved = *state;
    *state = LM_RELEASED;
    CS_INT value = 0;
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(list, LM_OP_CURRENT));
    EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(list, LM_DROP_FORCE));
    EXPECT_ASSERTION(
        "lmlistpr.cpp", CS_FAIL,
        lm_list_prop(list, LM_ACTION_GET, LM_HDL_LIST_TYPE, &value, CS_UNUSED, nullptr));
    *state = saved;
  }
  EXPECT_EQ(list->state, states[0]);
  for (const CS_INT kind : {LM_DLINK, LM_QUEUE, LM_STACK, LM_CHASH, LM_DHASH}) {
    LM_HANDLE *const other = make(kind);
    auto *const state =
        static_cast<LM_NODE_STATE *>(other->list_state); // every kind's first member
    *state = LM_RELEASED;
    const auto unit = kind == LM_CHASH || kind == LM_DHASH ? "lmlistop_hash.cpp" : "lmlistop.cpp";
    EXPECT_ASSERTION(unit, CS_FAIL, op(other, LM_OP_CURRENT));
    *state = LM_INITIALIZED;
  }
  for (LM_NODE_STATE *const state : {&context->state, &context->cxtprop->state}) {
    const LM_NODE_STATE saved = *state;
    *state = LM_RELEASED;
    LM_HANDLE *handle = nullptr;
    CS_INT value = 0;
    EXPECT_ASSERTION("lmexit.cpp", CS_FAIL, lm_exit(context, LM_EXIT_FORCE));
    EXPECT_ASSERTION("lmlistal.cpp", CS_FAIL,
                     lm_list_alloc(context, LM_DLINK, nullptr, 0, &handle));
    EXPECT_ASSERTION("lmprop.cpp", CS_FAIL,
                     lm_property(context, LM_ACTION_GET, LM_CXT_LIST_TYPE, &value, 0, nullptr));
    *state = saved;
  }
  // A handle that its context does not know.
  LM_HANDLE *const first = context->first_handle;
  context->first_handle = nullptr;
  EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(list, LM_DROP_FORCE));
  context->first_handle = first;
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
