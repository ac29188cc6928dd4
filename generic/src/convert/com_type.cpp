// The widths of the datatypes.
#include "comnlib.h"
#include "types.h"

namespace {

// 0 stands for a type without a fixed size. UNICHAR has a width although it is text, and USHORT has
// none although it is a number: both are settled values that callers know.
constexpr CS_BYTE no_width = 0;
constexpr CS_SMALLINT widths[CS_TYPE_COUNT] = {
    no_width,               // CHAR
    no_width,               // BINARY
    no_width,               // LONGCHAR
    no_width,               // LONGBINARY
    no_width,               // TEXT
    no_width,               // IMAGE
    sizeof(CS_TINYINT),     // TINYINT
    sizeof(CS_SMALLINT),    // SMALLINT
    sizeof(CS_INT),         // INT
    sizeof(CS_REAL),        // REAL
    sizeof(CS_FLOAT),       // FLOAT
    sizeof(CS_BIT),         // BIT
    sizeof(CS_DATETIME),    // DATETIME
    sizeof(CS_DATETIME4),   // DATETIME4
    sizeof(CS_MONEY),       // MONEY
    sizeof(CS_MONEY4),      // MONEY4
    sizeof(CS_NUMERIC),     // NUMERIC
    sizeof(CS_DECIMAL),     // DECIMAL
    sizeof(CS_VARCHAR),     // VARCHAR
    sizeof(CS_VARBINARY),   // VARBINARY
    no_width,               // LONG
    no_width,               // SENSITIVITY
    no_width,               // BOUNDARY
    no_width,               // VOID
    no_width,               // USHORT
    sizeof(CS_UNICHAR),     // UNICHAR
    no_width,               // BLOB
    sizeof(CS_DATE),        // DATE
    sizeof(CS_TIME),        // TIME
    no_width,               // UNITEXT
    sizeof(CS_BIGINT),      // BIGINT
    sizeof(CS_USMALLINT),   // USMALLINT
    sizeof(CS_UINT),        // UINT
    sizeof(CS_UBIGINT),     // UBIGINT
    no_width,               // XML
    sizeof(CS_BIGDATETIME), // BIGDATETIME
    sizeof(CS_BIGTIME),     // BIGTIME
    no_width,               // TEXTLOCATOR
    no_width,               // IMAGELOCATOR
    no_width,               // UNITEXTLOCATOR
};

} // namespace

CS_INT comn_typelen(CS_INT type, CS_INT len) noexcept {
  return comn::is_builtin(type) && widths[type] != no_width ? widths[type] : len;
}
