/// What the tool can do. Each verb has its options and one function that carries it out or throws Failure.
#ifndef ZYNCAM_VERBS_H
#define ZYNCAM_VERBS_H

#include <string>
#include <vector>

#include "Console.h"
#include "Failure.h"

namespace zyncam {

/// Options that every verb has.
struct CommonOptions {
  std::string
      camera;  ///< serial number, user-defined name, address, MAC address or model; "" for the only one
  bool json = false;
  std::string
      card;  ///< configuration file of the Camera Link card, applied when the camera is opened; "" for none
};

struct FeaturesOptions {
  int map = 0;  ///< which node map: 0 camera, 1 local device, 2 transport layer, 3 interface, 4 data stream
  bool flat = false;   ///< one sorted list instead of the tree of categories
  int visibility = 2;  ///< 0 beginner, 1 expert, 2 guru, 3 invisible
};

struct AccessOptions {
  int map = 0;
  std::vector<std::string> features;  ///< names; for "set" NAME=VALUE
  int timeoutMs = 5000;               ///< "exec" only
};

struct GrabOptions {
  int count = 1;               ///< frames; 0 until interrupted
  std::string folder = ".";    ///< where the files go; made when missing
  std::string format = "png";  ///< "png", "raw" or "none"
  int timeoutMs = 5000;        ///< per frame
};

struct ProfileOptions {
  int count = 1;             ///< profiles; 0 until interrupted
  std::string folder = ".";  ///< where the files go; made when missing
  int timeoutMs = 5000;      ///< per profile
};

struct ScanOptions {
  int lines = 0;             ///< profiles per scan; 0: as the camera is set
  std::string folder = ".";  ///< where the files go; made when missing
  int timeoutMs = 5000;      ///< per frame of the scan
};

struct CheckProducerOptions {
  std::string file;               ///< the .cti file
  std::vector<std::string> only;  ///< names of checks; empty for all
  bool list = false;              ///< only tell which checks there are
  int timeoutMs = 30000;          ///< per check
};

struct IpOptions {
  std::string camera;   ///< whose address; "" for all of them
  std::string address;  ///< the new one; "" to show what is there
  std::string mask;     ///< "": that of the adapter
  std::string gateway;  ///< "": the first address of the network
  bool persistent = false;
};

/// Shows the addresses of GigE Vision cameras, or gives one to a camera.
void ShowOrSetAddress(Console& console, const CommonOptions& common, const IpOptions& options);

/// Tells what keeps cameras from working on this computer, and what to do about it. Changes nothing and sends
/// nothing. Returns false when no camera can work.
bool ExamineComputer(Console& console, const CommonOptions& common);

void ListCameras(Console& console, const CommonOptions& common);
void ShowInfo(Console& console, const CommonOptions& common);
void ShowFeatures(Console& console, const CommonOptions& common, const FeaturesOptions& options);
void GetFeatures(Console& console, const CommonOptions& common, const AccessOptions& options);
void SetFeatures(Console& console, const CommonOptions& common, const AccessOptions& options);
void ExecuteFeature(Console& console, const CommonOptions& common, const AccessOptions& options);

/// Returns false when the person at the terminal ended it before the last frame.
bool GrabImages(Console& console, const CommonOptions& common, const GrabOptions& options);

/// Tells of cameras that appear and disappear until SIGINT or SIGTERM comes. With JSON one object per line.
void WatchCameras(Console& console, const CommonOptions& common);

/// The same for the profiles of a 3D camera.
bool GrabProfiles(Console& console, const CommonOptions& common, const ProfileOptions& options);

/// Puts a GenTL producer through the rules that consumers rely on. kExitFailed when one fails; kExitNoCamera
/// when the camera that was asked for is not there.
ExitCode CheckProducerFile(Console& console, const CommonOptions& common,
                           const CheckProducerOptions& options);

/// Grabs one scan of a 3D camera. Returns false when it was interrupted.
bool GrabScan(Console& console, const CommonOptions& common, const ScanOptions& options);

}  // namespace zyncam

#endif
