// Publishes a table that is computed at compile time under its own C name.
//
// A C array cannot be initialised from a function, so the table is computed into a record, which
// the name then aliases.
#ifndef COMN_FRAME_TABLE_H
#define COMN_FRAME_TABLE_H

#include <cstddef>

namespace comn {

template <class Element, std::size_t Count>
struct Table {
  Element rows[Count];

  constexpr Element &operator[](std::size_t i) { return rows[i]; }
  constexpr const Element &operator[](std::size_t i) const { return rows[i]; }
};

} // namespace comn

// `name` and `bounds` are as the header declares them; the last argument is a constant
// expression of the type `record`.
#define COMN_PUBLISH_TABLE(record, element, name, bounds, ...)                                     \
  extern "C" {                                                                                     \
  extern const record name##_storage;                                                              \
  constinit const record name##_storage = __VA_ARGS__;                                             \
  extern const element name bounds __attribute__((alias(#name "_storage")));                       \
  }                                                                                                \
  static_assert(sizeof(record) == sizeof name)

#endif
