#include "SetWrapperValue.h"

#include <cstring>

#include "ZynCamera.h"

namespace ZYNSDK {

// What the function below relies on.
static_assert(sizeof(ZynCamera) == 2 * sizeof(void*));
static_assert(sizeof(Zyn3DCamera) == 2 * sizeof(void*));
static_assert(sizeof(ZynCameraAttribute) == 2 * sizeof(void*));
static_assert(sizeof(ZynNode) == sizeof(void*));
static_assert(sizeof(ZynImage) == sizeof(void*));
static_assert(sizeof(Zyn3DIntArray) == sizeof(void*));
static_assert(sizeof(ZynRangeImage) == sizeof(void*));
static_assert(sizeof(ZynColorArray) == sizeof(void*));

void SetWrapperValue(void* handle, void* internal, bool hasVirtualTable) noexcept {
  if (!handle) return;
  const std::size_t offset = hasVirtualTable ? sizeof(void*) : 0;
  std::memcpy(static_cast<unsigned char*>(handle) + offset, &internal, sizeof(internal));
}

}  // namespace ZYNSDK
