// The built-in default values.
#include "csintrn.h"

// The entities. Text and binary have none but an empty one; all numbers are zero.
#define COMN_ZERO_ENTITY(name, size) extern const CS_BYTE name[size] = {0};

COMN_ZERO_ENTITY(Comp_CS_CHAR, 1)
COMN_ZERO_ENTITY(Comp_CS_LONGCHAR, 1)
COMN_ZERO_ENTITY(Comp_CS_TEXT, 1)
COMN_ZERO_ENTITY(Comp_CS_SENSITIVITY, 1)
COMN_ZERO_ENTITY(Comp_CS_BOUNDARY, 1)
COMN_ZERO_ENTITY(Comp_CS_XML, 1)
COMN_ZERO_ENTITY(Comp_CS_BINARY, 1)
COMN_ZERO_ENTITY(Comp_CS_LONGBINARY, 1)
COMN_ZERO_ENTITY(Comp_CS_IMAGE, 1)
COMN_ZERO_ENTITY(Comp_CS_UNICHAR, 1)
COMN_ZERO_ENTITY(Comp_CS_UNITEXT, 1)
COMN_ZERO_ENTITY(Comv_CS_TINYINT, 1)
COMN_ZERO_ENTITY(Comv_CS_BIT, 1)
COMN_ZERO_ENTITY(Comv_CS_SMALLINT, 2)
COMN_ZERO_ENTITY(Comv_CS_USHORT, 2)
COMN_ZERO_ENTITY(Comv_CS_USMALLINT, 2)
COMN_ZERO_ENTITY(Comv_CS_INT, 4)
COMN_ZERO_ENTITY(Comv_CS_REAL, 4)
COMN_ZERO_ENTITY(Comv_CS_LONG, 4)
COMN_ZERO_ENTITY(Comv_CS_VOID, 4)
COMN_ZERO_ENTITY(Comv_CS_BLOB, 4)
COMN_ZERO_ENTITY(Comv_CS_DATE, 4)
COMN_ZERO_ENTITY(Comv_CS_TIME, 4)
COMN_ZERO_ENTITY(Comv_CS_UINT, 4)
COMN_ZERO_ENTITY(Comv_CS_FLOAT, 8)
COMN_ZERO_ENTITY(Comv_CS_DATETIME, 8)
COMN_ZERO_ENTITY(Comv_CS_DATETIME4, 8)
COMN_ZERO_ENTITY(Comv_CS_MONEY, 8)
COMN_ZERO_ENTITY(Comv_CS_MONEY4, 8)
COMN_ZERO_ENTITY(Comv_CS_BIGINT, 8)
COMN_ZERO_ENTITY(Comv_CS_UBIGINT, 8)
COMN_ZERO_ENTITY(Comv_CS_BIGDATETIME, 8)
COMN_ZERO_ENTITY(Comv_CS_BIGTIME, 8)

extern const CS_NUMERIC Comv_CS_NUMERIC = {18, 0, {0}};
extern const CS_NUMERIC Comv_CS_DECIMAL = {18, 0, {0}};
extern const CS_VARBINARY Comv_CS_VARBINARY = {0, {0}};
extern const CS_VARCHAR Comv_CS_VARCHAR = {0, {0}};
extern const CS_LOCATOR Comv_CS_LOCATOR = {CS_LOCATOR_TAG, 0, 0, nullptr, 0, nullptr, 0};

namespace {

// The bytes that are told as an entity's size are the array's own, but for the empty ones.
template <class Entity>
constexpr CsDefVal row(const Entity &entity, CS_INT padtype = COM_PAD_NONE,
                       CS_INT size = sizeof(Entity)) {
  return {const_cast<Entity *>(&entity), size, padtype};
}

} // namespace

// Rows 1 and 2 stand crosswise to their types (binary has the long-character entity, with text
// padding, and long-character the binary one), as do rows 18 and 19; rows 13 and 15 hold 8 bytes
// for types of 4. All of that is deliberate: applications see it.
const CsDefVal Comv_values[CS_TYPE_COUNT] = {
    row(Comp_CS_CHAR, COM_PAD_CHAR, 0),        // CHAR
    row(Comp_CS_LONGCHAR, COM_PAD_CHAR, 0),    // BINARY
    row(Comp_CS_BINARY, COM_PAD_BIN, 0),       // LONGCHAR
    row(Comp_CS_LONGBINARY, COM_PAD_BIN, 0),   // LONGBINARY
    row(Comp_CS_TEXT, COM_PAD_CHAR, 0),        // TEXT
    row(Comp_CS_IMAGE, COM_PAD_BIN, 0),        // IMAGE
    row(Comv_CS_TINYINT),                      // TINYINT
    row(Comv_CS_SMALLINT),                     // SMALLINT
    row(Comv_CS_INT),                          // INT
    row(Comv_CS_REAL),                         // REAL
    row(Comv_CS_FLOAT),                        // FLOAT
    row(Comv_CS_BIT),                          // BIT
    row(Comv_CS_DATETIME),                     // DATETIME
    row(Comv_CS_DATETIME4),                    // DATETIME4
    row(Comv_CS_MONEY),                        // MONEY
    row(Comv_CS_MONEY4),                       // MONEY4
    row(Comv_CS_NUMERIC),                      // NUMERIC
    row(Comv_CS_DECIMAL),                      // DECIMAL
    row(Comv_CS_VARBINARY),                    // VARCHAR
    row(Comv_CS_VARCHAR),                      // VARBINARY
    row(Comv_CS_LONG),                         // LONG
    row(Comp_CS_SENSITIVITY, COM_PAD_CHAR, 0), // SENSITIVITY
    row(Comp_CS_BOUNDARY, COM_PAD_CHAR, 0),    // BOUNDARY
    row(Comv_CS_VOID),                         // VOID
    row(Comv_CS_USHORT),                       // USHORT
    row(Comp_CS_UNICHAR, COM_PAD_UNICHAR),     // UNICHAR
    row(Comv_CS_BLOB),                         // BLOB
    row(Comv_CS_DATE),                         // DATE
    row(Comv_CS_TIME),                         // TIME
    row(Comp_CS_UNITEXT, COM_PAD_UNICHAR),     // UNITEXT
    row(Comv_CS_BIGINT),                       // BIGINT
    row(Comv_CS_USMALLINT),                    // USMALLINT
    row(Comv_CS_UINT),                         // UINT
    row(Comv_CS_UBIGINT),                      // UBIGINT
    row(Comp_CS_XML, COM_PAD_CHAR, 0),         // XML
    row(Comv_CS_BIGDATETIME),                  // BIGDATETIME
    row(Comv_CS_BIGTIME),                      // BIGTIME
    row(Comv_CS_LOCATOR),                      // TEXTLOCATOR
    row(Comv_CS_LOCATOR),                      // IMAGELOCATOR
    row(Comv_CS_LOCATOR),                      // UNITEXTLOCATOR
};
