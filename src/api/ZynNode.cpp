#include "CameraNode.h"
#include "EmptyText.h"
#include "ZynCamera.h"

namespace ZYNSDK {

ZynNode::ZynNode() : node_(nullptr) {}

const char* ZynNode::Name() const {
  return node_ ? node_->Name() : kEmptyText;
}

ZynNodeType ZynNode::Type() const {
  return node_ ? node_->Type() : ZYN_NODE_UNKNOWN;
}

long ZynNode::GetBool(bool* value) {
  return node_ ? node_->GetBool(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetInt(int* value, int* minimum, int* maximum, int* increment) {
  return node_ ? node_->GetInt(value, minimum, maximum, increment) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetFloat(float* value, float* minimum, float* maximum, float* increment) {
  return node_ ? node_->GetFloat(value, minimum, maximum, increment) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetEnumIndex(int* index, ZynStringArray* entries) {
  return node_ ? node_->GetEnumIndex(index, entries) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetEnumString(ZynString* current, ZynStringArray* entries) {
  return node_ ? node_->GetEnumString(current, entries) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetString(ZynString* value) {
  return node_ ? node_->GetString(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::GetRegister(ZynString* value) {
  return node_ ? node_->GetRegister(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetBool(bool value) {
  return node_ ? node_->SetBool(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetInt(int value) {
  return node_ ? node_->SetInt(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetFloat(float value) {
  return node_ ? node_->SetFloat(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetEnumIndex(int index) {
  return node_ ? node_->SetEnumIndex(index) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetEnumString(const ZynString& entry) {
  return node_ ? node_->SetEnumString(entry.getStr()) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetString(const ZynString& value) {
  return node_ ? node_->SetString(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::SetRegister(const ZynString& value) {
  return node_ ? node_->SetRegister(value) : ZYN_ERROR_NO_OBJECT;
}

long ZynNode::Execute(int timeoutMs) {
  return node_ ? node_->Execute(timeoutMs) : ZYN_ERROR_NO_OBJECT;
}

}  // namespace ZYNSDK
