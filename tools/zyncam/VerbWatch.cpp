#include <pthread.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>

#include "Camera.h"
#include "CameraJson.h"
#include "JsonText.h"
#include "Verbs.h"

namespace zyncam {
namespace {

/// Now as local time with milliseconds and the distance from UTC: "2031-05-04T13:02:01.250+02:00".
std::string TimeStamp() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
  std::tm local{};
  localtime_r(&seconds, &local);
  std::array<char, 32> dateAndTime{};
  std::array<char, 8> zone{};
  std::array<char, 8> milliseconds{};
  std::strftime(dateAndTime.data(), dateAndTime.size(), "%Y-%m-%dT%H:%M:%S", &local);
  std::strftime(zone.data(), zone.size(), "%z", &local);
  std::snprintf(milliseconds.data(), milliseconds.size(), ".%03d",
                static_cast<int>(sinceEpoch.count() % 1000));
  const std::string offset = zone.data();  // "+0200"
  return std::string(dateAndTime.data()) + milliseconds.data() + offset.substr(0, 3) + ":" + offset.substr(3);
}

/// Holds SIGINT and SIGTERM back from this thread and those it makes, until one is waited for.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, &previous_);
  }
  ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

  void WaitForOne() const {
    int signal = 0;
    sigwait(&signals_, &signal);
  }

 private:
  sigset_t signals_{};
  sigset_t previous_{};
};

/// Writes a line for each event as long as it lives. The library calls it from one thread.
class Watcher : public ZYNSDK::ICameraEventHandler, public ZYNSDK::I3DCameraEventHandler {
 public:
  Watcher(Console& console, bool json) : console_(console), json_(json) {
    ZYNSDK::RegisterCameraEventHandler(this);
    ZYNSDK::Register3DCameraEventHandler(this);
  }
  ~Watcher() override {
    ZYNSDK::RegisterCameraEventHandler(nullptr);
    ZYNSDK::Register3DCameraEventHandler(nullptr);
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  void OnCameraEvent(ZYNSDK::ZynCamera camera, ZYNSDK::ZynCameraEventType type) override {
    Report(Camera(camera).Describe(), type == ZYNSDK::ZYN_CAMERA_APPEARED);
  }
  void On3DCameraEvent(ZYNSDK::Zyn3DCamera camera, ZYNSDK::ZynCameraEventType type) override {
    Report(Camera(camera).Describe(), type == ZYNSDK::ZYN_CAMERA_APPEARED);
  }

 private:
  void Report(const CameraDescription& camera, bool hasAppeared) {
    console_.Line(json_ ? JsonLine(camera, hasAppeared) : TextLine(camera, hasAppeared));
  }

  static std::string TextLine(const CameraDescription& camera, bool hasAppeared) {
    std::string line = TimeStamp() + (hasAppeared ? "  appeared  " : "  gone      ") + camera.serialNumber +
                       "  " + camera.model + "  " + camera.protocol;
    if (!camera.address.empty()) line += "  " + camera.address;
    return line;
  }

  static std::string JsonLine(const CameraDescription& camera, bool hasAppeared) {
    nlohmann::ordered_json line;
    line["time"] = TimeStamp();
    line["event"] = hasAppeared ? "appeared" : "gone";
    line.update(JsonOf(camera));
    if (!hasAppeared) line.erase("status");  // what it was when it was last seen
    return JsonText(line, -1);
  }

  Console& console_;
  const bool json_;
};

}  // namespace

void WatchCameras(Console& console, const CommonOptions& common) {
  const SignalsHeldBack signals;  // first, so that every thread of the library is made with them held back
  const Session session;
  ReportUnloadedProducers();
  const Watcher watcher(console, common.json);
  signals.WaitForOne();
}

}  // namespace zyncam
