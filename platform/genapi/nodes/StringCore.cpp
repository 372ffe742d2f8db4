#include "nodes/StringCore.h"

namespace zyn::genapi {

void StringCore::SetValue(const gcstring& Value, bool Verify) {
  WriteCall call(*this, "SetValue");
  WriteText(Value, Verify);
  call.Commit(Verify);
}

IString& StringCore::operator=(const gcstring& Value) {
  SetValue(Value, true);
  return *this;
}

gcstring StringCore::GetValue(bool Verify, bool IgnoreCache) {
  const Call call(*this, "GetValue");
  gcstring value = TextValue({Verify, IgnoreCache});
  if (Verify) CheckError();
  return value;
}

int64_t StringCore::GetMaxLength(bool) {
  const Call call(*this, "GetMaxLength");
  RequireAvailable();
  return TextMaxLength();
}

gcstring StringCore::TextValue(ReadMode read) {
  RequireReadable();
  if (valueValid_ && !read.ignoreCache) return value_;
  const DepthGuard depth(*this);
  valueValid_ = false;
  value_ = Compute(read);
  valueValid_ = !read.ignoreCache && CachingMode() != NoCache;
  return value_;
}

void StringCore::WriteText(const gcstring& text, bool verify) {
  const DepthGuard depth(*this);
  valueValid_ = false;
  RequireWritable();
  WriteCall::MarkWritten(*this);
  Put(text, verify);
  value_ = text;
  // Behind a NUL nothing is read back.
  valueValid_ =
      verify && CachingMode() == WriteThrough && KeepsWrittenText() && text.find('\0') == gcstring::npos;
}

}  // namespace zyn::genapi
