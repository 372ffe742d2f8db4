#include "AravisBackend.h"

std::unique_ptr<zyn::producer::Backend> zyn::producer::CreateBackend() {
  return std::make_unique<aravis::AravisBackend>();
}
