// What the tests of the list manager share: an allocator that looks at what comes back, a context
// that is dropped at the end, and a function for walks.
#ifndef ZRVTEST_LIST_FIXTURE_H
#define ZRVTEST_LIST_FIXTURE_H

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "zrvcomn/lmpriv.h"

namespace zrvtest {

inline CS_VOID *text(const char *string) {
  return const_cast<char *>(string);
}
inline CS_CHAR *chars(const char *string) {
  return const_cast<char *>(string);
}
inline CS_INT size_of(const char *string) {
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
    ++(state == LM_RELEASED ? self->stamped : self->unstamped);
    const auto *const bytes = static_cast<const char *>(block);
    const bool is_clear = std::all_of(bytes + sizeof state, bytes + self->live[block],
                                      [](char byte) { return byte == 0; });
    self->uncleared += state == LM_RELEASED && !is_clear;
    self->live.erase(block);
    std::free(block);
  }
  void fail(size_t nth, bool keep = false) {
    countdown = nth;
    keeps_failing = keep;
  }

  std::map<void *, size_t> live;
  size_t allocations = 0, failures = 0;
  // What came back: records, other blocks, and records that held more than their stamp.
  size_t stamped = 0, unstamped = 0, uncleared = 0;

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
  // The data of all entries in the order of a walk.
  static std::vector<CS_VOID *> contents(LM_HANDLE *handle) {
    static std::vector<CS_VOID *> found;
    found.clear();
    CS_PRINT_FUNC function = [](CS_VOID *data) -> CS_RETCODE {
      found.push_back(data);
      return CS_SUCCEED;
    };
    EXPECT_EQ(lm_list_op(handle, LM_OP_APPLY, nullptr, 0, &function, nullptr), CS_SUCCEED);
    return found;
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

// The function of the walks: notes what it is called with, fails at `stop_at`.
inline std::string walked;
inline const char *stop_at;
inline CS_RETCODE note(CS_VOID *item) {
  const char *const string = item == nullptr ? "(null)" : static_cast<const char *>(item);
  walked += string;
  return stop_at != nullptr && std::strcmp(stop_at, string) == 0 ? CS_FAIL : CS_SUCCEED;
}

inline CS_RETCODE set_print(LM_HANDLE *handle, CS_PRINT_FUNC function = note) {
  walked.clear();
  stop_at = nullptr;
  return lm_list_prop(handle, LM_ACTION_SET, LM_HDL_PRINT_FUNC, &function, 0, nullptr);
}

// A hash table.
class TableTest : public ListTest {
protected:
  // The data of a key, which is current then.
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

  LM_HANDLE *list = nullptr;
};

} // namespace zrvtest

#endif
