// One output value between bytes that fail the test when they are written.
#ifndef ZRVTEST_PROTOCOL_GUARDED_VALUE_H
#define ZRVTEST_PROTOCOL_GUARDED_VALUE_H

#include "guarded_buffer.h"

namespace zrvtest {

template <class T>
class GuardedValue {
public:
  T *address() { return reinterpret_cast<T *>(buffer.data()); }
  operator T() const { return buffer.template value<T>(); }
  bool is_untouched() const { return buffer.is_untouched(); }

private:
  GuardedBuffer buffer{sizeof(T)};
};

} // namespace zrvtest

#endif
