// zrvcomn check: loads everything of the installation and says what is wrong with which file.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "charset_names.h"
#include "identifiers.h"
#include "listing.h"
#include "output.h"
#include "started.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"
#include "zrvcomn/zrvunic.h"

namespace {

using namespace zrvtool;
namespace fs = std::filesystem;

std::string home() {
  char path[1025];
  if (intl_home(path, sizeof path) < 0)
    throw StreamError("the home directory cannot be found: set ZARVEK");
  return path;
}

struct Trouble {
  const char *problem, *advice;
};

Trouble converter_trouble(int failure) {
  switch (failure) {
  case UNICONV_ENOTABLE:
    return {"the file cannot be read", "put the file back, and let this user read it"};
  case UNICONV_EDAMAGED:
    return {"the file is damaged", "put the shipped one back"};
  default:
    return {"no memory", "free some memory"};
  }
}

// The directories of a folder, in order.
std::vector<std::string> directories(const fs::path &folder) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const fs::directory_entry &entry : fs::directory_iterator(folder, ignored))
    if (entry.is_directory())
      names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

class Check {
public:
  Check(Writer &writer, const Listing &wanted) : out(writer), listing(wanted), started("default") {}

  void language(const std::string &name) {
    ++checked;
    CsLocCache *const cache = derive(COM_LOCTYPE_LANGUAGE, name, base());
    if (cache == nullptr)
      return;
    CS_LOCALE locale = *started.locale();
    locale.messageptr = cache;
    CS_ERRHAN handle{&locale, messages_file};
    file = home() + "/locales/message/" + name + "/" + messages_file;
    CS_ERRSECTION sections[4];
    CS_ERRIDX defaults[4];
    std::copy(std::begin(Comlocsections), std::end(Comlocsections), sections);
    std::copy(std::begin(Comdeferrs), std::end(Comdeferrs), defaults);
    started.get()->ctxintlerr = 0;
    report(com_err_init(started.get(), &handle, sections, 4, defaults, 4));
  }

  void charset(const std::string &name) {
    ++checked;
    CsLocCache *const cache = derive(COM_LOCTYPE_CHARSET, name, base());
    if (cache == nullptr)
      return;
    std::error_code ignored;
    for (const fs::directory_entry &entry :
         fs::directory_iterator(home() + "/charsets/" + name, ignored))
      if (entry.path().extension() == ".srt") {
        ++checked;
        derive(COM_LOCTYPE_SORTORDER, entry.path().stem().string(), cache);
      }
  }

  void locales() {
    for (const std::string &locale : locale_names()) {
      ++checked;
      std::string why_not;
      if (started.load(locale, why_not) == nullptr)
        print("locale " + locale, why_not, "mend the row or the file that it names");
    }
  }

  // The tables of the converters to and from Unicode.
  void converters() {
    for (const CharsetName &set : charset_names()) {
      if (set.converter == UNICONV_CID_NONE)
        continue;
      CVTH converter = nullptr;
      const int failure = uniconv_HandleGet(set.converter, &converter);
      uniconv_HandleFree(converter);
      if (failure == UNICONV_ENOCONV) // there is none for this set
        continue;
      ++checked;
      if (failure == UNICONV_SUCCEED)
        continue;
      const Trouble trouble = converter_trouble(failure);
      print(home() + "/charsets/unicode/" + set.name + ".bin", trouble.problem, trouble.advice);
    }
  }

  int finish() {
    if (!listing.is_for_programs())
      out.text += std::to_string(checked) + " checked, " + std::to_string(problems) + " wrong\n";
    out.flush();
    return problems == 0 ? exit_success : exit_failure;
  }

private:
  CsLocCache *base() { return static_cast<CsLocCache *>(started.locale()->ctypeptr); }

  CsLocCache *derive(CS_INT type, std::string name, CsLocCache *from) {
    CS_VOID *cache = nullptr;
    CS_CHAR path[1025] = "";
    started.get()->ctxintlerr = 0;
    const CS_RETCODE status =
        comn_intl_load_zrvtypes(started.get(), type, name.data(), static_cast<CS_INT>(name.size()),
                                path, sizeof path, from, &cache);
    file = *path != '\0' ? path : name;
    report(status);
    return static_cast<CsLocCache *>(cache);
  }

  void report(CS_RETCODE status) {
    if (status != CS_SUCCEED)
      print(file, failure_text(status, *started.get()), advice_on(status));
  }

  void print(const std::string &what, const std::string &problem, const std::string &advice) {
    ++problems;
    if (listing.is_for_programs())
      listing.add(out.text, {{"what", what}, {"problem", problem}, {"advice", advice}});
    else
      out.text += what + ": " + problem + ": " + advice + "\n";
    out.settle();
  }

  Writer &out;
  const Listing &listing;
  Started started;
  CS_CHAR messages_file[12] = "comnlib.loc";
  std::string file;
  size_t checked = 0, problems = 0;
};

struct Options {
  std::string what = "all";
  Listing listing;
};

int run(const Options &options) {
  const std::string &what = options.what;
  Writer out(STDOUT_FILENO);
  Check check(out, options.listing);
  const std::vector<std::string> languages = directories(home() + "/locales/message");
  std::vector<std::string> sets = directories(home() + "/charsets");
  std::erase(sets, "unicode"); // the tables of the converters
  const auto has = [&](const std::vector<std::string> &names) {
    return std::find(names.begin(), names.end(), what) != names.end();
  };
  if (what == "all") {
    for (const std::string &name : languages)
      check.language(name);
    for (const std::string &name : sets)
      check.charset(name);
    check.converters();
    check.locales();
  } else if (has(languages)) {
    check.language(what);
  } else if (has(sets)) {
    check.charset(what);
  } else {
    throw UsageError("there is no language and no character set " + in_quotes(what));
  }
  return check.finish();
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  CLI::Option *const what =
      app.add_option("what", options->what, "A language, a character set, or all (the default)")
          ->type_name("LANGUAGE|SET|all");
  add_listing(app, options->listing, "problem");
  app.footer("Loads what is checked: tables and messages of languages, character sets with their\n"
             "sort orders and, with all, the tables of the converters and every locale. Each\n"
             "problem is a line: the file or locale, the status, what to do.\n"
             "\nExamples:\n"
             "  zrvcomn check all\n"
             "  zrvcomn check german\n"
             "  zrvcomn check iso_1 --json\n"
             "\nExit codes: 0 nothing is wrong, 1 something is, 2 wrong usage.");
  return [options, what](const Words &more) {
    take_word(what, options->what, more, "language or set");
    return run(*options);
  };
}

const Subcommand check("check", "Load the whole installation and say what is wrong with it", add);

} // namespace
