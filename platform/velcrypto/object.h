// What all objects have in common: references, memory, the five slots that begin each list of
// functions.
#ifndef VELCRYPTO_OBJECT_H
#define VELCRYPTO_OBJECT_H

#include <atomic>
#include <cstring>
#include <new>
#include <utility>

#include "kernel.h"
#include "memory.h"
#include "velcrypto.h"

namespace velcrypto {

// The base of Derived, which has the interface Interface, its name in `name` and its list in
// `functions`. Every object keeps the kernel open.
template <class Derived, class Interface>
class Object : public Interface {
public:
  using Face = Interface;

  // A new object with one reference; null without memory.
  template <class... Arguments>
  static Derived *make(Arguments &&...arguments) noexcept {
    void *const block = memory.allocate(sizeof(Derived));
    if (block == nullptr)
      return nullptr;
    return new (block) Derived(std::forward<Arguments>(arguments)...);
  }

  // The object behind an interface.
  static Derived &of(Interface *face) noexcept { return *static_cast<Derived *>(face); }

  static RC query_interface(Interface *self, const char *name, void **object) noexcept {
    if (self == nullptr || name == nullptr || object == nullptr)
      return VELCRYPTO_EINVAL;
    if (std::strcmp(name, Derived::name) != 0)
      return VELCRYPTO_EUNSUPPORTED;
    add_ref(self);
    *object = self;
    return VELCRYPTO_OK;
  }

  static RC add_ref(Interface *self) noexcept {
    if (self == nullptr)
      return VELCRYPTO_EINVAL;
    ++of(self).references;
    return VELCRYPTO_OK;
  }

  static RC release(Interface *self) noexcept {
    if (self == nullptr)
      return VELCRYPTO_EINVAL;
    Derived &object = of(self);
    if (--object.references == 0) {
      void (*const give_back)(void *) = object.give_back;
      object.~Derived();
      give_back(&object);
      kernel::leave();
    }
    return VELCRYPTO_OK;
  }

  static RC set_property(Interface *, const char *, const void *, size_t) noexcept {
    return VELCRYPTO_EUNSUPPORTED;
  }

  static RC get_property(Interface *, const char *, void *, size_t *) noexcept {
    return VELCRYPTO_EUNSUPPORTED;
  }

protected:
  Object() noexcept : Interface{&Derived::functions} { kernel::use(); }
  ~Object() = default;

private:
  std::atomic<unsigned> references = 1;
  void (*const give_back)(void *) = memory.release; // the functions may be changed while it lives
};

// Hands a new object out, or tells that there was no memory.
template <class Derived>
RC deliver(Derived *object, typename Derived::Face **where) noexcept {
  if (object == nullptr)
    return VELCRYPTO_EMEMORY;
  *where = object;
  return VELCRYPTO_OK;
}

} // namespace velcrypto

// The five slots, at the head of a list of functions.
#define VELCRYPTO_COMMON(type)                                                                     \
  type::query_interface, type::add_ref, type::release, type::set_property, type::get_property

#endif
