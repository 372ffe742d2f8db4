// C functions: ports.
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "Answer.h"
#include "Buffer.h"
#include "Guard.h"
#include "Module.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
namespace {

// Buffers are modules too, but have no registers.
std::shared_ptr<Port> PortOf(PORT_HANDLE handle) {
  const std::shared_ptr<HandleTarget> target = Handles().Find(handle);
  if (std::dynamic_pointer_cast<Buffer>(target)) throw Error(GC_ERR_NOT_IMPLEMENTED, "Buffers have no port.");
  std::shared_ptr<Port> port = std::dynamic_pointer_cast<Port>(target);
  if (!port) ThrowInvalidHandle();
  return port;
}

void AnswerPortInfo(const Port& port, PORT_INFO_CMD command, const Answer& answer) {
  const PortFacts facts = port.Facts();
  switch (command) {
    case PORT_INFO_ID:
      return answer.Text(facts.id);
    case PORT_INFO_VENDOR:
      return answer.Text(facts.vendor);
    case PORT_INFO_MODEL:
      return answer.Text(facts.model);
    case PORT_INFO_TLTYPE:
      return answer.Text(facts.tlType);
    case PORT_INFO_MODULE:
      return answer.Text(facts.module);
    case PORT_INFO_LITTLE_ENDIAN:
      return answer.Bool(!facts.bigEndian);
    case PORT_INFO_BIG_ENDIAN:
      return answer.Bool(facts.bigEndian);
    case PORT_INFO_ACCESS_READ:
      return answer.Bool(port.Reachable());
    case PORT_INFO_ACCESS_WRITE:
      return answer.Bool(port.Reachable() && port.Writable());
    case PORT_INFO_ACCESS_NA:
      return answer.Bool(!port.Reachable());
    case PORT_INFO_ACCESS_NI:
      return answer.Bool(false);
    case PORT_INFO_VERSION:
      return answer.Text(facts.version);
    case PORT_INFO_PORTNAME:
      return answer.Text(facts.portName);
    default:
      throw Error(GC_ERR_NOT_IMPLEMENTED, "There is no port information " + std::to_string(command) + ".");
  }
}

bool BeginsWith(const std::string& text, const std::string& beginning) {
  if (text.size() < beginning.size()) return false;
  const auto same = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; };
  return std::equal(beginning.begin(), beginning.end(), text.begin(),
                    [&](char b, char a) { return same(a, b); });
}

URL_SCHEME_ID SchemeOf(const std::string& url) {
  if (BeginsWith(url, "local:")) return URL_SCHEME_LOCAL;
  if (BeginsWith(url, "file:")) return URL_SCHEME_FILE;
  if (BeginsWith(url, "http:")) return URL_SCHEME_HTTP;
  return URL_SCHEME_CUSTOM_ID;
}

// What a URL says about its file.
struct UrlParts {
  std::string fileName;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
};

UrlParts Split(const std::string& url) {
  UrlParts parts;
  const std::size_t addressAt = url.find(';');
  const std::string path = url.substr(0, addressAt);
  parts.fileName = path.substr(path.find_last_of(":/\\") + 1);
  if (addressAt == std::string::npos) return parts;
  const std::size_t sizeAt = url.find(';', addressAt + 1);
  parts.address = std::strtoull(url.c_str() + addressAt + 1, nullptr, 16);
  if (sizeAt != std::string::npos) parts.size = std::strtoull(url.c_str() + sizeAt + 1, nullptr, 16);
  return parts;
}

