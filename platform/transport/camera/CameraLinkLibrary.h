/// One installed Camera Link library, asked once. Both functions load the library, which stays loaded: vendors'
/// libraries do not survive unloading reliably. What such a library does is out of our hands: they may block for as
/// long as it does, and what it throws leaves them.
#ifndef ZYN_TRANSPORT_CAMERA_LINK_LIBRARY_H
#define ZYN_TRANSPORT_CAMERA_LINK_LIBRARY_H

#include <list>
#include <string>

namespace zyn::transport {

/// The ports of a serial library, as "<manufacturer>#<port>". The manufacturer is what the library says, or the part
/// of its name behind "libclser" when it says nothing of use. Ports that the library does not name are left out:
/// those whose query fails, and texts that are empty or hold control characters. A library that cannot be loaded,
/// does not tell its ports, or claims to have more than 1024, has none.
std::list<std::string> SerialPortsOf(const std::string& file);

/// The file itself when it is a protocol driver, that is, can be loaded and exports clpProbeDevice; else nothing.
std::list<std::string> ProtocolDriverIn(const std::string& file);

}  // namespace zyn::transport

#endif
