#ifndef ZYN_FAKES_HANDLES_H
#define ZYN_FAKES_HANDLES_H

#include <cstring>
#include <type_traits>

namespace fakes {

/// The object behind a public handle: the pointer behind the virtual-table pointer, if there is one.
template <class Handle>
void* InternalOf(const Handle& handle) {
  constexpr std::size_t kOffset = std::is_polymorphic_v<Handle> ? sizeof(void*) : 0;
  void* internal = nullptr;
  std::memcpy(&internal, reinterpret_cast<const unsigned char*>(&handle) + kOffset, sizeof(internal));
  return internal;
}

}  // namespace fakes

#endif
