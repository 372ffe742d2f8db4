// Checks: information commands, and how their answers are fetched.
#include <array>
#include <set>

#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::int32_t kNoCommand = 999;
constexpr unsigned char kGuard = 0xA5;

// Two functions that tell about the same module give the same answers.
void ExpectSame(const InfoFunction& one, const InfoFunction& other,
                std::initializer_list<std::int32_t> commands) {
  for (const std::int32_t command : commands) {
    const Answer a = Get(one.Bound(command));
    const Answer b = Get(other.Bound(command));
    Expect(a.error == b.error && a.bytes == b.bytes,
           one.name + " and " + other.name + " disagree about command " + std::to_string(command) + ": \"" +
               a.Text() + "\" and \"" + b.Text() + "\"");
  }
}

void AboutSystem(Bench& bench) {
  const InfoFunction library = LibraryInfo(bench);
  const InfoFunction system = SystemInfo(bench);
  ExpectCommands(bench, library);
  ExpectCommands(bench, system);
  ExpectSame(library, system,
             {TL_INFO_ID, TL_INFO_VENDOR, TL_INFO_MODEL, TL_INFO_VERSION, TL_INFO_TLTYPE, TL_INFO_NAME,
              TL_INFO_PATHNAME, TL_INFO_DISPLAYNAME, TL_INFO_GENTL_VER_MAJOR, TL_INFO_GENTL_VER_MINOR});
}

void AboutInterface(Bench& bench) {
  const InfoFunction byId = InterfaceInfoById(bench);
  const InfoFunction byHandle = InterfaceInfo(bench);
  ExpectCommands(bench, byId);
  ExpectCommands(bench, byHandle);
  ExpectSame(byId, byHandle, {INTERFACE_INFO_ID, INTERFACE_INFO_DISPLAYNAME, INTERFACE_INFO_TLTYPE});
  Expect(TextOf(byHandle, INTERFACE_INFO_ID) == bench.InterfaceId(),
         "an interface has another ID than it was opened by");
  Expect(TextOf(byHandle, INTERFACE_INFO_TLTYPE) != GENTL_TLTYPE_MIXED,
         "an interface has the type \"Mixed\", which is for systems only");
}

void AboutDevice(Bench& bench) {
  const InfoFunction byHandle = DeviceInfo(bench);
  const InfoFunction byId = DeviceInfoById(bench);
  ExpectCommands(bench, byId);
  ExpectCommands(bench, byHandle);
  ExpectSame(
      byId, byHandle,
      {DEVICE_INFO_ID, DEVICE_INFO_VENDOR, DEVICE_INFO_MODEL, DEVICE_INFO_TLTYPE, DEVICE_INFO_SERIAL_NUMBER});
  Expect(TextOf(byHandle, DEVICE_INFO_ID) == bench.DeviceId(),
         "a device has another ID than it was opened by");
  const Answer status = Get(byHandle.Bound(DEVICE_INFO_ACCESS_STATUS));
  constexpr int kOpenStatesSince = 5;
  if (!status.IsThere() || bench.Version() < kOpenStatesSince) return;
  Expect(status.Number() == DEVICE_ACCESS_STATUS_OPEN_READWRITE,
         "a device that is open here has the access status " + std::to_string(status.Number()) +
             " instead of 5");
}

void AboutStream(Bench& bench) {
  const InfoFunction stream = StreamInfo(bench);
  ExpectCommands(bench, stream);
  Expect(TextOf(stream, STREAM_INFO_ID) == bench.StreamId(), "a stream has another ID than it was opened by");
  Expect(Get(stream.Bound(STREAM_INFO_IS_GRABBING)).Number() == 0,
         "a stream that was not started says it is grabbing");
}

void AboutPorts(Bench& bench) {
  for (const Module& module : Modules(bench)) {
    const InfoFunction port = PortInfo(bench, module);
    ExpectCommands(bench, port);
    const std::string told = TextOf(port, PORT_INFO_MODULE);
    Expect(told == module.module, "the port of " + module.name + " says it belongs to \"" + told +
                                      "\" instead of \"" + module.module + "\"");
    const bool isLittle = Get(port.Bound(PORT_INFO_LITTLE_ENDIAN)).Number() != 0;
    const bool isBig = Get(port.Bound(PORT_INFO_BIG_ENDIAN)).Number() != 0;
    Expect(isLittle != isBig, "the port of " + module.name + " has both byte orders, or none");
    Expect(Get(port.Bound(PORT_INFO_ACCESS_READ)).Number() != 0,
           "the port of " + module.name + " cannot be read");
  }
}

// Every information function, for the rules that hold for all of them.
std::vector<InfoFunction> AllFunctions(Bench& bench) {
  std::vector<InfoFunction> functions = {LibraryInfo(bench),   SystemInfo(bench), InterfaceInfoById(bench),
                                         InterfaceInfo(bench), DeviceInfo(bench), DeviceInfoById(bench)};
  if (HasStream(bench)) functions.push_back(StreamInfo(bench));
  std::set<std::string> missing;
  for (const MissingName& name : bench.F().Missing()) missing.insert(name.name);
  for (const Module& module : Modules(bench)) {
    functions.push_back(PortInfo(bench, module));
    if (missing.count("GCGetPortURLInfo") == 0) functions.push_back(UrlInfo(bench, module, 0));
  }
  return functions;
}

