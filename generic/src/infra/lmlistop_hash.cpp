// The operations on the two hash tables.
#include <algorithm>

#include "checks.h"
#include "lmhash.h"
#include "lmlist.h"

using namespace comn::list;

namespace {

template <class Word>
Word difference(const char *a, const char *b) noexcept {
  Word word_a, word_b;
  std::memcpy(&word_a, a, sizeof word_a);
  std::memcpy(&word_b, b, sizeof word_b);
  return word_a ^ word_b;
}

// The first word, one in the middle and the last one, which may overlap, so that there is no branch
// on the size.
template <class Word>
bool is_same_in_words(const char *a, const char *b, size_t size, size_t middle) noexcept {
  const size_t last = size - sizeof(Word);
  return (difference<Word>(a, b) | difference<Word>(a + middle, b + middle) |
          difference<Word>(a + last, b + last)) == 0;
}

template <class Word>
bool is_same_in_words(const char *a, const char *b, size_t size) noexcept {
  for (; size > 3 * sizeof(Word); size -= sizeof(Word), a += sizeof(Word), b += sizeof(Word))
    if (difference<Word>(a, b) != 0)
      return false;
  return is_same_in_words<Word>(a, b, size, std::min(size - sizeof(Word), sizeof(Word)));
}

template <Pace pace = Pace::full>
bool is_same(const void *key_a, const void *key_b, CS_INT key_size) noexcept {
  const auto *const a = static_cast<const char *>(key_a);
  const auto *const b = static_cast<const char *>(key_b);
  // A negative size gets past a hash function of the caller's alone, and stands for no bytes.
  const auto size = static_cast<size_t>(std::max(key_size, 0));
  if constexpr (pace == Pace::sprint)
    return is_same_in_words<std::uint64_t>(a, b, size, medium_keys[size - medium_least].middle);
  if (size >= sizeof(std::uint64_t)) [[likely]]
    return is_same_in_words<std::uint64_t>(a, b, size);
  if (size >= sizeof(std::uint32_t))
    return is_same_in_words<std::uint32_t>(a, b, size);
  for (size_t i = 0; i < size; ++i)
    if (a[i] != b[i])
      return false;
  return true;
}

// True when an operation is told which entry it means.
bool names_entry(const CS_VOID *key, CS_INT key_size) noexcept {
  return key != nullptr && key_size != CS_UNUSED;
}

DLinkNode *current(const LM_HANDLE *handle) noexcept {
  return static_cast<DLinkNode *>(handle->cur_ptr);
}

void deliver_current(const LM_HANDLE *handle, CS_VOID **data_out) noexcept {
  if (data_out != nullptr)
    *data_out = handle->cur_ptr != nullptr ? current(handle)->data : nullptr;
}

void fill(DLinkNode *node, CS_VOID *key, CS_INT key_size, CS_VOID *data) noexcept {
  node->key = key;
  node->key_size = key_size;
  node->data = data;
  node->state = LM_SET;
}

// ---- the chained table ----

// The bucket of a key.
template <Pace pace>
CS_RETCODE home_of(const CHashInfo *info, CS_VOID *key, CS_INT key_size, CS_UINT &home) noexcept {
  if constexpr (pace == Pace::full)
    return info->home_addr_hfunc(static_cast<CS_CHAR *>(key), key_size, info->table_size, &home);
  // The function that every table starts with, without the detour.
  if (info->home_addr_hfunc != lm__api_key_to_hash || key == nullptr || info->table_size <= 0)
      [[unlikely]]
    return gave_up;
  const auto *const bytes = static_cast<const CS_CHAR *>(key);
  const auto size = static_cast<size_t>(key_size);
  CS_UINT hash;
  if constexpr (pace == Pace::sprint) {
    if (!is_medium(size) || !hash_as_polynomial(bytes, size, hash)) [[unlikely]]
      return gave_up;
  } else {
    if (key_size < 0) [[unlikely]]
      return gave_up;
    hash = hash_of(bytes, size);
  }
  home = hash % static_cast<CS_UINT>(info->table_size);
  return CS_SUCCEED;
}

// The chain of a bucket. Heads that were deleted without their keys still stand there, unset, one
// behind the other; they go now that the bucket is used again.
template <Pace pace>
CS_RETCODE chain(LM_HANDLE *handle, CHashInfo *info, CS_UINT home, DLinkNode *&head) noexcept {
  head = info->table[home];
  while (head != nullptr && head->state != LM_SET)
    [[unlikely]] {
      if constexpr (pace != Pace::full)
        return gave_up;
      info->table[home] = head->next;
      put_node<pace>(handle, head);
      head = info->table[home];
    }
  return CS_SUCCEED;
}

template <Pace pace>
CS_RETCODE chash_search(LM_HANDLE *handle, CHashInfo *info, CS_VOID *key, CS_INT key_size,
                        CS_UINT &home) noexcept {
  DLinkNode *node = nullptr;
  CS_RETCODE result = home_of<pace>(info, key, key_size, home);
  if (result == CS_SUCCEED)
    result = chain<pace>(handle, info, home, node);
  if (result != CS_SUCCEED)
    return result;
  for (; node != nullptr; node = node->next) {
    __builtin_prefetch(&node->next); // a node may lie across two cache lines
    if (node->key_size == key_size && is_same<pace>(node->key, key, key_size)) {
      handle->cur_ptr = node;
      return CS_SUCCEED;
    }
  }
  return LM_NOT_FOUND;
}

// The entry that an operation means is the current one then: the one of the key, if it names one.
template <Pace pace>
CS_RETCODE locate(LM_HANDLE *handle, CHashInfo *info, CS_VOID *key, CS_INT key_size,
                  CS_UINT &home) noexcept {
  return names_entry(key, key_size) ? chash_search<pace>(handle, info, key, key_size, home)
                                    : CS_SUCCEED;
}

template <Pace pace>
CS_RETCODE chash_insert(LM_HANDLE *handle, CHashInfo *info, CS_VOID *key, CS_INT key_size,
                        CS_VOID *data) noexcept {
  CS_UINT home = 0;
  DLinkNode *head = nullptr;
  DLinkNode *node = nullptr;
  CS_RETCODE result = home_of<pace>(info, key, key_size, home);
  if (result == CS_SUCCEED)
    result = chain<pace>(handle, info, home, head);
  if (result == CS_SUCCEED)
    result = get_node<pace>(handle, node);
  if (result != CS_SUCCEED)
    return result;
  fill(node, key, key_size, data);
  node->previous = nullptr;
  node->next = head;
  if (head != nullptr)
    head->previous = node;
  info->table[home] = node;
  handle->cur_ptr = node;
  ++handle->hdlprop->handle_load;
  return CS_SUCCEED;
}

// `home` is the bucket that the search went to, 0 without one.
template <Pace pace>
CS_RETCODE chash_delete(LM_HANDLE *handle, CHashInfo *info, CS_UINT home) noexcept {
  DLinkNode *const node = current(handle);
  LM_CHECK(handle->hdlprop->handle_load > 0);
  LM_CHECK(node != nullptr && node->state == LM_SET);
  DLinkNode *const before = node->previous;
  DLinkNode *const behind = node->next;
  if (before != nullptr)
    before->next = behind;
  if (behind != nullptr)
    behind->previous = before;
  handle->cur_ptr = before != nullptr ? before : behind;
  --handle->hdlprop->handle_load;
  if (info->table[home] == node) {
    info->table[home] = current(handle);
  } else if (before == nullptr) [[unlikely]] {
    // Deliberate: without a key only bucket 0 is looked at, and the head of any other bucket stays
    // in the table. So it must not be released yet; see chain().
    node->key = nullptr;
    node->key_size = 0;
    node->data = nullptr;
    node->state = LM_UNSET;
    return CS_SUCCEED;
  }
  put_node<pace>(handle, node);
  return CS_SUCCEED;
}

CS_RETCODE chash_walk(LM_HANDLE *handle, CHashInfo *info, CS_INT operation,
                      const CS_VOID *data_in) noexcept {
  const CS_PRINT_FUNC function = walk_function(handle, operation, data_in);
  if (function == nullptr)
    return CS_FAIL;
  const bool prints = operation == LM_OP_PRINTALL;
  for (CS_INT i = 0; i < info->table_size; ++i) {
    DLinkNode *head = nullptr;
    chain<Pace::full>(handle, info, static_cast<CS_UINT>(i), head);
    if (head == nullptr) {
      if (prints)
        comn_debug_print("\n***Chain empty***\n");
      continue;
    }
    if (prints) {
      comn_debug_print("\nKeys:\n");
      for (const DLinkNode *node = head; node != nullptr; node = node->next)
        if (function(node->key) == CS_FAIL)
          return CS_FAIL;
      comn_debug_print("\nData:\n");
    }
    for (const DLinkNode *node = head; node != nullptr;) {
      const DLinkNode *const next = node->next;
      if (function(node->data) == CS_FAIL)
        return CS_FAIL;
      node = next;
    }
    if (prints)
      comn_debug_print("\n");
  }
  return CS_SUCCEED;
}

// What calls the caller's functions, and what is no operation.
CS_RETCODE chash_call(LM_HANDLE *handle, CHashInfo *info, CS_INT operation, CS_VOID *key,
                      CS_INT key_size, CS_VOID *data_in) noexcept {
  switch (operation) {
  case LM_OP_PRINT:
    break;
  case LM_OP_PRINTALL:
  case LM_OP_APPLY:
    return chash_walk(handle, info, operation, data_in);
  default:
    return comn::raise_bomb(COMN_HERE);
  }
  const CS_PRINT_FUNC function = handle->hdlprop->print_func;
  if (function == nullptr)
    return CS_FAIL;
  CS_UINT home = 0;
  const CS_RETCODE located = locate<Pace::full>(handle, info, key, key_size, home);
  if (located != CS_SUCCEED)
    return located;
  if (handle->cur_ptr == nullptr) {
    comn_debug_print("\nNULL\n");
    return CS_SUCCEED;
  }
  return function(current(handle)->data) == CS_FAIL ? CS_FAIL : CS_SUCCEED;
}

template <Pace pace>
CS_RETCODE chash_act(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                     CS_VOID *data_in) noexcept {
  auto *const info = static_cast<CHashInfo *>(handle->list_state);
  LM_CHECK(info->state != LM_RELEASED);
  CS_UINT home = 0;
  switch (operation) {
  case LM_OP_SEARCH:
    return chash_search<pace>(handle, info, key, key_size, home);
  case LM_OP_INSERT:
    return chash_insert<pace>(handle, info, key, key_size, data_in);
  case LM_OP_DELETE: {
    if (!can_put_node<pace>(handle)) [[unlikely]]
      return gave_up;
    const CS_RETCODE located = locate<pace>(handle, info, key, key_size, home);
    return located == CS_SUCCEED ? chash_delete<pace>(handle, info, home) : located;
  }
  case LM_OP_REPLACE: {
    const CS_RETCODE located = locate<pace>(handle, info, key, key_size, home);
    if (located != CS_SUCCEED)
      return located;
    if (handle->cur_ptr == nullptr)
      return CS_FAIL;
    current(handle)->data = data_in;
    return CS_SUCCEED;
  }
  case LM_OP_CURRENT:
    return CS_SUCCEED;
  default:
    if constexpr (pace == Pace::full)
      return chash_call(handle, info, operation, key, key_size, data_in);
    else
      return gave_up;
  }
}

template <Pace pace>
CS_RETCODE chash_deliver(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                         CS_VOID *data_in, CS_VOID **data_out) noexcept {
  const CS_RETCODE result = chash_act<pace>(handle, operation, key, key_size, data_in);
  if (result == CS_SUCCEED)
    deliver_current(handle, data_out);
  return result;
}

template <CS_INT operation>
[[gnu::flatten, gnu::noinline]] CS_RETCODE chash_any_leaf(LM_HANDLE *handle, CS_INT, CS_VOID *key,
                                                          CS_INT key_size, CS_VOID *data_in,
                                                          CS_VOID **data_out) noexcept {
  return attempt_or<chash_deliver<Pace::leaf>, list_op_in_full>(handle, operation, key, key_size,
                                                                data_in, data_out);
}

// ---- the open-addressed table ----

// The slots in the order of a probe: one after the other with wrap-around. The second hash function
// only shifts the start.
class Probe {
public:
  static CS_RETCODE start(const DHashInfo *info, CS_VOID *key, CS_INT key_size,
                          Probe &probe) noexcept {
    auto *const bytes = static_cast<CS_CHAR *>(key);
    CS_UINT home = 0;
    CS_UINT increment = 0;
    CS_RETCODE result = info->home_addr_hfunc(bytes, key_size, info->table_size, &home);
    if (result == CS_SUCCEED)
      result = info->incr_hfunc(bytes, key_size, info->table_size, &increment);
    const auto size = static_cast<CS_UINT>(info->table_size);
    probe = {info->table, size, size != 0 ? (home + increment) % size : 0};
    return result;
  }

