// The members of the matrix whose families have not landed yet. Each is a null constant under the
// member's name, so the matrix names every cell and a cell fills itself when its family comes: the
// family declares its members in a header and takes them off this list, and a name that stands in
// both places is ambiguous and does not compile.
#ifndef COMN_CONVERT_PENDING_H
#define COMN_CONVERT_PENDING_H

#include "cspublic.h"

namespace comn::pending {

#define COMN_PENDING(name) inline constexpr CS_CONV_FUNC comn_##name = nullptr;

// All value columns of a source.
#define COMN_PENDING_VALUES(source)                                                                \
  COMN_PENDING(source##tochar)                                                                     \
  COMN_PENDING(source##tobin)                                                                      \
  COMN_PENDING_FIXED(source)                                                                       \
  COMN_PENDING(source##tovarchar)                                                                  \
  COMN_PENDING(source##tovarbin)                                                                   \
  COMN_PENDING(source##tounichar)
#define COMN_PENDING_FIXED(source)                                                                 \
  COMN_PENDING(source##tobit)                                                                      \
  COMN_PENDING(source##toi1)                                                                       \
  COMN_PENDING(source##toi2)                                                                       \
  COMN_PENDING(source##toi4)                                                                       \
  COMN_PENDING(source##toi8)                                                                       \
  COMN_PENDING(source##toui2)                                                                      \
  COMN_PENDING(source##toui4)                                                                      \
  COMN_PENDING(source##toui8)                                                                      \
  COMN_PENDING(source##toflt4)                                                                     \
  COMN_PENDING(source##toflt8)                                                                     \
  COMN_PENDING(source##tonum)                                                                      \
  COMN_PENDING(source##tomoney)                                                                    \
  COMN_PENDING(source##tomny4)

// Numbers and money come whole but for 16-bit text.
COMN_PENDING(i1tounichar)
COMN_PENDING(i2tounichar)
COMN_PENDING(i4tounichar)
COMN_PENDING(i8tounichar)
COMN_PENDING(ui2tounichar)
COMN_PENDING(ui4tounichar)
COMN_PENDING(ui8tounichar)
COMN_PENDING(flt4tounichar)
COMN_PENDING(flt8tounichar)
COMN_PENDING(numtounichar)
COMN_PENDING(moneytounichar)
COMN_PENDING(mny4tounichar)

COMN_PENDING_VALUES(unichar)

// Binary and bit come whole but for 16-bit text.
COMN_PENDING(bintounichar)
COMN_PENDING(varbintounichar)
COMN_PENDING(bittounichar)

// Text comes whole but for 16-bit text.
COMN_PENDING(chartounichar)
COMN_PENDING(varchartounichar)

// Dates and times out of 16-bit text.
#define COMN_PENDING_DATES(source)                                                                 \
  COMN_PENDING(source##todatetime)                                                                 \
  COMN_PENDING(source##todate4)                                                                    \
  COMN_PENDING(source##todatea)                                                                    \
  COMN_PENDING(source##totimea)

COMN_PENDING_DATES(unichar)

COMN_PENDING(imagetounichar)
COMN_PENDING(unichartoimage)

// Dates and times as 16-bit text.
COMN_PENDING(datetimetounichar)
COMN_PENDING(date4tounichar)
COMN_PENDING(dateatounichar)
COMN_PENDING(timeatounichar)

// Locators.
COMN_PENDING(chartolocator)
COMN_PENDING(locatortochar)
COMN_PENDING(locatortotext)
COMN_PENDING(locatortoimage)
COMN_PENDING(locatortounitext)
COMN_PENDING(locatortolocator)

#undef COMN_PENDING
#undef COMN_PENDING_VALUES
#undef COMN_PENDING_FIXED
#undef COMN_PENDING_DATES

} // namespace comn::pending

#endif
