/// Asks the C functions for information, as a consumer does.
#ifndef ZYN_TESTS_GETTERS_H
#define ZYN_TESTS_GETTERS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "GenTL/GenTL.h"

namespace kittest {

using namespace GenTL;

/// An information getter with everything but (type, buffer, size) bound.
using Getter = std::function<GC_ERROR(INFO_DATATYPE*, void*, std::size_t*)>;

inline std::string Text(const Getter& get) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  std::size_t size = 0xDEAD;  // must not be looked at without a buffer
  EXPECT_EQ(get(&type, nullptr, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(type, INFO_DATATYPE_STRING);
  std::vector<char> buffer(size + 1, 'x');
  EXPECT_EQ(get(&type, buffer.data(), &size), GC_ERR_SUCCESS);
  EXPECT_EQ(buffer[size - 1], '\0');
  EXPECT_EQ(buffer[size], 'x');
  return buffer.data();
}

template <class T>
T Value(const Getter& get, INFO_DATATYPE expected) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  T value = {};
  std::size_t size = sizeof value;
  EXPECT_EQ(get(&type, &value, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(type, expected);
  EXPECT_EQ(size, sizeof value);
  return value;
}

inline bool Bool(const Getter& get) {
  return Value<std::uint8_t>(get, INFO_DATATYPE_BOOL8) != 0;
}
inline std::size_t Size(const Getter& get) {
  return Value<std::size_t>(get, INFO_DATATYPE_SIZET);
}
inline std::uint64_t UInt64(const Getter& get) {
  return Value<std::uint64_t>(get, INFO_DATATYPE_UINT64);
}
inline std::int32_t Int32(const Getter& get) {
  return Value<std::int32_t>(get, INFO_DATATYPE_INT32);
}
inline void* Pointer(const Getter& get) {
  return Value<void*>(get, INFO_DATATYPE_PTR);
}

/// The result of asking with a large buffer.
inline GC_ERROR ResultOf(const Getter& get) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  char buffer[4200];
  std::size_t size = sizeof buffer;
  return get(&type, buffer, &size);
}

template <class Function, class... Arguments>
Getter Bound(Function function, Arguments... arguments) {
  return [=](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return function(arguments..., type, buffer, size);
  };
}

}  // namespace kittest

#endif
