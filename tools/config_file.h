// Configuration files, opened as an application opens them.
#ifndef ZRVTOOL_CONFIG_FILE_H
#define ZRVTOOL_CONFIG_FILE_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "started.h"
#include "zrvcomn/comcfg.h"

namespace zrvtool {

// A message about a file.
struct Fault {
  std::string text;
  long long offset; // of the token in the file, -1 where the fault has no place
  CS_INT line;      // from 1
};

struct NamedValues {
  std::string name;
  std::vector<std::string> values;
};

class ConfigFile {
public:
  // Reads a file in the character set of the environment's locale; an empty path is that of ncl.cfg.
  // Throws StreamError for an installation that is not complete.
  explicit ConfigFile(const std::string &path);
  ~ConfigFile();
  ConfigFile(const ConfigFile &) = delete;
  ConfigFile &operator=(const ConfigFile &) = delete;

  const std::string &path() const { return name; }
  bool is_loaded() const { return handle != nullptr; }

  // What came up since the last call.
  std::vector<Fault> take_faults() { return std::exchange(faults, {}); }

  // The values of an entry, includes walked; without a value the status that the look-up ended with.
  std::vector<std::string> get(const std::string &section, const std::string &entry,
                               CS_RETCODE &status);

  // The names of the sections, sorted, and the entries of one with their own values. An include is an
  // entry of its own, by the name of the word.
  std::vector<std::string> sections() const;
  std::optional<std::vector<NamedValues>> entries(const std::string &section) const;

private:
  static CS_RETCODE note(CS_CONTEXT *context, CS_CLIENTMSG *message);

  Started started{""};
  std::string name;
  CS_CONFIG *handle = nullptr;
  std::vector<Fault> faults;
};

} // namespace zrvtool

#endif
