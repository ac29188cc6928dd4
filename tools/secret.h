// Secrets on their way through the command: wiped when they go, read from where no other process sees
// them.
#ifndef ZRVTOOL_SECRET_H
#define ZRVTOOL_SECRET_H

#include <string>
#include <string_view>
#include <vector>

namespace zrvtool {

// A text that is wiped when it goes, and never moves while it grows.
class Secret {
public:
  Secret() = default;
  ~Secret();
  Secret(const Secret &) = delete;
  Secret &operator=(const Secret &) = delete;

  bool append(char byte) {
    if (used == static_cast<int>(sizeof bytes))
      return false;
    bytes[used++] = byte;
    return true;
  }
  void drop_carriage_return() {
    if (used > 0 && bytes[used - 1] == '\r')
      --used;
  }
  char *data() { return bytes; }
  int size() const { return used; }
  void resize(int size) { used = size; }
  std::string_view text() const { return {bytes, static_cast<size_t>(used)}; }

private:
  char bytes[1024];
  int used = 0;
};

// Room for a secret of any size, which is wiped when it goes.
class SecretBuffer {
public:
  explicit SecretBuffer(size_t size) : bytes(size) {}
  ~SecretBuffer();
  SecretBuffer(const SecretBuffer &) = delete;
  SecretBuffer &operator=(const SecretBuffer &) = delete;

  void swap(SecretBuffer &other) { bytes.swap(other.bytes); }
  char *data() { return bytes.data(); }
  size_t size() const { return bytes.size(); }

private:
  std::vector<char> bytes;
};

// Reads a line of standard input byte by byte, so that nothing secret stays behind in a buffer and
// what follows the line is left there. On a terminal it asks for `what` and does not show it. Throws
// StreamError.
void read_line(Secret &line, const std::string &what);

// The same from any descriptor, which `source` names in errors.
void read_line(Secret &line, const std::string &what, int descriptor, const std::string &source);

// Writes a secret to standard output and leaves no copy of it behind, also when that fails: bytes, or a
// line of text. On a terminal it is a line always, and commands nothing. Throws StreamError.
void write_secret(std::string_view secret, bool is_line = true);

} // namespace zrvtool

#endif
