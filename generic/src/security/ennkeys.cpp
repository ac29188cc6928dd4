// The stored key table.
#include "netenc.h"

const OCTET Com__Enkeys[256][32] = {
#include "ennkeys_table.h"
};
