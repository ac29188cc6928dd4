// The comparisons of the cast-context conversions, for the benchmarks of conversions.
#ifndef ZRVBENCH_CAST_COMPARISONS_H
#define ZRVBENCH_CAST_COMPARISONS_H

#include "zrvcomn/csintrn.h"

namespace zrvbench {

// Every member that has a counterpart in the matrix, dates as text aside.
void compare_casts(CS_CONTEXT *matrix);

} // namespace zrvbench

#endif
