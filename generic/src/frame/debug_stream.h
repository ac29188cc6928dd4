// The stream that debug output goes to.
#ifndef COMN_FRAME_DEBUG_STREAM_H
#define COMN_FRAME_DEBUG_STREAM_H

#include <cstdio>

#include "csintrn.h"

namespace comn {

inline FILE *debug_stream() noexcept {
  return Com_fp != nullptr ? Com_fp : stdout;
}

} // namespace comn

#endif
