// Checks: ports and the descriptions behind them.
#include <algorithm>
#include <array>

#include "Modules.h"
#include "NodeMap.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::uint64_t kNowhere = 0xFFFFFFFFFFFF0000ULL;

void Urls(Bench& bench) {
  for (const Module& module : Modules(bench)) {
    const std::vector<std::string> urls = UrlsOf(bench, module);
    Expect(!urls.empty(), module.name + " has no description");
    for (std::uint32_t i = 0; i < urls.size(); ++i) {
      const InfoFunction info = UrlInfo(bench, module, i);
      ExpectCommands(bench, info);
      const auto local = ParseLocalUrl(urls[i]);
      if (!local) continue;
      const Answer address = Get(info.Bound(URL_INFO_FILE_REGISTER_ADDRESS));
      Expect(!address.IsThere() || address.Number() == local->address,
             "the URL " + urls[i] + " and URL_INFO_FILE_REGISTER_ADDRESS name different addresses");
      const Answer size = Get(info.Bound(URL_INFO_FILE_SIZE));
      Expect(!size.IsThere() || size.Number() == local->length,
             "the URL " + urls[i] + " and URL_INFO_FILE_SIZE name different lengths");
    }
    std::array<char, 4096> text{};
    std::size_t size = text.size();
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    bench.ExpectError("GCGetPortURLInfo of " + module.name + " for a URL too many",
                      bench.F().GCGetPortURLInfo(module.handle, static_cast<std::uint32_t>(urls.size()),
                                                 URL_INFO_URL, &type, text.data(), &size),
                      {GC_ERR_INVALID_INDEX});
  }
}

// The way of the first version: every URL ended by a NUL, and one more NUL at the end.
void UrlList(Bench& bench) {
  for (const Module& module : Modules(bench)) {
    const Answer list = Get([&](INFO_DATATYPE*, void* buffer, std::size_t* size) {
      return bench.F().GCGetPortURL(module.handle, static_cast<char*>(buffer), size);
    });
    bench.ExpectSuccess("GCGetPortURL of " + module.name, list.error);
    const std::size_t size = list.bytes.size();
    Expect(size > 2 && list.bytes[size - 1] == 0 && list.bytes[size - 2] == 0,
           "GCGetPortURL of " + module.name + " gives no list that ends with two NULs");
    const std::string first = list.Text();
    Expect(first.substr(0, first.find('?')) == UrlsOf(bench, module).front(),
           "GCGetPortURL and GCGetPortURLInfo of " + module.name + " begin with different URLs");
  }
}

void Descriptions(Bench& bench) {
  for (const Module& module : Modules(bench)) {
    const NodeMap map(bench, module);
    Expect(map.Has("Root"), "the description of " + module.name + " has no category Root");
  }
}

// What a consumer may rely on in each module's description.
const std::vector<std::string>& MandatoryFeatures(const std::string& module) {
  static const std::vector<std::string> system = {
      "TLID",       "TLVendorName",      "TLModelName",       "TLVersion",           "TLPath",
      "TLType",     "GenTLVersionMajor", "GenTLVersionMinor", "InterfaceUpdateList", "InterfaceSelector",
      "InterfaceID"};
  static const std::vector<std::string> interface = {"InterfaceID",
                                                     "InterfaceType",
                                                     "InterfaceTLVersionMajor",
                                                     "InterfaceTLVersionMinor",
                                                     "DeviceUpdateList",
                                                     "DeviceSelector",
                                                     "DeviceID",
                                                     "DeviceVendorName",
                                                     "DeviceModelName",
                                                     "DeviceAccessStatus"};
  static const std::vector<std::string> device = {"DeviceID",   "DeviceVendorName", "DeviceModelName",
                                                  "DeviceType", "StreamSelector",   "StreamID"};
  static const std::vector<std::string> stream = {"StreamID", "StreamType", "StreamAnnouncedBufferCount",
                                                  "StreamBufferHandlingMode", "StreamAnnounceBufferMinimum"};
  static const std::vector<std::string> none;
  if (module == GENTL_MODULE_SYSTEM) return system;
  if (module == GENTL_MODULE_INTERFACE) return interface;
  if (module == GENTL_MODULE_DEVICE) return device;
  if (module == GENTL_MODULE_STREAM) return stream;
  return none;
}

void ExpectReadable(const NodeMap& map, const std::string& feature, const std::string& module) {
  std::string reason;
  if (map.Read(feature, reason)) return;
  Fail("the feature " + feature + " of " + module + " cannot be read: " + reason);
}

