// The built-in default values.
#include "builtin.h"

// The entities. Text and binary have none but an empty one; all numbers are zero.
COMN_DEFINE_TABLE(Comp_CS_CHAR) = {};
COMN_DEFINE_TABLE(Comp_CS_LONGCHAR) = {};
COMN_DEFINE_TABLE(Comp_CS_TEXT) = {};
COMN_DEFINE_TABLE(Comp_CS_SENSITIVITY) = {};
COMN_DEFINE_TABLE(Comp_CS_BOUNDARY) = {};
COMN_DEFINE_TABLE(Comp_CS_XML) = {};
COMN_DEFINE_TABLE(Comp_CS_BINARY) = {};
COMN_DEFINE_TABLE(Comp_CS_LONGBINARY) = {};
COMN_DEFINE_TABLE(Comp_CS_IMAGE) = {};
COMN_DEFINE_TABLE(Comp_CS_UNICHAR) = {};
COMN_DEFINE_TABLE(Comp_CS_UNITEXT) = {};
COMN_DEFINE_TABLE(Comv_CS_TINYINT) = {};
COMN_DEFINE_TABLE(Comv_CS_BIT) = {};
COMN_DEFINE_TABLE(Comv_CS_SMALLINT) = {};
COMN_DEFINE_TABLE(Comv_CS_USHORT) = {};
COMN_DEFINE_TABLE(Comv_CS_USMALLINT) = {};
COMN_DEFINE_TABLE(Comv_CS_INT) = {};
COMN_DEFINE_TABLE(Comv_CS_REAL) = {};
COMN_DEFINE_TABLE(Comv_CS_LONG) = {};
COMN_DEFINE_TABLE(Comv_CS_VOID) = {};
COMN_DEFINE_TABLE(Comv_CS_BLOB) = {};
COMN_DEFINE_TABLE(Comv_CS_DATE) = {};
COMN_DEFINE_TABLE(Comv_CS_TIME) = {};
COMN_DEFINE_TABLE(Comv_CS_UINT) = {};
COMN_DEFINE_TABLE(Comv_CS_FLOAT) = {};
COMN_DEFINE_TABLE(Comv_CS_DATETIME) = {};
COMN_DEFINE_TABLE(Comv_CS_DATETIME4) = {};
COMN_DEFINE_TABLE(Comv_CS_MONEY) = {};
COMN_DEFINE_TABLE(Comv_CS_MONEY4) = {};
COMN_DEFINE_TABLE(Comv_CS_BIGINT) = {};
COMN_DEFINE_TABLE(Comv_CS_UBIGINT) = {};
COMN_DEFINE_TABLE(Comv_CS_BIGDATETIME) = {};
COMN_DEFINE_TABLE(Comv_CS_BIGTIME) = {};

COMN_DEFINE_TABLE(Comv_CS_NUMERIC) = {18, 0, {0}};
COMN_DEFINE_TABLE(Comv_CS_DECIMAL) = {18, 0, {0}};
COMN_DEFINE_TABLE(Comv_CS_VARBINARY) = {0, {0}};
COMN_DEFINE_TABLE(Comv_CS_VARCHAR) = {0, {0}};
COMN_DEFINE_TABLE(Comv_CS_LOCATOR) = {CS_LOCATOR_TAG, 0, 0, nullptr, 0, nullptr, 0};

namespace {

// The bytes that are told as an entity's size are the array's own, but for the empty ones.
template <class Entity>
constexpr CsDefVal row(const Entity &entity, CS_INT padtype = COM_PAD_NONE,
                       CS_INT size = sizeof(Entity)) {
  return {const_cast<Entity *>(&entity), size, padtype};
}

// Rows 1 and 2 stand crosswise to their types (binary has the long-character entity, with text
// padding, and long-character the binary one), as do rows 18 and 19; rows 13 and 15 hold 8 bytes
// for types of 4. All of that is deliberate: applications see it.
template <bool Own>
consteval comn::Table<CsDefVal, CS_TYPE_COUNT> build() {
#define ROW(entity, ...) row(COMN_TABLE_NAME(Own, entity) __VA_OPT__(, ) __VA_ARGS__)
  return {{
      ROW(Comp_CS_CHAR, COM_PAD_CHAR, 0),        // CHAR
      ROW(Comp_CS_LONGCHAR, COM_PAD_CHAR, 0),    // BINARY
      ROW(Comp_CS_BINARY, COM_PAD_BIN, 0),       // LONGCHAR
      ROW(Comp_CS_LONGBINARY, COM_PAD_BIN, 0),   // LONGBINARY
      ROW(Comp_CS_TEXT, COM_PAD_CHAR, 0),        // TEXT
      ROW(Comp_CS_IMAGE, COM_PAD_BIN, 0),        // IMAGE
      ROW(Comv_CS_TINYINT),                      // TINYINT
      ROW(Comv_CS_SMALLINT),                     // SMALLINT
      ROW(Comv_CS_INT),                          // INT
      ROW(Comv_CS_REAL),                         // REAL
      ROW(Comv_CS_FLOAT),                        // FLOAT
      ROW(Comv_CS_BIT),                          // BIT
      ROW(Comv_CS_DATETIME),                     // DATETIME
      ROW(Comv_CS_DATETIME4),                    // DATETIME4
      ROW(Comv_CS_MONEY),                        // MONEY
      ROW(Comv_CS_MONEY4),                       // MONEY4
      ROW(Comv_CS_NUMERIC),                      // NUMERIC
      ROW(Comv_CS_DECIMAL),                      // DECIMAL
      ROW(Comv_CS_VARBINARY),                    // VARCHAR
      ROW(Comv_CS_VARCHAR),                      // VARBINARY
      ROW(Comv_CS_LONG),                         // LONG
      ROW(Comp_CS_SENSITIVITY, COM_PAD_CHAR, 0), // SENSITIVITY
      ROW(Comp_CS_BOUNDARY, COM_PAD_CHAR, 0),    // BOUNDARY
      ROW(Comv_CS_VOID),                         // VOID
      ROW(Comv_CS_USHORT),                       // USHORT
      ROW(Comp_CS_UNICHAR, COM_PAD_UNICHAR),     // UNICHAR
      ROW(Comv_CS_BLOB),                         // BLOB
      ROW(Comv_CS_DATE),                         // DATE
      ROW(Comv_CS_TIME),                         // TIME
      ROW(Comp_CS_UNITEXT, COM_PAD_UNICHAR),     // UNITEXT
      ROW(Comv_CS_BIGINT),                       // BIGINT
      ROW(Comv_CS_USMALLINT),                    // USMALLINT
      ROW(Comv_CS_UINT),                         // UINT
      ROW(Comv_CS_UBIGINT),                      // UBIGINT
      ROW(Comp_CS_XML, COM_PAD_CHAR, 0),         // XML
      ROW(Comv_CS_BIGDATETIME),                  // BIGDATETIME
      ROW(Comv_CS_BIGTIME),                      // BIGTIME
      ROW(Comv_CS_LOCATOR),                      // TEXTLOCATOR
      ROW(Comv_CS_LOCATOR),                      // IMAGELOCATOR
      ROW(Comv_CS_LOCATOR),                      // UNITEXTLOCATOR
  }};
#undef ROW
}

} // namespace

COMN_PUBLISH_LINKED_TABLE(Comv_values, build);
