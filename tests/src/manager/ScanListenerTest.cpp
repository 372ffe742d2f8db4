#include "ScanListener.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "EventRecorder.h"
#include "FakeCameraInfo.h"
#include "FakeTransport.h"
#include "LogicCamera.h"

using namespace ZYNSDK;
using fakes::CameraEvent;
using fakes::EventRecorder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

// Two 2D cameras, one 3D camera.
class ScanListenerTest : public testing::Test {
 protected:
  std::vector<CameraEvent> Scan() {
    listener.OnScan(registered);
    return log.Take();
  }
  static CameraEvent Appeared(const LogicCamera& camera) { return {&camera, 1, false}; }
  static CameraEvent Gone(const LogicCamera& camera) { return {&camera, 2, false}; }
  static CameraEvent Appeared3D(const LogicCamera& camera) { return {&camera, 1, true}; }
  static CameraEvent Gone3D(const LogicCamera& camera) { return {&camera, 2, true}; }
  void Set2D() { listener.Set(static_cast<ICameraEventHandler*>(&recorder)); }
  void Set3D() { listener.Set(static_cast<I3DCameraEventHandler*>(&recorder)); }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo infoA{"A", "Area-1"}, infoB{"B", "Area-1"}, infoL{"L", "KEL-LP1"};
  LogicCamera a{&infoA}, b{&infoB}, laser{&infoL};
  ScanListener::Cameras registered{{"A", &a}, {"B", &b}, {"L", &laser}};
  fakes::EventLog log;
  EventRecorder recorder{log};
  ScanListener listener;
};

}  // namespace

TEST_F(ScanListenerTest, IsValidWithAHandlerOfEitherKind) {
  EXPECT_FALSE(listener.IsValid());
  Set2D();
  EXPECT_TRUE(listener.IsValid());
  Set3D();
  listener.Set(static_cast<ICameraEventHandler*>(nullptr));
  EXPECT_TRUE(listener.IsValid());
  listener.Set(static_cast<I3DCameraEventHandler*>(nullptr));
  EXPECT_FALSE(listener.IsValid());
}

TEST_F(ScanListenerTest, ReportsEachCameraOfItsKindOnceWhenItAppears) {
  Set2D();
  EXPECT_THAT(Scan(), UnorderedElementsAre(Appeared(a), Appeared(b)));
  EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(ScanListenerTest, A3DHandlerHearsOf3DCamerasOnly) {
  Set3D();
  EXPECT_THAT(Scan(), ElementsAre(Appeared3D(laser)));
  laser.SetOnline(false);
  a.SetOnline(false);
  EXPECT_THAT(Scan(), ElementsAre(Gone3D(laser)));
}

TEST_F(ScanListenerTest, BothHandlersEachHearOfTheirKind) {
  Set2D();
  Set3D();
  EXPECT_THAT(Scan(), UnorderedElementsAre(Appeared(a), Appeared(b), Appeared3D(laser)));
}

TEST_F(ScanListenerTest, ACameraThatWasNeverPresentIsNotReported) {
  a.SetOnline(false);
  Set2D();
  EXPECT_THAT(Scan(), ElementsAre(Appeared(b)));
}

TEST_F(ScanListenerTest, ACameraGoesOnceAndAppearsAgainOnce) {
  Set2D();
  Scan();
  a.SetOnline(false);
  EXPECT_THAT(Scan(), ElementsAre(Gone(a)));
  EXPECT_THAT(Scan(), IsEmpty());
  a.SetOnline(true);
  EXPECT_THAT(Scan(), ElementsAre(Appeared(a)));
  EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(ScanListenerTest, WhatAppearedIsReportedBeforeWhatIsGone) {
  for (const bool aIsPresent : {true, false}) {  // whatever order the map has
    a.SetOnline(aIsPresent);
    b.SetOnline(!aIsPresent);
    Set2D();
    Scan();
    a.SetOnline(!aIsPresent);
    b.SetOnline(aIsPresent);
    EXPECT_THAT(Scan(), aIsPresent ? ElementsAre(Appeared(b), Gone(a)) : ElementsAre(Appeared(a), Gone(b)));
  }
}

TEST_F(ScanListenerTest, SettingAHandlerForgetsWhatWasReportedWithoutAnEvent) {
  Set2D();
  Scan();
  Set2D();
  EXPECT_THAT(log.Take(), IsEmpty());
  a.SetOnline(false);
  EXPECT_THAT(Scan(), ElementsAre(Appeared(b)));  // of the other nothing is known any more, so it is not gone
  Set3D();
  EXPECT_THAT(Scan(), UnorderedElementsAre(Appeared(b), Appeared3D(laser)));
}

TEST_F(ScanListenerTest, WithoutAHandlerNothingHappens) {
  EXPECT_THAT(Scan(), IsEmpty());
  listener.Notify(&a, ZYN_CAMERA_APPEARED);
  listener.Notify(&laser, ZYN_CAMERA_GONE);
  EXPECT_THAT(log.Take(), IsEmpty());
}

// The kind is looked at only when there is something to report.
TEST_F(ScanListenerTest, ACameraOfTheOtherKindIsRememberedToo) {
  Set2D();
  Scan();
  fakes::FakeCameraInfo nowArea("L", "Area-1");
  laser.replaceAttribute(&nowArea);
  EXPECT_THAT(Scan(), IsEmpty());  // it was present before
  laser.SetOnline(false);
  EXPECT_THAT(Scan(), ElementsAre(Gone(laser)));
}

TEST_F(ScanListenerTest, TheOnlineMarkIsReadWhenTheListenerLooksNotWhenTheSnapshotWasMade) {
  Set2D();
  const ScanListener::Cameras snapshot = registered;
  a.SetOnline(false);
  listener.OnScan(snapshot);
  EXPECT_THAT(log.Take(), ElementsAre(Appeared(b)));
}

TEST_F(ScanListenerTest, NotifyCallsTheHandlerOfTheCamerasKindWithThatType) {
  Set2D();
  Set3D();
  listener.Notify(&a, ZYN_CAMERA_GONE);
  listener.Notify(&laser, ZYN_CAMERA_APPEARED);
  EXPECT_THAT(log.Take(), ElementsAre(Gone(a), Appeared3D(laser)));
}

TEST(CameraEventInterface, TheNumbersOfTheEventsNeverChange) {
  EXPECT_EQ(static_cast<int>(ZYN_CAMERA_APPEARED), 1);
  EXPECT_EQ(static_cast<int>(ZYN_CAMERA_GONE), 2);
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ZynCameraEventType>, int>));
}

// Where the library calls: the position of the operation in the table of virtual operations, as the C++ ABI of
// Linux and macOS encodes it in a pointer to member.
template <class Operation>
std::uintptr_t TableOffset(Operation operation) {
  std::uintptr_t words[2] = {};
  static_assert(sizeof(operation) == sizeof(words));
  std::memcpy(words, &operation, sizeof(words));
  return words[0] & ~std::uintptr_t{1};
}

TEST(CameraEventInterface, TheCallbackIsTheFirstVirtualOperation) {
  EXPECT_EQ(TableOffset(&ICameraEventHandler::OnCameraEvent), 0U);
  EXPECT_EQ(TableOffset(&I3DCameraEventHandler::On3DCameraEvent), 0U);
}
