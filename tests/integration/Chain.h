/// Steps that the tests over the whole chain share.
#ifndef ZYN_INTEGRATION_CHAIN_H
#define ZYN_INTEGRATION_CHAIN_H

#include <ZynCamera.h>

#include <string>

namespace chain {

/// The camera with this serial number from a fresh search. Fails the test when there is none.
ZYNSDK::ZynCamera Find(const std::string& serial);

/// True when a fresh search lists the camera.
bool IsListed(const std::string& serial);

/// Searches until CameraStatus of the camera is `status`, for 10 seconds at most. Returns whether it came to
/// that.
bool WaitForStatus(const std::string& serial, int status);

/// Writes a feature through a node handle and fails the test when that does not work.
void SetInt(ZYNSDK::ZynCamera& camera, const char* name, int value);
void SetFloat(ZYNSDK::ZynCamera& camera, const char* name, float value);
int GetInt(ZYNSDK::ZynCamera& camera, const char* name);

}  // namespace chain

#endif
