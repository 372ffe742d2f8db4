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
  /// The camera did not take the address, or is not seen with it afterwards. A camera that lies in a foreign network
  /// and is controlled by another application answers like this, too: it keeps its address without a word.
  GEV_IP_NO_ANSWER = 4,
  GEV_IP_IN_USE = 5,          ///< another application controls the camera
  GEV_IP_NOT_PERSISTENT = 6,  ///< the address is in force, but the camera could not store it
  GEV_IP_ERROR = 7,           ///< the operating system refused (no socket, no adapter)
  GEV_IP_ADDRESS_TAKEN = 8,   ///< another camera on the same wire, or this computer, has the address
  GEV_IP_NOT_STORED =
      9,  ///< the camera could not store the address; it keeps what it had, nothing is changed
  /// The address is in force, but not stored: the camera went from one network foreign to the adapter to another,
  /// and no address of the adapter's network was free to talk to it in between.
  GEV_IP_NOT_REACHED = 10,
  /// The camera did not take the address, and did not go back to what it had either: it may start with the new
  /// address, or have one of the adapter's network now. Search for it, and assign again.
  GEV_IP_HALF_DONE = 11
};

/// Gives the camera with this serial number the address `ip` with the network mask `mask` and the default gateway
/// `gateway`, all dotted decimal. A camera without a serial number goes by its MAC address, "02:11:22:AA:BB:CC", as it
/// does in a search. The camera need not lie in its adapter's subnet: it is told by
/// broadcast on the adapter where it answers, and then looked for again to confirm. persistent: true also
/// stores the address in the camera and lets it start with it; false lasts until its power goes. Returns a
/// GEV_IP_RESULT; after any but GEV_IP_NOT_PERSISTENT, GEV_IP_NOT_REACHED and GEV_IP_HALF_DONE a camera that was not
/// given the address is as it was before.
///
/// Storing takes a camera that can be talked to. One that leaves the adapter's network stores the address first, and
/// takes it back when it does not take the address. One that goes from a foreign network to another has an address
/// of the adapter's network for a moment, at which nobody answered before.
///
/// Blocks up to about 3 seconds, and up to 10 for a persistent address when the camera stops answering on the way.
/// May be called from any thread. Throws nothing.
GEVIPLIB_API int SetCameraIP(const std::string& serial, const std::string& ip, const std::string& mask,
                             const std::string& gateway, bool persistent);

#endif