  // The next slot's node; null when all have been seen.
  DLinkNode *next() noexcept {
    if (seen == size)
      return nullptr;
    ++seen;
    DLinkNode *const node = table[slot];
    slot = slot + 1 == size ? 0 : slot + 1;
    return node;
  }

  Probe() = default;

private:
  Probe(DLinkNode **the_table, CS_UINT the_size, CS_UINT first) noexcept
      : table(the_table), size(the_size), slot(first) {}

  DLinkNode **table = nullptr;
  CS_UINT size = 0;
  CS_UINT slot = 0;
  CS_UINT seen = 0;
};

CS_RETCODE dhash_insert(LM_HANDLE *handle, const DHashInfo *info, CS_VOID *key, CS_INT key_size,
                        CS_VOID *data) noexcept {
  Probe probe;
  const CS_RETCODE hashed = Probe::start(info, key, key_size, probe);
  if (hashed != CS_SUCCEED)
    return hashed;
  while (DLinkNode *const node = probe.next()) {
    if (node->state == LM_SET)
      continue;
    fill(node, key, key_size, data);
    node->previous = nullptr;
    node->next = nullptr;
    handle->cur_ptr = node;
    ++handle->hdlprop->handle_load;
    return CS_SUCCEED;
  }
  comn::raise_bomb(COMN_HERE); // the table is full
  return CS_FAIL;
}

CS_RETCODE dhash_search(LM_HANDLE *handle, const DHashInfo *info, CS_VOID *key,
                        CS_INT key_size) noexcept {
  Probe probe;
  const CS_RETCODE hashed = Probe::start(info, key, key_size, probe);
  if (hashed != CS_SUCCEED)
    return hashed;
  // Slots that are not set do not end the probe: entries behind a deleted one must be found.
  // Deliberate: as many bytes count as the search key has, so a prefix finds an entry. A stored key
  // that is shorter cannot match, and its bytes must not be read past its end.
  while (DLinkNode *const node = probe.next()) {
    if (node->state == LM_SET && node->key_size >= key_size && is_same(node->key, key, key_size)) {
      handle->cur_ptr = node;
      return CS_SUCCEED;
    }
  }
  return LM_NOT_FOUND;
}

CS_RETCODE dhash_delete(LM_HANDLE *handle) noexcept {
  DLinkNode *const node = current(handle);
  COMN_CHECK(node != nullptr && node->state == LM_SET, CS_FAIL);
  --handle->hdlprop->handle_load;
  node->key = nullptr;
  node->key_size = 0;
  node->data = nullptr;
  node->state = LM_UNSET;
  return CS_SUCCEED;
}

// Every slot is visited, those without an entry with their nulls.
CS_RETCODE dhash_pass(const DHashInfo *info, CS_PRINT_FUNC function,
                      CS_VOID *DLinkNode::*member) noexcept {
  for (CS_INT i = 0; i < info->table_size; ++i)
    if (function(info->table[i]->*member) == CS_FAIL)
      return CS_FAIL;
  return CS_SUCCEED;
}

CS_RETCODE dhash_walk(LM_HANDLE *handle, const DHashInfo *info, CS_INT operation,
                      const CS_VOID *data_in) noexcept {
  const CS_PRINT_FUNC function = walk_function(handle, operation, data_in);
  if (function == nullptr)
    return CS_FAIL;
  if (operation == LM_OP_APPLY)
    return dhash_pass(info, function, &DLinkNode::data);
  comn_debug_print("Keys:\n");
  const CS_RETCODE keys = dhash_pass(info, function, &DLinkNode::key);
  comn_debug_print("\nData:\n");
  const CS_RETCODE data = dhash_pass(info, function, &DLinkNode::data);
  comn_debug_print("\n");
  return keys == CS_SUCCEED ? data : keys;
}

CS_RETCODE dhash_act(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                     CS_VOID *data_in) noexcept {
  const auto *const info = static_cast<DHashInfo *>(handle->list_state);
  COMN_CHECK(info->state != LM_RELEASED, CS_FAIL);
  switch (operation) {
  case LM_OP_INSERT:
    return dhash_insert(handle, info, key, key_size, data_in);
  case LM_OP_SEARCH:
    return dhash_search(handle, info, key, key_size);
  case LM_OP_DELETE:
  case LM_OP_REPLACE:
  case LM_OP_PRINT:
    break;
  case LM_OP_PRINTALL:
  case LM_OP_APPLY:
    return dhash_walk(handle, info, operation, data_in);
  case LM_OP_CURRENT:
    return CS_SUCCEED;
  default:
    comn::raise_bomb(COMN_HERE);
    return CS_FAIL;
  }

  if (operation == LM_OP_PRINT && handle->hdlprop->print_func == nullptr)
    return CS_FAIL;
  if (names_entry(key, key_size)) {
    const CS_RETCODE found = dhash_search(handle, info, key, key_size);
    if (found != CS_SUCCEED)
      return found;
  }
  if (operation == LM_OP_DELETE)
    return dhash_delete(handle);
  DLinkNode *const node = current(handle);
  if (operation == LM_OP_REPLACE) {
    if (node == nullptr)
      return CS_FAIL;
    node->data = data_in;
    return CS_SUCCEED;
  }
  // Unlike the chained table, this one needs an entry to print.
  COMN_CHECK_PTR(node, CS_FAIL);
  return handle->hdlprop->print_func(node->data) == CS_FAIL ? CS_FAIL : CS_SUCCEED;
}

} // namespace

