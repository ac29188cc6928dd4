// Any message with random parameters: the result is what a slow reader of the marks makes of it, in a
// buffer of any size. The first bytes choose the size and the parameters; behind them stand, each with a
// NUL at its end, two strings and the message.
#include <cstring>
#include <string>

#include "fuzz_input.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvfuzz::require;

std::string next_text(const uint8_t *&data, const uint8_t *end) {
  std::string text;
  while (data != end && *data != 0)
    text += static_cast<char>(*data++);
  if (data != end)
    ++data;
  return text;
}

// The marks one by one, as the rules tell them.
std::string expected(const std::string &message, const std::string (&arguments)[3]) {
  std::string result;
  size_t next = 0;
  for (size_t at = 0; at < message.size();) {
    const std::string rest = message.substr(at);
    const bool is_numbered =
        rest.size() > 2 && rest[0] == '%' && rest[1] >= '1' && rest[1] <= '9' && rest[2] == '!';
    const size_t turn = rest.rfind("%s", 0) == 0 || rest.rfind("%d", 0) == 0 ? 2
                        : rest.rfind("%ld", 0) == 0                          ? 3
                                                                             : 0;
    if (rest.rfind("%%", 0) == 0) {
      result += '%';
      at += 2;
    } else if (is_numbered && rest[1] < '4') {
      result += arguments[rest[1] - '1'];
      at += 3;
    } else if (turn != 0 && next < 3) {
      result += arguments[next++];
      at += turn;
    } else {
      result += message[at++];
    }
  }
  return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 6)
    return 0;
  const int room = data[0] + 1;
  int number;
  std::memcpy(&number, data + 1, sizeof number);
  const uint8_t *at = data + 5, *const end = data + size;
  const std::string first = next_text(at, end), third = next_text(at, end);
  const std::string message = next_text(at, end);
  const std::string wanted = expected(message, {first, std::to_string(number), third});

  char *const buffer = new char[static_cast<size_t>(room)]; // watched at its end
  const int length = intl_strbuild(0, buffer, room, message.c_str(), "%s, %ld, %s", first.c_str(),
                                   static_cast<long>(number), third.c_str());
  if (wanted.size() < static_cast<size_t>(room))
    require(length == static_cast<int>(wanted.size()) && wanted == buffer);
  else
    require(length == ZRVINTL_ESIZE && buffer[0] == '\0');
  delete[] buffer;
  return 0;
}
