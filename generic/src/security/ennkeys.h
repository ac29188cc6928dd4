// The stored key table as the library reads it.
#ifndef COMN_SECURITY_ENNKEYS_H
#define COMN_SECURITY_ENNKEYS_H

#include "netenc.h"
#include "table.h"

COMN_DECLARE_TABLE(Com__Enkeys);

#endif
