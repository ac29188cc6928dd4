// Queue and stack.
#include "list_fixture.h"

namespace {

using namespace zrvtest;

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
    EXPECT_ASSERTION("lmlistop_queue.cpp", CS_FAIL, op(queue, operation));
  }
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(lm_list_op(queue, LM_OP_DELETE, nullptr, 0, nullptr, &out), CS_SUCCEED);
  EXPECT_EQ(out, nullptr);
  EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, op(queue, LM_OP_DELETE));
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
    EXPECT_ASSERTION("lmlistop_queue.cpp", CS_FAIL, op(stack, operation));
  }
}

} // namespace
