/// Keeps tests that talk to cameras away from real networks.
#ifndef ZYN_TEST_PRIVATE_NETWORK_H
#define ZYN_TEST_PRIVATE_NETWORK_H

namespace zyntest {

/// True when the loopback is the only network adapter, as inside scripts/in-namespace.sh. Tests that send
/// packets refuse to run otherwise.
bool IsPrivateNetwork();

}  // namespace zyntest

#endif
