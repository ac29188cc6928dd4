// TLS, I/O objects, certificates and traces: names that whoever loads this library looks up, and that
// fail.
#include "velcrypto_exports.h"

#define DEFINE_VELCRYPTO_CALL(name)                                                                \
  RC name() {                                                                                      \
    return VELCRYPTO_EUNSUPPORTED;                                                                 \
  }
#define DEFINE_VELCRYPTO_MAKER(name)                                                               \
  void *name() {                                                                                   \
    return nullptr;                                                                                \
  }
// These are in library.cpp.
#define DEFINE_VELCRYPTO_LIFE(name)
#define DEFINE_VELCRYPTO_SET_MEMORY(name)
#define DEFINE_VELCRYPTO_SET_PROPERTY(name)

#define DEFINE(type, name) DEFINE_##type(name)
VELCRYPTO_NAMES(DEFINE)
