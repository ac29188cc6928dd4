// A process of its own for the tests of what a process keeps: the once flags and the seed of the
// memory scramble. The clock is ZRVTEST_CLOCK; what it works on comes from standard input.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <iterator>
#include <string>

#include "zrvcomn/netenc.h"

namespace {

time_t now = 0;

void print_state(const char *when) {
  std::printf("%s %d %d %d\n", when, com_init_text_mem_once_flag, com_encrypt_bytes_once_flag,
              seed);
}

void encipher(CS_INT saltlen) {
  CS_BYTE text[] = {'x'}, salt[8] = {}, block[33];
  CS_INT length;
  com_initialize_tds_strings(nullptr, text, 1, salt, saltlen, block, &length);
}

int print_states() {
  char text[] = "some text";
  print_state("at the start");
  comb_get_Netkey(2);
  print_state("after comb_get_Netkey");
  com_decrypt_bytes(text, 9);
  print_state("after com_decrypt_bytes");
  com_encrypt_bytes(text, 0);
  print_state("after com_encrypt_bytes of nothing");
  com_encrypt_bytes(text, 9);
  print_state("after com_encrypt_bytes");
  ++now;
  com_encrypt_bytes(text, 9);
  print_state("after com_encrypt_bytes at another time");
  encipher(7);
  print_state("after a refused block");
  encipher(8);
  print_state("after a block");
  return 0;
}

// Row 2 of the working table is never all zero once it is built.
bool is_built() {
  static const OCTET zeros[32] = {};
  return std::memcmp(comb_get_Netkey(2), zeros, sizeof zeros) != 0;
}

int build(const std::string &first) {
  std::fputs(is_built() ? "built" : "unbuilt", stdout);
  OCTET block[8] = {}, salt[8] = {}, out[8];
  CS_INT length;
  if (first == "encipher")
    com__char_initialize(block, salt, out, 0);
  else if (first == "decipher")
    com__char_uninitialize(block, salt, out, 0);
  else
    com_uninitialize_tds_text(nullptr, block, 8, out, &length);
  std::fputs(is_built() ? " built" : " unbuilt", stdout);
  // A second build would bring the byte back.
  OCTET *const byte = comb_get_Netkey(200);
  const auto changed = static_cast<OCTET>(*byte ^ 0xFF);
  *byte = changed;
  com__char_initialize(block, salt, out, 0);
  std::puts(*byte == changed ? " kept" : " rebuilt");
  return 0;
}

int scramble(const std::string &mode) {
  std::string bytes(std::istreambuf_iterator<char>(std::cin), {});
  const auto length = static_cast<CS_INT>(bytes.size());
  if (mode == "seed-and-undo") {
    char other[] = "anything";
    com_encrypt_bytes(other, 8);
  }
  (mode == "scramble" ? com_encrypt_bytes : com_decrypt_bytes)(bytes.data(), length);
  std::cout << bytes;
  return 0;
}

} // namespace

// The dynamic linker binds the library to this.
extern "C" time_t time(time_t *result) noexcept {
  if (result != nullptr)
    *result = now;
  return now;
}

int main(int argc, char **argv) {
  const char *const clock = std::getenv("ZRVTEST_CLOCK");
  now = static_cast<time_t>(std::atol(clock != nullptr ? clock : "0"));
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "state")
    return print_states();
  if (mode == "build" && argc > 2)
    return build(argv[2]);
  return scramble(mode);
}
