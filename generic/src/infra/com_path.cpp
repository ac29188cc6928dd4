// Where installation files are: paths built by fixed rules under the home directory.
//
// Nothing here looks at the file system, except the search for the newest LDAP client library. The
// fit tests differ from builder to builder, and callers see the boundaries; each call of add()
// names the test that its part has to pass.
#include <dirent.h>

#include <cstring>
#include <initializer_list>

#include "checks.h"
#include "zrvintl.h"

CS_CHAR tclcfgpath[COM_TCLCFG_SIZE];

namespace {

// What the length with a further part must do to be accepted. A path that reaches the size of its
// buffer gives up its last character for the terminator.
enum class Fit { below_size, within_size };

class Path {
public:
  Path(CS_CHAR *buffer, CS_INT buffer_size) noexcept : text(buffer), size(buffer_size) {}

  void clear() noexcept {
    if (size > 0)
      std::memset(text, 0, static_cast<size_t>(size));
  }

  // Starts the path with the home directory, which may take `room` bytes with its terminator.
  CS_RETCODE add_home(CS_CONTEXT *context, CS_INT room) noexcept {
    const int result = intl_home(text, room);
    if (result < 0) {
      if (context != nullptr)
        context->ctxintlerr = result;
      return COM_INTL_ERROR;
    }
    length = result;
    return CS_SUCCEED;
  }

  bool add(const char *part, Fit fit) noexcept { return add('/', part, length_of(part), fit); }

  bool add_extension(const char *extension, Fit fit) noexcept {
    return add('.', extension, length_of(extension), fit);
  }

  // Adds a part for which the test takes a length of its own.
  bool add_counted(const char *part, CS_INT counted, Fit fit) noexcept {
    return add('/', part, counted, fit);
  }

  // Adds the product directory, if there is one. A name that `value_size` bytes cannot hold is
  // refused, never left out.
  template <int value_size>
  bool add_product(Fit fit) noexcept {
    char product[value_size];
    const int result = intlgetenv(product, value_size, "ZARVEK_NCL");
    return result == 0 || (result > 0 && add(product, fit));
  }

  long long bytes() const noexcept { return length; }

private:
  static long long length_of(const char *part) noexcept {
    return static_cast<long long>(std::strlen(part));
  }

  bool add(char separator, const char *part, long long counted, Fit fit) noexcept {
    length += counted + 1;
    if (fit == Fit::below_size ? length >= size : length > size)
      return false;
    const char joint[] = {separator, '\0'};
    intl_strlcat(text, joint, static_cast<size_t>(size));
    intl_strlcat(text, part, static_cast<size_t>(size));
    return true;
  }

  CS_CHAR *text;
  CS_INT size;
  long long length = 0;
};

// The localised tables that comn__path_locdata knows.
struct LocaleData {
  CS_INT type;
  const char *directory;
  const char *extension;
};
constexpr LocaleData locale_data[] = {
    {COM_LOCDATA_MONEY, "money", "mon"},
    {COM_LOCDATA_NUMERIC, "numeric", "num"},
    {COM_LOCDATA_DATETIME, "datetime", "dt"},
};

constexpr char ldap_library[] = "libzarvekldap.so";
constexpr char ldap_suffix[] = ".2.4.46_ccl";
constexpr int ldap_stem_size = sizeof "libzarvekldap" - 1;
static_assert(ldap_library[ldap_stem_size] == '.');

unsigned char *bytes_of(char *text) noexcept {
  return reinterpret_cast<unsigned char *>(text);
}

} // namespace

