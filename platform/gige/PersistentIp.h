/// The address that a camera starts with.
#ifndef ZYN_GIGE_PERSISTENT_IP_H
#define ZYN_GIGE_PERSISTENT_IP_H

#include <cstdint>

#include "gige/ForceIp.h"
#include "gige/RegisterClient.h"

namespace zyn::gige {

/// What a camera has stored, and by which methods it looks for an address when it starts.
struct PersistentIp {
  IpSettings settings;
  std::uint32_t methods = 0;  ///< kPersistentIpEnabled, kDhcpEnabled; link-local (bit 2) is always on
  friend bool operator==(const PersistentIp&, const PersistentIp&) = default;
};

/// Reads it; nobody needs control for that. `stored` is written on success only.
Result ReadPersistentIp(RegisterClient& client, PersistentIp& stored);

/// Writes it and reads it back; deviceError when the camera acknowledges but keeps another value. The methods come
/// last, so that a camera never starts with half an address by them. The client must have control. After a
/// failure some registers may be written.
Result WritePersistentIp(RegisterClient& client, const PersistentIp& wanted);

/// Control of a camera for one scope.
class Control {
 public:
  explicit Control(RegisterClient& client);
  ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Result Outcome() const { return outcome_; }  ///< ok while it is held

 private:
  RegisterClient& client_;
  const Result outcome_;
};

}  // namespace zyn::gige

#endif
