// Any bytes as a section file: the reader must find what the slow reader of the tests finds, and what
// a caller passes over must not change what it reads. The first four bytes choose the calls.
#include <cstring>
#include <string>
#include <string_view>

#include "fuzz_input.h"
#include "section_reference.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvfuzz::require;
using zrvtest::SectionEvent;

// The event that is `wanted`, or the one that ends the search for it.
size_t find_event(const std::vector<SectionEvent> &all, size_t next, SectionEvent::Kind wanted) {
  while (all[next].kind > wanted && all[next].kind != SectionEvent::end)
    ++next;
  return next;
}

// One call, and the event that stands for its answer. Returns the next event.
size_t check_call(INTL_LOCFILE *file, const std::vector<SectionEvent> &all, size_t next,
                  SectionEvent::Kind kind) {
  static constexpr decltype(&intl_nextsection) calls[] = {intl_nextsection, intl_nextentry,
                                                          intl_nextvalue};
  int status = 77;
  const char *const found = calls[kind](file, &status);
  const size_t place = find_event(all, next, kind);
  const SectionEvent &event = all[place];
  if (event.kind != kind) {
    require(found == nullptr);
    // An error behind the entry or the section is not seen yet.
    require(status == 0 || status == event.status);
    require(kind != SectionEvent::section || status == event.status);
    return place;
  }
  require(found != nullptr && status == event.status);
  const size_t length = event.text.size();
  require(std::memcmp(found, event.text.data(), length) == 0);
  if (kind == SectionEvent::value)
    for (size_t i = length; i < INTL_VALUE_SIZE; ++i)
      require(found[i] == '\0');
  else
    require(found[length] == '\0');
  return place + 1;
}

void check_all(const char *path, const std::vector<SectionEvent> &all) {
  INTL_LOCFILE file;
  std::memset(&file, 0xA5, sizeof file);
  require(intl_open(path, &file) == 0);
  size_t next = 0;
  while (all[next].kind != SectionEvent::end)
    next = check_call(&file, all, next, all[next].kind);
  check_call(&file, all, next, SectionEvent::section);
  require(all[next].status == 0 || file.linenum == all[next].line);
  require(intl_close(&file) == 0);
}

void check_order(const char *path, const std::vector<SectionEvent> &all, std::string_view calls) {
  INTL_LOCFILE file;
  std::memset(&file, 0xA5, sizeof file);
  require(intl_open(path, &file) == 0);
  size_t next = 0;
  for (int i = 0; i < 200 && all[next].kind != SectionEvent::end; ++i) {
    const auto choice = static_cast<unsigned char>(calls[static_cast<size_t>(i) % calls.size()]);
    next = check_call(&file, all, next, static_cast<SectionEvent::Kind>(choice % 3));
  }
  require(intl_close(&file) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr size_t choices = 4;
  if (size < choices)
    return 0;
  const std::string_view input(reinterpret_cast<const char *>(data), size);
  const std::string_view text = input.substr(choices);
  const zrvtest::TextFile file(text);
  const auto all = zrvtest::read_sections_slowly(text);
  check_all(file.path(), all);
  check_order(file.path(), all, input.substr(0, choices));
  return 0;
}
