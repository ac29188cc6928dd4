// Tables that are exported.
//
// A program may define a name that the library exports, and then the program's object takes its place
// in every reference by that name, those of the library included. The library therefore reads a
// constant table under a second, hidden name, own_NAME, which nothing outside can replace. By its told
// name it is only handed out: what a call or a row of another table points to is the table that the
// program sees.
#ifndef COMN_FRAME_TABLE_H
#define COMN_FRAME_TABLE_H

#include <cstddef>

// Declares the own name of an exported table, with the type that its header gives it.
#define COMN_DECLARE_TABLE(name) extern "C" decltype(name) own_##name

// Defines an exported table under both names: COMN_DEFINE_TABLE(name) = {rows};
#define COMN_DEFINE_TABLE(name)                                                                    \
  extern "C" decltype(name) name __attribute__((alias("own_" #name)));                             \
  extern "C" constexpr decltype(name) own_##name

// The same for a table that is computed at compile time, by a constant expression of the type `record`
// (an array cannot be initialised from a function, so the names stand for a record). `name` and
// `bounds` are as the header declares them.
#define COMN_PUBLISH_TABLE(record, element, name, bounds, ...)                                     \
  extern "C" {                                                                                     \
  extern const record name##_storage;                                                              \
  constinit const record name##_storage = __VA_ARGS__;                                             \
  extern const element name bounds __attribute__((alias(#name "_storage")));                       \
  extern const element own_##name bounds __attribute__((alias(#name "_storage")));                 \
  }                                                                                                \
  static_assert(sizeof(record) == sizeof name)

// The same for a table that points to other exported tables, from a template build<bool Own>(): the
// rows of NAME point to the told names, those of own_NAME to the own ones (COMN_TABLE_NAME picks).
#define COMN_PUBLISH_LINKED_TABLE(name, build)                                                     \
  extern "C" {                                                                                     \
  extern const decltype(build<false>()) name##_storage;                                            \
  constinit const decltype(build<false>()) name##_storage = build<false>();                        \
  extern const decltype(build<true>()) own_##name##_storage;                                       \
  constinit const decltype(build<true>()) own_##name##_storage = build<true>();                    \
  extern decltype(name) name __attribute__((alias(#name "_storage")));                             \
  extern decltype(name) own_##name __attribute__((alias("own_" #name "_storage")));                \
  }                                                                                                \
  static_assert(sizeof name##_storage == sizeof name)
#define COMN_TABLE_NAME(own, name) ((own) ? own_##name : name)

namespace comn {

template <class Element, std::size_t Count>
struct Table {
  Element rows[Count];

  constexpr Element &operator[](std::size_t i) { return rows[i]; }
  constexpr const Element &operator[](std::size_t i) const { return rows[i]; }
};

} // namespace comn

#endif
