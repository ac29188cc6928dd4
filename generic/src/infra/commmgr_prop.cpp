// The properties of pools.
#include "any_address.h"
#include "checks.h"
#include "commmgr.h"

using namespace comn::pool;

namespace {

// Delivers a property, an integer or a pointer, at the place that the caller gave.
template <class T>
CS_RETCODE store_value(CS_VOID *buffer, T value) noexcept {
  COMN_CHECK_PTR(buffer, CS_FAIL);
  comn::store(buffer, value);
  return CS_SUCCEED;
}

// A pointer property is passed as the buffer itself.
template <class Function>
CS_RETCODE set_function(Function &slot, CS_VOID *buffer) noexcept {
  COMN_CHECK(buffer != nullptr, CS_FAIL);
  slot = reinterpret_cast<Function>(buffer);
  return CS_SUCCEED;
}

CS_RETCODE set_positive(CS_INT &slot, const CS_VOID *buffer) noexcept {
  COMN_CHECK_PTR(buffer, CS_FAIL);
  const CS_INT value = comn::load<CS_INT>(buffer);
  COMN_CHECK(value > 0, CS_FAIL);
  slot = value;
  return CS_SUCCEED;
}

CS_RETCODE set_pooltype(MM_HANDLE *mmh, const CS_VOID *buffer) noexcept {
  if (is_ready(mmh))
    return CS_FAIL;
  COMN_CHECK_PTR(buffer, CS_FAIL);
  const CS_INT type = comn::load<CS_INT>(buffer);
  COMN_CHECK(type >= MM_POOL_NONE && type <= MM_POOL_UNIFORM, MM_BAD_PROPERTY);
  mmh->mmh_type = type;
  return CS_SUCCEED;
}

CS_RETCODE get_subpool(MM_HANDLE *mmh, CS_VOID *buffer, CS_INT tagid) noexcept {
  COMN_CHECK_PTR(buffer, CS_FAIL);
  auto *const slot = static_cast<MM_HANDLE **>(buffer);
  MM_HANDLE *found = mmh->mmh_child;
  while (found != nullptr && found->mmh_tagid != tagid)
    found = found->mmh_sibling;
  // Deliberate: a search without success leaves the slot null, which the making of a sub-pool
  // refuses. So none is ever made here.
  *slot = found;
  return found != nullptr ? CS_SUCCEED : com___subpool(mmh, tagid, slot);
}

CS_RETCODE get_property(MM_HANDLE *mmh, CS_INT property, CS_VOID *buffer, CS_INT buflen) noexcept {
  const MmPoolHead *const head = mmh->mmh_head;
  switch (property) {
  case MM_PROP_POOLTYPE:
    return store_value(buffer, mmh->mmh_type);
  case MM_PROP_SBREAK:
    return store_value(buffer, head->mph_sbreak);
  case MM_PROP_UNSBREAK:
    return store_value(buffer, head->mph_unsbreak);
  case MM_PROP_LOCK:
    return store_value(buffer, head->mph_lock);
  case MM_PROP_UNLOCK:
    return store_value(buffer, head->mph_unlock);
  case MM_PROP_PARAM:
  case MM_PROP_LOCKARG:
    // Deliberate: these two succeed and deliver nothing.
    return CS_SUCCEED;
  case MM_PROP_CHUNKSIZE:
    return store_value(buffer, head->mph_chunksize);
  case MM_PROP_MAXSIZE:
    return store_value(buffer, head->mph_maxsize);
  case MM_PROP_BLOCKSIZE:
    return store_value(buffer, mmh->mmh_blocksize);
  case MM_PROP_SUBPOOL:
    return get_subpool(mmh, buffer, buflen);
  default:
    comn::raise_bomb(COMN_HERE);
    return MM_BAD_PROPERTY;
  }
}

CS_RETCODE set_property(MM_HANDLE *mmh, CS_INT property, CS_VOID *buffer, CS_INT buflen) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  switch (property) {
  case MM_PROP_POOLTYPE:
    return set_pooltype(mmh, buffer);
  case MM_PROP_SBREAK:
    return set_function(head->mph_sbreak, buffer);
  case MM_PROP_UNSBREAK:
    return set_function(head->mph_unsbreak, buffer);
  case MM_PROP_LOCK:
    if (head->mph_lock != nullptr && buffer != nullptr)
      return CS_FAIL;
    return set_function(head->mph_lock, buffer);
  case MM_PROP_UNLOCK:
    return set_function(head->mph_unlock, buffer);
  case MM_PROP_PARAM:
    head->mph_param = buffer;
    return CS_SUCCEED;
  case MM_PROP_LOCKARG:
    head->mph_lockarg = buffer;
    return CS_SUCCEED;
  case MM_PROP_CHUNKSIZE:
    return set_positive(head->mph_chunksize, buffer);
  case MM_PROP_MAXSIZE:
    return set_positive(head->mph_maxsize, buffer);
  case MM_PROP_ADDHEAP:
    return com___addheap(mmh, buffer, buflen, MM_HEAP_CALLER);
  case MM_PROP_BLOCKSIZE:
    return is_ready(mmh) ? CS_FAIL : set_positive(mmh->mmh_blocksize, buffer);
  default: // MM_PROP_SUBPOOL
    return CS_FAIL;
  }
}

