// Tells what is missing of an installation, for a program whose context could not be made.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include <unistd.h>

#include "checks.h"
#include "comloc.h"
#include "section_files.h"
#include "zrvintl.h"

using comn::path_size;

namespace {

CS_CHAR identifiers_file[] = "objectid.dat";
CS_CHAR locales_file[] = "locales.dat";

bool is_readable(const char *path) noexcept {
  return access(path, R_OK) == 0;
}

[[gnu::format(printf, 1, 2)]] void print(const char *format, ...) noexcept {
  char line[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  com_perr(line);
}

// A file without which nothing goes on: its path stands in `path`, its bare name where none could be
// built.
bool verify_needed(CS_RETCODE built, CS_CHAR *path, const char *name) noexcept {
  if (built == CS_SUCCEED && is_readable(path))
    return true;
  if (built != CS_SUCCEED)
    intl_strlcpy(path, name, path_size);
  print("Cannot access file %s\n", path);
  return false;
}

struct LocaleName {
  char name[256];
  const char *variable; // null for the default
};

// As com_intl_envloc, but for no single category. False when a name is too long.
bool find_locale_name(LocaleName &locale) noexcept {
  for (const char *const variable : {"LC_ALL", "LANG"}) {
    locale.variable = variable;
    const int status = intlgetenv(locale.name, sizeof locale.name, variable);
    if (status < 0) {
      print("An intl library error occurs when trying to get locale name from environment variable "
            "%s\n",
            variable);
      return false;
    }
    if (status > 0)
      return true;
  }
  locale.variable = nullptr;
  intl_strlcpy(locale.name, "default", sizeof locale.name);
  return true;
}

// False when there is no row to go on with.
bool find_row(CS_CONTEXT *context, LocaleName &locale, CsLocNames &names,
              CS_CHAR *locales_path) noexcept {
  switch (comn__intl_lookup(context, locale.name, static_cast<CS_INT>(std::strlen(locale.name)),
                            &names, nullptr, 0)) {
  case COM_LOCFILE_ERROR:
    print("An intl library error occurs when trying to get local names from file: %s, can't "
          "continue!\n",
          locales_path);
    return false;
  case CS_FAIL:
    print("Locale name \"%s\" doesn't exist in your %s file\n", locale.name, locales_path);
    return false;
  default: // other failures go on with what was read, deliberately
    return true;
  }
}

// One of the files that a row asks for; all of them are looked at.
class Files {
public:
  Files(CS_CONTEXT *user, CsLocNames &row) noexcept : context(user), names(row) {}

  bool of_language(const char *name) noexcept {
    return tell(com__verify_msgfile(context, names.lang, names.langlen, const_cast<CS_CHAR *>(name),
                                    path, sizeof path));
  }
  bool of_charset(const char *name, const char *extension) noexcept {
    return tell(com__verify_charfile(context, names.charset, const_cast<CS_CHAR *>(name),
                                     const_cast<CS_CHAR *>(extension), path, sizeof path));
  }

private:
  bool tell(CS_RETCODE result) noexcept {
    if (result == CS_SUCCEED)
      return true;
    print("Cannot access %s file\n", path);
    return false;
  }

  CS_CONTEXT *context;
  CsLocNames &names;
  CS_CHAR path[path_size];
};

bool verify_row(CS_CONTEXT *context, CsLocNames &names) noexcept {
  Files files(context, names);
  bool complete = names.datetimelen > 0 || files.of_language("common.loc");
  complete &= files.of_language("cslib.loc");
  complete &= files.of_charset(names.sortorder, "srt");
  complete &= files.of_charset("charset.loc", nullptr);
  complete &= files.of_charset(names.charset, "cfg");
  return complete;
}

bool verify(CS_CONTEXT *context) noexcept {
  print("\n\nThe context allocation routine failed when it tried to load localization files!!\n");
  print("One or more following problems may caused the failure\n\n");
  CS_CHAR path[path_size];
  if (intl_home(path, 1024) < 0) {
    print("Cannot access the zarvek home directory, please check environment variable ZARVEK or "
          "~zarvek\n");
    return false;
  }
  print("Your zarvek home directory is %s. ", path);
  print("Check the environment variable ZARVEK if it is not the one you want!\n");
  if (!verify_needed(com_path_cfgfile(context, identifiers_file, path, path_size, 0), path,
                     identifiers_file) ||
      !verify_needed(com__path_locfile(context, nullptr, nullptr, locales_file, path, path_size),
                     path, locales_file))
    return false;

  LocaleName locale;
  if (!find_locale_name(locale))
    return false;
  if (locale.variable != nullptr)
    print("Using locale name \"%s\" defined in environment variable %s\n", locale.name,
          locale.variable);
  else
    print("Using default locale name: \"%s\"\n", locale.name);
  CsLocNames names;
  return find_row(context, locale, names, path) && verify_row(context, names);
}

// The outcome for a path that may not be there.
CS_RETCODE outcome(CS_RETCODE built, CS_CHAR *path, CS_INT size) noexcept {
  if (built == CS_SUCCEED)
    return is_readable(path) ? CS_SUCCEED : CS_FAIL;
  intl_strlcpy(path, "*", static_cast<size_t>(size));
  return built;
}

} // namespace

CS_RETCODE com_intl_verify_ctxloc(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(verify(context) ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com_intl_verify_a_msgfile(CS_CONTEXT *context, CS_LOCALE *locale, CS_CHAR *filename,
                                     CS_CHAR *buffer, CS_INT buflen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(locale, COMN_TRACE(CS_FAIL));
  const auto *const cache = static_cast<const CsLocCache *>(locale->messageptr);
  COMN_CHECK_PTR(cache, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(
      com__verify_msgfile(context, cache->langname, cache->langnamelen, filename, buffer, buflen));
}

CS_RETCODE com__verify_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen,
                               CS_CHAR *filename, CS_CHAR *buffer, CS_INT buflen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(filename, CS_FAIL);
  COMN_CHECK_PTR(buffer, CS_FAIL);
  COMN_CHECK(buflen > 0, CS_FAIL);
  const auto length = static_cast<CS_INT>(std::strlen(filename));
  return outcome(com_path_msgfile(context, lang, langlen, filename, length, buffer, buflen), buffer,
                 buflen);
}

CS_RETCODE com__verify_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename,
                                CS_CHAR *fileext, CS_CHAR *buffer, CS_INT buflen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(buffer, CS_FAIL);
  COMN_CHECK(buflen > 0, CS_FAIL);
  return outcome(com_path_charfile(context, charset, filename, fileext, buffer, buflen), buffer,
                 buflen);
}
