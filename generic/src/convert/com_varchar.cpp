// Conversions from CS_VARCHAR.
#include "character.h"

COMN_CHARACTER_UNIT(varchar)
COMN_CHARACTER_TO_NUM(varchar, to_num(destfmt, dest, destlen, from, COMN_HERE))
