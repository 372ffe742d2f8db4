/// What is installed for Camera Link beside the producers: protocol drivers and serial ports.
#ifndef ZYN_TRANSPORT_CAMERA_LINK_H
#define ZYN_TRANSPORT_CAMERA_LINK_H

#include <list>
#include <string>

namespace zyn::transport {

/// The files of the protocol drivers in the folders of GENICAM_CLPROTOCOL and in the folders for this platform
/// beneath them. A driver is a shared library that can be loaded and exports clpProbeDevice.
///
/// Loading runs a library's code. Those that do not come to an end within two seconds, together, are left out, and
/// are not tried again as long as they hang.
std::list<std::string> FindProtocolDrivers();

/// The ports of the serial libraries (libclser*.so) that can be loaded, as "<manufacturer>#<port>". Looked for
/// in the folders of CLSERIALPATH, then of LD_LIBRARY_PATH, then where the system keeps libraries. Libraries of the
/// first version, which cannot tell their ports, have none. For those that hang the same holds as above.
std::list<std::string> FindSerialPorts();

}  // namespace zyn::transport

#endif
