/// Gives a network adapter of this computer another address, as a camera does with its own.
#ifndef ZYN_GIGEDEVICE_ADAPTER_CONFIGURATION_H
#define ZYN_GIGEDEVICE_ADAPTER_CONFIGURATION_H

#include "gige/Address.h"

namespace zyn::gigedevice {

struct Network {
  gige::Ipv4 ip;
  gige::Ipv4 mask;
  friend bool operator==(const Network&, const Network&) = default;
};

/// Replaces one address of an adapter (`adapterIndex`: the system's number) by another one. False when the system
/// refuses, and the adapter has the old address then: it takes the right to configure networks (on Linux
/// CAP_NET_ADMIN), which every user has inside a network namespace of his own. Always false where the system
/// offers another way than Linux's.
bool ReplaceAddress(unsigned adapterIndex, Network old, Network replacement);

}  // namespace zyn::gigedevice

#endif
