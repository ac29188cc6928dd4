// The chained hash table.
#include <climits>
#include <utility>

#include "list_fixture.h"

namespace {

using namespace zrvtest;

class ChainedTest : public TableTest {
protected:
  ChainedTest() { list = make(LM_CHASH); }
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
  EXPECT_ASSERTION("lmlistop_chash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, "b", "b"), CS_SUCCEED);
  list->cur_ptr = nullptr;
  EXPECT_ASSERTION("lmlistop_chash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  EXPECT_EQ(op(list, LM_OP_REPLACE), CS_FAIL);
  EXPECT_EQ(load(list), 2);
}

// What is deleted must be an entry, and there must be one by the count.
TEST_F(ChainedTest, DeletionOfWhatIsNoEntry) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "a"), CS_SUCCEED);
  auto *const node = static_cast<DLinkNode *>(list->cur_ptr);
  for (const LM_NODE_STATE state : {LM_UNSET, LM_INSERTED, LM_RELEASED, LM_UNINITIALIZED}) {
    node->state = state;
    EXPECT_ASSERTION("lmlistop_chash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
  }
  node->state = LM_SET;
  for (const CS_INT load : {0, -1}) {
    list->hdlprop->handle_load = load;
    EXPECT_ASSERTION("lmlistop_chash.cpp", CS_FAIL, op(list, LM_OP_DELETE));
    EXPECT_ASSERTION("lmlistop_chash.cpp", CS_FAIL, op(list, LM_OP_DELETE, "a"));
  }
  list->hdlprop->handle_load = 1;
  EXPECT_EQ(find("a"), "a");
  EXPECT_EQ(op(list, LM_OP_DELETE, "a"), CS_SUCCEED);
}

// Deliberate: a head that was deleted without its key stays out of the pool until its bucket is used
// again.
TEST_F(ChainedTest, AParkedHeadCountsAgainstThePool) {
  defaults(10, 1);
  list = make(LM_CHASH);
  const auto keys = keys_in_bucket(4, 1), others = keys_in_bucket(5, 1);
  ASSERT_EQ(op(list, LM_OP_INSERT, keys[0].c_str(), "x"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_DELETE), CS_SUCCEED);
  EXPECT_EQ(list->free_nodes, 0);
  EXPECT_EQ(find(others[0]), "(miss)");
  EXPECT_EQ(list->free_nodes, 0);
  const size_t allocations = arena.allocations;
  ASSERT_EQ(op(list, LM_OP_INSERT, others[0].c_str(), "y"), CS_SUCCEED);
  EXPECT_EQ(arena.allocations, allocations + 1);
  EXPECT_EQ(find(keys[0]), "(miss)");
  EXPECT_EQ(list->free_nodes, 1);
  EXPECT_EQ(load(list), 1);
}

TEST_F(ChainedTest, OtherOperations) {
  for (const CS_INT operation :
       {LM_OP_NEXT, LM_OP_PREV, LM_OP_FIRST, LM_OP_LAST, 0, LM_POS_BEFORE, LM_POS_AFTER}) {
    EXPECT_ASSERTION("lmtable.h", CS_FAIL, op(list, operation, "a"));
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
  // A failure stops before the next caption.
  for (const auto &[stop, output] : {std::pair{keys[0].c_str(), "\n***Chain empty***\n\nKeys:\n"},
                                     std::pair{"two", "\n***Chain empty***\n\nKeys:\n\nData:\n"}}) {
    stop_at = stop;
    EXPECT_EQ(zrvtest::capture_stdout([&] { EXPECT_EQ(op(list, LM_OP_PRINTALL), CS_FAIL); }),
              output);
  }
}

// The current entry is delivered by whatever succeeds, and by nothing else.
TEST_F(ChainedTest, WhatIsDelivered) {
  ASSERT_EQ(op(list, LM_OP_INSERT, "a", "A"), CS_SUCCEED);
  ASSERT_EQ(op(list, LM_OP_INSERT, "b", "B"), CS_SUCCEED);
  CS_PRINT_FUNC function = note;
  ASSERT_EQ(set_print(list), CS_SUCCEED);
  const auto delivers = [&](CS_INT operation, const char *key, CS_RETCODE result) {
    CS_VOID *out = text("untouched");
    zrvtest::capture_stdout([&] {
      EXPECT_EQ(
          lm_list_op(list, operation, text(key), key != nullptr ? 1 : CS_UNUSED, &function, &out),
          result);
    });
    return std::string(static_cast<const char *>(out));
  };
  for (const CS_INT operation : {LM_OP_PRINTALL, LM_OP_APPLY, LM_OP_CURRENT, LM_OP_PRINT})
    EXPECT_EQ(delivers(operation, nullptr, CS_SUCCEED), "B");
  EXPECT_EQ(delivers(LM_OP_PRINT, "a", CS_SUCCEED), "A");
  EXPECT_EQ(delivers(LM_OP_PRINTALL, nullptr, CS_SUCCEED), "A");
  stop_at = "A";
  for (const CS_INT operation : {LM_OP_PRINTALL, LM_OP_APPLY, LM_OP_PRINT})
    EXPECT_EQ(delivers(operation, nullptr, CS_FAIL), "untouched");
  EXPECT_EQ(delivers(LM_OP_SEARCH, "z", LM_NOT_FOUND), "untouched");
  ASSERT_EQ(set_print(list, [](CS_VOID *) -> CS_RETCODE { return 7; }), CS_SUCCEED);
  EXPECT_EQ(delivers(LM_OP_PRINT, nullptr, CS_SUCCEED), "A");
}

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

} // namespace
