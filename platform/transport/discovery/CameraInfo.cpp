#include "CameraInfo.h"

#include "InfoStore.h"

namespace zyn::transport {

const char* CameraInfo::Text(int index) {
  if (index < 0 || index >= CameraDescription::kTexts) return "";
  return Description().texts[static_cast<std::size_t>(index)].c_str();
}

void CameraInfo::CopyFrom(const ICameraInfo& newer) {
  const CameraInfo* source = InfoStore::Instance().Find(&newer);
  if (!source || source == this) return;
  // Taking over another device's description would leave this device without an object of its own: each search
  // would then publish a new one, for ever.
  if (source->Description().key != Description().key) return;
  description_.store(source->description_.load(std::memory_order_acquire), std::memory_order_release);
}

}  // namespace zyn::transport
