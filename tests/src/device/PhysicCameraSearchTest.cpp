#include <gtest/gtest.h>

#include <list>

#include "FakeTransport.h"
#include "PhysicCamera.h"

using namespace ZYNSDK;

namespace {
using Infos = std::list<KELGENICAM::ICameraInfo*>;
}

TEST(PhysicCameraSearch, ReplacesTheListInTheTransportsOrder) {
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo old;
  fakes::FakeCameraInfo a;
  fakes::FakeCameraInfo b;
  transport.present = {&b, nullptr, &a};
  Infos found{&old};
  EXPECT_EQ(PhysicCamera::SearchCameras(found), ZYN_OK);
  EXPECT_EQ(found, (Infos{&b, nullptr, &a}));
  EXPECT_EQ(transport.calls.Names(), (std::vector<std::string>{"Discovery"}));  // without a filter
}

TEST(PhysicCameraSearch, HandsTheProtocolMaskThrough) {
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo old;
  fakes::FakeCameraInfo a;
  transport.byTLType[6] = {&a};
  Infos found{&old};
  EXPECT_EQ(PhysicCamera::SearchCamerasByProtocolType(6, found), ZYN_OK);
  EXPECT_EQ(found, (Infos{&a}));
  EXPECT_EQ(PhysicCamera::SearchCamerasByProtocolType(1, found), ZYN_OK);
  EXPECT_TRUE(found.empty());
}
