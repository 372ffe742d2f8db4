// Checks: lists of interfaces, devices and streams, and opening by ID.
#include <cstring>
#include <set>

#include "Bench.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::uint64_t kUpdateMs = 1000;
constexpr const char* kUnknownId = "zyn check: no module has this ID";
// To see that a refused call leaves its out-parameter alone.
void* const kUntouched =
    reinterpret_cast<void*>(std::uintptr_t{0x5A5A});  // NOLINT(performance-no-int-to-ptr)

// One list: its functions, bound to the module that holds it.
struct List {
  std::string name;
  std::function<GC_ERROR(std::uint32_t*)> count;
  std::function<GC_ERROR(std::uint32_t, char*, std::size_t*)> id;
};

std::vector<std::string> Read(Bench& bench, const List& list) {
  std::uint32_t count = 0;
  bench.ExpectSuccess("asking for the number of " + list.name, list.count(&count));
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i) {
    const Answer answer = Get([&](INFO_DATATYPE*, void* buffer, std::size_t* size) {
      return list.id(i, static_cast<char*>(buffer), size);
    });
    bench.ExpectSuccess("asking for number " + std::to_string(i) + " of " + list.name, answer.error);
    ids.push_back(answer.Text());
  }
  return ids;
}

void CheckList(Bench& bench, const List& list) {
  const std::vector<std::string> ids = Read(bench, list);
  std::set<std::string> seen;
  for (const std::string& id : ids) {
    Expect(!id.empty(), "one of the " + list.name + " has no ID");
    Expect(seen.insert(id).second, "two of the " + list.name + " have the ID " + id);
  }
  char text[4096];
  std::size_t size = sizeof text;
  const auto behind = static_cast<std::uint32_t>(ids.size());
  bench.ExpectError(
      "asking for number " + std::to_string(behind) + " of " + std::to_string(behind) + " " + list.name,
      list.id(behind, text, &size), {GC_ERR_INVALID_INDEX});
  Expect(Read(bench, list) == ids, "the list of " + list.name + " changed without an update");
}

// An update function writes its out-parameter as 0 or 1, and does without.
void CheckUpdate(Bench& bench, const std::string& name,
                 const std::function<GC_ERROR(bool8_t*, std::uint64_t)>& update) {
  bench.ExpectSuccess(name + " without pbChanged", update(nullptr, kUpdateMs));
  unsigned char bytes[2] = {0x55, 0x55};
  bench.ExpectSuccess(name, update(reinterpret_cast<bool8_t*>(&bytes[0]), kUpdateMs));
  Expect(bytes[0] <= 1, name + " left pbChanged as it was, or wrote something else than 0 or 1");
  Expect(bytes[1] == 0x55, name + " wrote more than the one byte of pbChanged");
}

void InterfaceList(Bench& bench) {
  Functions& f = bench.F();
  TL_HANDLE system = bench.System();
  CheckUpdate(bench, "TLUpdateInterfaceList", [&](bool8_t* changed, std::uint64_t ms) {
    return f.TLUpdateInterfaceList(system, changed, ms);
  });
  CheckList(bench, {"interfaces", [&](std::uint32_t* count) { return f.TLGetNumInterfaces(system, count); },
                    [&](std::uint32_t i, char* id, std::size_t* size) {
                      return f.TLGetInterfaceID(system, i, id, size);
                    }});
}

void DeviceList(Bench& bench) {
  Functions& f = bench.F();
  IF_HANDLE interface = bench.Interface();
  CheckUpdate(bench, "IFUpdateDeviceList", [&](bool8_t* changed, std::uint64_t ms) {
    return f.IFUpdateDeviceList(interface, changed, ms);
  });
  CheckList(bench, {"devices", [&](std::uint32_t* count) { return f.IFGetNumDevices(interface, count); },
                    [&](std::uint32_t i, char* id, std::size_t* size) {
                      return f.IFGetDeviceID(interface, i, id, size);
                    }});
}

void StreamList(Bench& bench) {
  Functions& f = bench.F();
  bench.StreamId();
  DEV_HANDLE device = bench.Device();
  CheckList(bench, {"streams", [&](std::uint32_t* count) { return f.DevGetNumDataStreams(device, count); },
                    [&](std::uint32_t i, char* id, std::size_t* size) {
                      return f.DevGetDataStreamID(device, i, id, size);
                    }});
}

void OpenWithoutUpdate(Bench& bench) {
  const std::string interfaceId = bench.InterfaceId();
  const std::string deviceId = bench.DeviceId();
  bench.EndLibrary();
  Functions& f = bench.F();
  IF_HANDLE interface = nullptr;
  DEV_HANDLE device = nullptr;
  bench.ExpectSuccess("TLOpenInterface(" + interfaceId + ") without an update before",
                      f.TLOpenInterface(bench.System(), interfaceId.c_str(), &interface));
  bench.ExpectSuccess("IFOpenDevice(" + deviceId + ") without an update before",
                      f.IFOpenDevice(interface, deviceId.c_str(), DEVICE_ACCESS_CONTROL, &device));
  bench.ExpectSuccess("DevClose", f.DevClose(device));
  bench.ExpectSuccess("IFClose", f.IFClose(interface));
}

