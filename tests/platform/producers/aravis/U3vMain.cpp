// Runs tests with virtual USB3 Vision cameras, and only where the process sees no others.
#include <gtest/gtest.h>

#include <cstdio>

#include "usb3vision/UsbCamera.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!zyntest::usb3::HasVirtualUsb()) {
    std::fprintf(stderr,
                 "These tests need a virtual USB. Run them with umockdev-wrapper, or through ctest.\n");
    return 2;
  }
  return RUN_ALL_TESTS();
}
