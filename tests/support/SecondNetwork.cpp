#include "SecondNetwork.h"

#include <stdexcept>

namespace zyntest {
namespace {

// Gives an adapter its address. The system drops what comes from a network that it knows no way to, when its
// rp_filter says so; where that cannot be changed, a way is made up.
constexpr const char* kSetUpAdapter = R"sh(
adapter=$1 address=$2
ip link set lo up && ip link set "$adapter" up && ip addr add "$address" dev "$adapter" || exit 1
filter() { cat "/proc/sys/net/ipv4/conf/$1/rp_filter"; }
for one in all "$adapter"; do
  test "$(filter $one)" = 0 || echo 0 2>/dev/null >"/proc/sys/net/ipv4/conf/$one/rp_filter"
done
test "$(filter all)$(filter "$adapter")" = 00 || ip route add default dev "$adapter"
)sh";

void MustRun(const std::vector<std::string>& command) {
  const Finished result = RunToEnd(command);
  if (result.exitCode != 0) throw std::runtime_error(command.front() + ": " + result.err);
}

}  // namespace

SecondNetwork::SecondNetwork(const std::string& nearAddress, const std::string& farAddress)
    : keeper_({"unshare", "-n", "sh", "-c", "echo $$ && exec sleep infinity"}, ChildProcess::WithOutput()),
      keeperId_(keeper_.NextLine()) {
  MustRun({"ip", "link", "add", "near0", "type", "veth", "peer", "name", "far0", "netns", keeperId_});
  MustRun(Inside({"sh", "-c", kSetUpAdapter, "sh", "far0", farAddress}));
  MustRun({"sh", "-c", kSetUpAdapter, "sh", "near0", nearAddress});
}

SecondNetwork::~SecondNetwork() {
  RunToEnd({"ip", "link", "del", "near0"});  // and with it the other end
}

std::vector<std::string> SecondNetwork::Inside(const std::vector<std::string>& command) const {
  std::vector<std::string> result = {"nsenter", "-t", keeperId_, "-n"};
  result.insert(result.end(), command.begin(), command.end());
  return result;
}

void SecondNetwork::AddFarAddress(const std::string& address) const {
  MustRun(Inside({"ip", "addr", "add", address, "dev", "far0"}));
}

bool SecondNetwork::HasFarAddress(const std::string& address) const {
  const Finished result = RunToEnd(Inside({"ip", "-4", "-o", "addr", "show", "dev", "far0"}));
  return result.out.find(" " + address + "/") != std::string::npos;
}

}  // namespace zyntest
