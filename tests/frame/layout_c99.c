/* The published layouts as a C99 program sees them. Each row is checked when this unit is compiled.
 */
#include "layout_facts.h"

#define CONCAT_(a, b) a##b
#define CONCAT(a, b) CONCAT_(a, b)
#define CHECK(condition) extern char CONCAT(layout_check_, __LINE__)[(condition) ? 1 : -1]

/* One array for all the rows of a table: a row that does not hold is a negative length. */
#define ONE_ROW(condition) +sizeof(char[(condition) ? 1 : -1])
#define IS_ILP32 (sizeof(void *) == 4)

#define INTEGER_ROW(type, width, is_signed)                                                        \
  ONE_ROW(sizeof(type) == (width) && (((type)-1 < (type)1) == (is_signed)))
CHECK((0 LAYOUT_INTEGERS(INTEGER_ROW)) > 0);

#define SIZE_ROW(record, size) ONE_ROW(sizeof(record) == (size))
CHECK((0 LAYOUT_VALUE_RECORDS(SIZE_ROW)) > 0);

#define FIELD_ROW(record, field, offset, width)                                                    \
  ONE_ROW(offsetof(record, field) == (offset) && sizeof(((record *)0)->field) == (width))
CHECK((0 LAYOUT_VALUE_FIELDS(FIELD_ROW)) > 0);

#define ILP32_SIZE_ROW(record, size) ONE_ROW(!IS_ILP32 || sizeof(record) == (size))
CHECK((0 LAYOUT_POINTER_RECORDS(ILP32_SIZE_ROW)) > 0);

#define ILP32_FIELD_ROW(record, field, offset)                                                     \
  ONE_ROW(!IS_ILP32 || offsetof(record, field) == (offset))
CHECK((0 LAYOUT_POINTER_FIELDS(ILP32_FIELD_ROW)) > 0);

#define APPGLOBAL_ROW(field, offset) ONE_ROW(offsetof(CsAppGlobal, field) == (offset))
CHECK((0 LAYOUT_APPGLOBAL_FIELDS(APPGLOBAL_ROW)) > 0);

#define CONSTANT_ROW(name, value) ONE_ROW((name) == (value))
CHECK((0 LAYOUT_CONSTANTS(CONSTANT_ROW)) > 0);

CHECK(sizeof(CS_CHAR) == 1);
CHECK(sizeof(CS_REAL) == 4);
CHECK(sizeof(CS_FLOAT) == 8);
CHECK(!IS_ILP32 || sizeof(CS_CONV_FUNC[CS_TYPE_COUNT * CS_TYPE_COUNT]) == 6400);

/* What C sees of a few records, for the C++ test to compare. */
size_t layout_c99_size_of_context(void);
size_t layout_c99_size_of_context(void) {
  return sizeof(CS_CONTEXT);
}

size_t layout_c99_size_of_appglobal(void);
size_t layout_c99_size_of_appglobal(void) {
  return sizeof(CsAppGlobal);
}
