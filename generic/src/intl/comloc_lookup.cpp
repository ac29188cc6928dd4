// From the environment to a row of locales.dat: the locale's name, and what it stands for.
#include <cstring>

#include "checks.h"
#include "comloc.h"
#include "section_files.h"

namespace {

CS_CHAR file_name[] = "locales.dat";
constexpr const char *section_name = "linux";
constexpr const char *key_name = "locale";

// The variables of the categories, by number from 1 on.
constexpr const char *variables[] = {
    "LC_COLLATE", "LC_CTYPE", "LC_MESSAGE", "LC_MONETARY", "LC_NUMERIC", "LC_TIME", "LC_ALL",
};

// A name of a row, where it goes.
struct Place {
  CS_CHAR (CsLocNames::*name)[COM_LOCNAME_SIZE];
  CS_INT CsLocNames::*length;
};

// The values behind the name of the locale. A row must have the first two.
constexpr Place places[] = {
    {&CsLocNames::lang, &CsLocNames::langlen},
    {&CsLocNames::charset, &CsLocNames::charsetlen},
    {&CsLocNames::sortorder, &CsLocNames::sortorderlen},
    {&CsLocNames::datetime, &CsLocNames::datetimelen},
    {&CsLocNames::numeric, &CsLocNames::numericlen},
    {&CsLocNames::money, &CsLocNames::moneylen},
};
constexpr size_t required_values = 2;

CS_RETCODE store(CsLocNames *names, const Place &place, const char *value) noexcept {
  const size_t length = std::strlen(value);
  // Deliberately fatal, though a file can provoke it.
  COMN_CHECK(length < COM_LOCNAME_SIZE, CS_FAIL);
  std::memcpy(names->*place.name, value, length + 1);
  names->*place.length = static_cast<CS_INT>(length);
  return CS_SUCCEED;
}

// Goes to the entry whose first value is `name`.
CS_RETCODE find_row(CS_CONTEXT *context, INTL_LOCFILE *file, const CS_CHAR *name) noexcept {
  int status = 0;
  while (const char *const key = intl_nextentry(file, &status)) {
    // A strange entry ends the look-up, also where the row would follow, deliberately.
    if (std::strcmp(key, key_name) != 0)
      return CS_FAIL;
    const char *const value = intl_nextvalue(file, &status);
    if (value != nullptr && value[0] != '\0' && std::strcmp(value, name) == 0)
      return CS_SUCCEED;
    if (status < 0)
      break;
  }
  return status < 0 ? comn::reader_result(context, status) : CS_FAIL;
}

CS_RETCODE read_row(CS_CONTEXT *context, INTL_LOCFILE *file, CsLocNames *names) noexcept {
  size_t count = 0;
  for (const Place &place : places) {
    int status = 0;
    const char *const value = intl_nextvalue(file, &status);
    if (status < 0)
      return comn::reader_result(context, status);
    const bool is_empty = value == nullptr || value[0] == '\0';
    if (is_empty && count < required_values)
      return CS_FAIL;
    if (!is_empty) {
      const CS_RETCODE stored = store(names, place, value);
      if (stored != CS_SUCCEED)
        return stored;
    } else if (count == required_values) {
      store(names, place, "binary");
    }
    if (value == nullptr)
      break;
    ++count;
  }
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE com_intl_envloc(CS_CONTEXT *context, CS_INT lctype, CS_CHAR *name,
                           CS_INT namelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(name, COMN_TRACE(CS_FAIL));
  COMN_CHECK(lctype >= CS_LCTYPE_COLLATE && lctype <= CS_LCTYPE_ALL, COMN_TRACE(CS_FAIL));
  COMN_CHECK(namelen >= 1, COMN_TRACE(CS_FAIL));
  int status = intlgetenv(name, namelen, variables[lctype - 1]);
  if (status == 0)
    status = intlgetenv(name, namelen, "LANG");
  if (status == 0 &&
      intl_strlcpy(name, "default", static_cast<size_t>(namelen)) >= static_cast<size_t>(namelen))
    status = ZRVINTL_ESIZE;
  return COMN_TRACE(comn::reader_result(context, status));
}

CS_RETCODE comn__intl_lookup(CS_CONTEXT *context, CS_CHAR *name, CS_INT, CsLocNames *names,
                             CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(name, CS_FAIL);
  COMN_CHECK_PTR(names, CS_FAIL);
  *names = {};
  INTL_LOCFILE file;
  CS_RETCODE result =
      com__open_locfile(context, nullptr, nullptr, file_name, &file, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  result = comn::find_section(context, &file, section_name);
  if (result == CS_SUCCEED)
    result = find_row(context, &file, name);
  if (result == CS_SUCCEED)
    result = read_row(context, &file, names);
  return comn::close_behind(context, &file, result);
}
