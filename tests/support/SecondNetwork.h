/// A second network on this computer, with a cable to the one that a test runs in.
#ifndef ZYN_TEST_SECOND_NETWORK_H
#define ZYN_TEST_SECOND_NETWORK_H

#include <string>
#include <vector>

#include "ChildProcess.h"

namespace zyntest {

/// A network namespace of its own, joined to this one by a pair of virtual adapters: "near0" here and "far0" there.
/// Must only be used inside a private network (PrivateNetwork.h); takes no more rights than that gives. Goes with the
/// object, and what runs inside should go before.
class SecondNetwork {
 public:
  /// The adapters' addresses with their networks, like "192.168.77.1/24". Broadcasts that come from other networks
  /// are let in on both sides, as on a computer that is set up for cameras. Throws std::runtime_error.
  SecondNetwork(const std::string& nearAddress, const std::string& farAddress);
  ~SecondNetwork();
  SecondNetwork(const SecondNetwork&) = delete;
  SecondNetwork& operator=(const SecondNetwork&) = delete;

  /// The command that runs `command` inside the second network.
  std::vector<std::string> Inside(const std::vector<std::string>& command) const;

  /// One more host on the far end.
  void AddFarAddress(const std::string& address) const;
  /// True when the far adapter has the address, without its network.
  bool HasFarAddress(const std::string& address) const;

 private:
  ChildProcess keeper_;  // lives in the second network and keeps it
  std::string keeperId_;
};

}  // namespace zyntest

#endif