CS_RETCODE com_path_anyfile(CS_CHAR *pathname, CS_INT pathsize, CS_CHAR *directory,
                            CS_CHAR *filename, CS_INT ncl) noexcept {
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  Path path(pathname, pathsize);
  path.clear();
  // Deliberate: the home directory may take the size less one, its terminator counted in.
  const CS_RETCODE home = path.add_home(nullptr, pathsize > 0 ? pathsize - 1 : 0);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() < pathsize, COMN_TRACE(CS_FAIL));
  if (ncl == 1 && !path.add_product<512>(Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  if (directory != nullptr && !path.add(directory, Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  if (filename != nullptr && !path.add(filename, Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_path_ifile(CS_CONTEXT *context, CS_CHAR *pathname, CS_INT pathsize) noexcept {
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  const int result = intlgetenv(pathname, pathsize, "ZRVNCL_IFILE");
  if (result != 0)
    return COMN_TRACE(result > 0 ? CS_SUCCEED : CS_FAIL);

  Path path(pathname, pathsize);
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(path.add("interfaces", Fit::within_size) ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com_path_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile, CS_CHAR *pathname,
                            CS_INT pathsize, CS_INT ncl) noexcept {
  COMN_CHECK_PTR(cfgfile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  Path path(pathname, pathsize);
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  if (ncl != 0 && !path.add_product<513>(Fit::within_size))
    return COMN_TRACE(CS_FAIL);
  const bool fits = path.add("config", Fit::within_size) && path.add(cfgfile, Fit::within_size);
  return COMN_TRACE(fits ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com__path_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset, CS_CHAR *locfile,
                             CS_CHAR *pathname, CS_INT pathsize) noexcept {
  COMN_CHECK_PTR(locfile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  Path path(pathname, pathsize);
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  if (!path.add("locales", Fit::within_size))
    return COMN_TRACE(CS_FAIL);
  if (lang != nullptr && !path.add(lang, Fit::within_size))
    return COMN_TRACE(CS_FAIL);
  // A character set counts only below a language.
  if (lang != nullptr && charset != nullptr && !path.add(charset, Fit::within_size))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(path.add(locfile, Fit::within_size) ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com_path_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT /*langlen*/,
                            CS_CHAR *msgfile, CS_INT msgfilelen, CS_CHAR *pathname,
                            CS_INT pathsize) noexcept {
  COMN_CHECK_PTR(lang, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(msgfile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  Path path(pathname, pathsize);
  path.clear();
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  const bool directory_fits = path.add("locales", Fit::within_size) &&
                              path.add("message", Fit::within_size) &&
                              path.add(lang, Fit::within_size);
  // Deliberate: the caller's length decides whether the file name fits, its terminator what is
  // copied.
  if (!directory_fits || !path.add_counted(msgfile, msgfilelen, Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_path_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename,
                             CS_CHAR *fileext, CS_CHAR *pathname, CS_INT pathsize) noexcept {
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  Path path(pathname, pathsize);
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  if (!path.add("charsets", Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  if (charset != nullptr && !path.add(charset, Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  if (filename == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  if (!path.add(filename, Fit::below_size))
    return COMN_TRACE(CS_FAIL);
  if (fileext != nullptr && !path.add_extension(fileext, Fit::within_size))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__path_locdata(CS_CONTEXT *context, CS_INT type, CS_CHAR *filename,
                              CS_CHAR *pathname, CS_INT pathsize) noexcept {
  COMN_CHECK_PTR(filename, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(pathname, COMN_TRACE(CS_FAIL));
  const LocaleData *data = nullptr;
  for (const LocaleData &candidate : locale_data)
    if (candidate.type == type)
      data = &candidate;
  COMN_CHECK(data != nullptr, COMN_TRACE(CS_FAIL));

  Path path(pathname, pathsize);
  const CS_RETCODE home = path.add_home(context, pathsize);
  if (home != CS_SUCCEED)
    return COMN_TRACE(home);
  COMN_CHECK(path.bytes() <= pathsize, COMN_TRACE(CS_FAIL));
  const bool fits =
      path.add("locales", Fit::below_size) && path.add(data->directory, Fit::below_size) &&
      path.add(filename, Fit::below_size) && path.add_extension(data->extension, Fit::below_size);
  return COMN_TRACE(fits ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE com_set_tclcfg(CS_CHAR *path) noexcept {
  const size_t length = path != nullptr ? std::strlen(path) : 0;
  if (length >= COM_TCLCFG_SIZE - 1)
    return COMN_TRACE(CS_FAIL);
  if (length > 0)
    std::memmove(tclcfgpath, path, length);
  tclcfgpath[length] = '\0';
  return COMN_TRACE(CS_SUCCEED);
}

CS_INT com_get_tclcfg(CS_CHAR *buf, CS_INT buflen) noexcept {
  COMN_CHECK_PTR(buf, 0);
  if (tclcfgpath[0] != '\0') {
    // An override that does not fit hides the environment all the same.
    const auto length = static_cast<CS_INT>(std::strlen(tclcfgpath));
    if (length >= buflen)
      return 0;
    std::memcpy(buf, tclcfgpath, static_cast<size_t>(length) + 1);
    return length;
  }
  for (const char *const variable : {"ZRVNCL_TCL_CFG", "ZARVEK_TCL_CFG"}) {
    const int result = intlgetenv(buf, buflen, variable);
    if (result != 0)
      return result > 0 ? result : 0;
  }
  char file[] = "libtcl.cfg";
  if (com_path_cfgfile(nullptr, file, buf, buflen, 1) != CS_SUCCEED)
    return 0;
  return static_cast<CS_INT>(std::strlen(buf));
}

CS_RETCODE com__find_latest_ldapversion(CS_CHAR *version, CS_INT *updatefound) noexcept {
  COMN_CHECK_PTR(version, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(updatefound, COMN_TRACE(CS_FAIL));
  *updatefound = 0;
  char best[COM_LDAPVERSION_SIZE];
  intl_strlcpy(best, ldap_library, sizeof best);
  intl_strlcat(best, ldap_suffix, sizeof best);
  char stem[sizeof ldap_library];
  std::memcpy(stem, ldap_library, sizeof ldap_library);

  char directory[] = "devlib3p";
  char path[512];
  if (com_path_anyfile(path, sizeof path, directory, nullptr, 1) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  DIR *const entries = opendir(path);
  if (entries == nullptr)
    return COMN_TRACE(CS_FAIL);
  // Deliberate: names are compared byte by byte, so 2.4.9 beats 2.4.46.
  while (dirent *const entry = readdir(entries)) {
    if (com_unsignstrncmp(bytes_of(entry->d_name), bytes_of(stem), ldap_stem_size) == 0 &&
        com_unsignstrcmp(bytes_of(entry->d_name), bytes_of(best)) > 0) {
      intl_strlcpy(best, entry->d_name, sizeof best);
      *updatefound = 1;
    }
  }
  closedir(entries);
  if (*updatefound == 1)
    intl_strlcpy(version, best, COM_LDAPVERSION_SIZE);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_get_ldapversionsuffix(CS_CHAR *versionsuffix, CS_INT latest) noexcept {
  COMN_CHECK_PTR(versionsuffix, COMN_TRACE(CS_FAIL));
  char version[COM_LDAPVERSION_SIZE];
  CS_INT updatefound = 0;
  if (latest == 1 && com__find_latest_ldapversion(version, &updatefound) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  // Deliberate: what the search finds is a whole file name, not a suffix.
  intl_strlcpy(versionsuffix, updatefound == 1 ? version : ldap_suffix, COM_LDAPVERSION_SIZE);
  return COMN_TRACE(CS_SUCCEED);
}
