// com_encrypt_string with any bytes in the place of a public key: refused, or the result is as long as a
// key can be, and what was accepted is accepted again.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/comncrypto.h"

using zrvfuzz::require;

namespace {

constexpr size_t shortest = 512 / 8, longest = 16384 / 8;

struct Provider {
  Provider() {
    require(com_cclcontext_alloc(&context) == CS_SUCCEED);
    require(com_cclconn_alloc(&context, &connection) == CS_SUCCEED);
  }

  CS_CONTEXT context{};
  CS_VOID *connection = nullptr;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static Provider *const provider = new Provider;
  // Heap blocks of exactly the sizes told, for the sanitizers.
  std::vector<CS_BYTE> key(data, data + size);
  key.reserve(1);
  CS_BYTE text[1] = {'x'};
  const auto encrypt = [&](std::vector<CS_BYTE> &out, CS_INT &length) {
    return com_encrypt_string(provider->context.ctxcclctx, provider->connection, text, 1,
                              key.data(), static_cast<CS_INT>(size), out.data(),
                              static_cast<CS_INT>(out.size()), &length);
  };
  std::vector<CS_BYTE> out(longest, 0xA5);
  CS_INT length = -1;
  const CS_RETCODE status = encrypt(out, length);
  require(status == CS_SUCCEED || status == CS_FAIL);
  if (status == CS_FAIL) {
    require(length == -1);
    require(std::all_of(out.begin(), out.end(), [](CS_BYTE byte) { return byte == 0xA5; }));
    return 0;
  }
  const auto used = static_cast<size_t>(length);
  require(used >= shortest && used <= longest);
  std::vector<CS_BYTE> exact(used), little(used - 1, 0xA5);
  require(encrypt(exact, length) == CS_SUCCEED && length == static_cast<CS_INT>(used));
  require(encrypt(little, length) == CS_FAIL);
  require(std::all_of(little.begin(), little.end(), [](CS_BYTE byte) { return byte == 0xA5; }));
  return 0;
}