// Asks for a value of `needed` bytes with memory for `given`.
GC_ERROR AskWith(const Ask& ask, std::size_t needed, std::size_t given, std::size_t& size,
                 const std::string& question) {
  std::vector<unsigned char> bytes(needed + 16, kGuard);
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  size = given;
  const GC_ERROR error = ask(&type, bytes.data(), &size);
  for (std::size_t i = given; i < bytes.size(); ++i) {
    Expect(bytes[i] == kGuard, question + " with memory for " + std::to_string(given) + " of " +
                                   std::to_string(needed) + " bytes writes behind it");
  }
  return error;
}

void ExpectIdiom(Bench& bench, const Ask& ask, const std::string& question) {
  for (const std::size_t garbage : {std::size_t{0}, std::size_t{1}, ~std::size_t{0}}) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = garbage;
    const GC_ERROR error = ask(&type, nullptr, &size);
    bench.ExpectSuccess(question + " with a null buffer and " + std::to_string(garbage) + " in *piSize",
                        error);
    Expect(size != garbage || garbage == 1, question + " with a null buffer does not tell the size");
  }
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  std::size_t needed = 0;
  bench.ExpectSuccess(question + " with a null buffer", ask(&type, nullptr, &needed));
  std::size_t size = 0;
  bench.ExpectSuccess(question + " with exactly the memory asked for",
                      AskWith(ask, needed, needed, size, question));
  Expect(size == needed, question + " says " + std::to_string(needed) + " bytes are needed and writes " +
                             std::to_string(size));
  bench.ExpectSuccess(question + " with more memory than asked for",
                      AskWith(ask, needed, needed + 7, size, question));
  Expect(size == needed, question + " does not tell how much it wrote into a larger buffer");
  bench.ExpectError(question + " with a byte too little", AskWith(ask, needed, needed - 1, size, question),
                    {GC_ERR_BUFFER_TOO_SMALL});
}

void SizeQuery(Bench& bench) {
  for (const InfoFunction& function : AllFunctions(bench)) {
    for (const Command& command : *function.commands) {
      const Ask ask = function.Bound(command.id);
      const Answer answer = Get(ask);
      if (answer.IsThere() && !answer.bytes.empty())
        ExpectIdiom(bench, ask, function.name + "(" + command.name + ")");
    }
  }
}

using AskText = std::function<GC_ERROR(char*, std::size_t*)>;

void ExpectTextIdiom(Bench& bench, const std::string& question, const AskText& ask) {
  try {
    ExpectIdiom(
        bench,
        [&](INFO_DATATYPE*, void* buffer, std::size_t* size) {
          return ask(static_cast<char*>(buffer), size);
        },
        question);
  } catch (const MissingFunction&) {  // NOLINT(bugprone-empty-catch): another check tells
  }
}

void IdSizeQuery(Bench& bench) {
  Functions& f = bench.F();
  TL_HANDLE system = bench.System();
  ExpectTextIdiom(bench, "TLGetInterfaceID",
                  [&](char* text, std::size_t* size) { return f.TLGetInterfaceID(system, 0, text, size); });
  IF_HANDLE interface = bench.Interface();
  ExpectTextIdiom(bench, "IFGetDeviceID",
                  [&](char* text, std::size_t* size) { return f.IFGetDeviceID(interface, 0, text, size); });
  if (HasStream(bench)) {
    ExpectTextIdiom(bench, "DevGetDataStreamID", [&](char* text, std::size_t* size) {
      return f.DevGetDataStreamID(bench.Device(), 0, text, size);
    });
  }
  for (const Module& module : Modules(bench)) {
    ExpectTextIdiom(bench, "GCGetPortURL of " + module.name,
                    [&](char* text, std::size_t* size) { return f.GCGetPortURL(module.handle, text, size); });
  }
  GC_ERROR code = GC_ERR_SUCCESS;
  ExpectTextIdiom(bench, "GCGetLastError",
                  [&](char* text, std::size_t* size) { return f.GCGetLastError(&code, text, size); });
}

void NullParameters(Bench& bench) {
  for (const InfoFunction& function : AllFunctions(bench)) {
    const Ask ask = function.Bound(function.commands->front().id);
    std::array<char, 4096> text{};
    std::size_t size = text.size();
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    bench.ExpectError(function.name + " without piType", ask(nullptr, text.data(), &size),
                      {GC_ERR_INVALID_PARAMETER});
    bench.ExpectError(function.name + " without piSize", ask(&type, text.data(), nullptr),
                      {GC_ERR_INVALID_PARAMETER});
  }
}

void UnknownCommand(Bench& bench) {
  for (const InfoFunction& function : AllFunctions(bench)) {
    std::array<char, 4096> text{};
    std::size_t size = text.size();
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    bench.ExpectError(function.name + " with an unknown command",
                      function.ask(kNoCommand, &type, text.data(), &size), {GC_ERR_NOT_IMPLEMENTED});
  }
}

}  // namespace

std::vector<Check> InfoChecks() {
  return {
      {"info-system", "the system's information is complete", &AboutSystem},
      {"info-interface", "an interface's information is complete", &AboutInterface},
      {"info-device", "a device's information is complete", &AboutDevice},
      {"info-stream", "a stream's information is complete", &AboutStream},
      {"info-port", "the information of all ports is complete", &AboutPorts},
      {"size-query", "every value can be fetched by asking for its size first", &SizeQuery},
      {"id-size-query", "IDs and texts can be fetched by asking for their size first", &IdSizeQuery},
      {"null-parameters", "null instead of type or size is refused", &NullParameters},
      {"unknown-command", "unknown information commands are refused as not implemented", &UnknownCommand},
  };
}

}  // namespace zyn::producercheck
