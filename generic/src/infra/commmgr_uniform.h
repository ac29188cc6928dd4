// The steps of the uniform strategy that touch nothing but its free list.
#ifndef COMN_INFRA_COMMMGR_UNIFORM_H
#define COMN_INFRA_COMMMGR_UNIFORM_H

#include "commmgr.h"

namespace comn::pool {

// Takes the first free node; null without one, or for another size than that of the pool.
inline void *take_node(MmUniformPool &pool, CS_UINT size) noexcept {
  MmList *const node = pool.free;
  if (node == nullptr || size != static_cast<CS_UINT>(pool.uniform_size))
    return nullptr;
  pool.free = node->link;
  return payload_of(node);
}

inline void put_node(MmUniformPool &pool, void *buf) noexcept {
  auto *const node = header_of<MmList>(buf);
  node->link = pool.free;
  pool.free = node;
}

} // namespace comn::pool

#endif
