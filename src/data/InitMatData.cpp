#include "InitMatData.h"

#include <algorithm>
#include <cstring>

namespace ZYNSDK {

namespace {

constexpr unsigned char kGroup[] = {0x0D, 0xF0, 0xAD, 0xBA};
constexpr std::size_t kBlockBytes = 4096;  // stays in the fastest cache while it is copied over the buffer

void FillBlock(unsigned char* block, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) block[i] = kGroup[i % sizeof(kGroup)];
}

}  // namespace

void InitMatData(RecycledVector<unsigned char>& buffer) {
  unsigned char* data = buffer.Data();
  const std::size_t bytes = buffer.Size();
  FillBlock(data, std::min(bytes, kBlockBytes));
  for (std::size_t done = kBlockBytes; done < bytes; done += kBlockBytes) {
    std::memcpy(data + done, data, std::min(bytes - done, kBlockBytes));
  }
}

}  // namespace ZYNSDK
