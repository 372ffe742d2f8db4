#include "SetWrapperValue.h"

#include <gtest/gtest.h>

#include "Handles.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;

namespace {
int anObject = 0;
}

TEST(SetWrapperValue, NullHandleDoesNothing) {
  SetWrapperValue(nullptr, &anObject, true);
  SetWrapperValue(nullptr, &anObject, false);
}

TEST(SetWrapperValue, FillsHandlesWithAVirtualTableBehindIt) {
  ZynCamera camera;
  Zyn3DCamera camera3D;
  ZynCameraAttribute attribute;
  EXPECT_EQ(InternalOf(camera), nullptr);
  EXPECT_EQ(InternalOf(camera3D), nullptr);
  EXPECT_EQ(InternalOf(attribute), nullptr);
  SetWrapperValue(&camera, &anObject, true);
  SetWrapperValue(&camera3D, &anObject, true);
  SetWrapperValue(&attribute, &anObject, true);
  EXPECT_EQ(InternalOf(camera), &anObject);
  EXPECT_EQ(InternalOf(camera3D), &anObject);
  EXPECT_EQ(InternalOf(attribute), &anObject);
}

TEST(SetWrapperValue, FillsPlainHandlesInTheirFirstWord) {
  ZynNode node;
  SetWrapperValue(&node, &anObject, false);
  EXPECT_EQ(InternalOf(node), &anObject);
}

TEST(SetWrapperValue, CopiesOfAHandleReferToTheSameObject) {
  ZynCamera camera;
  SetWrapperValue(&camera, &anObject, true);
  const ZynCamera copy(camera);
  ZynCamera assigned;
  assigned = camera;
  EXPECT_EQ(InternalOf(copy), &anObject);
  EXPECT_EQ(InternalOf(assigned), &anObject);
}
