/// Register nodes, and the register side of the typed registers.
#ifndef ZYN_GENAPI_NODES_REGISTERNODE_H
#define ZYN_GENAPI_NODES_REGISTERNODE_H

#include <algorithm>
#include <type_traits>

#include "nodes/RegisterAccess.h"
#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// Adds the raw view of the bytes to a node whose main interface is another one.
template <class Base>
class WithRegister : public Base, virtual public IRegister {
 public:
  WithRegister(NodeMap& map, NodeId id) : Base(map, id), register_(*this) {}

  EAccessMode GetAccessMode() const override { return Base::GetAccessMode(); }
  INode* GetNode() override { return this; }
  gcstring ToString(bool Verify, bool IgnoreCache) override { return Base::ToString(Verify, IgnoreCache); }
  void FromString(const gcstring& ValueStr, bool Verify) override { Base::FromString(ValueStr, Verify); }
  bool IsValueCacheValid() const override { return Base::IsValueCacheValid(); }

  void Set(const uint8_t* pBuffer, int64_t Length, bool Verify) override {
    WriteCall call(*this, "Set");
    this->RequireWritable();
    CheckBuffer(pBuffer, Length);
    WriteCall::MarkWritten(*this);
    this->valueValid_ = false;
    const bool isRemembered = register_.Write({pBuffer, static_cast<std::size_t>(Length)});
    if constexpr (kBytesAreTheValue) this->valueValid_ = isRemembered;
    call.Commit(Verify);
  }

  void Get(uint8_t* pBuffer, int64_t Length, bool Verify, bool IgnoreCache) override {
    const Call call(*this, "Get");
    this->RequireReadable();
    CheckBuffer(pBuffer, Length);
    const auto bytes = register_.Read(IgnoreCache);
    if constexpr (kBytesAreTheValue) this->valueValid_ = !IgnoreCache && this->CachingMode() != NoCache;
    std::copy_n(bytes.begin(), static_cast<std::size_t>(Length), pBuffer);
    if (Verify) this->CheckError();
  }

  int64_t GetLength(bool) override {
    const Call call(*this, "GetLength");
    this->RequireAvailable();
    return register_.Length();
  }

  int64_t GetAddress(bool) override {
    const Call call(*this, "GetAddress");
    this->RequireAvailable();
    return register_.Address();
  }

  void Forget(bool device) override {
    Base::Forget(device);
    if (device) register_.Forget();
  }

 protected:
  EAccessMode BaseAccess() override { return register_.BaseAccess(); }

  RegisterAccess register_;

 private:
  // Others make a number or a text of them.
  static constexpr bool kBytesAreTheValue = std::is_same_v<Base, ValueNode<IValue>>;

  void CheckBuffer(const uint8_t* buffer, int64_t length) {
    if (!buffer || length < 0)
      ZYN_THROW(InvalidArgumentException, "The buffer is null or its length negative.");
    const int64_t own = register_.Length();
    if (length > own)
      ZYN_THROW(OutOfRangeException, "Length %lld is larger than the register's length %lld.",
                static_cast<long long>(length), static_cast<long long>(own));
  }
};

/// Raw bytes; as text 0x and hexadecimal digits.
class RegisterNode final : public WithRegister<ValueNode<IValue>> {
 public:
  using WithRegister<ValueNode<IValue>>::WithRegister;

  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;
};

}  // namespace zyn::genapi

#endif
