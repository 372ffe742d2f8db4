/// Images by callback.
#ifndef ZYNCAMERA_IIMAGE_HANDLER_H
#define ZYNCAMERA_IIMAGE_HANDLER_H

#include "CameraHandles.h"
#include "Export.h"
#include "ZynImage.h"

namespace ZYNSDK {

/// Receives the images of a camera, on a thread that the SDK runs for that camera. Written by the application,
/// registered with ZynCamera::RegisterImageHandler, and kept by the application until it is unregistered: the
/// SDK only remembers where it is.
class ZYNSDK_API IImageHandler {
 public:
  /// One image. `camera` refers to the camera that sent it. `image` is the same object in every call, with new
  /// pixels each time: to keep an image beyond the call, copy it, which shares the pixels and costs nothing.
  ///
  /// The next image is asked for when this call returns; what arrives meanwhile waits or is dropped as the
  /// grab strategy says. Must not throw: an exception that leaves it ends the program.
  ///
  /// Must not wait for a thread that is stopping this camera. StopGrab and RegisterImageHandler are best left
  /// to other threads; called from here, on the same camera, they take effect when this call has returned.
  virtual void OnImage(ZynCamera camera, ZynImage& image) = 0;

  virtual ~IImageHandler() = default;
};

}  // namespace ZYNSDK

#endif
