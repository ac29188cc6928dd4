// Conversions from text in bytes on their own.
#include "character.h"

COMN_CHARACTER_UNIT(char)
COMN_CHARACTER_TO_NUM(char, to_num(srcfmt, destfmt, dest, destlen, from))
