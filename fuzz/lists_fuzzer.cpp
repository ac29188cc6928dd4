// Lists under any sequence of operations, against the simplest model there is. The input is a
// program: a kind and its sizes, then operations, whose keys are taken from the input as well.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/lmpriv.h"

using zrvfuzz::Input;
using zrvfuzz::require;

namespace {

// A key of up to 15 bytes, in a block of its own.
std::string take_key(Input &input) {
  std::string text;
  for (unsigned count = input.byte() % 16; count > 0 && !input.is_empty(); --count)
    text += static_cast<char>(input.byte());
  return text;
}

struct Heap {
  std::set<void *> live;
  unsigned countdown = 0;
  bool failed = false;

  static void *take(void *user, size_t size) {
    auto *const self = static_cast<Heap *>(user);
    if (self->countdown != 0 && --self->countdown == 0) {
      self->failed = true;
      return nullptr;
    }
    return *self->live.insert(std::malloc(size)).first;
  }
  static void give_back(void *user, void *block) {
    require(static_cast<Heap *>(user)->live.erase(block) == 1);
    std::free(block);
  }
};

struct Machine {
  LM_HANDLE *handle = nullptr;
  CS_INT kind = 0;
  Heap heap;
  CS_INT tablesize = 0;

  CS_RETCODE op(CS_INT operation, CS_VOID *key, CS_INT key_size, CS_VOID *data, CS_VOID **out) {
    heap.failed = false;
    return lm_list_op(handle, operation, key, key_size, data, out);
  }
  void resize(CS_INT property, CS_INT value) {
    heap.failed = false;
    const CS_RETCODE result = lm_list_prop(handle, LM_ACTION_SET, property, &value, 0, nullptr);
    require(result == CS_SUCCEED || (result == CS_MEM_ERROR && heap.failed) || result == CS_FAIL);
    if (result == CS_SUCCEED && property == LM_HDL_MAX_TABLESIZE)
      tablesize = value;
  }
};

CS_VOID *data_of(size_t step) {
  return reinterpret_cast<CS_VOID *>(step + 1);
}

// ---- linked list, queue, stack: entries in order, and where the cursor stands ----

void run_linked(Machine &machine, Input &input) {
  std::vector<CS_VOID *> model;
  size_t cursor = 0; // model.size() when there is none
  for (size_t step = 0; !input.is_empty(); ++step) {
    const unsigned what = input.byte();
    CS_VOID *out = nullptr;
    CS_VOID *place = &out;
    CS_VOID **const result_at = machine.kind == LM_STACK ? &place : &out;
    if (what % 16 == 15) {
      machine.heap.countdown = input.byte() % 4;
      continue;
    }
    if (what % 16 == 14) {
      machine.resize(LM_HDL_MAX_POOLSIZE, static_cast<CS_INT>(input.byte() % 20));
      continue;
    }
    if (what % 2 == 0 && model.size() < 200) {
      const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
      CS_INT position = positions[what / 2 % 4];
      if (machine.kind != LM_DLINK)
        position = machine.kind == LM_QUEUE ? LM_OP_LAST : LM_OP_FIRST;
      const CS_RETCODE result =
          machine.op(LM_OP_INSERT, nullptr, position, data_of(step), result_at);
      if (result != CS_SUCCEED) {
        require(result == CS_MEM_ERROR && machine.heap.failed);
        continue;
      }
      size_t where = cursor;
      if (position == LM_OP_FIRST || model.empty())
        where = 0;
      else if (position == LM_OP_LAST)
        where = model.size();
      else if (position == LM_POS_AFTER)
        ++where;
      model.insert(model.begin() + static_cast<std::ptrdiff_t>(where), data_of(step));
      cursor = where;
      require(out == data_of(step));
    } else if (machine.kind != LM_DLINK) {
      if (model.empty())
        continue;
      require(machine.op(LM_OP_DELETE, nullptr, 0, nullptr, result_at) == CS_SUCCEED);
      model.erase(model.begin());
      cursor = 0;
      require(out == (model.empty() ? nullptr : model[0]));
    } else if (!model.empty()) {
      const CS_INT operations[] = {LM_OP_DELETE, LM_OP_NEXT, LM_OP_PREV,
                                   LM_OP_FIRST,  LM_OP_LAST, LM_OP_REPLACE};
      const CS_INT operation = operations[what / 2 % 6];
      bool succeeds = true;
      if (operation == LM_OP_DELETE) {
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(cursor));
        cursor -= cursor > 0;
      } else if (operation == LM_OP_NEXT) {
        succeeds = cursor + 1 < model.size();
        cursor += succeeds;
      } else if (operation == LM_OP_PREV) {
        succeeds = cursor > 0;
        cursor -= succeeds;
      } else if (operation == LM_OP_REPLACE) {
        model[cursor] = data_of(step);
      } else {
        cursor = operation == LM_OP_FIRST ? 0 : model.size() - 1;
      }
      require(machine.op(operation, nullptr, 0, data_of(step), &out) ==
              (succeeds ? CS_SUCCEED : CS_FAIL));
      if (succeeds)
        require(out == (cursor < model.size() ? model[cursor] : nullptr));
    }
    require(machine.handle->hdlprop->handle_load == static_cast<CS_INT>(model.size()));
  }
}

