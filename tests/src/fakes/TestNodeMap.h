#ifndef ZYN_FAKES_TEST_NODE_MAP_H
#define ZYN_FAKES_TEST_NODE_MAP_H

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "GenICam.h"
#include "ThreadAnnotations.h"

namespace fakes {

/// A device's registers in memory, most significant byte first. Reads and writes can be made to fail.
class MemoryPort : public GenApi::IPort {
 public:
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* buffer, std::int64_t address, std::int64_t length) override;
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override;

  void Put(std::int64_t address, std::uint32_t value);  ///< past the failures and the count
  std::uint32_t Get(std::int64_t address) const;
  /// Address and first four bytes of every write, in order.
  std::vector<std::pair<std::int64_t, std::uint32_t>> Written() const;

  std::atomic<int> failingReads{0};  ///< the next so many reads throw
  bool failsToWrite = false;
  std::atomic<int> reads{0};
  std::atomic<int> writes{0};
  int clearsAfterReads = -1;  ///< the register at kCommand becomes 0 after so many reads of it; -1: never

  static constexpr std::int64_t kWidth = 0x00, kExposure = 0x10, kFlag = 0x20, kTriggerMode = 0x24,
                                kTriggerSource = 0x28, kCommand = 0x2c, kMode = 0x30, kVolatile = 0x34,
                                kStepped = 0x40, kCounted = 0x48;

 private:
  std::vector<unsigned char> memory_ = std::vector<unsigned char>(0x100);
  mutable zyn::Mutex mutex_;
  std::vector<std::pair<std::int64_t, std::uint32_t>> written_ ZYN_GUARDED_BY(mutex_);
};

/// A real node map over a MemoryPort.
class TestNodeMap {
 public:
  /// An area camera: every kind of feature, in every state. See the description for what is there.
  TestNodeMap();
  /// Only these lines: nodes, and the features of the root category.
  TestNodeMap(const std::string& nodes, const std::vector<std::string>& features);
  TestNodeMap(const TestNodeMap&) = delete;
  TestNodeMap& operator=(const TestNodeMap&) = delete;

  GenApi::INodeMap* Map() { return map_._Ptr; }

  MemoryPort port;

 private:
  void Load(const std::string& nodes, const std::vector<std::string>& features);

  GenApi::CNodeMapRef map_;
};

}  // namespace fakes

#endif
