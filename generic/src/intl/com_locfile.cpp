// The openers of section files: from the names of a file to the file, open, and to a section in it.
#include "section_files.h"

#include <cstring>

#include "checks.h"

using comn::path_size;

namespace comn {

CS_RETCODE open_reported(CS_CONTEXT *context, const CS_CHAR *path, INTL_LOCFILE *ifile,
                         CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  if (locfilename != nullptr) {
    COMN_CHECK(filenamelen >= 1, CS_FAIL);
    intl_strlcpy(locfilename, path, static_cast<size_t>(filenamelen));
  }
  const int status = intl_open(path, ifile);
  if (status >= 0)
    return CS_SUCCEED;
  context->ctxintlerr = status;
  return COM_LOCFILE_ERROR;
}

CS_RETCODE find_section(CS_CONTEXT *context, INTL_LOCFILE *file, const char *name) noexcept {
  int status = 0;
  while (const char *const section = intl_nextsection(file, &status))
    if (std::strcmp(section, name) == 0)
      return CS_SUCCEED;
  return missing_result(context, status);
}

} // namespace comn

CS_RETCODE com__open_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset, CS_CHAR *locfile,
                             INTL_LOCFILE *ifile, CS_CHAR *locfilename,
                             CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  CS_CHAR path[path_size];
  const CS_RETCODE built = com__path_locfile(context, lang, charset, locfile, path, path_size);
  if (built != CS_SUCCEED)
    return COMN_TRACE(built);
  return COMN_TRACE(comn::open_reported(context, path, ifile, locfilename, filenamelen));
}

CS_RETCODE com__open_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename,
                              CS_CHAR *fileext, INTL_LOCFILE *ifile, CS_CHAR *locfilename,
                              CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  CS_CHAR path[path_size];
  const CS_RETCODE built = com_path_charfile(context, charset, filename, fileext, path, path_size);
  if (built != CS_SUCCEED)
    return COMN_TRACE(built);
  return COMN_TRACE(comn::open_reported(context, path, ifile, locfilename, filenamelen));
}

CS_RETCODE comn__open_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen, CS_CHAR *msgfile,
                              CS_INT msgfilelen, INTL_LOCFILE *ifile, CS_CHAR *path,
                              CS_INT pathlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  CS_CHAR found[path_size];
  const CS_RETCODE built =
      com_path_msgfile(context, lang, langlen, msgfile, msgfilelen, found, path_size);
  if (built != CS_SUCCEED)
    return COMN_TRACE(built);
  return COMN_TRACE(comn::open_reported(context, found, ifile, path, pathlen));
}

CS_RETCODE com__open_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile, INTL_LOCFILE *ifile,
                             CS_INT ncl) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  CS_CHAR path[path_size];
  const CS_RETCODE built = com_path_cfgfile(context, cfgfile, path, path_size, ncl);
  if (built != CS_SUCCEED)
    return COMN_TRACE(built);
  return COMN_TRACE(comn::open_reported(context, path, ifile, nullptr, 0));
}
