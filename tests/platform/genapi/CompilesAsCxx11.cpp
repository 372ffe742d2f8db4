// What applications write against the interface, compiled as C++11.
#include <cstdio>
#include <string>

#include "GenICam.h"

namespace {

struct Listener {
  int calls;
  void OnChange(GenApi::INode*) { ++calls; }
};

void OnChange(GenApi::INode*) {}

void UseNodes(GenApi_3_4::INodeMap* map) {
  GenApi::CIntegerPtr width = map->GetNode("Width");
  if (GenApi::IsWritable(width)) width->SetValue(width->GetMax());
  if (width == 0 || !width.IsValid()) return;
  GenApi::CFloatPtr gain(map->GetNode("Gain"));
  if (gain) *gain = 1.5;
  GenApi::CEnumerationPtr format(map->GetNode("Std::PixelFormat"));
  GenApi::NodeList_t entries;
  format->GetEntries(entries);
  for (GenApi::NodeList_t::iterator it = entries.begin(); it != entries.end(); ++it) {
    const std::string name((*it)->GetName());
    std::printf("%s %s\n", name.c_str(), static_cast<const char*>((*it)->GetDisplayName()));
  }
  Listener listener = {0};
  const intptr_t first = GenApi::Register(width->GetNode(), listener, &Listener::OnChange);
  const intptr_t second = GenApi::Register(width->GetNode(), &OnChange, GenApi::cbPostOutsideLock);
  GenApi::Deregister(first);
  GenApi::Deregister(second);
  GenApi::CDeviceInfoPtr info(map);
  if (info->GetModelName() == "") throw RUNTIME_EXCEPTION("no model after %d", 5);
}

}  // namespace

void UseInterfaceAsCxx11();
void UseInterfaceAsCxx11() {
  GenApi::CNodeMapRef camera;
  camera._LoadXMLFromString("<RegisterDescription/>");
  const GenApi::AutoLock lock(camera._Ptr->GetLock());
  UseNodes(camera._Ptr);
}
