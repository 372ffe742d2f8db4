#include "CameraJson.h"

namespace zyncam {

nlohmann::ordered_json JsonOf(const CameraDescription& camera) {
  nlohmann::ordered_json json;
  json["serialNumber"] = camera.serialNumber;
  json["model"] = camera.model;
  json["manufacturer"] = camera.manufacturer;
  json["name"] = camera.name;
  json["userDefinedName"] = camera.userDefinedName;
  json["version"] = camera.version;
  json["identifier"] = camera.identifier;
  json["protocol"] = camera.protocol;
  json["status"] = camera.status;
  json["is3D"] = camera.is3D;
  if (camera.protocol == "GigE Vision") {
    json["address"] = camera.address;
    json["mask"] = camera.mask;
    json["gateway"] = camera.gateway;
    json["mac"] = camera.mac;
    json["adapter"] = camera.adapter;
    json["adapterAddress"] = camera.adapterAddress;
    json["adapterMask"] = camera.adapterMask;
  }
  if (camera.protocol == "USB3 Vision") json["guid"] = camera.guid;
  return json;
}

}  // namespace zyncam
