// The linked list: positions, cursors, deletions, walks.
#include "list_fixture.h"

namespace {

using namespace zrvtest;

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
    EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, insert("x", position));
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
  EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, step(LM_OP_DELETE));
  EXPECT_EQ(step(LM_OP_NEXT), CS_FAIL);
  EXPECT_EQ(step(LM_OP_PREV), CS_FAIL);
  EXPECT_EQ(step(LM_OP_REPLACE), CS_FAIL);
  EXPECT_EQ(step(LM_OP_FIRST), CS_SUCCEED);
  EXPECT_EQ(got(), "(null)");
  EXPECT_EQ(step(LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(got(), "(null)");
}

TEST_F(LinkedTest, DeletionWithoutALoad) {
  ASSERT_EQ(insert("a", LM_OP_LAST), CS_SUCCEED);
  for (const CS_INT load : {0, -1}) {
    list->hdlprop->handle_load = load;
    EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, step(LM_OP_DELETE));
  }
  list->hdlprop->handle_load = 1;
  EXPECT_EQ(all(), "a");
  EXPECT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
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

// Nor does it move the list's cursor where that stands on another entry.
TEST_F(LinkedTest, DeletionElsewhere) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  DLinkNode *cursor = nullptr;
  ASSERT_EQ(step(LM_OP_FIRST, &cursor), CS_SUCCEED);
  ASSERT_EQ(step(LM_OP_DELETE, &cursor), CS_SUCCEED);
  EXPECT_EQ(got(), "b");
  EXPECT_EQ(current(list), "c");
}

// A cursor on an entry that is gone is reported by the operations that start at it. The others take
// no notice, so a walk can begin anew with the same variable.
TEST_F(LinkedTest, StaleCursor) {
  CS_INT size = 4;
  ASSERT_EQ(lm_list_prop(list, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr), CS_SUCCEED);
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  DLinkNode *stale = nullptr;
  ASSERT_EQ(step(LM_OP_LAST, &stale), CS_SUCCEED);
  ASSERT_EQ(step(LM_OP_DELETE), CS_SUCCEED);
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  DLinkNode *cursor = stale;
  for (const CS_INT operation :
       {LM_OP_DELETE, LM_OP_REPLACE, LM_OP_NEXT, LM_OP_PREV, LM_OP_CURRENT, LM_OP_PRINT}) {
    EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, step(operation, &cursor));
    EXPECT_EQ(got(), "untouched");
  }
  for (const CS_INT position : {LM_POS_BEFORE, LM_POS_AFTER}) {
    EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, insert("x", position, &cursor));
  }
  EXPECT_EQ(cursor, stale);
  EXPECT_EQ(all(), "ab");

  EXPECT_EQ(step(LM_OP_PRINTALL, &cursor), CS_SUCCEED);
  EXPECT_EQ(walked, "ab");
  EXPECT_EQ(cursor, stale) << "a walk over all leaves it where it is";
  EXPECT_EQ(got(), "(null)") << "and it has no data";
  EXPECT_EQ(step(LM_OP_FIRST, &cursor), CS_SUCCEED);
  EXPECT_EQ(got(), "a");
  cursor = stale;
  EXPECT_EQ(step(LM_OP_LAST, &cursor), CS_SUCCEED);
  EXPECT_EQ(got(), "b");
  for (const CS_INT position : {LM_OP_FIRST, LM_OP_LAST}) {
    cursor = stale;
    EXPECT_EQ(insert("x", position, &cursor), CS_SUCCEED);
    EXPECT_STREQ(static_cast<const char *>(cursor->data), "x");
  }
  EXPECT_EQ(all(), "xabx");
}

