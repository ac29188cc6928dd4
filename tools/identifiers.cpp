// Loading and look-up of identifiers.
#include "identifiers.h"

#include "errors.h"
#include "status_names.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

Identifiers::Identifiers() {
  context.ctxglobals = &globals;
  const CS_RETCODE status = comn_intl_load_globalid(&context, &table);
  if (status != CS_SUCCEED)
    throw StreamError("cannot load objectid.dat: " + failure_text(status, context) +
                      " (zrvcomn config paths tells where it should be)");
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

std::string failure_text(CS_RETCODE status, const CS_CONTEXT &context) {
  return status_name(status) +
         (context.ctxintlerr != 0 ? std::string(", ") + intl_errstr(context.ctxintlerr) : "");
}

} // namespace zrvtool
