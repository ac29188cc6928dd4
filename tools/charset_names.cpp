// The class of character sets in objectid.dat, joined with the library's own numbers.
#include "charset_names.h"

#include <algorithm>
#include <cstdlib>

#include "errors.h"
#include "identifiers.h"
#include "visible.h"
#include "zrvcomn/comloc.h"

namespace zrvtool {

std::vector<CharsetName> charset_names() {
  const Identifiers identifiers;
  std::vector<CharsetName> sets;
  for (const CsOID *oid = identifiers.first(COM_OID_CHARSET); oid != nullptr; oid = oid->oidnext) {
    CharsetName set{{}, -1, UNICONV_CID_NONE, {}};
    for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next)
      set.names.emplace_back(name_of(*name));
    if (set.names.empty() || com_get_csid(set.names[0].data(), &set.converter) != CS_SUCCEED)
      continue;
    set.name = set.names[0];
    // The identifier ends with the number of the set.
    const std::string dotted(oid->oidstring, static_cast<size_t>(oid->oidnamelen));
    set.number = std::atoi(dotted.c_str() + dotted.rfind('.') + 1);
    sets.push_back(std::move(set));
  }
  return sets;
}

CharsetName find_charset(const std::string &name) {
  std::vector<std::string> known;
  for (CharsetName &set : charset_names()) {
    if (std::find(set.names.begin(), set.names.end(), name) != set.names.end())
      return set;
    known.insert(known.end(), set.names.begin(), set.names.end());
  }
  throw UsageError("there is no character set " + in_quotes(name) + suggest(name, known));
}

} // namespace zrvtool
