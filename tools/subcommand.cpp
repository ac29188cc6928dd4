// The register of subcommands.
#include "subcommand.h"

#include <algorithm>
#include <string_view>

namespace zrvtool {

Subcommand::Subcommand(const char *the_name, const char *the_description, Add the_add)
    : name(the_name), description(the_description), add(the_add), next(first) {
  first = this;
}

std::vector<const Subcommand *> Subcommand::all() {
  std::vector<const Subcommand *> result;
  for (const Subcommand *command = first; command != nullptr; command = command->next)
    result.push_back(command);
  std::sort(result.begin(), result.end(), [](const Subcommand *a, const Subcommand *b) {
    return std::string_view(a->name) < b->name;
  });
  return result;
}

} // namespace zrvtool
