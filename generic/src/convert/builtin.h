// The tables that every context starts from, as the library reads them.
#ifndef COMN_CONVERT_BUILTIN_H
#define COMN_CONVERT_BUILTIN_H

#include "csintrn.h"
#include "table.h"

COMN_DECLARE_TABLE(Com__cnvrt_array);
COMN_DECLARE_TABLE(Comv_values);

#endif
