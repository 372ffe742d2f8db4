#ifndef ZYN_TESTS_LASER_CAMERA_H
#define ZYN_TESTS_LASER_CAMERA_H

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "FakeTransport.h"
#include "LaserFeatures.h"
#include "LogicCamera.h"
#include "ZynCamera.h"

/// An open 3D camera that does not grab yet, over the fakes.
class LaserCamera : public testing::Test {
 protected:
  LaserCamera() {
    transport.cameras[&info] = {&device, &reopened};
    Offer({});
    camera.Open3D();
  }
  ~LaserCamera() override {
    device.hook = nullptr;
    reopened.hook = nullptr;
    camera.Close3D();
  }

  /// From now on the camera has these features: scans of 10 lines of 5 points, 4 lines in a frame.
  void Offer(const fakes::LaserFeatures& features) {
    features_ = std::make_unique<fakes::LaserNodeMap>(features);
    device.remoteMap.map = reopened.remoteMap.map = features_->Map();
    SetGeometry(5, 10, 4);
    Features().PutFloat("ZUpSizeInfo", 40.5F);
    Features().PutFloat("ZDownSizeInfo", 2.25F);
    Features().PutFloat("XSizeInfo", 60.0F);
  }
  void OfferWithout(const std::string& name) {
    fakes::LaserFeatures features;
    features.Drop(name);
    Offer(features);
  }
  void SetGeometry(int outlineLength, int lineCount, int batchNumber) {
    Features().PutInt("OutlineLengthMax", outlineLength);
    Features().PutInt("AcquisitionLineCount", lineCount);
    Features().PutInt("BatchNumber", batchNumber);
  }
  fakes::LaserNodeMap& Features() { return *features_; }

  void ThrowIn(const std::string& where) {
    device.hook = [where](const std::string& call) {
      if (call == where) throw std::runtime_error(where);
    };
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info{"SN3", "KEL-LP1"};
  fakes::FakeCamera device;
  fakes::FakeCamera reopened;  ///< what opening again gives
  ZYNSDK::LogicCamera camera{&info};

 private:
  std::unique_ptr<fakes::LaserNodeMap> features_;
};

#endif