void Features(Bench& bench) {
  const bool hasStream = HasStream(bench);
  for (const Module& module : Modules(bench)) {
    const NodeMap map(bench, module);
    for (const std::string& name : MandatoryFeatures(module.module)) {
      const bool isForStreams =
          module.module == std::string(GENTL_MODULE_DEVICE) && name.substr(0, 6) == "Stream";
      if (isForStreams && !hasStream) continue;
      if (!map.Has(name)) Fail(module.name + " lacks the mandatory feature " + name);
      const bool isCommand = name.find("UpdateList") != std::string::npos;
      if (!isCommand) ExpectReadable(map, name, module.name);
    }
  }
}

void FeaturesAgree(Bench& bench) {
  const std::vector<Module> modules = Modules(bench);
  const auto expect = [&](const Module& module, const std::string& feature, const std::string& told) {
    std::string reason;
    const std::string value = NodeMap(bench, module).Read(feature, reason).value_or("");
    Expect(value == told, "the feature " + feature + " of " + module.name + " is \"" + value +
                              "\", and the information command says \"" + told + "\"");
  };
  expect(modules[0], "TLVendorName", TextOf(SystemInfo(bench), TL_INFO_VENDOR));
  expect(modules[0], "TLModelName", TextOf(SystemInfo(bench), TL_INFO_MODEL));
  expect(modules[1], "InterfaceID", bench.InterfaceId());
  expect(modules[2], "DeviceID", bench.DeviceId());
  if (HasStream(bench)) expect(modules[4], "StreamID", bench.StreamId());
}

// Where a module has bytes that can be read without doing anything: its description.
LocalUrl ReadableBytes(Bench& bench, const Module& module) {
  const std::vector<std::string> urls = UrlsOf(bench, module);
  Expect(!urls.empty(), module.name + " has no description");
  const auto local = ParseLocalUrl(urls.front());
  if (!local) Skip("the description of " + module.name + " does not lie in its registers");
  return *local;
}

void ReadPort(Bench& bench) {
  Functions& f = bench.F();
  for (const Module& module : Modules(bench)) {
    const LocalUrl url = ReadableBytes(bench, module);
    std::array<char, 64> whole{};
    std::size_t size = whole.size();
    const std::string call = "GCReadPort of " + module.name;
    bench.ExpectSuccess(call, f.GCReadPort(module.handle, url.address, whole.data(), &size));
    for (std::size_t at = 0; at < 9; ++at) {
      for (std::size_t length = 1; length < 10; ++length) {
        std::array<char, 24> bytes{};
        size = length;
        const std::string which = std::string(call).append(" for ") + std::to_string(length) +
                                  " bytes at offset " + std::to_string(at);
        bench.ExpectSuccess(which, f.GCReadPort(module.handle, url.address + at, bytes.data(), &size));
        Expect(size == length, which + " says it read " + std::to_string(size));
        Expect(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length),
                          whole.begin() + static_cast<std::ptrdiff_t>(at)),
               which + " gives other bytes than a longer read");
        Expect(std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(length), bytes.end(),
                           [](char byte) { return byte == 0; }),
               which + " writes behind the buffer");
      }
    }
  }
}

void PortErrors(Bench& bench) {
  Functions& f = bench.F();
  for (const Module& module : Modules(bench)) {
    const LocalUrl url = ReadableBytes(bench, module);
    std::array<char, 4> bytes{};
    std::size_t size = bytes.size();
    const std::string of = " of " + module.name;
    bench.ExpectError("GCReadPort" + of + " without a buffer",
                      f.GCReadPort(module.handle, url.address, nullptr, &size), {GC_ERR_INVALID_PARAMETER});
    bench.ExpectError("GCReadPort" + of + " without a size",
                      f.GCReadPort(module.handle, url.address, bytes.data(), nullptr),
                      {GC_ERR_INVALID_PARAMETER});
    size = bytes.size();
    bench.ExpectError("GCWritePort" + of + " without a buffer",
                      f.GCWritePort(module.handle, kNowhere, nullptr, &size), {GC_ERR_INVALID_PARAMETER});
    size = bytes.size();
    bench.ExpectError("GCReadPort" + of + " where there is no register",
                      f.GCReadPort(module.handle, kNowhere, bytes.data(), &size),
                      {GC_ERR_INVALID_ADDRESS, GC_ERR_IO, GC_ERR_ACCESS_DENIED});
    size = bytes.size();
    bench.ExpectError("GCWritePort" + of + " where there is no register",
                      f.GCWritePort(module.handle, kNowhere, bytes.data(), &size),
                      {GC_ERR_INVALID_ADDRESS, GC_ERR_IO, GC_ERR_ACCESS_DENIED});
  }
}

