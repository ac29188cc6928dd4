// Long random runs of every kind of list against the standard containers. The seed is printed with
// every failure; ZRVTEST_SEED repeats a run.
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <list>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "test_scale.h"
#include "zrvcomn/csintrn.h"
#include "zrvcomn/lmpriv.h"

namespace {

// Fails at random; every block must come back.
struct Heap {
  std::set<void *> live;
  std::mt19937_64 *random = nullptr;
  bool failed = false;

  static void *take(void *user, size_t size) {
    auto *const self = static_cast<Heap *>(user);
    if (self->random != nullptr && (*self->random)() % 100 == 0) {
      self->failed = true;
      return nullptr;
    }
    return *self->live.insert(std::malloc(size)).first;
  }
  static void give_back(void *user, void *block) {
    EXPECT_EQ(static_cast<Heap *>(user)->live.erase(block), 1U);
    std::free(block);
  }
};

class RandomLists : public testing::Test {
protected:
  RandomLists() {
    EXPECT_EQ(lm_initlm_ex(1100, nullptr, 0, &context, Heap::take, Heap::give_back, &heap),
              CS_SUCCEED);
  }
  ~RandomLists() override {
    heap.random = nullptr;
    EXPECT_EQ(lm_exit(context, LM_EXIT_FORCE), CS_SUCCEED);
    EXPECT_TRUE(heap.live.empty());
  }
  unsigned upto(unsigned most) { return static_cast<unsigned>(random() % (most + 1)); }

