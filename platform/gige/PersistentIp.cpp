#include "gige/PersistentIp.h"

namespace zyn::gige {
namespace {

constexpr std::uint32_t kAllBits = 0xFFFFFFFFU;

Result WriteAndCheck(RegisterClient& client, std::uint32_t address, std::uint32_t value, std::uint32_t mask) {
  if (const Result result = client.WriteRegister(address, value); result != Result::ok) return result;
  std::uint32_t stored = 0;
  if (const Result result = client.ReadRegister(address, stored); result != Result::ok) return result;
  return ((stored ^ value) & mask) == 0 ? Result::ok : Result::deviceError;
}

}  // namespace

Result ReadPersistentIp(RegisterClient& client, PersistentIp& stored) {
  PersistentIp read;
  struct {
    std::uint32_t address;
    std::uint32_t& value;
  } const registers[] = {{bootstrap::kPersistentIp, read.settings.ip.value},
                         {bootstrap::kPersistentMask, read.settings.mask.value},
                         {bootstrap::kPersistentGateway, read.settings.gateway.value},
                         {bootstrap::kIpConfiguration, read.methods}};
  for (const auto& [address, value] : registers) {
    if (const Result result = client.ReadRegister(address, value); result != Result::ok) return result;
  }
  stored = read;
  return Result::ok;
}

Result WritePersistentIp(RegisterClient& client, const PersistentIp& wanted) {
  const struct {
    std::uint32_t address;
    std::uint32_t value;
    std::uint32_t mask;
  } registers[] = {{bootstrap::kPersistentIp, wanted.settings.ip.value, kAllBits},
                   {bootstrap::kPersistentMask, wanted.settings.mask.value, kAllBits},
                   {bootstrap::kPersistentGateway, wanted.settings.gateway.value, kAllBits},
                   {bootstrap::kIpConfiguration, wanted.methods, kPersistentIpEnabled | kDhcpEnabled}};
  for (const auto& [address, value, mask] : registers) {
    const Result result = WriteAndCheck(client, address, value, mask);
    if (result != Result::ok) return result;
  }
  return Result::ok;
}

Control::Control(RegisterClient& client)
    : client_(client), outcome_(client.WriteRegister(bootstrap::kControlPrivilege, kControlAccess)) {}

Control::~Control() {
  if (outcome_ == Result::ok) client_.WriteRegister(bootstrap::kControlPrivilege, 0);
}

}  // namespace zyn::gige
