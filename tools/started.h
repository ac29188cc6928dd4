// A context that is started from the installation, as the layers above start theirs.
#ifndef ZRVTOOL_STARTED_H
#define ZRVTOOL_STARTED_H

#include <string>
#include <vector>

#include "zrvcomn/comerr.h"
#include "zrvcomn/comloc.h"

namespace zrvtool {

class Started {
public:
  // Starts with a locale in all six categories; without a name each category has the one that the
  // environment selects. Throws StreamError when the installation is not complete, and UsageError for
  // a name that locales.dat does not have.
  explicit Started(const std::string &name);
  ~Started();
  Started(const Started &) = delete;
  Started &operator=(const Started &) = delete;

  CS_CONTEXT *get() { return &context; }
  CS_LOCALE *locale() { return context.ctxlocale; }

  // The cache of a name, or null: why not then says what was wrong with which file.
  CsLocCache *load(const std::string &name, std::string &why_not);

  // From now on texts are in a character set, whatever the locale has. Throws UsageError when there is no
  // such set, and StreamError.
  void use_charset(const std::string &name);

  // UTF-8 in the character set of a category's cache.
  std::string convert(const std::string &text, CS_VOID *cache);

private:
  void start(const std::string &name);
  CsLocCache *required(const std::string &name, bool is_of_environment);
  void end();

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsLocCache ctype_cache{}, time_cache{}; // of the locale, but for the set; unused without one
};

// The rows of locales.dat, in its order, as far as the library reads them: the name of a locale first,
// then what it stands for. Throws StreamError when the file cannot be read.
std::vector<std::vector<std::string>> locale_rows();

// The names alone.
std::vector<std::string> locale_names();

// What a locale has of a category, by number from 1 on: a CsLocCache.
CS_VOID *&category_of(CS_LOCALE &locale, CS_INT category);

// The names that the environment selects for the categories, by number from 1 on.
std::string environment_locale(CS_CONTEXT *context, CS_INT category);

} // namespace zrvtool

#endif
