// Any message with random parameters: the result is what a slow reader of the marks makes of it, in a
// buffer of any size. The first bytes choose the size and the parameters; behind them stand, each with a
// NUL at its end, two strings and the message.
#include <string>

#include "fuzz_input.h"
#include "strbuild_reference.h"
#include "zrvcomn/zrvintl.h"

using zrvfuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  zrvfuzz::Input input(data, size);
  const int room = input.byte() + 1;
  const std::int32_t number = input.number();
  const std::string first = input.text(), third = input.text(), message = input.text();
  const std::string wanted =
      zrvfuzz::build_message(message, {first, std::to_string(number), third});

  char *const buffer = new char[static_cast<size_t>(room)]; // watched at its end
  const int length = intl_strbuild(0, buffer, room, message.c_str(), "%s, %ld, %s", first.c_str(),
                                   long{number}, third.c_str());
  if (wanted.size() < static_cast<size_t>(room))
    require(length == static_cast<int>(wanted.size()) && wanted == buffer);
  else
    require(length == ZRVINTL_ESIZE && buffer[0] == '\0');
  delete[] buffer;
  return 0;
}
