// The syntax of section files once more, slowly: what a reader finds in a text when it asks for
// everything.
#ifndef ZRVTEST_SECTION_REFERENCE_H
#define ZRVTEST_SECTION_REFERENCE_H

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zrvtest {

struct SectionEvent {
  enum Kind { section, entry, value, end } kind;
  std::string text;
  int status; // 1 for a value that has a successor; an error at the end
  int line;   // of an error, else 0

  bool operator==(const SectionEvent &) const = default;
};

inline std::ostream &operator<<(std::ostream &stream, const SectionEvent &event) {
  static const char *const kinds[] = {"section", "entry", "value", "end"};
  return stream << kinds[event.kind] << " <" << event.text << "> " << event.status << " line "
                << event.line;
}

// The last event, and no other, is an end. NULs at the end of a value are left out: a reader cannot
// tell them from what fills its buffer.
std::vector<SectionEvent> read_sections_slowly(std::string_view text);

} // namespace zrvtest

#endif
