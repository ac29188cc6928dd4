// comn_chartobin on any text and any room: never a byte beyond maxlength, and the text of a result
// reads back to the same bytes. The first byte of the input is the room, the rest is the text.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "zrvcomn/comnlib.h"

namespace {

void require(bool condition) {
  if (!condition)
    std::abort();
}

CS_DATAFMT make_format(CS_INT type, size_t maxlength) {
  CS_DATAFMT format{};
  format.datatype = type;
  format.maxlength = static_cast<CS_INT>(maxlength);
  return format;
}

struct Outcome {
  CS_RETCODE status;
  std::vector<CS_BYTE> bytes; // a heap block of exactly the room, for the sanitizers
  CS_INT length;
};

Outcome read_hex(CS_CHAR *text, size_t length, size_t room) {
  CS_CONTEXT context{};
  CS_DATAFMT source = make_format(CS_TYPE_CHAR, length);
  CS_DATAFMT destination = make_format(CS_TYPE_BINARY, room);
  Outcome outcome{CS_FAIL, std::vector<CS_BYTE>(room), -1};
  CS_BYTE none = 0;
  outcome.status = comn_chartobin(&context, &source, text, &destination,
                                  room == 0 ? &none : outcome.bytes.data(), &outcome.length);
  require(none == 0);
  return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2)
    return 0; // an empty text is fatal
  const size_t room = data[0];
  std::vector<CS_CHAR> text(data + 1, data + size);
  const Outcome outcome = read_hex(text.data(), text.size(), room);
  require(outcome.length >= 0 && static_cast<size_t>(outcome.length) <= room);
  if (outcome.status != CS_SUCCEED || outcome.length == 0)
    return 0;

  std::string again;
  for (CS_INT i = 0; i < outcome.length; ++i) {
    const CS_BYTE byte = outcome.bytes[static_cast<size_t>(i)];
    again += "0123456789abcdef"[byte >> 4];
    again += "0123456789ABCDEF"[byte & 15];
  }
  const Outcome second = read_hex(again.data(), again.size(), room);
  require(second.status == CS_SUCCEED && second.length == outcome.length);
  require(second.bytes == outcome.bytes);
  return 0;
}
