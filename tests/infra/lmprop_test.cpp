// The properties of lists and contexts, and the resizing of tables.
#include "guarded_buffer.h"
#include "list_fixture.h"

namespace {

using namespace zrvtest;

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
  for (const CS_INT buflen : {0, 4, 8, CS_LEN_NULLTERM}) {
    found = nullptr;
    EXPECT_ASSERTION(
        "lmprop.h", CS_FAIL,
        lm_list_prop(list, LM_ACTION_GET, LM_HDL_CONTEXT_ADDR, &found, buflen, &outlen));
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(outlen, 0);
  }
  // Neither can be changed.
  for (const CS_INT property : {LM_HDL_CONTEXT_ADDR, LM_HDL_HANDLE_NAME})
    for (const CS_INT action : {LM_ACTION_SET, LM_ACTION_CLEAR}) {
      EXPECT_ASSERTION("lmlistpr.cpp", CS_FAIL,
                       lm_list_prop(list, action, property, &found, CS_UNUSED, &outlen));
      EXPECT_EQ(list->hdlprop->context, context);
      EXPECT_STREQ(list->hdlprop->handle_name, "name");
      EXPECT_EQ(list->hdlprop->length, 5);
    }
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

// 0 unless something was delivered.
TEST_F(ListTest, LengthsOfContextProperties) {
  make(LM_DLINK, "name");
  CS_VOID *place = nullptr;
  const auto length = [&](CS_INT action, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                          CS_RETCODE result) {
    CS_INT outlen = -1;
    EXPECT_EQ(lm_property(context, action, property, buffer, buflen, &outlen), result) << property;
    return outlen;
  };
  for (const CS_INT property : {LM_CXT_LIST_TYPE, LM_CXT_MAX_TABLESIZE, LM_CXT_MAX_POOLSIZE,
                                LM_CXT_VERSION, LM_CXT_CONTEXT_LOAD, LM_CXT_CURRENT_HANDLEADDR})
    EXPECT_EQ(length(LM_ACTION_GET, property, &place, CS_UNUSED, CS_SUCCEED), 4);
  EXPECT_EQ(place, context->first_handle);
  char name[8];
  EXPECT_EQ(length(LM_ACTION_GET, LM_CXT_CURRENT_HANDLENAME, name, 8, CS_SUCCEED), 5);
  EXPECT_EQ(length(LM_ACTION_GET, LM_CXT_CURRENT_HANDLENAME, name, 4, CS_SUCCEED), 5);
  CS_INT value = 9;
  for (const CS_INT property : {LM_CXT_MAX_TABLESIZE, LM_CXT_MAX_POOLSIZE}) {
    EXPECT_EQ(length(LM_ACTION_SET, property, &value, CS_UNUSED, CS_SUCCEED), 0);
    EXPECT_EQ(length(LM_ACTION_CLEAR, property, nullptr, CS_UNUSED, CS_SUCCEED), 0);
  }
  EXPECT_EQ(length(LM_ACTION_SET, LM_CXT_CURRENT_HANDLENAME, name, 4, CS_SUCCEED), 0);
  zrvtest::catch_check([&] {
    EXPECT_EQ(length(LM_ACTION_SET, LM_CXT_VERSION, &value, CS_UNUSED, CS_FAIL), 0);
    EXPECT_EQ(length(LM_ACTION_GET, LM_CXT_VERSION, &value, 4, CS_FAIL), 0);
    EXPECT_EQ(length(LM_ACTION_GET, LM_CXT_VERSION, nullptr, CS_UNUSED, CS_FAIL), 0);
    EXPECT_EQ(length(LM_ACTION_GET, 8, &value, CS_UNUSED, CS_FAIL), 0);
    EXPECT_EQ(length(36, LM_CXT_VERSION, &value, CS_UNUSED, CS_FAIL), 0);
    EXPECT_EQ(length(LM_ACTION_SET, LM_CXT_MAX_POOLSIZE, nullptr, 0, CS_FAIL), 0);
  });
  CS_INT outlen = -1;
  EXPECT_EQ(lm_property(nullptr, LM_ACTION_GET, LM_CXT_VERSION, &value, CS_UNUSED, &outlen),
            CS_FAIL);
  EXPECT_EQ(outlen, 0);
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

} // namespace
