// Contexts and lists of every kind: how they are made and dropped.
#include <functional>

#include "list_fixture.h"
#include "zrvcomn/csintrn.h"

namespace {

using namespace zrvtest;

constexpr CS_INT every_kind[] = {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE, LM_STACK};

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
  // A drop that fails stops the walk. It leaves the list as it was.
  other->hdlprop->handle_load = 1;
  CS_RETCODE result = CS_SUCCEED;
  EXPECT_EQ(catch_check([&] { result = lm_exit(context, LM_EXIT_FORCE); }).signals, 1);
  EXPECT_EQ(result, CS_FAIL);
  EXPECT_EQ(context->first_handle, other);
  other->hdlprop->handle_load = 0;
}

// ---- making lists ----

TEST_F(ListTest, ListDefaults) {
  defaults(7, 3);
  for (const CS_INT kind : every_kind) {
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
  for (const CS_INT kind : every_kind)
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

// ---- drops ----

TEST_F(ListTest, Drops) {
  defaults(10, 2);
  for (const CS_INT kind : every_kind) {
    LM_HANDLE *const list = make(kind);
    for (const CS_INT option : {0, 36, 300}) {
      EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(list, option));
    }
    char data[] = "data";
    for (int i = 0; i < 4; ++i)
      ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, kind == LM_DLINK ? nullptr : text("key"),
                           kind == LM_DLINK ? LM_OP_LAST : 3, data, nullptr),
                CS_SUCCEED);
    for (const CS_INT load : {-1, 4}) {
      list->hdlprop->handle_load = load;
      EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_FAIL);
    }
    EXPECT_EQ(load(list), 4);
    const size_t stamped = arena.stamped, unstamped = arena.unstamped;
    EXPECT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
    EXPECT_STREQ(data, "data");
    EXPECT_EQ(arena.live.size(), 2U);
    // Every record is cleared and stamped: handle, properties, kind, nodes. A table is no record.
    EXPECT_EQ(arena.stamped - stamped, kind == LM_DHASH ? 13U : 7U);
    EXPECT_EQ(arena.unstamped - unstamped, kind == LM_CHASH || kind == LM_DHASH ? 1U : 0U);
    EXPECT_EQ(arena.uncleared, 0U);
  }
  EXPECT_EQ(context->cxtprop->context_load, 0);
  EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_SUCCEED);
  context = nullptr;
  EXPECT_EQ(arena.uncleared, 0U);
}

// Names are cleared before they go, whole.
TEST_F(ListTest, NamesAreCleared) {
  LM_HANDLE *const list = make(LM_DLINK, "name");
  EXPECT_EQ(lm_list_drop(list, LM_DROP_NORMAL), CS_SUCCEED);
  EXPECT_EQ(probe.last_released(), std::string(sizeof "name", '\0'));
  EXPECT_EQ(lm_exit(context, LM_EXIT_NORMAL), CS_SUCCEED);
  EXPECT_EQ(probe.last_released(), std::string(sizeof "context", '\0'));
  context = nullptr;
}

