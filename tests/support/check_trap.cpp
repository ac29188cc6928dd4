#include "check_trap.h"

#include <csignal>
#include <cstdlib>
#include <regex>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zrvtest {

namespace {

volatile std::sig_atomic_t caught_signals;

void count_signal(int) {
  caught_signals = caught_signals + 1;
}

[[noreturn]] void give_up(const char *what) {
  std::perror(what);
  std::_Exit(125);
}

bool matches(const CheckReport &report, const std::string &before, const std::string &file,
             const std::string &after) {
  const std::regex pattern(before + "file '([^']*/)?" + file + "' line [0-9]+" + after);
  return report.signals == 1 && std::regex_match(report.text, pattern);
}

} // namespace

DescriptorCapture::DescriptorCapture(int target)
    : descriptor(target), saved(dup(target)), file(memfd_create("capture", MFD_CLOEXEC)) {
  if (saved < 0 || file < 0 || dup2(file, descriptor) < 0)
    give_up("capture");
}

DescriptorCapture::~DescriptorCapture() {
  finish();
}

std::string DescriptorCapture::finish() {
  if (file < 0)
    return text;
  if (dup2(saved, descriptor) < 0)
    give_up("capture");
  close(saved);
  const off_t size = lseek(file, 0, SEEK_END);
  text.resize(static_cast<size_t>(size));
  if (pread(file, text.data(), text.size(), 0) != size)
    give_up("capture");
  close(file);
  file = -1;
  return text;
}

size_t open_descriptors() {
  size_t open = 0;
  for (int descriptor = 0; descriptor < 1024; ++descriptor)
    open += fcntl(descriptor, F_GETFD) != -1;
  return open;
}

CheckTrap::CheckTrap() : capture(2), previous(nullptr) {
  caught_signals = 0;
  previous = std::signal(SIGABRT, count_signal);
}

CheckTrap::~CheckTrap() {
  finish();
}

CheckReport CheckTrap::finish() {
  if (!finished) {
    std::fflush(stderr);
    std::signal(SIGABRT, previous);
    report.signals = caught_signals;
    report.text = capture.finish();
    finished = true;
  }
  return report;
}

bool is_null_pointer_report(const CheckReport &report, const std::string &file) {
  return matches(report, "\nInvalid NULL pointer , ", file, "\n");
}

bool is_assertion_report(const CheckReport &report, const std::string &file) {
  return matches(report, "\n\rassertion failed, ", file, "\n\r");
}

} // namespace zrvtest
