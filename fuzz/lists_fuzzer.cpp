// Lists under any sequence of operations, against the simplest model there is. The input is a
// program: a kind and its sizes, then operations, whose keys are taken from the input as well.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <list>
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

// ---- linked list, queue, stack: entries in order, and where the cursors stand ----

// Positions in a list of entries, the end for nowhere: the list's cursor, and one of the caller's.
struct LinkedModel {
  using Entries = std::list<CS_VOID *>;
  Entries entries;
  Entries::iterator cursor = entries.end(), own = entries.end();

  CS_VOID *data_at(Entries::iterator place) { return place != entries.end() ? *place : nullptr; }
};

// One operation on a linked list, under the list's cursor or under the caller's in `variable`. That
// is stale once its entry was deleted under the other one: it serves for what does not start there.
struct LinkedMachine {
  Machine &machine;
  LinkedModel model;
  CS_VOID *variable = nullptr;
  bool is_stale = false;

  void insert(CS_INT position, bool under_own, CS_VOID *data) {
    auto &entries = model.entries;
    const auto start = begin_operation(
        under_own, !entries.empty() && (position == LM_POS_BEFORE || position == LM_POS_AFTER));
    CS_VOID *out = nullptr;
    if (!run(LM_OP_INSERT, position, under_own, data, out)) {
      require(machine.heap.failed);
      return;
    }
    auto where = start;
    if (position == LM_OP_FIRST || entries.empty())
      where = entries.begin();
    else if (position == LM_OP_LAST)
      where = entries.end();
    else if (position == LM_POS_AFTER)
      ++where;
    const auto made = entries.insert(where, data);
    if (entries.size() == 1)
      model.cursor = made;
    finish(under_own, made, out);
  }

  void act(CS_INT operation, bool under_own, CS_VOID *data) {
    auto &entries = model.entries;
    if (entries.empty())
      return;
    auto place = begin_operation(under_own, operation != LM_OP_FIRST && operation != LM_OP_LAST);
    const bool succeeds = !(operation == LM_OP_NEXT && std::next(place) == entries.end()) &&
                          !(operation == LM_OP_PREV && place == entries.begin());
    CS_VOID *out = nullptr;
    require(run(operation, 0, under_own, data, out) == succeeds);
    if (!succeeds)
      return;
    if (operation == LM_OP_DELETE)
      place = erase(place, under_own);
    else if (operation == LM_OP_NEXT)
      ++place;
    else if (operation == LM_OP_PREV)
      --place;
    else if (operation == LM_OP_FIRST)
      place = entries.begin();
    else if (operation == LM_OP_LAST)
      place = std::prev(entries.end());
    else if (operation == LM_OP_REPLACE)
      *place = data;
    finish(under_own, place, out);
  }

private:
  LinkedModel::Entries::iterator begin_operation(bool under_own, bool starts_at_cursor) {
    if (under_own && is_stale && starts_at_cursor) {
      variable = nullptr;
      is_stale = false;
    }
    return under_own && model.own != model.entries.end() ? model.own : model.cursor;
  }

  bool run(CS_INT operation, CS_INT position, bool under_own, CS_VOID *data, CS_VOID *&out) {
    CS_VOID *place = &out;
    return machine.op(operation, under_own ? &variable : nullptr, position, data,
                      machine.kind == LM_STACK ? &place : &out) == CS_SUCCEED;
  }

  LinkedModel::Entries::iterator erase(LinkedModel::Entries::iterator place, bool under_own) {
    auto &entries = model.entries;
    const auto after = place == entries.begin() ? std::next(place) : std::prev(place);
    if (place == model.own && !under_own) {
      model.own = entries.end();
      is_stale = true;
    }
    if (place == model.cursor)
      model.cursor = after;
    entries.erase(place);
    return after;
  }

  void finish(bool under_own, LinkedModel::Entries::iterator place, const CS_VOID *out) {
    (under_own ? model.own : model.cursor) = place;
    if (under_own)
      is_stale = false;
    require(out == model.data_at(place));
  }
};

void run_linked(Machine &machine, Input &input) {
  LinkedMachine linked{machine, {}};
  const auto &entries = linked.model.entries;
  for (size_t step = 0; !input.is_empty(); ++step) {
    const unsigned what = input.byte();
    const bool under_own = machine.kind == LM_DLINK && what >= 128;
    const unsigned choice = what / 2;
    if (what % 16 == 15) {
      machine.heap.countdown = input.byte() % 4;
    } else if (what % 16 == 14) {
      machine.resize(LM_HDL_MAX_POOLSIZE, static_cast<CS_INT>(input.byte() % 20));
    } else if (what % 2 == 0 && entries.size() < 200) {
      const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
      CS_INT position = positions[choice % 4];
      if (machine.kind != LM_DLINK)
        position = machine.kind == LM_QUEUE ? LM_OP_LAST : LM_OP_FIRST;
      linked.insert(position, under_own, data_of(step));
    } else if (machine.kind != LM_DLINK) {
      linked.model.cursor = linked.model.entries.begin();
      linked.act(LM_OP_DELETE, false, nullptr);
    } else {
      const CS_INT operations[] = {LM_OP_DELETE, LM_OP_NEXT,    LM_OP_PREV,   LM_OP_FIRST,
                                   LM_OP_LAST,   LM_OP_REPLACE, LM_OP_CURRENT};
      linked.act(operations[choice % 7], under_own, data_of(step));
    }
    require(machine.handle->hdlprop->handle_load == static_cast<CS_INT>(entries.size()));
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
