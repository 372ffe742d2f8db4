#include "ZynCamera.h"

#include "CameraManager.h"
#include "LogicCamera.h"

// Every method of a handle does two things: answer for an empty handle, or forward. Arguments are checked,
// locks taken and exceptions caught by the object behind it.

namespace ZYNSDK {

namespace {

// The one registry. Made when the library is loaded; ends, and all cameras with it, when it is unloaded.
CameraManager g_CameraManager;

}  // namespace

ZynCamera::ZynCamera() : camera_(nullptr) {}

ZynCamera::~ZynCamera() = default;

ZynCameraAttribute* ZynCamera::Attribute() {
  return camera_ ? camera_->Attribute() : nullptr;
}

long ZynCamera::Open(const char* param) {
  return camera_ ? camera_->Open(param) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::Close() {
  return camera_ ? camera_->Close() : ZYN_ERROR_NO_OBJECT;
}

bool ZynCamera::IsOpen() {
  return camera_ && camera_->IsOpen();
}

bool ZynCamera::IsGrabbing() {
  return camera_ && camera_->IsGrabbing();
}

long ZynCamera::StartGrab(ZynGrabStrategy strategy, int count) {
  return camera_ ? camera_->StartGrab(strategy, count) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::StopGrab() {
  return camera_ ? camera_->StopGrab() : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::SetGrabTimeout(int milliseconds) {
  return camera_ ? camera_->SetGrabTimeout(milliseconds) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GrabImage(ZynImage* image, ZynChunkData* chunk) {
  return camera_ ? camera_->Grab(image, chunk) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::RegisterImageHandler(IImageHandler* handler) {
  return camera_ ? camera_->RegisterImageHandler(handler) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::SetCLCameraParam(const char* name, const char* value) {
  return camera_ ? camera_->SetCLCameraParam(name, value) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetTLNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetTLNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetTLNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetTLNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetIFNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetIFNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetIFNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetIFNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetDevNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetDevNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetDevNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetDevNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetRemoteNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetRemoteNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetRemoteNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetRemoteNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetDSNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetDSNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long ZynCamera::GetDSNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetDSNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

Zyn3DCamera::Zyn3DCamera() : camera_(nullptr) {}

Zyn3DCamera::~Zyn3DCamera() = default;

ZynCameraAttribute* Zyn3DCamera::Attribute() {
  return camera_ ? camera_->Attribute() : nullptr;
}

long Zyn3DCamera::Open() {
  return camera_ ? camera_->Open3D() : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::Close() {
  return camera_ ? camera_->Close3D() : ZYN_ERROR_NO_OBJECT;
}

bool Zyn3DCamera::IsOpen() {
  return camera_ && camera_->IsOpen();
}

long Zyn3DCamera::StartGrab(Zyn3DGrabType type) {
  return camera_ ? camera_->Start3DGrab(type) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::StopGrab() {
  return camera_ ? camera_->Stop3DGrab() : ZYN_ERROR_NO_OBJECT;
}

Zyn3DGrabType Zyn3DCamera::GetGrabType() {
  return camera_ ? camera_->GetGrabType() : ZYN_3D_GRAB_NONE;
}

long Zyn3DCamera::SetGrabTimeout(int milliseconds) {
  return camera_ ? camera_->SetGrabTimeout(milliseconds) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GrabData(ZynImage* image, Zyn3DIntArray* heights, ZynImage* intensity) {
  return camera_ ? camera_->Grab3DData(image, heights, intensity) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GrabContour(Zyn3DIntArray* heights, ZynImage* intensity) {
  return camera_ ? camera_->Grab3DContour(heights, intensity) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GrabBatchData(ZynRangeImage* range, ZynImage* intensity) {
  return camera_ ? camera_->Grab3DBatchData(range, intensity) : ZYN_ERROR_NO_OBJECT;
}

// Design decision: through a handle only the camera's own features are reached. Pinned by
// TheBatchCountIsTheCamerasOwn.
long Zyn3DCamera::SetBatchCount(int count) {
  return camera_ ? camera_->SetBatchCount(ZYN_XML_REMOTE_DEVICE, count) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GetBatchCount(int* count) {
  return camera_ ? camera_->GetBatchCount(ZYN_XML_REMOTE_DEVICE, count) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GetNode(const char* name, ZynNode* node) {
  return camera_ ? camera_->GetRemoteNode(name, node) : ZYN_ERROR_NO_OBJECT;
}

long Zyn3DCamera::GetNodes(ZynNodeArray* nodes) {
  return camera_ ? camera_->GetRemoteNodes(nodes) : ZYN_ERROR_NO_OBJECT;
}

// Design decision: these two alone check nothing; the node map is for callers who hold an open camera. Pinned by
// NodeMapFunctionsDeathTest.CheckNothing.
GenApi_3_4::INodeMap* Get2DCameraNodeMap(ZynCamera* camera, ZynXmlSource source) {
  return camera->camera_->GetNodesMap(source);
}

GenApi_3_4::INodeMap* Get3DCameraNodeMap(Zyn3DCamera* camera, ZynXmlSource source) {
  return camera->camera_->GetNodesMap(source);
}

long ZynSDKInit() {
  return g_CameraManager.ZynSDKInit();
}

long ZynSDKUnInit() {
  return g_CameraManager.ZynSDKUnInit();
}

long DiscoveryCameras(ZynCameraArray* out) {
  return g_CameraManager.DiscoveryCameras(out);
}

long DiscoveryCamerasByProtocolType(unsigned long protocolTypes, ZynCameraArray* out) {
  return g_CameraManager.DiscoveryCamerasByProtocolType(protocolTypes, out);
}

long DiscoveryCamera(const char* serialNumber, ZynCamera* out) {
  return g_CameraManager.DiscoveryCamera(serialNumber, out);
}

long Discovery3DCameras(Zyn3DCameraArray* out) {
  return g_CameraManager.Discovery3DCameras(out);
}

long Discovery3DCamera(const char* serialNumber, Zyn3DCamera* out) {
  return g_CameraManager.Discovery3DCamera(serialNumber, out);
}

long DiscoveryAllCameras(std::vector<ZynCamera>* out2D, std::vector<Zyn3DCamera>* out3D) {
  return g_CameraManager.DiscoveryAllCameras(out2D, out3D);
}

ZynStringArray GetCLCameraProtocols() {
  return g_CameraManager.GetCLCameraProtocols();
}

ZynStringArray GetCLCameraSerials() {
  return g_CameraManager.GetCLCameraSerials();
}

long RegisterCameraEventHandler(ICameraEventHandler* handler) {
  return g_CameraManager.RegisterCameraEventHandler(handler);
}

long Register3DCameraEventHandler(I3DCameraEventHandler* handler) {
  return g_CameraManager.Register3DCameraEventHandler(handler);
}

}  // namespace ZYNSDK