  LM_HANDLE *make(CS_INT kind, CS_INT tablesize) {
    CS_INT poolsize = static_cast<CS_INT>(upto(1) * upto(60));
    EXPECT_EQ(lm_property(context, LM_ACTION_SET, LM_CXT_MAX_TABLESIZE, &tablesize, 0, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(lm_property(context, LM_ACTION_SET, LM_CXT_MAX_POOLSIZE, &poolsize, 0, nullptr),
              CS_SUCCEED);
    LM_HANDLE *handle = nullptr;
    heap.random = nullptr;
    EXPECT_EQ(lm_list_alloc(context, kind, nullptr, 0, &handle), CS_SUCCEED);
    heap.random = &random;
    return handle;
  }
  void drop(LM_HANDLE *handle) {
    heap.random = nullptr;
    ASSERT_EQ(lm_list_drop(handle, LM_DROP_FORCE), CS_SUCCEED);
  }
  // Resizes the node pool at times; a failure changes nothing that shows.
  void stir_pool(LM_HANDLE *handle) {
    if (upto(200) != 0)
      return;
    CS_INT size = static_cast<CS_INT>(upto(40));
    heap.failed = false;
    const CS_RETCODE result =
        lm_list_prop(handle, LM_ACTION_SET, LM_HDL_MAX_POOLSIZE, &size, 0, nullptr);
    ASSERT_EQ(result, heap.failed ? CS_MEM_ERROR : CS_SUCCEED);
  }
  // Keys of up to `most` bytes, text more often than not.
  std::vector<std::string> make_keys(size_t count, unsigned most) {
    std::vector<std::string> keys(count);
    for (std::string &key : keys) {
      key.resize(upto(most));
      const bool is_text = upto(3) != 0;
      for (char &c : key)
        c = static_cast<char>(is_text ? 'a' + upto(25) : upto(255));
    }
    return keys;
  }
  static CS_VOID *as_argument(const std::string &key) { return const_cast<char *>(key.data()); }
  static CS_VOID *value(size_t n) { return reinterpret_cast<CS_VOID *>(n + 1); }

  const size_t steps = zrvtest::random_steps();
  const unsigned long long seed = zrvtest::random_seed();
  std::mt19937_64 random{seed};
  Heap heap;
  LM_CONTEXT *context = nullptr;
};

TEST_F(RandomLists, Linked) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  size_t step = 0;
  while (step < steps) {
    LM_HANDLE *const handle = make(LM_DLINK, 10);
    std::list<CS_VOID *> model;
    auto at = model.end(); // end() for no cursor
    // A second walk under a cursor of its own, begun anew with the same variable whenever an entry
    // goes, of which it may have been the cursor.
    DLinkNode *own = nullptr;
    auto own_at = model.end();
    const size_t most = 1 + upto(60);
    for (const size_t end = step + 5000; step < end && step < steps; ++step) {
      stir_pool(handle);
      CS_VOID *out = nullptr;
      CS_VOID *const data = value(step);
      const auto delivered = [&] { return at == model.end() ? nullptr : *at; };
      CS_INT operation = static_cast<CS_INT>(LM_OP_INSERT + upto(10));
      if (operation == LM_OP_INSERT || model.empty()) {
        if (model.size() >= most)
          continue;
        const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
        CS_INT position = positions[upto(3)];
        heap.failed = false;
        const CS_RETCODE result = lm_list_op(handle, LM_OP_INSERT, nullptr, position, data, &out);
        if (heap.failed) {
          ASSERT_EQ(result, CS_MEM_ERROR);
          continue;
        }
        ASSERT_EQ(result, CS_SUCCEED);
        auto where = at;
        if (position == LM_OP_FIRST || model.empty())
          where = model.begin();
        else if (position == LM_OP_LAST)
          where = model.end();
        else if (position == LM_POS_AFTER)
          ++where;
        at = model.insert(where, data);
        ASSERT_EQ(out, data);
        continue;
      }
      CS_RETCODE expected = CS_SUCCEED;
      switch (operation) {
      case LM_OP_DELETE: {
        if (at == model.end())
          continue;
        own_at = model.end();
        const bool head = at == model.begin();
        at = model.erase(at);
        if (!head)
          --at;
        break;
      }
      case LM_OP_REPLACE:
        *at = data;
        break;
      case LM_OP_NEXT:
        if (std::next(at) == model.end())
          expected = CS_FAIL;
        else
          ++at;
        break;
      case LM_OP_PREV:
        if (at == model.begin())
          expected = CS_FAIL;
        else
          --at;
        break;
      case LM_OP_FIRST:
        at = model.begin();
        break;
      case LM_OP_LAST:
        at = std::prev(model.end());
        break;
      default:
        operation = LM_OP_CURRENT;
        break;
      }
      ASSERT_EQ(lm_list_op(handle, operation, nullptr, 0, data, &out), expected);
      if (expected == CS_SUCCEED) {
        ASSERT_EQ(out, delivered());
      }
      ASSERT_EQ(handle->hdlprop->handle_load, static_cast<CS_INT>(model.size()));
      if (own_at == model.end() && !model.empty()) {
        ASSERT_EQ(lm_list_op(handle, LM_OP_FIRST, &own, 0, nullptr, &out), CS_SUCCEED);
        own_at = model.begin();
      } else if (!model.empty()) {
        const bool more = std::next(own_at) != model.end();
        ASSERT_EQ(lm_list_op(handle, LM_OP_NEXT, &own, 0, nullptr, &out),
                  more ? CS_SUCCEED : CS_FAIL);
        if (more) {
          ++own_at;
          ASSERT_EQ(out, *own_at);
        }
      }
    }
    drop(handle);
  }
}

TEST_F(RandomLists, QueueAndStack) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  for (const CS_INT kind : {LM_QUEUE, LM_STACK}) {
    LM_HANDLE *const handle = make(kind, 10);
    std::deque<CS_VOID *> model;
    for (size_t step = 0; step < steps; ++step) {
      stir_pool(handle);
      CS_VOID *out = nullptr;
      CS_VOID *place = &out;
      CS_VOID **const result_at = kind == LM_STACK ? reinterpret_cast<CS_VOID **>(&place) : &out;
      if (model.empty() || (upto(1) == 0 && model.size() < 100)) {
        heap.failed = false;
        const CS_RETCODE result =
            lm_list_op(handle, LM_OP_INSERT, nullptr, 0, value(step), nullptr);
        ASSERT_EQ(result, heap.failed ? CS_MEM_ERROR : CS_SUCCEED);
        if (result == CS_SUCCEED && kind == LM_QUEUE)
          model.push_back(value(step));
        else if (result == CS_SUCCEED)
          model.push_front(value(step));
      } else {
        ASSERT_EQ(lm_list_op(handle, LM_OP_DELETE, nullptr, 0, nullptr, result_at), CS_SUCCEED);
        model.pop_front();
        ASSERT_EQ(out, model.empty() ? nullptr : model.front());
      }
      ASSERT_EQ(lm_list_op(handle, LM_OP_CURRENT, nullptr, 0, nullptr, result_at), CS_SUCCEED);
      ASSERT_EQ(out, model.empty() ? nullptr : model.front());
      ASSERT_EQ(handle->hdlprop->handle_load, static_cast<CS_INT>(model.size()));
    }
    drop(handle);
  }
}

// All entries in the order of their insertion; the newest of a key is found first.
struct Entry {
  const std::string *key;
  CS_VOID *data;
};

TEST_F(RandomLists, Chained) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  const std::vector<std::string> keys = make_keys(150, 24);
  size_t step = 0;
  while (step < steps) {
    LM_HANDLE *const handle = make(LM_CHASH, static_cast<CS_INT>(1 + upto(100)));
    std::list<Entry> model; // newest first
    for (const size_t end = step + 5000; step < end && step < steps; ++step) {
      stir_pool(handle);
      const std::string &key = keys[upto(149)];
      const auto found = std::find_if(model.begin(), model.end(),
                                      [&](const Entry &entry) { return *entry.key == key; });
      const CS_RETCODE expected = found != model.end() ? CS_SUCCEED : LM_NOT_FOUND;
      const auto act = [&](CS_INT operation, CS_VOID *data, CS_VOID **out) {
        return lm_list_op(handle, operation, as_argument(key), static_cast<CS_INT>(key.size()),
                          data, out);
      };
      CS_VOID *out = nullptr;
      switch (upto(5)) {
      case 0:
      case 1: {
        heap.failed = false;
        const CS_RETCODE result = act(LM_OP_INSERT, value(step), &out);
        ASSERT_EQ(result, heap.failed ? CS_MEM_ERROR : CS_SUCCEED);
        if (result == CS_SUCCEED) {
          ASSERT_EQ(out, value(step));
          model.push_front({&key, value(step)});
        }
        break;
      }
      case 2:
        ASSERT_EQ(act(LM_OP_DELETE, nullptr, nullptr), expected);
        if (found != model.end())
          model.erase(found);
        break;
      case 3:
        ASSERT_EQ(act(LM_OP_REPLACE, value(step), &out), expected);
        if (found != model.end())
          found->data = value(step);
        break;
      case 4:
        // Delete what was found, without its key.
        ASSERT_EQ(act(LM_OP_SEARCH, nullptr, nullptr), expected);
        if (found != model.end() && upto(1) == 0) {
          ASSERT_EQ(lm_list_op(handle, LM_OP_DELETE, nullptr, CS_UNUSED, nullptr, nullptr),
                    CS_SUCCEED);
          model.erase(found);
        }
        break;
      default:
        ASSERT_EQ(act(LM_OP_SEARCH, nullptr, &out), expected);
        if (found != model.end()) {
          ASSERT_EQ(out, found->data);
        }
        break;
      }
      ASSERT_EQ(handle->hdlprop->handle_load, static_cast<CS_INT>(model.size()));
    }
    drop(handle);
  }
}

