// The start and the end of a context with its installation.
#include "started.h"

#include <algorithm>

#include "charset_names.h"
#include "errors.h"
#include "identifiers.h"
#include "visible.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

CS_VOID *&category_of(CS_LOCALE &locale, CS_INT category) {
  CS_VOID **const pointers[] = {&locale.collateptr,  &locale.ctypeptr,   &locale.messageptr,
                                &locale.monetaryptr, &locale.numericptr, &locale.timeptr};
  return *pointers[category - 1];
}

std::vector<std::vector<std::string>> locale_rows() {
  CS_CONTEXT context{};
  INTL_LOCFILE file;
  CS_CHAR name[] = "locales.dat", path[1025] = "";
  const CS_RETCODE status =
      com__open_locfile(&context, nullptr, nullptr, name, &file, path, sizeof path);
  if (status != CS_SUCCEED)
    throw StreamError(std::string(path) + ": " + failure_text(status, context) + ": " +
                      advice_on(status));
  int reader = 0;
  const char *section, *key;
  do
    section = intl_nextsection(&file, &reader);
  while (section != nullptr && section != std::string_view("linux"));
  std::vector<std::vector<std::string>> rows;
  // An entry of another kind ends them.
  while (section != nullptr && (key = intl_nextentry(&file, &reader)) != nullptr &&
         key == std::string_view("locale")) {
    std::vector<std::string> row;
    while (const char *const value = intl_nextvalue(&file, &reader))
      row.emplace_back(value);
    if (!row.empty() && !row[0].empty())
      rows.push_back(std::move(row));
  }
  intl_close(&file);
  if (reader < 0)
    throw StreamError(std::string(path) + ": " + intl_errstr(reader));
  return rows;
}

std::vector<std::string> locale_names() {
  std::vector<std::string> names;
  for (std::vector<std::string> &row : locale_rows())
    names.push_back(std::move(row[0]));
  return names;
}

std::string environment_locale(CS_CONTEXT *context, CS_INT category) {
  CS_CHAR name[COM_LOCNAME_SIZE];
  if (com_intl_envloc(context, category, name, sizeof name) != CS_SUCCEED)
    throw StreamError("the name of a locale in the environment is too long");
  return name;
}

Started::Started(const std::string &name) {
  context.ctxglobals = &globals;
  try {
    start(name);
  } catch (...) {
    end();
    throw;
  }
}

Started::~Started() {
  end();
}

void Started::start(const std::string &name) {
  CS_OID_TABLE *identifiers;
  CS_CHAR file[1025] = "";
  CS_RETCODE status = comn_intl_load_globalid(&context, &identifiers);
  globals.ctxoids = identifiers;
  if (status != CS_SUCCEED)
    throw StreamError(identifiers_failure(status, context));
  status = comn_intl_init(&context, file, sizeof file);
  if (status != CS_SUCCEED)
    throw StreamError(std::string("cannot start from ") + file + ": " +
                      failure_text(status, context) + ": " + advice_on(status));
  context.ctxdeflocale = static_cast<CS_LOCALE *>(comn_calloc(1, sizeof(CS_LOCALE)));
  if (context.ctxdeflocale == nullptr)
    throw std::bad_alloc();
  for (CS_INT category = CS_LCTYPE_COLLATE; category <= CS_LCTYPE_TIME; ++category)
    category_of(*context.ctxdeflocale, category) =
        name.empty() ? required(environment_locale(&context, category), true)
                     : required(name, false);
  context.ctxlocale = context.ctxdeflocale;
  context.ctxlocale->ctxptr = &context;
  // A text that is missing shows in the lines themselves.
  com_errinit(&context);
}

void Started::end() {
  com_errdrop(&context);
  comn_loc_drop_all(&context);
  com_intl_loccache_drop(&context);
  com_intl_chardesc_drop(&context);
  comn_intl_dt_drop(&context);
  comn_intl_mon_drop(&context);
  comn_intl_num_drop(&context);
  comn_intl_message_drop(&context);
  comn_intl_drop_mnemdb(&context);
  comn_lm_exit(&context);
  comn_intl_drop_globalid(&context, static_cast<CS_OID_TABLE *>(globals.ctxoids));
}

CsLocCache *Started::load(const std::string &name, std::string &why_not) {
  CS_VOID *cache = nullptr;
  CS_CHAR file[1025] = "";
  context.ctxintlerr = 0;
  std::string text = name;
  const CS_RETCODE status =
      name.empty() ? CS_FAIL
                   : comn_intl_load(&context, text.data(), static_cast<CS_INT>(text.size()), &cache,
                                    file, sizeof file);
  if (status != CS_SUCCEED)
    why_not = std::string(file) + ": " + failure_text(status, context);
  return static_cast<CsLocCache *>(cache);
}

CsLocCache *Started::required(const std::string &name, bool is_of_environment) {
  std::string why_not;
  CsLocCache *const cache = load(name, why_not);
  if (cache == nullptr && !is_of_environment)
    if (const std::vector<std::string> names = locale_names();
        std::find(names.begin(), names.end(), name) == names.end())
      throw UsageError("there is no locale " + in_quotes(name) + suggest(name, names) +
                       "; zrvcomn locale list shows all");
  if (cache == nullptr)
    throw StreamError("cannot load the locale " + in_quotes(name) + ": " + why_not +
                      " (zrvcomn locale list shows all names)");
  return cache;
}

// Only what reads and writes texts asks for a set: characters by ctype, dates by time.
void Started::use_charset(const std::string &name) {
  std::string charset = find_charset(name).name;
  CsOID *oid = nullptr;
  CS_INT oidclass = COM_OID_CHARSET;
  comn_globalid(&context, COM_NAME_TO_OID, &oid, &oidclass, CS_UNUSED, charset.data(),
                static_cast<CS_INT>(charset.size()), nullptr, nullptr);
  CsLocCache loaded{};
  loaded.charname = charset.data();
  loaded.charnamelen = static_cast<CS_INT>(charset.size());
  CS_CHAR file[1025] = "";
  context.ctxintlerr = 0;
  const CS_RETCODE status =
      oid == nullptr ? CS_FAIL : comn__intl_load_charset(&context, oid, &loaded, file, sizeof file);
  if (status != CS_SUCCEED)
    throw StreamError("cannot load the character set " + charset + ": " + file + ": " +
                      failure_text(status, context));
  const auto derive = [&](CS_VOID *&pointer, CsLocCache &derived) {
    derived = *static_cast<CsLocCache *>(pointer);
    derived.locname = nullptr;
    derived.locchardesc = loaded.locchardesc;
    pointer = &derived;
  };
  derive(context.ctxlocale->ctypeptr, ctype_cache);
  derive(context.ctxlocale->timeptr, time_cache);
}

std::string Started::convert(const std::string &text, CS_VOID *cache) {
  CS_DATAFMT format{};
  format.maxlength = static_cast<CS_INT>(4 * text.size());
  std::string source = text, converted(4 * text.size(), '\0');
  CS_INT length = 0;
  const CS_RETCODE status = comn__convt_from_utf8(
      &context, 1, reinterpret_cast<CS_BYTE *>(source.data()), static_cast<CS_INT>(source.size()),
      &format, static_cast<CsLocCache *>(cache), converted.data(), &length);
  if (status != CS_SUCCEED)
    return text;
  converted.resize(static_cast<size_t>(length));
  return converted;
}

} // namespace zrvtool