// Not even the variable is read: it may point anywhere.
TEST_F(LinkedTest, OperationsThatNeedNoCursor) {
  auto *const nowhere = reinterpret_cast<DLinkNode *>(8);
  CS_PRINT_FUNC function = note;
  DLinkNode *cursor = nowhere;
  EXPECT_EQ(insert("b", LM_POS_BEFORE, &cursor), CS_SUCCEED) << "the first entry";
  for (const CS_INT position : {LM_OP_FIRST, LM_OP_LAST}) {
    cursor = nowhere;
    EXPECT_EQ(insert(position == LM_OP_FIRST ? "a" : "c", position, &cursor), CS_SUCCEED);
  }
  for (const CS_INT operation : {LM_OP_FIRST, LM_OP_LAST}) {
    cursor = nowhere;
    EXPECT_EQ(step(operation, &cursor), CS_SUCCEED);
    EXPECT_EQ(got(), operation == LM_OP_FIRST ? "a" : "c");
  }
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  for (const CS_INT operation : {LM_OP_APPLY, LM_OP_PRINTALL}) {
    cursor = nowhere;
    walked.clear();
    out = text("untouched");
    EXPECT_EQ(lm_list_op(list, operation, &cursor, 0, &function, &out), CS_SUCCEED);
    EXPECT_EQ(walked, "abc");
    EXPECT_EQ(got(), "(null)") << "no entry, no data";
    EXPECT_EQ(cursor, nowhere);
  }
}

TEST_F(LinkedTest, NoKeys) {
  EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, step(LM_OP_SEARCH));
  for (const CS_INT operation : {0, 19, 32, 33}) {
    EXPECT_ASSERTION("lmlistop_dlink.cpp", CS_FAIL, step(operation));
  }
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
  EXPECT_EQ(step(LM_OP_PRINTALL), CS_FAIL);
  EXPECT_EQ(walked, "ab");
  EXPECT_EQ(got(), "untouched");
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_FAIL);
}

// What the function returns decides: CS_FAIL is the result, anything else is success.
TEST_F(LinkedTest, ResultsOfPrinting) {
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_PRINT), CS_FAIL) << "no cursor";
  ASSERT_EQ(insert("a", LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(step(LM_OP_PRINT), CS_SUCCEED);
  EXPECT_EQ(got(), "a");
  stop_at = "a";
  EXPECT_EQ(step(LM_OP_PRINT), CS_FAIL);
  EXPECT_EQ(got(), "untouched");
  for (const CS_PRINT_FUNC other : {+[](CS_VOID *) -> CS_RETCODE { return CS_MEM_ERROR; },
                                    +[](CS_VOID *) -> CS_RETCODE { return 7; }}) {
    ASSERT_EQ(set_print(list, other), CS_SUCCEED);
    EXPECT_EQ(step(LM_OP_PRINT), CS_SUCCEED);
    EXPECT_EQ(step(LM_OP_PRINTALL), CS_SUCCEED);
  }
}

// A walk over all delivers the data of the cursor, which stays where it is.
TEST_F(LinkedTest, WalksLeaveTheCursor) {
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  DLinkNode *cursor = nullptr;
  CS_PRINT_FUNC function = note;
  for (const CS_INT operation : {LM_OP_PRINTALL, LM_OP_APPLY}) {
    ASSERT_EQ(set_print(list), CS_SUCCEED);
    const auto walk = [&](DLinkNode **own) {
      out = text("untouched");
      EXPECT_EQ(lm_list_op(list, operation, own, 0, &function, &out), CS_SUCCEED);
      return got();
    };
    EXPECT_EQ(walk(nullptr), "c");
    cursor = nullptr;
    EXPECT_EQ(walk(&cursor), "c") << "the cursor of the list";
    EXPECT_EQ(cursor, list->cur_ptr);
    ASSERT_EQ(step(LM_OP_FIRST, &cursor), CS_SUCCEED);
    EXPECT_EQ(walk(&cursor), "a");
    EXPECT_EQ(walked, "abcabcabc");
    EXPECT_EQ(current(list), "c");
  }
}

LM_HANDLE *shrinking;

// The function of a walk may delete the entry that it is called with, the current one, too.
TEST_F(LinkedTest, WalksThatDelete) {
  CS_PRINT_FUNC function = [](CS_VOID *) {
    EXPECT_EQ(op(shrinking, LM_OP_FIRST), CS_SUCCEED);
    return op(shrinking, LM_OP_DELETE);
  };
  shrinking = list;
  for (const char *const data : {"a", "b", "c"})
    ASSERT_EQ(insert(data, LM_OP_LAST), CS_SUCCEED);
  EXPECT_EQ(lm_list_op(list, LM_OP_APPLY, nullptr, 0, &function, &out), CS_SUCCEED);
  EXPECT_EQ(got(), "(null)");
  EXPECT_EQ(list->cur_ptr, nullptr);
  EXPECT_EQ(load(list), 0);
}

} // namespace
