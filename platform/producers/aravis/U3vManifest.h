/// Where a USB3 Vision camera keeps its description.
#ifndef ZYN_ARAVIS_U3V_MANIFEST_H
#define ZYN_ARAVIS_U3V_MANIFEST_H

#include <string>
#include <vector>

#include "producer/Backend.h"

namespace zyn::aravis {

/// Reads the camera's list of description files, the newest schema first. model: names the files, which have no names
/// of their own. Throws Error, also when the list holds no description.
std::vector<producer::XmlLocation> ReadU3vManifest(producer::Device& device, const std::string& model);

}  // namespace zyn::aravis

#endif
