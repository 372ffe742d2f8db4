/// Starting the SDK and finding cameras.
///
/// Every function may be called from any thread at any time. A search blocks while the network answers; it
/// lets exceptions of the transport and std::bad_alloc through.
///
/// Design decision: a library that was loaded stays loaded, also after dlclose, on Linux; "until the SDK is
/// unloaded" means there until the process exits. Pinned by LoadedLibrary.StaysAfterDlcloseAndKeepsItsContent.
#ifndef ZYNCAMERA_FUNCTIONS_H
#define ZYNCAMERA_FUNCTIONS_H

#include <vector>

#include "CameraHandles.h"
#include "Export.h"
#include "HandleArrays.h"

namespace ZYNSDK {

/// Loads the transport. Call it before the first search. Returns 0, whatever the transport did.
ZYNSDK_API long ZynSDKInit();
/// Unloads the transport. Closes no camera and forgets none. Returns 0.
ZYNSDK_API long ZynSDKUnInit();

/// Searches, and replaces the content of `out` by the 2D cameras that are present, in no particular order. A
/// camera that was found before is the same camera again. 101050 when `out` is null.
ZYNSDK_API long DiscoveryCameras(ZynCameraArray* out);
/// The same for 3D cameras: those whose model name begins with "KEL-LP" or "VX7".
ZYNSDK_API long Discovery3DCameras(Zyn3DCameraArray* out);
/// The same for all cameras, 3D included, of the protocols in `protocolTypes`, a mask of ZynProtocolType.
/// Cameras of other protocols count as absent until the next search.
ZYNSDK_API long DiscoveryCamerasByProtocolType(unsigned long protocolTypes, ZynCameraArray* out);
/// Searches, and appends the cameras that are present, each to the vector of its kind. The vectors are not
/// cleared. 101050 when either is null.
ZYNSDK_API long DiscoveryAllCameras(std::vector<ZynCamera>* out2D, std::vector<Zyn3DCamera>* out3D);

/// Makes `out` refer to the camera with this serial number. Searches only when it was never found before, so
/// it may be absent. 101050 null argument; 101006 no such camera, or it is 3D.
ZYNSDK_API long DiscoveryCamera(const char* serialNumber, ZynCamera* out);
/// The same for a 3D camera. 101006 no such camera, or it is not 3D.
ZYNSDK_API long Discovery3DCamera(const char* serialNumber, Zyn3DCamera* out);

/// The Camera Link protocol drivers that are installed.
ZYNSDK_API ZynStringArray GetCLCameraProtocols();
/// The Camera Link serial ports that can be used.
ZYNSDK_API ZynStringArray GetCLCameraSerials();

}  // namespace ZYNSDK

#endif