void AnswerUrlInfo(const XmlLocation& location, URL_INFO_CMD command, const Answer& answer) {
  const auto local = [&] {
    if (SchemeOf(location.url) != URL_SCHEME_LOCAL)
      throw Error(GC_ERR_NOT_AVAILABLE, "The description does not lie in the registers.");
  };
  switch (command) {
    case URL_INFO_URL:
      return answer.Text(location.url);
    case URL_INFO_SCHEMA_VER_MAJOR:
      return answer.Int32(location.schemaMajor);
    case URL_INFO_SCHEMA_VER_MINOR:
      return answer.Int32(location.schemaMinor);
    case URL_INFO_FILE_VER_MAJOR:
      return answer.Int32(location.fileMajor);
    case URL_INFO_FILE_VER_MINOR:
      return answer.Int32(location.fileMinor);
    case URL_INFO_FILE_VER_SUBMINOR:
      return answer.Int32(location.fileSubMinor);
    case URL_INFO_FILE_SHA1_HASH:
      throw Error(GC_ERR_NOT_AVAILABLE, "The hash of the file is not known.");
    case URL_INFO_FILE_REGISTER_ADDRESS:
      local();
      return answer.UInt64(Split(location.url).address);
    case URL_INFO_FILE_SIZE:
      local();
      return answer.UInt64(Split(location.url).size);
    case URL_INFO_SCHEME:
      return answer.Int32(SchemeOf(location.url));
    case URL_INFO_FILENAME:
      return answer.Text(Split(location.url).fileName);
    default:
      throw Error(GC_ERR_NOT_IMPLEMENTED, "There is no URL information " + std::to_string(command) + ".");
  }
}

std::string WithSchemaVersion(const XmlLocation& location) {
  return location.url + "?SchemaVersion=" + std::to_string(location.schemaMajor) + "." +
         std::to_string(location.schemaMinor) + ".0";
}

// An entry is copied, because the caller's array need not be aligned; the count tells how far it went.
template <class Transfer>
void Stacked(PORT_REGISTER_STACK_ENTRY* entries, size_t* count, const Transfer& transfer) {
  RequirePointer(entries, "pEntries");
  RequirePointer(count, "piNumEntries");
  const size_t wanted = *count;
  for (*count = 0; *count < wanted; ++*count) {
    const PORT_REGISTER_STACK_ENTRY entry = entries[*count];
    RequirePointer(entry.pBuffer, "pBuffer of an entry");
    if (entry.Size > 0) transfer(entry);
  }
}

}  // namespace

extern "C" {

GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    RequirePointer(pBuffer, "pBuffer");
    RequirePointer(piSize, "piSize");
    if (*piSize > 0) port->Read(iAddress, pBuffer, *piSize);
  });
}

GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    RequirePointer(pBuffer, "pBuffer");
    RequirePointer(piSize, "piSize");
    if (*piSize > 0) port->Write(iAddress, pBuffer, *piSize);
  });
}

GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    // The list ends with an empty text; each text with a NUL, of which AnswerText adds the last.
    std::string list;
    for (const XmlLocation& location : port->Locations()) list += WithSchemaVersion(location) + '\0';
    AnswerText(list, sURL, piSize);
  });
}

GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                   void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    AnswerPortInfo(*port, iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    RequirePointer(piNumURLs, "piNumURLs");
    *piNumURLs = static_cast<uint32_t>(port->Locations().size());
  });
}

GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd,
                                      INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    const Answer answer(piType, pBuffer, piSize);
    const std::vector<XmlLocation> locations = port->Locations();
    if (iURLIndex >= locations.size())
      throw Error(GC_ERR_INVALID_INDEX, "There is no URL number " + std::to_string(iURLIndex) + ".");
    AnswerUrlInfo(locations[iURLIndex], iInfoCmd, answer);
  });
}

GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                       size_t* piNumEntries) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    Stacked(pEntries, piNumEntries, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
      port->Read(entry.Address, entry.pBuffer, entry.Size);
    });
  });
}

GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                        size_t* piNumEntries) {
  return Guarded(__func__, [&] {
    const Pin<Port> port(PortOf(hPort));
    Stacked(pEntries, piNumEntries, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
      port->Write(entry.Address, entry.pBuffer, entry.Size);
    });
  });
}

}  // extern "C"
}  // namespace GenTL
