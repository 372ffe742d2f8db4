#include <GevIpLib.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "CameraAddress.h"
#include "Failure.h"
#include "JsonText.h"
#include "Table.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using zyn::gige::Adapter;
using zyn::gige::Ipv4;
using zyn::gige::ToText;

using Cameras = std::vector<CameraAddress>;
using Matches = bool (*)(const CameraAddress& camera, const std::string& wanted);

// A serial number counts more than a name that happens to be spelt like it, and so on.
constexpr Matches kMatches[] = {
    [](const CameraAddress& c, const std::string& wanted) { return wanted == c.device.description.serial; },
    [](const CameraAddress& c, const std::string& wanted) { return wanted == c.device.description.userName; },
    [](const CameraAddress& c, const std::string& wanted) {
      return wanted == ToText(c.device.description.ip);
    },
    [](const CameraAddress& c, const std::string& wanted) {
      return wanted == ToText(c.device.description.mac);
    }};

struct ResultText {
  int result;
  ExitCode exit;
  const char* meaning;
  const char* advice;
};

constexpr ResultText kResults[] = {
    {GEV_IP_NOT_FOUND, kExitNoCamera, "no camera with that serial number answers, or several have it",
     "'zyncam ip' shows the cameras"},
    {GEV_IP_INVALID_ADDRESS, kExitUsage, "no camera can have these settings",
     "address, mask and gateway are dotted numbers; the address is one of a host in its network"},
    {GEV_IP_REFUSED, kExitFailed, "the camera refused the address", "choose another one"},
    {GEV_IP_NO_ANSWER, kExitFailed, "the camera kept its address, or is not seen with the new one",
     "another program may control it (close it there); 'zyncam doctor' tells whether this computer drops "
     "what comes "
     "from other networks"},
    {GEV_IP_IN_USE, kExitFailed, "another program or computer controls the camera", "close it there first"},
    {GEV_IP_NOT_PERSISTENT, kExitFailed, "the address is in force, but the camera could not store it",
     "it is lost with the camera's power; try --persistent again"},
    {GEV_IP_ERROR, kExitFailed, "the system sent nothing", "is the adapter up? 'zyncam doctor' shows it"},
    {GEV_IP_ADDRESS_TAKEN, kExitFailed, "another camera, or this computer, has the address",
     "choose another one; 'zyncam ip' shows which are taken"},
    {GEV_IP_NOT_STORED, kExitFailed, "the camera could not store the address, and nothing was changed",
     "without --persistent it takes the address until its power goes"},
    {GEV_IP_NOT_REACHED, kExitFailed,
     "the address is in force, but could not be stored: no address was free to talk to the camera",
     "give it an address of the adapter's network, then this one"},
    {GEV_IP_HALF_DONE, kExitFailed, "the camera did not take the address, and may have kept a part of it",
     "'zyncam ip' shows what it has now; assign again"},
};

Failure FailureOf(int result, const std::string& what) {
  const auto* found = std::find_if(std::begin(kResults), std::end(kResults),
                                   [result](const ResultText& text) { return text.result == result; });
  if (found == std::end(kResults)) return {kExitFailed, what, "", result};
  return {found->exit, what + ": " + found->meaning + " (result " + std::to_string(result) + ")",
          found->advice, result};
}

std::string SerialsOf(const Cameras& cameras) {
  std::string text;
  for (const CameraAddress& camera : cameras)
    text += (text.empty() ? "" : ", ") + OrDash(camera.device.description.serial);
  return text;
}

// All that match in the first way that any camera matches in.
Cameras Select(const Cameras& cameras, const std::string& wanted) {
  for (const Matches matches : kMatches) {
    Cameras hits;
    std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(hits),
                 [&](const CameraAddress& camera) { return matches(camera, wanted); });
    if (!hits.empty()) return hits;
  }
  if (cameras.empty())
    throw Failure(kExitNoCamera, "no GigE Vision camera found", "check cable, power and 'zyncam doctor'");
  throw Failure(kExitNoCamera, "no GigE Vision camera matches \"" + wanted + "\"",
                "cameras found: " + SerialsOf(cameras));
}

