// What the units of the locales share: the lists of the globals, which are kept without a type, and
// copies of texts.
#ifndef COMN_INTL_LOC_CACHE_H
#define COMN_INTL_LOC_CACHE_H

#include <cstring>

#include "comloc.h"
#include "zrvintl.h"

namespace comn {

inline CsLocCache *caches(const CsCtxGlobals *globals) noexcept {
  return static_cast<CsLocCache *>(globals->cmg_lcache);
}

inline CS_DATEINFO *date_tables(const CsCtxGlobals *globals) noexcept {
  return static_cast<CS_DATEINFO *>(globals->cmg_datetime);
}

// New elements go to the head, so the newest wins a search.
inline void link_cache(CsCtxGlobals *globals, CsLocCache *cache) noexcept {
  cache->locnext = caches(globals);
  globals->cmg_lcache = cache;
}

inline void link_date_table(CsCtxGlobals *globals, CS_DATEINFO *table) noexcept {
  table->next = date_tables(globals);
  globals->cmg_datetime = table;
}

// Releases the cache that comn_intl_init has made, so that it makes one again. The character set
// stays on its list.
void forget_utf8(CsCtxGlobals *globals) noexcept;

// A cache without a name is found by none.
inline void clear_locname(CsLocCache &cache) noexcept {
  comn_free(cache.locname);
  cache.locname = nullptr;
  cache.locnamelen = 0;
}

// A NUL-terminated copy of `length` bytes; null without memory.
inline CS_CHAR *copy_name(const CS_CHAR *text, CS_INT length) noexcept {
  auto *const copy = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(length) + 1));
  if (copy == nullptr)
    return nullptr;
  if (length > 0)
    std::memcpy(copy, text, static_cast<size_t>(length));
  copy[length] = '\0';
  return copy;
}

} // namespace comn

#endif
