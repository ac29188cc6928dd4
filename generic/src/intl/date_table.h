// Date orders and date tables, for the units that read and ask them.
#ifndef COMN_INTL_DATE_TABLE_H
#define COMN_INTL_DATE_TABLE_H

#include "comloc.h"

namespace comn {

// The number of a date order; a text that is none counts as "mdy".
int date_order_id(const char *text) noexcept;

// The cache that says what dates look like in a locale, null meaning ctxlocale. What is not there is
// fatal, null.
CsLocCache *date_cache(CS_CONTEXT *context, CS_LOCALE *locale) noexcept;

} // namespace comn

#endif
