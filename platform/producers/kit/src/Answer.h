/// Writes one value into the memory that a consumer handed to an information getter.
#ifndef ZYN_PRODUCER_ANSWER_H
#define ZYN_PRODUCER_ANSWER_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "GenTL/GenTL.h"

namespace zyn::producer {

/// The (type, buffer, size) triple of a getter. With a null buffer only type and size are stored, and what
/// `*size` held is never looked at. Exactly one of the value functions is called per answer.
class Answer {
 public:
  /// Throws Error with GC_ERR_INVALID_PARAMETER when type or size is null.
  Answer(GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size);

  /// Each throws Error with GC_ERR_BUFFER_TOO_SMALL, and stores nothing then.
  void Text(const std::string& value) const;
  void Int32(std::int32_t value) const;
  void UInt32(std::uint32_t value) const;
  void UInt64(std::uint64_t value) const;
  void Size(std::size_t value) const;
  void Bool(bool value) const;
  void Pointer(void* value) const;
  void Bytes(const void* data, std::size_t size) const;

 private:
  void Store(GenTL::INFO_DATATYPE type, const void* data, std::size_t size) const;

  GenTL::INFO_DATATYPE* type_;
  void* buffer_;
  std::size_t* size_;
};

/// The same for getters of text without a type: GCGetLastError, the ID getters, GCGetPortURL. The text may
/// hold NULs; one more is added at its end.
void AnswerText(const std::string& value, char* buffer, std::size_t* size);

/// Throws Error with GC_ERR_INVALID_PARAMETER naming `what` when the pointer is null or ~0.
void RequirePointer(const void* pointer, const char* what);

}  // namespace zyn::producer

#endif
