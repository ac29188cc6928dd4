// The class of character sets in objectid.dat, joined with the library's own numbers.
#include "charset_names.h"

#include <algorithm>
#include <cstdlib>

#include "errors.h"
#include "status_names.h"
#include "zrvcomn/comloc.h"

namespace zrvtool {

std::vector<CharsetName> charset_names() {
  CS_CONTEXT context{};
  CS_OID_TABLE *table = nullptr;
  const CS_RETCODE status = comn_intl_load_globalid(&context, &table);
  if (status != CS_SUCCEED)
    throw StreamError("cannot load objectid.dat: " + status_name(status) +
                      " (zrvcomn config paths tells where it should be)");
  std::vector<CharsetName> sets;
  for (const CsOID *oid = table->ot_oid[COM_OID_CHARSET]; oid != nullptr; oid = oid->oidnext) {
    CharsetName set{{}, -1, UNICONV_CID_NONE, {}};
    for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next)
      set.names.emplace_back(name->string != nullptr ? name->string : "",
                             static_cast<size_t>(name->len));
    if (set.names.empty() || com_get_csid(set.names[0].data(), &set.converter) != CS_SUCCEED)
      continue;
    set.name = set.names[0];
    // The identifier ends with the number of the set.
    const std::string dotted(oid->oidstring, static_cast<size_t>(oid->oidnamelen));
    set.number = std::atoi(dotted.c_str() + dotted.rfind('.') + 1);
    sets.push_back(std::move(set));
  }
  comn_intl_drop_globalid(&context, table);
  return sets;
}

CharsetName find_charset(const std::string &name) {
  std::vector<std::string> known;
  for (CharsetName &set : charset_names()) {
    if (std::find(set.names.begin(), set.names.end(), name) != set.names.end())
      return set;
    known.insert(known.end(), set.names.begin(), set.names.end());
  }
  throw UsageError("unknown character set '" + name + "'" + suggest(name, known));
}

} // namespace zrvtool
