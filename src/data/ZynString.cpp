#include <cstring>

#include "ZynCamera.h"

namespace ZYNSDK {

ZynString::ZynString() : text_(new std::string) {}

ZynString::ZynString(const ZynString& other) : text_(new std::string(other.getStr())) {}

// Design decision: the length is ignored. Callers pass it loosely, and the text has always ended at its NUL.
// Pinned by LengthArgumentNeitherCutsNorExtends.
ZynString::ZynString(const char* text, unsigned int /*length*/) : text_(new std::string(text ? text : "")) {}

ZynString::~ZynString() {
  delete text_;
  text_ = nullptr;
}

ZynString& ZynString::operator=(const char* text) {
  *text_ = text;
  return *this;
}

// Right for the object itself as well: std::string takes its own characters.
ZynString& ZynString::operator=(const ZynString& other) {  // NOLINT(bugprone-unhandled-self-assignment)
  return *this = other.getStr();
}

// Design decision: copies, so that the source keeps its text. Pinned by MovingCopiesAndLeavesTheSource.
ZynString& ZynString::operator=(ZynString&& other) {  // NOLINT(performance-noexcept-move-constructor)
  return *this = other.getStr();
}

ZynString& ZynString::operator=(char character) {
  text_->assign(1, character);
  return *this;
}

void ZynString::setStr(const char* text) {
  *this = text;
}

const char* ZynString::getStr() const {
  return text_->c_str();
}

unsigned int ZynString::length() const {
  return static_cast<unsigned int>(text_->size());
}

void ZynString::clear() {
  text_->clear();
}

bool ZynString::operator==(const ZynString& other) const {
  return *text_ == other.getStr();
}

bool ZynString::operator!=(const ZynString& other) const {
  return !(*this == other);
}

ZynString ZynString::operator+(const ZynString& other) const {
  ZynString sum;
  sum.text_->reserve(text_->size() + other.text_->size());
  sum.text_->append(*text_).append(other.getStr());
  return sum;
}

ZynString& ZynString::operator+=(const ZynString& other) {
  text_->append(other.getStr());
  return *this;
}

}  // namespace ZYNSDK
