#include "ZynCamera/Zyn3DIntArray.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "AppendForOverwrite.h"
#include "ZynVector.h"

namespace ZYNSDK {

namespace {

std::size_t Count(int count) {
  if (count < 0) throw std::length_error("a negative number of values");
  return static_cast<std::size_t>(count);
}

std::size_t CountOf(const int* data, int count) {
  const std::size_t checked = Count(count);
  return data ? checked : 0;
}

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

Zyn3DIntArray::Zyn3DIntArray() : values_(new ZynVector<int>) {}

Zyn3DIntArray::Zyn3DIntArray(int* data, int count)
    : values_(new ZynVector<int>(data, CountOf(data, count))) {}

// Design decision: copies share their values. Pinned by ACopySharesTheValues and AssigningSharesTheValues.
Zyn3DIntArray::Zyn3DIntArray(const Zyn3DIntArray& other) : values_(new ZynVector<int>(*other.values_)) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the shared pointer handles it
Zyn3DIntArray& Zyn3DIntArray::operator=(const Zyn3DIntArray& other) {
  *values_ = *other.values_;
  return *this;
}

Zyn3DIntArray::~Zyn3DIntArray() {
  delete values_;
  values_ = nullptr;
}

Zyn3DIntArray Zyn3DIntArray::DeepCopy() const {
  Zyn3DIntArray copy;
  *copy.values_ = values_->DeepCopy();
  return copy;
}

void Zyn3DIntArray::Append(const int& value) {
  (*values_)->Append(value);
}

void Zyn3DIntArray::Append(const Zyn3DIntArray& other) {
  (*values_)->Append(other.Data(), (*other.values_)->Size());
}

int Zyn3DIntArray::Length() const {
  return static_cast<int>((*values_)->Size());
}

void Zyn3DIntArray::Remove(int index) {
  if (IsValid(index)) (*values_)->Erase(At(index));
}

void Zyn3DIntArray::Select(int index, int* out) const {
  if (out && IsValid(index)) *out = Data()[index];
}

// Design decision: inserting behind the last value is refused; Append is for that. Pinned by
// InsertRefusesTheEnd.
void Zyn3DIntArray::Insert(int index, int value) {
  if (IsValid(index)) (*values_)->Insert(At(index), value);
}

void Zyn3DIntArray::Replace(int index, int value) {
  if (IsValid(index)) Data()[index] = value;
}

void Zyn3DIntArray::Swap(int first, int second) {
  if (IsValid(first) && IsValid(second)) std::swap(Data()[first], Data()[second]);
}

bool Zyn3DIntArray::IsValid(int index) const {
  return index >= 0 && index < Length();
}

void Zyn3DIntArray::Clear() {
  (*values_)->Free();
}

int Zyn3DIntArray::operator[](int index) const {
  return IsValid(index) ? Data()[index] : 0;
}

int& Zyn3DIntArray::operator[](int index) {
  return Data()[index];
}

int* Zyn3DIntArray::Data() const {
  return (*values_)->Data();
}

void Zyn3DIntArray::SetSize(int count) {
  (*values_)->Resize(Count(count));
}

int* AppendForOverwrite(Zyn3DIntArray& array, int count) {
  return (*array.values_)->AppendForOverwrite(Count(count));
}

}  // namespace ZYNSDK
