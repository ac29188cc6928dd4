// Subcommands, which register themselves.
#ifndef ZRVTOOL_SUBCOMMAND_H
#define ZRVTOOL_SUBCOMMAND_H

#include <functional>
#include <string>
#include <vector>

#include "errors.h"

namespace CLI {
class App;
}

namespace zrvtool {

// One subcommand. A file in commands/ holds a static one, and that is all it takes to add it:
// `add` declares options and returns what runs once they are parsed; it is given the words behind
// "--", which are values whatever they look like.
class Subcommand {
public:
  using Run = std::function<int(const std::vector<std::string> &)>;
  using Add = Run (*)(CLI::App &);

  Subcommand(const char *name, const char *description, Add add);

  const char *const name;
  const char *const description;
  const Add add;

  // All of them, by name.
  static std::vector<const Subcommand *> all();

private:
  const Subcommand *const next;
  static inline constinit const Subcommand *first = nullptr;
};

} // namespace zrvtool

#endif
