#include "HandleArrayStorage.h"
#include "ZynCamera.h"

namespace ZYNSDK {

ZynStringArray::ZynStringArray() : storage_(new ZynCameraBaseDataTemplate1<ZynString>) {}

ZynStringArray::ZynStringArray(const ZynString& element)
    : storage_(new ZynCameraBaseDataTemplate1<ZynString>(element)) {}

ZynStringArray::ZynStringArray(const ZynStringArray& other)
    : storage_(new ZynCameraBaseDataTemplate1<ZynString>(*other.storage_)) {}

ZynStringArray::~ZynStringArray() {
  if (storage_) storage_->Leave();
  storage_ = nullptr;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): equal storage is tested
ZynStringArray& ZynStringArray::operator=(const ZynStringArray& other) {
  if (storage_ == other.storage_) return *this;
  storage_->Elements() = other.storage_->Elements();
  return *this;
}

ZynString& ZynStringArray::operator[](int index) {
  return storage_->At(index);
}

ZynString ZynStringArray::operator[](int index) const {
  return storage_->At(index);
}

bool ZynStringArray::operator==(const ZynStringArray& other) const {
  return storage_->Elements() == other.storage_->Elements();
}

bool ZynStringArray::operator!=(const ZynStringArray& other) const {
  return !(*this == other);
}

// Design decision: the left operand grows although it is const. Pinned by JoiningLengthensTheLeftOperand.
ZynStringArray ZynStringArray::operator+=(const ZynStringArray& other) const {
  storage_->Append(*other.storage_);
  return *this;
}

unsigned int ZynStringArray::length() const {
  return storage_->Count();
}

void ZynStringArray::push_back(const ZynString& element) {
  storage_->Elements().push_back(element);
}

void ZynStringArray::push_back(const ZynStringArray& other) {
  storage_->Append(*other.storage_);
}

bool ZynStringArray::removeAt(unsigned int index) {
  return storage_->RemoveAt(index);
}

bool ZynStringArray::select(unsigned int index, ZynString* out) const {
  return storage_->Select(index, out);
}

bool ZynStringArray::replace(unsigned int index, const ZynString& element) {
  return storage_->Replace(index, element);
}

bool ZynStringArray::insert(unsigned int index, const ZynString& element) {
  return storage_->Insert(index, element);
}

void ZynStringArray::clear() {
  storage_->Clear();
}

bool ZynStringArray::swap(unsigned int first, unsigned int second) {
  return storage_->Swap(first, second);
}

void ZynStringArray::setSize(unsigned int count) {
  storage_->SetSize(count);
}

}  // namespace ZYNSDK
