// Which locale counts for a call, and which of its caches.
#ifndef COMN_FRAME_LOCALE_OF_H
#define COMN_FRAME_LOCALE_OF_H

#include "comloc.h"

namespace comn {

// The locale that a caller names, else that of the context; null when there is neither.
inline CS_LOCALE *locale_of(const CS_CONTEXT *context, CS_LOCALE *locale) noexcept {
  return locale != nullptr ? locale : context->ctxlocale;
}

inline CS_LOCALE *locale_of(const CS_CONTEXT *context, const CS_DATAFMT *format) noexcept {
  return locale_of(context, format->locale);
}

// The pointers of a locale by category, from CS_LCTYPE_COLLATE to CS_LCTYPE_TIME.
inline constexpr CS_VOID *CsLocale::*categories[] = {
    &CsLocale::collateptr,  &CsLocale::ctypeptr,   &CsLocale::messageptr,
    &CsLocale::monetaryptr, &CsLocale::numericptr, &CsLocale::timeptr,
};

// The cache of a category; null when there is none.
inline CsLocCache *cache_of(const CS_LOCALE *locale, CS_INT category) noexcept {
  return static_cast<CsLocCache *>(locale->*categories[category - CS_LCTYPE_COLLATE]);
}

} // namespace comn

#endif
