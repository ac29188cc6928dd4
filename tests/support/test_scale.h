// How far exhaustive loops go: sanitizers make each step about ten times as dear.
#ifndef ZRVTEST_TEST_SCALE_H
#define ZRVTEST_TEST_SCALE_H

namespace zrvtest {

#ifdef __SANITIZE_ADDRESS__
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

} // namespace zrvtest

#endif