CameraAddress SelectOne(const Cameras& cameras, const std::string& wanted) {
  Cameras hits = Select(cameras, wanted);
  if (hits.size() > 1)
    throw Failure(kExitNoCamera, std::to_string(hits.size()) + " cameras match \"" + wanted + "\"",
                  "choose one by its serial number, which only it may have");
  return hits.front();
}

// By which addresses are assigned.
std::string NameOf(const CameraAddress& camera) {
  const zyn::gige::DeviceDescription& description = camera.device.description;
  return description.serial.empty() ? ToText(description.mac) : description.serial;
}

// The adapter's network that the address lies in, else the one that the camera was found from.
Ipv4 DefaultMask(const CameraAddress& camera, Ipv4 address) {
  const std::vector<Adapter> adapters = zyn::gige::ListAdapters();
  for (const Adapter& adapter : adapters) {
    if (adapter.index == camera.device.adapterIndex) return adapter.ClosestAddress(address).mask;
  }
  return camera.device.adapter.mask;
}

// What the library's SetCameraAddress fills in, but never the camera itself.
Ipv4 DefaultGateway(Ipv4 address, Ipv4 mask) {
  const Ipv4 first{(address.value & mask.value) | 1U};
  return first == address ? zyn::gige::kNoAddress : first;
}

void Assign(const CameraAddress& camera, const IpOptions& options) {
  const std::string what = "cannot give " + options.address + " to " + camera.device.description.model +
                           " (" + NameOf(camera) + ")";
  const auto address = zyn::gige::ParseIpv4(options.address);
  if (!address) throw FailureOf(GEV_IP_INVALID_ADDRESS, what);
  const std::string mask = options.mask.empty() ? ToText(DefaultMask(camera, *address)) : options.mask;
  const auto maskValue = zyn::gige::ParseIpv4(mask);
  if (!maskValue) throw FailureOf(GEV_IP_INVALID_ADDRESS, what + " with mask " + mask);
  const std::string gateway =
      options.gateway.empty() ? ToText(DefaultGateway(*address, *maskValue)) : options.gateway;
  const int result = SetCameraIP(NameOf(camera), options.address, mask, gateway, options.persistent);
  if (result != GEV_IP_OK) throw FailureOf(result, what + " with mask " + mask + ", gateway " + gateway);
}

std::string StoredText(const CameraAddress& camera) {
  if (!camera.stored) return "-";
  const zyn::gige::IpSettings& stored = camera.stored->settings;
  if (stored.ip == zyn::gige::kNoAddress) return "none";
  return ToText(stored.ip) + "/" + ToText(stored.mask) + " via " + ToText(stored.gateway);
}

std::vector<std::string> RowOf(const CameraAddress& camera) {
  const zyn::gige::DeviceDescription& description = camera.device.description;
  return {OrDash(description.serial),  OrDash(description.model),
          camera.device.adapterName,   ToText(description.mac),
          ToText(description.ip),      ToText(description.mask),
          ToText(description.gateway), OrDash(MethodsText(description.ipConfiguration)),
          StoredText(camera),          camera.status};
}

void Print(Console& console, const CommonOptions& common, const Cameras& cameras) {
  if (common.json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const CameraAddress& camera : cameras) list.push_back(JsonOf(camera));
    console.Line(JsonText(list));
    return;
  }
  std::vector<std::vector<std::string>> rows = {
      {"SERIAL", "MODEL", "ADAPTER", "MAC", "ADDRESS", "MASK", "GATEWAY", "METHODS", "STORED", "STATUS"}};
  for (const CameraAddress& camera : cameras) rows.push_back(RowOf(camera));
  PrintTable(console, rows);
}

}  // namespace

void ShowOrSetAddress(Console& console, const CommonOptions& common, const IpOptions& options) {
  Cameras cameras = SearchAddresses();
  if (!options.address.empty()) {
    const CameraAddress camera = SelectOne(cameras, options.camera);
    Assign(camera, options);
    Print(console, common, Select(SearchAddresses(), NameOf(camera)));
    return;
  }
  if (!options.camera.empty()) cameras = Select(cameras, options.camera);
  if (cameras.empty() && !common.json) {
    Console::Note("No GigE Vision camera found. Check cable, power and 'zyncam doctor'.");
    return;
  }
  Print(console, common, cameras);
}

}  // namespace zyncam
