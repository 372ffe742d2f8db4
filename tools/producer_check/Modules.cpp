#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

bool HasStream(Bench& bench) {
  std::uint32_t count = 0;
  return bench.F().DevGetNumDataStreams(bench.Device(), &count) == GC_ERR_SUCCESS && count > 0;
}

std::vector<Module> Modules(Bench& bench) {
  std::vector<Module> modules = {{"the system", bench.System(), GENTL_MODULE_SYSTEM, true},
                                 {"the interface", bench.Interface(), GENTL_MODULE_INTERFACE, true},
                                 {"the device", bench.Device(), GENTL_MODULE_DEVICE, true},
                                 {"the camera", bench.Remote(), GENTL_MODULE_REMOTE_DEVICE, false}};
  if (HasStream(bench)) modules.push_back({"the stream", bench.Stream(), GENTL_MODULE_STREAM, true});
  return modules;
}

InfoFunction LibraryInfo(Bench& bench) {
  bench.Library();
  Functions& f = bench.F();
  return {"GCGetInfo",
          [&f](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return f.GCGetInfo(command, type, buffer, size);
          },
          &SystemCommands()};
}

InfoFunction SystemInfo(Bench& bench) {
  Functions& f = bench.F();
  return {"TLGetInfo",
          [&f, system = bench.System()](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                                        std::size_t* size) {
            return f.TLGetInfo(system, command, type, buffer, size);
          },
          &SystemCommands()};
}

InfoFunction InterfaceInfoById(Bench& bench) {
  Functions& f = bench.F();
  return {"TLGetInterfaceInfo",
          [&f, id = bench.InterfaceId(), system = bench.System()](std::int32_t command, INFO_DATATYPE* type,
                                                                  void* buffer, std::size_t* size) {
            return f.TLGetInterfaceInfo(system, id.c_str(), command, type, buffer, size);
          },
          &InterfaceCommands()};
}

InfoFunction InterfaceInfo(Bench& bench) {
  Functions& f = bench.F();
  return {"IFGetInfo",
          [&f, interface = bench.Interface()](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                                              std::size_t* size) {
            return f.IFGetInfo(interface, command, type, buffer, size);
          },
          &InterfaceCommands()};
}

InfoFunction DeviceInfoById(Bench& bench) {
  Functions& f = bench.F();
  return {"IFGetDeviceInfo",
          [&f, id = bench.DeviceId(), interface = bench.Interface()](
              std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return f.IFGetDeviceInfo(interface, id.c_str(), command, type, buffer, size);
          },
          &DeviceCommands()};
}

InfoFunction DeviceInfo(Bench& bench) {
  Functions& f = bench.F();
  return {"DevGetInfo",
          [&f, device = bench.Device()](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                                        std::size_t* size) {
            return f.DevGetInfo(device, command, type, buffer, size);
          },
          &DeviceCommands()};
}

InfoFunction StreamInfo(Bench& bench) {
  Functions& f = bench.F();
  return {"DSGetInfo",
          [&f, stream = bench.Stream()](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                                        std::size_t* size) {
            return f.DSGetInfo(stream, command, type, buffer, size);
          },
          &StreamCommands()};
}

InfoFunction PortInfo(Bench& bench, const Module& module) {
  Functions& f = bench.F();
  return {
      "GCGetPortInfo of " + module.name,
      [&f, port = module.handle](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
        return f.GCGetPortInfo(port, command, type, buffer, size);
      },
      &PortCommands()};
}

InfoFunction UrlInfo(Bench& bench, const Module& module, std::uint32_t index) {
  Functions& f = bench.F();
  return {"GCGetPortURLInfo of " + module.name,
          [&f, port = module.handle, index](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                                            std::size_t* size) {
            return f.GCGetPortURLInfo(port, index, command, type, buffer, size);
          },
          &UrlCommands()};
}

std::string TextOf(const InfoFunction& function, std::int32_t command) {
  return Get(function.Bound(command)).Text();
}

}  // namespace zyn::producercheck
