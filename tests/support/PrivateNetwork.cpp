#include "PrivateNetwork.h"

#include <net/if.h>

#include <string_view>

namespace zyntest {

bool IsPrivateNetwork() {
  struct if_nameindex* adapters = if_nameindex();
  if (adapters == nullptr) return false;
  bool onlyLoopback = true;
  for (const struct if_nameindex* adapter = adapters; adapter->if_index != 0; ++adapter) {
    if (std::string_view(adapter->if_name) != "lo") onlyLoopback = false;
  }
  if_freenameindex(adapters);
  return onlyLoopback;
}

}  // namespace zyntest
