/// What all string nodes share.
#ifndef ZYN_GENAPI_NODES_STRINGCORE_H
#define ZYN_GENAPI_NODES_STRINGCORE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// The public face of texts; derived classes keep them.
class StringCore : public ValueNode<IString> {
 public:
  using ValueNode<IString>::ValueNode;

  void SetValue(const gcstring& Value, bool Verify) override;
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IString& operator=(const gcstring& Value) override;
  gcstring GetValue(bool Verify, bool IgnoreCache) override;
  gcstring operator()() override { return GetValue(false, false); }
  gcstring operator*() override { return GetValue(false, false); }
  int64_t GetMaxLength(bool Verify) override;

  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;

 protected:
  virtual gcstring Compute(ReadMode read) = 0;
  virtual void Put(const gcstring& text, bool verify) = 0;
  /// Whether a text that was put is what would be read.
  virtual bool KeepsWrittenText() const { return true; }

 private:
  gcstring value_;
};

}  // namespace zyn::genapi

#endif
