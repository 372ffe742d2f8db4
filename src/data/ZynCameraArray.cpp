#include "HandleArrayStorage.h"
#include "ZynCamera.h"

namespace ZYNSDK {

ZynCameraArray::ZynCameraArray() : storage_(new ZynCameraBaseDataTemplate1<ZynCamera>) {}

ZynCameraArray::ZynCameraArray(const ZynCamera& element)
    : storage_(new ZynCameraBaseDataTemplate1<ZynCamera>(element)) {}

ZynCameraArray::ZynCameraArray(const ZynCameraArray& other)
    : storage_(new ZynCameraBaseDataTemplate1<ZynCamera>(*other.storage_)) {}

ZynCameraArray::~ZynCameraArray() {
  if (storage_) storage_->Leave();
  storage_ = nullptr;
}

// Design decision: arrays of references share their storage when assigned; identity is what operator==
// compares. Pinned by AssigningSharesTheStorage.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it shares before it leaves
ZynCameraArray& ZynCameraArray::operator=(const ZynCameraArray& other) {
  ZynCameraBaseDataTemplate1<ZynCamera>* shared = other.storage_->Share();
  storage_->Leave();
  storage_ = shared;
  return *this;
}

ZynCamera& ZynCameraArray::operator[](int index) {
  return storage_->At(index);
}

ZynCamera ZynCameraArray::operator[](int index) const {
  return storage_->At(index);
}

bool ZynCameraArray::operator==(const ZynCameraArray& other) const {
  return storage_ == other.storage_;
}

bool ZynCameraArray::operator!=(const ZynCameraArray& other) const {
  return !(*this == other);
}

// Design decision: the left operand grows although it is const. Pinned by JoiningLengthensTheLeftOperand.
ZynCameraArray ZynCameraArray::operator+=(const ZynCameraArray& other) const {
  storage_->Append(*other.storage_);
  return *this;
}

unsigned int ZynCameraArray::length() const {
  return storage_->Count();
}

void ZynCameraArray::push_back(const ZynCamera& element) {
  storage_->Elements().push_back(element);
}

void ZynCameraArray::push_back(const ZynCameraArray& other) {
  storage_->Append(*other.storage_);
}

bool ZynCameraArray::removeAt(unsigned int index) {
  return storage_->RemoveAt(index);
}

bool ZynCameraArray::select(unsigned int index, ZynCamera* out) const {
  return storage_->Select(index, out);
}

bool ZynCameraArray::replace(unsigned int index, const ZynCamera& element) {
  return storage_->Replace(index, element);
}

bool ZynCameraArray::insert(unsigned int index, const ZynCamera& element) {
  return storage_->Insert(index, element);
}

void ZynCameraArray::clear() {
  storage_->Clear();
}

bool ZynCameraArray::swap(unsigned int first, unsigned int second) {
  return storage_->Swap(first, second);
}

void ZynCameraArray::setSize(unsigned int count) {
  storage_->SetSize(count);
}

}  // namespace ZYNSDK
