/// Asks one interface for its devices.
#ifndef ZYN_TRANSPORT_INTERFACE_SEARCH_H
#define ZYN_TRANSPORT_INTERFACE_SEARCH_H

#include <functional>
#include <string>
#include <vector>

#include "../producer/ProducerLibrary.h"
#include "CameraDescription.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// One search. Used on the interface's own thread only.
class InterfaceSearch {
 public:
  /// Borrows everything for its life time. tlType may be "".
  InterfaceSearch(const ProducerLibrary& producer, GenTL::IF_HANDLE interface, const std::string& interfaceId,
                  const std::string& tlType, const std::string& displayName);

  /// Lets the producer look for devices; a second at most by the rules, longer when it ignores them.
  GenTL::GC_ERROR Update();

  /// Describes what the update found, sorted by device ID. `nodeMap` gives the interface's node map, or null;
  /// it is called when the producer's information commands leave something open.
  std::vector<CameraDescription> Read(const std::function<GenApi_3_4::INodeMap*()>& nodeMap);

 private:
  std::string Text(const std::string& deviceId, GenTL::DEVICE_INFO_CMD command) const;
  CameraDescription Describe(const std::string& deviceId) const;
  void Complete(CameraDescription& camera, std::uint32_t index, GenApi_3_4::INodeMap* map) const;

  const ProducerLibrary& producer_;
  const GenTL::IF_HANDLE interface_;
  const std::string& interfaceId_;
  const std::string& tlType_;
  const std::string& displayName_;
};

}  // namespace zyn::transport

#endif
