/// Runs the tests over the whole chain, and only where no packet can leave the machine.
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "PrivateNetwork.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr,
                 "These tests send packets. Run them with scripts/in-namespace.sh, or through ctest.\n");
    return 2;
  }
  ZYNSDK::ZynSDKInit();
  const int result = RUN_ALL_TESTS();
  ZYNSDK::ZynSDKUnInit();
  return result;
}
