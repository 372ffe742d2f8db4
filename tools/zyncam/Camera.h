/// One camera as the verbs see it, whatever kind it is.
#ifndef ZYNCAM_CAMERA_H
#define ZYNCAM_CAMERA_H

#include <GenApi/INodeMap.h>
#include <ZynCamera.h>

#include <memory>
#include <string>
#include <vector>

namespace zyncam {

/// What is known of a camera without opening it.
struct CameraDescription {
  std::string serialNumber, model, manufacturer, name, userDefinedName, version, identifier;
  std::string protocol;  ///< "GigE Vision", "USB3 Vision", "Camera Link", "CoaXPress" or "other"
  std::string status;    ///< "ready", "busy", "wrong subnet" or "unreachable"
  int statusCode = 3;    ///< 0 to 3, in the order of the texts: ready, busy, wrong subnet, unreachable
  std::string address, mac, mask, gateway;                 ///< GigE Vision only
  std::string adapter, adapterAddress, adapterMask, guid;  ///< guid: USB3 Vision only
  bool is3D = false;
};

/// A handle on one camera, 2D or 3D, closed again when it goes.
class Camera {
 public:
  explicit Camera(const ZYNSDK::ZynCamera& camera) : camera2D_(camera) {}
  explicit Camera(const ZYNSDK::Zyn3DCamera& camera) : is3D_(true), camera3D_(camera) {}
  ~Camera() { Close(); }
  Camera(Camera&& other) noexcept;
  Camera& operator=(Camera&&) = delete;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  bool Is3D() const { return is3D_; }
  CameraDescription Describe();
  std::string Label();  ///< "MODEL (SERIAL)", for messages

  /// Opens the camera and applies the configuration file of its Camera Link card, if one is named. Throws Failure when
  /// either fails, and for a 3D camera with a file.
  void Open(const std::string& cardFile);
  void Close();

  /// The handle for 2D acquisition. Throws Failure for a 3D camera.
  ZYNSDK::ZynCamera& For2DGrab();

  /// The handle for 3D acquisition. Throws Failure for a 2D camera.
  ZYNSDK::Zyn3DCamera& For3DGrab();

  /// The node map of that source (0 camera, 1 local device, 2 transport layer, 3 interface, 4 data stream) of
  /// the open camera. Throws Failure when there is none.
  GenApi_3_4::INodeMap& NodeMap(int source);

 private:
  bool is3D_ = false;
  bool opened_ = false;
  ZYNSDK::ZynCamera camera2D_;
  ZYNSDK::Zyn3DCamera camera3D_;
};

/// Starts and ends the library. One object for the life of the program.
class Session {
 public:
  Session();
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Searches and returns every camera, ordered by serial number.
  std::vector<Camera> Search();

  /// The one camera whose serial number, user-defined name, address, MAC address or model equals `wanted`;
  /// with an empty text, the only camera there is. Throws Failure when there is none, or more than one.
  Camera Select(const std::string& wanted);
};

/// Tells on standard error which producers could not be loaded, and why.
void ReportUnloadedProducers();

}  // namespace zyncam

#endif
