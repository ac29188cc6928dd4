// The secure store: opens its library and keeps the entry points.
#include <cstdarg>
#include <cstdio>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "checks.h"
#include "comerr.h"
#include "securestore.h"
#include "zrvintl.h"

FILE *ssfsfile = nullptr;

namespace {

constexpr char library_name[] = "libvelssfs.so";

SSFS_CONTEXT *record_of(CS_CONTEXT *context) noexcept {
  return static_cast<SSFS_CONTEXT *>(context->ctxssfsctx);
}

// Begins a line of the log, whose texts are arguments that the function takes for writable.
void log_place(int line) noexcept {
  com_ssfsdbg(const_cast<CS_CHAR *>("(%s line %3i): "), "comn_ssfslib_load", line);
}

void open_log() noexcept {
  constexpr mode_t owner_only = S_IRUSR | S_IWUSR;
  const int file = open("secstore.log", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, owner_only);
  ssfsfile = file < 0 ? nullptr : fdopen(file, "w");
  if (ssfsfile != nullptr)
    return;
  if (file >= 0)
    close(file);
  ssfsfile = stdout;
}

// Looks an entry point up; null when the library lacks it.
template <class Function>
bool look_up(CS_VOID *handle, const char *name, Function *&entry) noexcept {
  entry = reinterpret_cast<Function *>(dlsym(handle, name));
  return entry != nullptr;
}

bool look_up_all(SSFSAPI_PROVIDER &table) noexcept {
  return look_up(table.handle, "RSecSSFsSharedLibInit", table.SharedLibInit) &&
         look_up(table.handle, "RSecSSFsSetConfiguration", table.SetConfiguration) &&
         look_up(table.handle, "RSecSSFsGetRecordAPIGet", table.GetRecordAPIGet) &&
         look_up(table.handle, "RSecSSFsGetRecord", table.GetRecord) &&
         look_up(table.handle, "RSecSSFsGetRecordAPIRelease", table.GetRecordAPIRelease);
}

} // namespace

CS_RETCODE com_ssfscontext_alloc(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  if (context->ctxssfsctx != nullptr)
    return COMN_TRACE(CS_SUCCEED);
  // Deliberate: the record is in its place before the library is loaded, and stays there whatever
  // comes of that, so that a second call succeeds.
  context->ctxssfsctx = comn_calloc(1, sizeof(SSFS_CONTEXT));
  if (context->ctxssfsctx == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (comn_ssfslib_load(context) == CS_SUCCEED)
    return COMN_TRACE(CS_SUCCEED);
  CsErrParams parameters;
  com_ep_s(&parameters, const_cast<CS_CHAR *>("comn_ssfslib_load()"));
  com__error(context, COM_ERR_LOADLIB, &parameters);
  return COMN_TRACE(CS_FAIL);
}

CS_RETCODE com_ssfscontext_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  if (context->ctxssfsctx == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  if (comn_ssfslib_unload(context) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  comn_free(context->ctxssfsctx);
  context->ctxssfsctx = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_ssfslib_load(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  SSFS_CONTEXT *const record = record_of(context);
  if (record == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (record->ssfsp != nullptr)
    return COMN_TRACE(CS_SUCCEED);
  record->ssfsp = static_cast<SSFSAPI_PROVIDER *>(comn_calloc(1, sizeof(SSFSAPI_PROVIDER)));
  if (record->ssfsp == nullptr) {
    log_place(__LINE__);
    com_ssfsdbg(const_cast<CS_CHAR *>("Allocation of SSFSAPI_PROVIDER failed\n"));
    return COMN_TRACE(CS_FAIL);
  }
  record->ssfsp->handle = dlopen(library_name, RTLD_NOW);
  if (record->ssfsp->handle == nullptr) {
    log_place(__LINE__);
    com_ssfsdbg(const_cast<CS_CHAR *>("DLOPEN of %s library failed\n"), library_name);
    return COMN_TRACE(CS_FAIL);
  }
  return COMN_TRACE(look_up_all(*record->ssfsp) ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE comn_ssfslib_unload(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  SSFS_CONTEXT *const record = record_of(context);
  if (record == nullptr || record->ssfsp == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  // A library that could not be opened has no handle to close.
  if (record->ssfsp->handle != nullptr && dlclose(record->ssfsp->handle) != 0)
    return COMN_TRACE(CS_FAIL);
  // Deliberate: the record, which is about to go, keeps pointing here.
  comn_free(record->ssfsp);
  return COMN_TRACE(CS_SUCCEED);
}

void com_ssfsdbg(CS_CHAR *format, ...) noexcept {
  COMN_CHECK_PTR(format);
  if (ssfsfile == nullptr)
    open_log();
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(ssfsfile, format, arguments);
  va_end(arguments);
  std::fflush(ssfsfile);
}