TEST_F(RandomLists, Open) {
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  // Keys of one length, so that none is a prefix of another.
  std::vector<std::string> keys;
  for (unsigned i = 0; i < 60; ++i)
    keys.push_back("key" + std::to_string(100 + i));
  size_t step = 0;
  while (step < steps) {
    CS_INT size = static_cast<CS_INT>(2 + upto(40));
    LM_HANDLE *const handle = make(LM_DHASH, size);
    std::map<std::string, CS_VOID *> model;
    for (const size_t end = step + 5000; step < end && step < steps; ++step) {
      std::string &key = keys[upto(59)];
      const auto found = model.find(key);
      const CS_RETCODE expected = found != model.end() ? CS_SUCCEED : LM_NOT_FOUND;
      const auto act = [&](CS_INT operation, CS_VOID *data, CS_VOID **out) {
        return lm_list_op(handle, operation, key.data(), static_cast<CS_INT>(key.size()), data,
                          out);
      };
      CS_VOID *out = nullptr;
      switch (upto(4)) {
      case 0:
        if (found == model.end() && static_cast<CS_INT>(model.size()) < size) {
          ASSERT_EQ(act(LM_OP_INSERT, value(step), &out), CS_SUCCEED);
          ASSERT_EQ(out, value(step));
          model[key] = value(step);
        }
        break;
      case 1:
        ASSERT_EQ(act(LM_OP_DELETE, nullptr, nullptr), expected);
        if (found != model.end())
          model.erase(found);
        break;
      case 2:
        ASSERT_EQ(act(LM_OP_REPLACE, value(step), nullptr), expected);
        if (found != model.end())
          found->second = value(step);
        break;
      case 3:
        if (upto(100) == 0) {
          CS_INT wanted = static_cast<CS_INT>(2 + upto(40));
          heap.failed = false;
          const CS_RETCODE result =
              lm_list_prop(handle, LM_ACTION_SET, LM_HDL_MAX_TABLESIZE, &wanted, 0, nullptr);
          if (wanted < static_cast<CS_INT>(model.size())) {
            ASSERT_EQ(result, CS_FAIL);
          } else {
            ASSERT_EQ(result, heap.failed ? CS_MEM_ERROR : CS_SUCCEED);
            if (result == CS_SUCCEED)
              size = wanted;
          }
        }
        break;
      default:
        ASSERT_EQ(act(LM_OP_SEARCH, nullptr, &out), expected);
        if (found != model.end()) {
          ASSERT_EQ(out, found->second);
        }
        break;
      }
      ASSERT_EQ(handle->hdlprop->handle_load, static_cast<CS_INT>(model.size()));
    }
    drop(handle);
  }
}

} // namespace
