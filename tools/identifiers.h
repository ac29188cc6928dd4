// The identifiers of the installation, in a context.
#ifndef ZRVTOOL_IDENTIFIERS_H
#define ZRVTOOL_IDENTIFIERS_H

#include <string>
#include <string_view>

#include "zrvcomn/comloc.h"

namespace zrvtool {

class Identifiers {
public:
  // Throws StreamError when they cannot be loaded.
  Identifiers();
  ~Identifiers();
  Identifiers(const Identifiers &) = delete;
  Identifiers &operator=(const Identifiers &) = delete;

  CS_CONTEXT *get() { return &context; }
  const CsOID *first(CS_INT oidclass) const { return table->ot_oid[oidclass]; }
  // The record of a class that has a name, or null.
  CsOID *find(CS_INT oidclass, std::string name);

private:
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_OID_TABLE *table = nullptr;
};

std::string_view name_of(const CS_STRING_LIST &name);

// Why the library could not read a file: the status by name, and what its reader says.
std::string failure_text(CS_RETCODE status, const CS_CONTEXT &context);

// What a user can do about that.
const char *advice_on(CS_RETCODE status);

// Both, when it was objectid.dat, with the place where that is looked for.
std::string identifiers_failure(CS_RETCODE status, const CS_CONTEXT &context);

} // namespace zrvtool

#endif
