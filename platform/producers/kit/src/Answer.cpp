#include "Answer.h"

#include <cstring>

#include "producer/Error.h"

namespace zyn::producer {
namespace {

// Stores a value of known size. Returns nothing: a small buffer is thrown.
void Copy(const void* data, std::size_t needed, void* buffer, std::size_t* size) {
  if (buffer != nullptr) {
    if (*size < needed) {
      throw Error(GenTL::GC_ERR_BUFFER_TOO_SMALL, "The value needs " + std::to_string(needed) +
                                                      " bytes, the buffer has " + std::to_string(*size) +
                                                      ".");
    }
    if (needed > 0) std::memcpy(buffer, data, needed);
  }
  *size = needed;
}

}  // namespace

void RequirePointer(const void* pointer, const char* what) {
  const auto value = reinterpret_cast<std::uintptr_t>(pointer);
  if (value != 0 && value != ~std::uintptr_t{0}) return;
  throw Error(GenTL::GC_ERR_INVALID_PARAMETER, std::string(what) + " is not a valid pointer.");
}

Answer::Answer(GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size)
    : type_(type), buffer_(buffer), size_(size) {
  RequirePointer(type, "piType");
  RequirePointer(size, "piSize");
}

void Answer::Store(GenTL::INFO_DATATYPE type, const void* data, std::size_t size) const {
  Copy(data, size, buffer_, size_);
  *type_ = type;
}

void Answer::Text(const std::string& value) const {
  Store(GenTL::INFO_DATATYPE_STRING, value.c_str(), value.size() + 1);
}

void Answer::Int32(std::int32_t value) const {
  Store(GenTL::INFO_DATATYPE_INT32, &value, sizeof value);
}

void Answer::UInt32(std::uint32_t value) const {
  Store(GenTL::INFO_DATATYPE_UINT32, &value, sizeof value);
}

void Answer::UInt64(std::uint64_t value) const {
  Store(GenTL::INFO_DATATYPE_UINT64, &value, sizeof value);
}

void Answer::Size(std::size_t value) const {
  Store(GenTL::INFO_DATATYPE_SIZET, &value, sizeof value);
}

void Answer::Bool(bool value) const {
  const std::uint8_t byte = value ? 1 : 0;
  Store(GenTL::INFO_DATATYPE_BOOL8, &byte, sizeof byte);
}

void Answer::Pointer(void* value) const {
  Store(GenTL::INFO_DATATYPE_PTR, static_cast<const void*>(&value), sizeof value);
}

void Answer::Bytes(const void* data, std::size_t size) const {
  Store(GenTL::INFO_DATATYPE_BUFFER, data, size);
}

void AnswerText(const std::string& value, char* buffer, std::size_t* size) {
  RequirePointer(size, "piSize");
  Copy(value.c_str(), value.size() + 1, buffer, size);
}

}  // namespace zyn::producer
