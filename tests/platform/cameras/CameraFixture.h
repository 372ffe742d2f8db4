// A simulated camera on a clock that the test turns, with the node map of its description.
#ifndef ZYN_TESTS_CAMERAS_CAMERA_FIXTURE_H
#define ZYN_TESTS_CAMERAS_CAMERA_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "GenICam.h"
#include "cameras/CameraModel.h"
#include "cameras/Catalog.h"
#include "cameras/ManualClock.h"

namespace zyn::cameras::test {

// A node map's way to the camera's registers. Failures become exceptions with the status as text.
class ModelPort final : public GenApi::CPortImpl {
 public:
  explicit ModelPort(CameraModel& camera) : camera_(camera) {}

  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

  void Read(void* buffer, int64_t address, int64_t length) override {
    auto* bytes = static_cast<std::uint8_t*>(buffer);
    Check(camera_.ReadRegisters(static_cast<std::uint64_t>(address),
                                {bytes, static_cast<std::size_t>(length)}));
  }

  void Write(const void* buffer, int64_t address, int64_t length) override {
    const auto* bytes = static_cast<const std::uint8_t*>(buffer);
    Check(camera_.WriteRegisters(static_cast<std::uint64_t>(address),
                                 {bytes, static_cast<std::size_t>(length)}));
  }

 private:
  static void Check(RegisterStatus status) {
    if (status != RegisterStatus::ok) throw RUNTIME_EXCEPTION("%s", Text(status));
  }

  CameraModel& camera_;
};

class Camera {
 public:
  explicit Camera(const std::string& name) : model(MakeCamera(name, "SN1", clock)), port(*model) {
    try {
      map._LoadXMLFromString(std::string(model->Description()).c_str());
    } catch (const GenICam::GenericException& error) {
      throw std::runtime_error(error.what());  // the test program prints its text
    }
    map._Connect(&port);
  }

  template <class T>
  T& As(const std::string& name) {
    T* const node = dynamic_cast<T*>(map._GetNode(name.c_str()));
    if (!node) throw std::runtime_error("no such node: " + name);
    return *node;
  }
  GenApi::IInteger& Integer(const std::string& name) { return As<GenApi::IInteger>(name); }
  GenApi::IFloat& Float(const std::string& name) { return As<GenApi::IFloat>(name); }
  GenApi::INode& Node(const std::string& name) { return As<GenApi::INode>(name); }
  bool Has(const std::string& name) { return map._GetNode(name.c_str()) != nullptr; }

  std::string Get(const std::string& name) { return As<GenApi::IValue>(name).ToString().c_str(); }
  void Set(const std::string& name, const std::string& value) {
    As<GenApi::IValue>(name).FromString(value.c_str());
  }
  void Execute(const std::string& name) { As<GenApi::ICommand>(name).Execute(); }

  // Takes the frame that is due.
  FrameResult Take() {
    buffer.resize(model->PayloadSize());
    return model->TakeFrame(buffer, frame);
  }

  ManualClock clock;
  std::unique_ptr<CameraModel> model;
  ModelPort port;
  GenApi::CNodeMapRef map;
  std::vector<std::uint8_t> buffer;
  Frame frame;
};

}  // namespace zyn::cameras::test

#endif
