// The plain character table as the library reads it.
#ifndef COMN_FRAME_CHARMAP_H
#define COMN_FRAME_CHARMAP_H

#include "csintrn.h"
#include "table.h"

COMN_DECLARE_TABLE(Com_Iso1_charmap);

#endif
