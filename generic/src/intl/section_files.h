// What every reader of a section file does around its reading.
#ifndef COMN_INTL_SECTION_FILES_H
#define COMN_INTL_SECTION_FILES_H

#include "comnlib.h"
#include "zrvintl.h"

namespace comn {

// The room for a path, with its NUL.
constexpr CS_INT path_size = 1025;

// The end of a loop over the reader: a success, or the failure that its status tells.
inline CS_RETCODE reader_result(CS_CONTEXT *context, int status) noexcept {
  if (status >= 0)
    return CS_SUCCEED;
  context->ctxintlerr = status;
  return COM_INTL_ERROR;
}

// The end of entries or values where there must be one more: CS_FAIL, or the failure of the reader.
inline CS_RETCODE missing_result(CS_CONTEXT *context, int status) noexcept {
  return status < 0 ? reader_result(context, status) : CS_FAIL;
}

// Closes a file behind what came of reading it; the first failure counts.
inline CS_RETCODE close_behind(CS_CONTEXT *context, INTL_LOCFILE *file,
                               CS_RETCODE result) noexcept {
  const int status = intl_close(file);
  return result == CS_SUCCEED ? reader_result(context, status) : result;
}

// Goes to the first section of a name: CS_FAIL when there is none.
CS_RETCODE find_section(CS_CONTEXT *context, INTL_LOCFILE *file, const char *name) noexcept;

// Tells a caller who asks which file it is, then opens it.
CS_RETCODE open_reported(CS_CONTEXT *context, const CS_CHAR *path, INTL_LOCFILE *ifile,
                         CS_CHAR *locfilename, CS_INT filenamelen) noexcept;

} // namespace comn

#endif