// A drop finds out that something is wrong before it releases anything.
TEST_F(ListTest, DropsCheckFirst) {
  defaults(10, 2);
  for (const CS_INT kind : every_kind) {
    LM_HANDLE *const list = make(kind);
    ASSERT_EQ(lm_list_op(list, LM_OP_INSERT, kind == LM_DLINK ? nullptr : text("key"),
                         kind == LM_DLINK ? LM_OP_LAST : 3, text("data"), nullptr),
              CS_SUCCEED);
    const auto blocks = arena.live;
    const auto refuses = [&](const char *what) {
      SCOPED_TRACE(testing::Message() << "kind " << kind << ", " << what);
      EXPECT_ASSERTION("lmlistdr.cpp", CS_FAIL, lm_list_drop(list, LM_DROP_FORCE));
      EXPECT_EQ(arena.live, blocks);
      EXPECT_EQ(context->first_handle, list);
    };
    for (const CS_INT wrong : {0, 2, -1}) {
      list->hdlprop->handle_load = wrong;
      refuses("load");
    }
    list->hdlprop->handle_load = 1;
    context->cxtprop->context_load = 0;
    refuses("load of the context");
    context->cxtprop->context_load = 1;
    context->cxtprop->state = LM_RELEASED;
    refuses("properties of the context");
    context->cxtprop->state = LM_INITIALIZED;
    context->state = LM_RELEASED;
    refuses("context");
    context->state = LM_INITIALIZED;
    if (kind != LM_DHASH) {
      list->hdlprop->max_poolsize = 0;
      refuses("pool");
      list->hdlprop->max_poolsize = 2;
    }
    auto *const state = static_cast<LM_NODE_STATE *>(list->list_state);
    *state = LM_RELEASED;
    refuses("record of the kind");
    *state = LM_INITIALIZED;
    EXPECT_EQ(context->cxtprop->cur_handleaddr, list);
    EXPECT_EQ(load(list), 1);
    EXPECT_EQ(contents(list).size(), kind == LM_DHASH ? 10U : 1U);
    ASSERT_EQ(lm_list_drop(list, LM_DROP_FORCE), CS_SUCCEED);
    EXPECT_EQ(arena.live.size(), 2U);
  }
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
  for (const CS_INT kind : every_kind) {
    LM_HANDLE *const other = make(kind);
    auto *const state =
        static_cast<LM_NODE_STATE *>(other->list_state); // every kind's first member
    *state = LM_RELEASED;
    EXPECT_ASSERTION("lmlistop.cpp", CS_FAIL, op(other, LM_OP_CURRENT));
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

// ---- the trace ----

// What goes out last is the code that the exported function returns.
TEST_F(ListTest, EveryExitIsTraced) {
  const auto exits = [&](const char *name, const char *unit, const std::function<void()> &call) {
    Com_trace_enable = 3;
    const std::string output = capture_stdout(call);
    Com_trace_enable = 1;
    const std::string expected = std::string("(") + name + ") file " + unit + ", line ";
    const size_t last = output.rfind('\n', output.size() - 2) + 1; // 0 where there is but one line
    EXPECT_EQ(output.substr(last, expected.size()), expected) << output;
  };
  LM_CONTEXT *other = nullptr;
  LM_HANDLE *list = nullptr;
  CS_INT value = 7;
  exits("CS_SUCCEED", "lminit.cpp", [&] { lm_initlm(1100, nullptr, 0, &other); });
  exits("CS_SUCCEED", "lmexit.cpp", [&] { lm_exit(other, LM_EXIT_NORMAL); });
  exits("CS_FAIL", "lmexit.cpp", [&] { lm_exit(nullptr, LM_EXIT_NORMAL); });
  arena.fail(1);
  exits("CS_FAIL", "lminit.cpp",
        [&] { lm_initlm_ex(1100, nullptr, 0, &other, Arena::take, Arena::give_back, &arena); });
  arena.fail(1);
  exits("CS_MEM_ERROR", "lmlistal.cpp",
        [&] { lm_list_alloc(context, LM_CHASH, nullptr, 0, &list); });
  exits("CS_FAIL", "lmlistal.cpp", [&] { lm_list_alloc(context, 15, nullptr, 0, &list); });
  exits("CS_SUCCEED", "lmlistal.cpp", [&] { lm_list_alloc(context, LM_CHASH, nullptr, 0, &list); });
  exits("CS_SUCCEED", "lmlistop.cpp", [&] { op(list, LM_OP_INSERT, "key", "data"); });
  exits("34", "lmlistop.cpp", [&] { op(list, LM_OP_SEARCH, "no key"); });
  exits("CS_FAIL", "lmlistop.cpp", [&] { op(list, LM_OP_PRINT); });
  exits("CS_FAIL", "lmlistop.cpp", [&] { op(nullptr, LM_OP_PRINT); });
  catch_check([&] { exits("CS_FAIL", "lmlistop.cpp", [&] { op(list, LM_OP_NEXT); }); });
  exits("CS_SUCCEED", "lmlistpr.cpp",
        [&] { lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &value, 0, nullptr); });
  exits("CS_FAIL", "lmlistpr.cpp",
        [&] { lm_list_prop(nullptr, LM_ACTION_GET, LM_HDL_MAX_TABLESIZE, &value, 0, nullptr); });
  exits("CS_SUCCEED", "lmprop.cpp",
        [&] { lm_property(context, LM_ACTION_CLEAR, LM_CXT_MAX_POOLSIZE, nullptr, 0, nullptr); });
  exits("CS_FAIL", "lmprop.cpp",
        [&] { lm_property(nullptr, LM_ACTION_CLEAR, LM_CXT_MAX_POOLSIZE, nullptr, 0, nullptr); });
  exits("CS_FAIL", "lmlistdr.cpp", [&] { lm_list_drop(list, LM_DROP_NORMAL); });
  exits("CS_SUCCEED", "lmlistdr.cpp", [&] { lm_list_drop(list, LM_DROP_FORCE); });
}

} // namespace
