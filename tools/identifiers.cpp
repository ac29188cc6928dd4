// Loading and look-up of identifiers.
#include "identifiers.h"

#include "errors.h"
#include "status_names.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

Identifiers::Identifiers() {
  context.ctxglobals = &globals;
  const CS_RETCODE status = comn_intl_load_globalid(&context, &table);
  if (status != CS_SUCCEED)
    throw StreamError(identifiers_failure(status, context));
  globals.ctxoids = table;
}

Identifiers::~Identifiers() {
  comn_intl_drop_globalid(&context, table);
}

CsOID *Identifiers::find(CS_INT oidclass, std::string name) {
  CsOID *found = nullptr;
  comn_globalid(&context, COM_NAME_TO_OID, &found, &oidclass, CS_UNUSED, name.data(),
                static_cast<CS_INT>(name.size()), nullptr, nullptr);
  return found;
}

std::string_view name_of(const CS_STRING_LIST &name) {
  return {name.string != nullptr ? name.string : "", static_cast<size_t>(name.len)};
}

std::string identifiers_failure(CS_RETCODE status, const CS_CONTEXT &context) {
  CS_CHAR name[] = "objectid.dat", path[1025];
  const bool has_path = com_path_cfgfile(nullptr, name, path, sizeof path, 0) == CS_SUCCEED;
  return std::string("cannot load ") + (has_path ? path : name) + ": " +
         failure_text(status, context) + ": " + advice_on(status) +
         " (zrvcomn config paths tells where files are looked for)";
}

const char *advice_on(CS_RETCODE status) {
  switch (status) {
  case COM_LOCFILE_ERROR:
    return "put the file back, and let this user read it";
  case COM_INTL_ERROR:
    return "mend the file, or put the shipped one back";
  case COM_UNKNOWN_NAME:
    return "give the name an identifier in objectid.dat, or take the directory away";
  case CS_MEM_ERROR:
    return "free some memory";
  default:
    return "its contents are not what they must be: put the shipped file back";
  }
}

std::string failure_text(CS_RETCODE status, const CS_CONTEXT &context) {
  return status_name(status) +
         (context.ctxintlerr != 0 ? std::string(", ") + intl_errstr(context.ctxintlerr) : "");
}

} // namespace zrvtool
