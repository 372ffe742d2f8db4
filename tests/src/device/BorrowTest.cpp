#include "Borrow.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "FakeTransport.h"

using namespace ZYNSDK;

namespace {

class BorrowTest : public testing::Test {
 protected:
  BorrowTest() {
    transport.cameras[&info] = {&camera};
    camera.hook = [](const std::string& call) {
      if (call == "Release") throw std::runtime_error("release failed");
    };
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera camera;
  PhysicCamera device;
};

}  // namespace

TEST_F(BorrowTest, IsEmptyWhenClosed) {
  const Borrow borrow(device);
  EXPECT_FALSE(borrow);
}

TEST_F(BorrowTest, TheLastBorrowerSeesTheReleaseThatThrows) {
  device.Open(&info);
  const auto closeWhileBorrowed = [&] {
    const Borrow borrow(device);
    device.Close();
  };
  EXPECT_THROW(closeWhileBorrowed(), std::runtime_error);
}

TEST_F(BorrowTest, AnExceptionAlreadyOnItsWayIsTheOneToReport) {
  device.Open(&info);
  const auto throwWhileBorrowed = [&] {
    const Borrow borrow(device);
    device.Close();
    throw std::logic_error("first");
  };
  EXPECT_THROW(throwWhileBorrowed(), std::logic_error);
  EXPECT_EQ(camera.Releases(), 1);
}

TEST_F(BorrowTest, BorrowingDuringAnotherExceptionStillReportsItsOwn) {
  // A borrow that begins and ends inside a destructor, while an exception is on its way, is none of that exception's
  // business: its own failure is let out to the code around it.
  struct Cleanup {
    PhysicCamera& device;
    bool& saw;
    ~Cleanup() {
      try {
        const Borrow borrow(device);
        device.Close();
      } catch (const std::runtime_error&) {
        saw = true;
      }
    }
  };
  device.Open(&info);
  bool saw = false;
  try {
    [[maybe_unused]] const Cleanup cleanup{device, saw};
    throw std::logic_error("first");
  } catch (const std::logic_error&) {
    EXPECT_TRUE(saw);
  }
}
