// One frame of the stack: where it returns to, and the words behind it.
//
// A frame is two words, the saved frame pointer and the return address; it holds on both data
// models as long as code is built with frame pointers. Code that is not leaves any value in the
// frame pointer, so no frame is believed before its memory was read.
#include <dlfcn.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>

#include "checks.h"
#include "stack_memory.h"

namespace {

// No frame lies in the page at address zero.
constexpr uintptr_t highest_bad_frame = 4095;

constexpr size_t argument_words = 5;

bool is_plausible(uintptr_t frame) noexcept {
  return frame > highest_bad_frame;
}

} // namespace

// The kernel copies the bytes, as for a debugger, and stops where a read of our own would fault. It
// needs no descriptor, of which a process in trouble may have none left. The call bypasses the C
// library: the sanitizers' interceptors would look at the memory themselves.
bool comn::read_stack_memory(uintptr_t address, void *buffer, size_t size) noexcept {
  const iovec to = {buffer, size};
  const iovec from = {reinterpret_cast<void *>(address), size};
  return syscall(SYS_process_vm_readv, getpid(), &to, 1L, &from, 1L, 0L) == static_cast<long>(size);
}

CS_RETCODE comn__get_frame_info(CS_VOID *fp, COMN_FRAME_INFO *info, CS_VOID **next) noexcept {
  COMN_CHECK_PTR(info, CS_FAIL);
  const auto frame = reinterpret_cast<uintptr_t>(fp);
  uintptr_t words[2];
  if (!is_plausible(frame) || !comn::read_stack_memory(frame, words, sizeof words))
    return CS_FAIL;
  const auto [saved_frame, return_address] = words;
  if (return_address == 0 || !is_plausible(saved_frame))
    return CS_FAIL;

  *info = COMN_FRAME_INFO{};
  info->fi_address = reinterpret_cast<CS_VOID *>(return_address);
  info->fi_module = "<unknown>";
  Dl_info found{};
  if (dladdr(info->fi_address, &found) != 0) {
    if (found.dli_fname != nullptr)
      info->fi_module = found.dli_fname;
    info->fi_symbol = found.dli_sname;
    const void *start = found.dli_sname != nullptr ? found.dli_saddr : found.dli_fbase;
    info->fi_offset = return_address - reinterpret_cast<uintptr_t>(start);
  }

  unsigned long arguments[argument_words];
  uintptr_t next_words[2];
  if (comn::read_stack_memory(saved_frame, next_words, sizeof next_words) &&
      comn::read_stack_memory(frame + sizeof words, arguments, sizeof arguments))
    std::snprintf(info->fi_args, sizeof info->fi_args,
                  "0x%8.8lx, 0x%8.8lx, 0x%8.8lx, 0x%8.8lx, 0x%8.8lx", arguments[0], arguments[1],
                  arguments[2], arguments[3], arguments[4]);
  if (next != nullptr)
    *next = reinterpret_cast<CS_VOID *>(saved_frame);
  return CS_SUCCEED;
}
