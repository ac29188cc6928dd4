// The return-code trace and the printable names of the general codes.
#include <cstring>

#include "checks.h"
#include "debug_stream.h"
#include "table.h"

CS_INT Com_trace_enable = 1;

COMN_DEFINE_TABLE(Com_errors) = {
    {CS_SUCCEED, "CS_SUCCEED"},
    {CS_FAIL, "CS_FAIL"},
    {CS_MEM_ERROR, "CS_MEM_ERROR"},
    {CS_PENDING, "CS_PENDING"},
    {CS_QUIET, "CS_QUIET"},
    {CS_BUSY, "CS_BUSY"},
    {CS_INTERRUPT, "CS_INTERRUPT"},
    {CS_CANCELED, "CS_CANCELED"},
    {CS_ROW_FAIL, "CS_ROW_FAIL"},
    {CS_END_DATA, "CS_END_DATA"},
    {CS_END_RESULTS, "CS_END_RESULTS"},
    {CS_END_ITEM, "CS_END_ITEM"},
    {CS_NOMSG, "CS_NOMSG"},
    {CS_TIMED_OUT, "CS_TIMED_OUT"},
    {CS_PASSTHRU_EOM, "CS_PASSTHRU_EOM"},
    {CS_PASSTHRU_MORE, "CS_PASSTHRU_MORE"},
    {CS_TRYING, "CS_TRYING"},
};

namespace {

enum TraceLevel : CS_INT { trace_nothing = 1, trace_failures = 2, trace_everything = 3 };

// What an application meets in ordinary running; level 2 leaves it out.
bool is_ordinary(CS_RETCODE code) noexcept {
  switch (code) {
  case CS_SUCCEED:
  case CS_PENDING:
  case CS_INTERRUPT:
  case CS_END_DATA:
  case CS_END_RESULTS:
  case CS_END_ITEM:
    return true;
  default:
    return false;
  }
}

} // namespace

void com_errset(CS_INT level) noexcept {
  COMN_CHECK(level >= trace_nothing && level <= trace_everything);
  Com_trace_enable = level;
}

const CS_CHAR *com__errfind(CS_RETCODE error) noexcept {
  for (const ComErrString &row : own_Com_errors)
    if (row.errcode == error)
      return row.errstr;
  return nullptr;
}

CS_INT com__get_stack_depth() noexcept {
  return 0;
}

CS_RETCODE com_errtrace(CS_RETCODE error, char *file, int line) noexcept {
  if (Com_trace_enable == trace_nothing ||
      (Com_trace_enable == trace_failures && is_ordinary(error)))
    return error;

  const char *path = file != nullptr ? file : "";
  const char *slash = std::strrchr(path, '/');
  const char *base = slash != nullptr ? slash + 1 : path;
  FILE *stream = comn::debug_stream();
  for (CS_INT level = com__get_stack_depth(); level > 0; --level)
    std::fputc('.', stream);
  if (const CS_CHAR *name = com__errfind(error))
    std::fprintf(stream, "(%s) file %s, line %d\n", name, base, line);
  else
    std::fprintf(stream, "(%ld) file %s, line %d\n", static_cast<long>(error), base, line);
  std::fflush(stream);
  return error;
}