// ---- hash tables: entries, newest first ----

struct Entry {
  std::string key;
  CS_VOID *data;
};

// The models' keys must keep their addresses: the list stores them.
using Entries = std::vector<Entry *>;

void run_hashed(Machine &machine, Input &input) {
  const bool chained = machine.kind == LM_CHASH;
  Entries model;
  std::vector<Entry *> made;
  for (size_t step = 0; !input.is_empty(); ++step) {
    const unsigned what = input.byte() % 8;
    if (what == 7) {
      machine.heap.countdown = input.byte() % 6;
      continue;
    }
    if (what == 6) {
      if (input.byte() % 2 == 0)
        machine.resize(LM_HDL_MAX_POOLSIZE, static_cast<CS_INT>(input.byte() % 20));
      else if (!chained || model.empty()) // a chained table loses entries when it is resized
        machine.resize(LM_HDL_MAX_TABLESIZE, static_cast<CS_INT>(2 + input.byte() % 60));
      continue;
    }
    std::string key = take_key(input);
    const auto size = static_cast<CS_INT>(key.size());
    const auto matches = [&](const Entry *entry) {
      return chained ? entry->key == key : entry->key.compare(0, key.size(), key) == 0;
    };
    const auto found = std::find_if(model.begin(), model.end(), matches);
    const CS_RETCODE expected = found != model.end() ? CS_SUCCEED : LM_NOT_FOUND;
    CS_VOID *out = nullptr;
    if (what < 2) {
      if (!chained && static_cast<CS_INT>(model.size()) == machine.tablesize)
        continue;
      auto *const entry = new Entry{key, data_of(step)};
      made.push_back(entry);
      const CS_RETCODE result =
          machine.op(LM_OP_INSERT, entry->key.data(), size, entry->data, &out);
      require(result == (machine.heap.failed ? CS_MEM_ERROR : CS_SUCCEED));
      if (result == CS_SUCCEED)
        model.insert(model.begin(), entry);
    } else if (what == 2 || what == 3) {
      require(machine.op(LM_OP_SEARCH, key.data(), size, nullptr, &out) == expected);
      // In an open table any match may come first.
      const auto hit = std::find_if(model.begin(), model.end(), [&](const Entry *entry) {
        return matches(entry) && entry->data == out;
      });
      if (expected == CS_SUCCEED) {
        require(hit != model.end());
        require(!chained || hit == found);
        if (what == 3) { // delete what is current, without its key
          require(machine.op(LM_OP_DELETE, nullptr, CS_UNUSED, nullptr, nullptr) == CS_SUCCEED);
          model.erase(hit);
        }
      }
    } else if (what == 4 && chained) {
      require(machine.op(LM_OP_DELETE, key.data(), size, nullptr, nullptr) == expected);
      if (expected == CS_SUCCEED)
        model.erase(found);
    } else if (what == 5 && chained) {
      require(machine.op(LM_OP_REPLACE, key.data(), size, data_of(step), &out) == expected);
      if (expected == CS_SUCCEED) {
        require(out == data_of(step));
        (*found)->data = data_of(step);
      }
    }
    require(machine.handle->hdlprop->handle_load == static_cast<CS_INT>(model.size()));
  }
  machine.heap.countdown = 0;
  require(lm_list_drop(machine.handle, LM_DROP_FORCE) == CS_SUCCEED);
  for (Entry *const entry : made)
    delete entry;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  Machine machine;
  const CS_INT kinds[] = {LM_DLINK, LM_CHASH, LM_DHASH, LM_QUEUE, LM_STACK};
  machine.kind = kinds[input.byte() % 5];
  machine.tablesize = static_cast<CS_INT>(2 + input.byte() % 60);
  CS_INT poolsize = static_cast<CS_INT>(input.byte() % 20);
  LM_CONTEXT *context = nullptr;
  require(lm_initlm_ex(1100, nullptr, 0, &context, Heap::take, Heap::give_back, &machine.heap) ==
          CS_SUCCEED);
  lm_property(context, LM_ACTION_SET, LM_CXT_MAX_TABLESIZE, &machine.tablesize, 0, nullptr);
  lm_property(context, LM_ACTION_SET, LM_CXT_MAX_POOLSIZE, &poolsize, 0, nullptr);
  require(lm_list_alloc(context, machine.kind, nullptr, 0, &machine.handle) == CS_SUCCEED);
  if (machine.kind == LM_CHASH || machine.kind == LM_DHASH)
    run_hashed(machine, input);
  else
    run_linked(machine, input);
  machine.heap.countdown = 0;
  require(lm_exit(context, LM_EXIT_FORCE) == CS_SUCCEED);
  require(machine.heap.live.empty());
  return 0;
}
