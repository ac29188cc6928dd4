// The host's C locale set to one with a decimal comma, grouped digits and accented letters, to show
// that results do not depend on it.
#ifndef ZRVTEST_FOREIGN_LOCALE_H
#define ZRVTEST_FOREIGN_LOCALE_H

#include <string>

namespace zrvtest {

// Compiles the locale into a directory of its own, since few hosts have it installed, and sets it
// for as long as the object lives.
class ForeignLocale {
public:
  // With ISO-8859-1, accented letters are single bytes.
  explicit ForeignLocale(const std::string &charset = "UTF-8");
  ~ForeignLocale();
  ForeignLocale(const ForeignLocale &) = delete;
  ForeignLocale &operator=(const ForeignLocale &) = delete;

  // False where the host has no locale compiler or no definitions: skip the test then.
  bool is_set() const { return set; }

private:
  std::string directory;
  bool set = false;
};

} // namespace zrvtest

#endif
