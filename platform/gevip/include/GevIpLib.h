/// Assigns an IP address to a GigE Vision camera.
#ifndef GEVIPLIB_GEVIPLIB_H
#define GEVIPLIB_GEVIPLIB_H

#include <string>

#if defined(__GNUC__)
#define GEVIPLIB_API __attribute__((visibility("default")))
#else
#define GEVIPLIB_API
#endif

/// Results of SetCameraIP.
enum GEV_IP_RESULT {
  GEV_IP_OK = 0,
  GEV_IP_NOT_FOUND = 1,  ///< no camera with that serial number answers on any adapter, or several have it
  GEV_IP_INVALID_ADDRESS = 2,  ///< a text is no dotted IPv4 address, or the camera could not use it
  GEV_IP_REFUSED = 3,          ///< the camera refused the address
  GEV_IP_NO_ANSWER = 4,        ///< the camera did not take the address, or is not seen with it afterwards
  GEV_IP_IN_USE = 5,           ///< another application controls the camera
  GEV_IP_NOT_PERSISTENT = 6,   ///< the address is in force, but the camera could not store it
  GEV_IP_ERROR = 7,            ///< the operating system refused (no socket, no adapter)
  GEV_IP_ADDRESS_TAKEN = 8     ///< another camera on the same wire, or this computer, has the address
};

/// Gives the camera with this serial number the address `ip` with the network mask `mask` and the default
/// gateway `gateway`, all dotted decimal. The camera need not lie in its adapter's subnet: it is told by
/// broadcast on the adapter where it answers, and then looked for again to confirm. persistent: true also
/// stores the address in the camera and lets it start with it; false lasts until its power goes. Returns a
/// GEV_IP_RESULT. Blocks up to about 3 seconds. May be called from any thread. Throws nothing.
GEVIPLIB_API int SetCameraIP(const std::string& serial, const std::string& ip, const std::string& mask,
                             const std::string& gateway, bool persistent);

#endif