void ExpectRefused(Bench& bench, const std::string& call, const std::function<GC_ERROR(void**)>& open,
                   GC_ERROR error) {
  void* handle = kUntouched;
  bench.ExpectError(call, open(&handle), {error});
  Expect(handle == kUntouched, call + " failed and changed the handle");
}

void UnknownIds(Bench& bench) {
  Functions& f = bench.F();
  char text[4096];
  std::size_t size = sizeof text;
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  TL_HANDLE system = bench.System();
  ExpectRefused(
      bench, "TLOpenInterface with an unknown ID",
      [&](void** handle) { return f.TLOpenInterface(system, kUnknownId, handle); }, GC_ERR_INVALID_ID);
  bench.ExpectError("TLGetInterfaceInfo with an unknown ID",
                    f.TLGetInterfaceInfo(system, kUnknownId, INTERFACE_INFO_ID, &type, text, &size),
                    {GC_ERR_INVALID_ID});
  IF_HANDLE interface = bench.Interface();
  ExpectRefused(
      bench, "IFOpenDevice with an unknown ID",
      [&](void** handle) { return f.IFOpenDevice(interface, kUnknownId, DEVICE_ACCESS_CONTROL, handle); },
      GC_ERR_INVALID_ID);
  size = sizeof text;
  bench.ExpectError("IFGetDeviceInfo with an unknown ID",
                    f.IFGetDeviceInfo(interface, kUnknownId, DEVICE_INFO_ID, &type, text, &size),
                    {GC_ERR_INVALID_ID});
  bench.StreamId();
  DEV_HANDLE device = bench.Device();
  ExpectRefused(
      bench, "DevOpenDataStream with an unknown ID",
      [&](void** handle) { return f.DevOpenDataStream(device, kUnknownId, handle); }, GC_ERR_INVALID_ID);
}

void NullIds(Bench& bench) {
  Functions& f = bench.F();
  void* handle = nullptr;
  bench.StreamId();
  bench.ExpectError("TLOpenInterface without an ID", f.TLOpenInterface(bench.System(), nullptr, &handle),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("IFOpenDevice without an ID",
                    f.IFOpenDevice(bench.Interface(), nullptr, DEVICE_ACCESS_CONTROL, &handle),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DevOpenDataStream without an ID", f.DevOpenDataStream(bench.Device(), nullptr, &handle),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("TLOpenInterface without a place for the handle",
                    f.TLOpenInterface(bench.System(), bench.InterfaceId().c_str(), nullptr),
                    {GC_ERR_INVALID_PARAMETER, GC_ERR_RESOURCE_IN_USE});
}

void AccessFlags(Bench& bench) {
  constexpr DEVICE_ACCESS_FLAGS kNoFlag = 77;
  bench.EndDevice();
  IF_HANDLE interface = bench.Interface();
  ExpectRefused(
      bench, "IFOpenDevice with an unknown access flag",
      [&](void** handle) {
        return bench.F().IFOpenDevice(interface, bench.DeviceId().c_str(), kNoFlag, handle);
      },
      GC_ERR_INVALID_PARAMETER);
}

void OpenTwice(Bench& bench, const std::string& name, const std::function<GC_ERROR(void**)>& open) {
  ExpectRefused(bench, "a second " + name, open, GC_ERR_RESOURCE_IN_USE);
}

void SystemTwice(Bench& bench) {
  bench.System();
  OpenTwice(bench, "TLOpen", [&](void** handle) { return bench.F().TLOpen(handle); });
}

void InterfaceTwice(Bench& bench) {
  bench.Interface();
  OpenTwice(bench, "TLOpenInterface", [&](void** handle) {
    return bench.F().TLOpenInterface(bench.System(), bench.InterfaceId().c_str(), handle);
  });
}

void DeviceTwice(Bench& bench) {
  bench.Device();
  OpenTwice(bench, "IFOpenDevice", [&](void** handle) {
    return bench.F().IFOpenDevice(bench.Interface(), bench.DeviceId().c_str(), DEVICE_ACCESS_CONTROL, handle);
  });
}

void StreamTwice(Bench& bench) {
  bench.Stream();
  OpenTwice(bench, "DevOpenDataStream", [&](void** handle) {
    return bench.F().DevOpenDataStream(bench.Device(), bench.StreamId().c_str(), handle);
  });
}

}  // namespace

std::vector<Check> ListChecks() {
  return {
      {"interface-list", "interfaces have IDs of their own and stay in place between updates",
       &InterfaceList},
      {"device-list", "devices have IDs of their own and stay in place between updates", &DeviceList},
      {"stream-list", "streams have IDs of their own", &StreamList},
      {"open-without-update", "what has been seen once opens by its ID alone", &OpenWithoutUpdate},
      {"unknown-ids", "unknown IDs are refused as such", &UnknownIds},
      {"null-ids", "null instead of an ID or of a place for a handle is refused", &NullIds},
      {"access-flags", "unknown access flags are refused", &AccessFlags},
      {"system-twice", "a system opens once", &SystemTwice},
      {"interface-twice", "an interface opens once", &InterfaceTwice},
      {"device-twice", "a device opens once", &DeviceTwice},
      {"stream-twice", "a stream opens once", &StreamTwice},
  };
}

}  // namespace zyn::producercheck