void Stacked(Bench& bench) {
  Functions& f = bench.F();
  for (const Module& module : Modules(bench)) {
    const LocalUrl url = ReadableBytes(bench, module);
    const std::string call = "GCReadPortStacked of " + module.name;
    std::array<char, 8> whole{};
    std::size_t size = whole.size();
    bench.ExpectSuccess("GCReadPort of " + module.name,
                        f.GCReadPort(module.handle, url.address, whole.data(), &size));
    std::array<char, 8> pieces{};
    std::array<PORT_REGISTER_STACK_ENTRY, 2> entries = {
        {{url.address, pieces.data(), 4}, {url.address + 4, pieces.data() + 4, 4}}};
    std::size_t count = entries.size();
    bench.ExpectSuccess(call, f.GCReadPortStacked(module.handle, entries.data(), &count));
    Expect(count == entries.size(), call + " succeeded for " + std::to_string(count) + " of 2 entries");
    Expect(pieces == whole, call + " gives other bytes than GCReadPort");
    entries[1].Address = kNowhere;
    count = entries.size();
    const GC_ERROR error = f.GCReadPortStacked(module.handle, entries.data(), &count);
    Expect(error != GC_ERR_SUCCESS, call + " succeeded although one entry has no register");
    Expect(count == 1, call + " says that " + std::to_string(count) + " entries succeeded instead of 1");
    count = 0;
    bench.ExpectError(call + " without entries", f.GCReadPortStacked(module.handle, nullptr, &count),
                      {GC_ERR_INVALID_PARAMETER});
  }
}

// A selector of a module, the feature that it selects, and the C function that tells the same.
struct Selector {
  std::string name;
  std::string feature;
  std::uint32_t count;
  std::function<GC_ERROR(std::uint32_t, char*, std::size_t*)> id;
};

// Only the last entry tells a write that does nothing from one that works, where there is more than one.
void ExpectSelects(Bench& bench, const NodeMap& map, const Selector& selector) {
  for (const std::uint32_t index : {selector.count - 1, 0U}) {
    const std::string number = std::to_string(index);
    std::string reason;
    map.Write(selector.name, number);
    Expect(map.Read(selector.name, reason) == number,
           selector.name + " does not keep what was written to it");
    std::array<char, 512> text{};
    std::size_t size = text.size();
    bench.ExpectSuccess("asking for ID number " + number, selector.id(index, text.data(), &size));
    Expect(map.Read(selector.feature, reason) == text.data(),
           selector.feature + " does not follow " + selector.name);
  }
}

// Writes to the modules of the producer only: a camera's settings are its owner's.
void WritePort(Bench& bench) {
  Functions& f = bench.F();
  const std::vector<Module> modules = Modules(bench);
  const NodeMap system(bench, modules[0]);
  system.Execute("InterfaceUpdateList");
  std::uint32_t count = 0;
  bench.ExpectSuccess("TLGetNumInterfaces", f.TLGetNumInterfaces(bench.System(), &count));
  ExpectSelects(
      bench, system,
      {"InterfaceSelector", "InterfaceID", count, [&](std::uint32_t i, char* text, std::size_t* size) {
         return f.TLGetInterfaceID(bench.System(), i, text, size);
       }});
  const NodeMap interface(bench, modules[1]);
  interface.Execute("DeviceUpdateList");
  bench.ExpectSuccess("IFGetNumDevices", f.IFGetNumDevices(bench.Interface(), &count));
  ExpectSelects(bench, interface,
                {"DeviceSelector", "DeviceID", count, [&](std::uint32_t i, char* text, std::size_t* size) {
                   return f.IFGetDeviceID(bench.Interface(), i, text, size);
                 }});
}

void DevicePortIsNoCamera(Bench& bench) {
  const std::vector<Module> modules = Modules(bench);
  Expect(bench.Remote() != bench.Device(), "the camera's port has the handle of the device module");
  const NodeMap local(bench, modules[2]);
  Expect(!local.Has("AcquisitionStart"), "the device module has the camera's features");
}

}  // namespace

std::vector<Check> PortChecks() {
  return {
      {"urls", "every module tells where its description lies", &Urls},
      {"url-list", "the old way to ask for descriptions gives the same", &UrlList},
      {"descriptions", "every module's description loads and has the port it is connected to", &Descriptions},
      {"features", "every module has the mandatory features, and they can be read", &Features},
      {"features-agree", "features and information commands say the same", &FeaturesAgree},
      {"device-port", "the ports of device module and camera are two", &DevicePortIsNoCamera},
      {"read-port", "ports can be read from any address in any length", &ReadPort},
      {"port-errors", "ports refuse null pointers and addresses without a register", &PortErrors},
      {"stacked-read", "several registers can be read in one call", &Stacked},
      {"write-port", "selectors and commands of the producer's modules work", &WritePort},
  };
}

}  // namespace zyn::producercheck
