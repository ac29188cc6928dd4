// The stored key table.
#include "ennkeys.h"

COMN_DEFINE_TABLE(Com__Enkeys) = {
#include "ennkeys_table.h"
};