// Takes the locking out of a pool. The unlock function has its last call here, with its argument
// still in place, to release the lock that this very call took.
CS_RETCODE clear_locking(MM_HANDLE *mmh) noexcept {
  MmPoolHead *const head = mmh->mmh_head;
  const MM_UNLOCK_FUNC unlock_function = head->mph_unlock;
  head->mph_lock = nullptr;
  head->mph_unlock = nullptr;
  const CS_RETCODE result =
      unlock_function != nullptr ? unlock_function(mmh, head->mph_lockarg) : CS_SUCCEED;
  head->mph_lockarg = nullptr;
  // Deliberate: the bit goes from the handle, which never has it, and stays in the head. The drop
  // then deletes a null mutex.
  mmh->mmh_status &= ~MM_ST_OWNMUTEX;
  return result;
}

CS_RETCODE act_on_property(MM_HANDLE *mmh, CS_INT action, CS_INT property, CS_VOID *buffer,
                           CS_INT buflen) noexcept {
  if (action == MM_ACTION_GET)
    return get_property(mmh, property, buffer, buflen);
  if (action == MM_ACTION_SET)
    return set_property(mmh, property, buffer, buflen);
  if (property == MM_PROP_LOCK || property == MM_PROP_LOCKARG || property == MM_PROP_UNLOCK)
    return clear_locking(mmh);
  comn::raise_bomb(COMN_HERE);
  return MM_BAD_PROPERTY;
}

// The one property without a pool: how much storage to give comn_mmmanage.
CS_RETCODE act_on_overhead(CS_INT action, CS_VOID *buffer) noexcept {
  COMN_CHECK(action != MM_ACTION_CLEAR, MM_BAD_PROPERTY);
  return action == MM_ACTION_GET ? store_value(buffer, pool_overhead) : CS_FAIL;
}

} // namespace

CS_RETCODE comn_mmproperty(MM_HANDLE *mmh, CS_INT action, CS_INT property, CS_VOID *buffer,
                           CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK(action >= MM_ACTION_GET && action <= MM_ACTION_CLEAR, COMN_TRACE(CS_FAIL));
  COMN_CHECK(property >= MM_PROP_POOLTYPE && property <= MM_PROP_BLOCKSIZE,
             COMN_TRACE(MM_BAD_PROPERTY));
  CS_RETCODE result;
  if (property == MM_PROP_OVERHEAD) {
    result = act_on_overhead(action, buffer);
  } else {
    COMN_CHECK_PTR(mmh, COMN_TRACE(CS_FAIL));
    result = lock(mmh);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    result = act_on_property(mmh, action, property, buffer, buflen);
    // Setting the lock function came in without a lock, and so holds nothing.
    const bool set_lock =
        action == MM_ACTION_SET && property == MM_PROP_LOCK && result == CS_SUCCEED;
    if (!set_lock)
      unlock(mmh);
  }
  // Every value counts as one 32-bit word, pointers too.
  if (result == CS_SUCCEED && action == MM_ACTION_GET && outlen != nullptr)
    *outlen = 4;
  return COMN_TRACE(result);
}
