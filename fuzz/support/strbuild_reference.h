// A message with its arguments, as a slow reader of the marks makes it.
#ifndef ZRVFUZZ_STRBUILD_REFERENCE_H
#define ZRVFUZZ_STRBUILD_REFERENCE_H

#include <cstddef>
#include <string>
#include <vector>

namespace zrvfuzz {

// The marks one by one, as the rules tell them. At most three arguments.
inline std::string build_message(const std::string &message,
                                 const std::vector<std::string> &arguments) {
  std::string result;
  std::size_t next = 0;
  for (std::size_t at = 0; at < message.size();) {
    const std::string rest = message.substr(at, 3);
    const std::size_t number =
        rest.size() == 3 && rest[0] == '%' && rest[1] >= '1' && rest[1] <= '9' && rest[2] == '!'
            ? static_cast<std::size_t>(rest[1] - '0')
            : 0;
    const std::size_t turn = rest.rfind("%s", 0) == 0 || rest.rfind("%d", 0) == 0 ? 2
                             : rest == "%ld"                                      ? 3
                                                                                  : 0;
    if (rest.rfind("%%", 0) == 0) {
      result += '%';
      at += 2;
    } else if (number != 0 && number <= arguments.size()) {
      result += arguments[number - 1];
      at += 3;
    } else if (turn != 0 && next < arguments.size()) {
      result += arguments[next++];
      at += turn;
    } else {
      result += message[at++];
    }
  }
  return result;
}

} // namespace zrvfuzz

#endif