CS_RETCODE comn::list::chash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                                CS_VOID *data_in, CS_VOID **data_out) noexcept {
  return chash_deliver<Pace::full>(handle, operation, key, key_size, data_in, data_out);
}

template <CS_INT operation>
[[gnu::flatten]] CS_RETCODE comn::list::chash_leaf(LM_HANDLE *handle, CS_INT, CS_VOID *key,
                                                   CS_INT key_size, CS_VOID *data_in,
                                                   CS_VOID **data_out) noexcept {
  return attempt_or<chash_deliver<Pace::sprint>, chash_any_leaf<operation>>(
      handle, operation, key, key_size, data_in, data_out);
}
template decltype(chash_leaf<LM_OP_SEARCH>) comn::list::chash_leaf<LM_OP_SEARCH>;
template decltype(chash_leaf<LM_OP_INSERT>) comn::list::chash_leaf<LM_OP_INSERT>;
template decltype(chash_leaf<LM_OP_DELETE>) comn::list::chash_leaf<LM_OP_DELETE>;
template decltype(chash_leaf<LM_OP_REPLACE>) comn::list::chash_leaf<LM_OP_REPLACE>;

CS_RETCODE comn::list::dhash_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                                CS_VOID *data_in, CS_VOID **data_out) noexcept {
  const CS_RETCODE result = dhash_act(handle, operation, key, key_size, data_in);
  if (result == CS_SUCCEED)
    deliver_current(handle, data_out);
  return result;
}
