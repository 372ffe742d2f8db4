/// How register nodes reach their bytes.
#ifndef ZYN_GENAPI_NODES_REGISTERACCESS_H
#define ZYN_GENAPI_NODES_REGISTERACCESS_H

#include <cstdint>
#include <span>

#include "nodes/PortNode.h"

namespace zyn::genapi {

/// The address, length, port and cached bytes of one register node. Part of that node; called with the lock
/// held.
class RegisterAccess {
 public:
  explicit RegisterAccess(Node& owner) : owner_(owner) {}

  /// Sum of all address parts; indices count in units of their offset, or of the length.
  std::int64_t Address();
  /// Throws OutOfRangeException when the description gives an impossible length.
  std::int64_t Length();
  /// The same, at most 8, for registers that hold a number.
  std::int64_t NumberLength();

  /// The register's bytes, from memory if they are known and may be used. The result holds until the next
  /// access.
  std::span<const std::uint8_t> Read(bool ignoreCache);
  /// The bytes known without asking the device; empty when there are none.
  std::span<const std::uint8_t> Known();
  /// Writes the first bytes of the register. On failure nothing is known about it any more. Returns whether the bytes
  /// written are remembered.
  bool Write(std::span<const std::uint8_t> bytes);

  EAccessMode BaseAccess();
  ECachingMode OwnCachingMode() const;
  /// Forgets the bytes of the place used last.
  void Forget();

 private:
  std::int64_t IndexFactor(std::size_t indexProperty);
  PortNode& Port();
  PortNode::Memory& Use(std::int64_t address, std::int64_t length);

  Node& owner_;
  PortNode* port_ = nullptr;
  bool used_ = false;
  std::int64_t lastAddress_ = 0;
  std::int64_t lastLength_ = 0;
  unsigned generation_ = 0;
};

}  // namespace zyn::genapi

#endif
