// The stack walk.
#include <cstdint>
#include <cstdio>

#include "checks.h"

namespace {

CS_RETCODE print_to_stderr(CS_CHAR *text, CS_INT len) {
  std::fprintf(stderr, "%.*s\n", static_cast<int>(len), text);
  return CS_SUCCEED;
}

// Hands a printed line on, cut to what the buffer holds.
template <size_t Size>
CS_RETCODE hand_on(COMN_STACK_FUNC funcp, CS_CHAR (&line)[Size], int printed) {
  const int last = static_cast<int>(Size) - 1;
  return funcp(line, printed < last ? printed : last);
}

} // namespace

CS_RETCODE comn_dbg_stack(CS_VOID *, CS_VOID *fp, CS_INT depth, COMN_STACK_FUNC funcp) noexcept {
  if (depth == 0)
    return COMN_TRACE(CS_SUCCEED);
  if (funcp == nullptr)
    funcp = print_to_stderr;
  // This function's own frame holds the caller's frame pointer.
  if (fp == nullptr)
    fp = *static_cast<CS_VOID **>(__builtin_frame_address(0));

  CS_CHAR line[512];
  int printed = std::snprintf(line, sizeof line, "FramePointer: 0x%8.8lx",
                              static_cast<unsigned long>(reinterpret_cast<uintptr_t>(fp)));
  CS_RETCODE go_on = hand_on(funcp, line, printed);
  COMN_FRAME_INFO info;
  for (CS_INT frame = 0; frame < depth && go_on != CS_FAIL && fp != nullptr; ++frame) {
    if (comn__get_frame_info(fp, &info, &fp) != CS_SUCCEED)
      break;
    const auto address = static_cast<unsigned long>(reinterpret_cast<uintptr_t>(info.fi_address));
    if (info.fi_symbol != nullptr)
      printed =
          std::snprintf(line, sizeof line, "0x%8.8lx %-20s (%s) +0x%lx", address, info.fi_symbol,
                        info.fi_args, static_cast<unsigned long>(info.fi_offset));
    else
      printed = std::snprintf(line, sizeof line, "0x%8.8lx (%s)", address, info.fi_args);
    go_on = hand_on(funcp, line, printed);
  }
  return COMN_TRACE(CS_SUCCEED);
}
