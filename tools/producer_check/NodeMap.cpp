#include "NodeMap.h"

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <exception>
#include <fstream>
#include <iterator>

namespace zyn::producercheck {

using namespace GenTL;

namespace {

bool BeginsWith(const std::string& text, const std::string& beginning) {
  return text.size() >= beginning.size() &&
         std::equal(beginning.begin(), beginning.end(), text.begin(), [](char a, char b) {
           return a == static_cast<char>(std::tolower(static_cast<unsigned char>(b)));
         });
}

std::uint64_t Hexadecimal(const std::string& text, const std::string& url) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  Expect(error == std::errc() && end == text.data() + text.size(),
         "\"" + text + "\" in the URL " + url + " is no hexadecimal number");
  return number;
}

std::vector<char> ReadLocal(Bench& bench, const Module& module, const LocalUrl& url) {
  constexpr std::uint64_t kMostBytes = 256ULL << 20U;
  Expect(url.length > 0 && url.length <= kMostBytes,
         "the description of " + module.name + " has a length of " + std::to_string(url.length) + " bytes");
  std::vector<char> bytes(static_cast<std::size_t>(url.length));
  std::size_t size = bytes.size();
  bench.ExpectSuccess("reading the description of " + module.name,
                      bench.F().GCReadPort(module.handle, url.address, bytes.data(), &size));
  Expect(size == bytes.size(), "reading the description of " + module.name + " succeeded and gave " +
                                   std::to_string(size) + " of " + std::to_string(bytes.size()) + " bytes");
  return bytes;
}

std::vector<char> ReadFile(const std::string& url) {
  constexpr const char* kScheme = "file://";
  Expect(BeginsWith(url, kScheme), "the URL " + url + " is none of those that a consumer has to know");
  const std::string path = url.substr(std::char_traits<char>::length(kScheme));
  std::ifstream file(path.substr(0, path.find('?')), std::ios::binary);
  Expect(static_cast<bool>(file), "the file of the URL " + url + " cannot be opened");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<char> Fetch(Bench& bench, const Module& module, const std::string& url) {
  if (const auto local = ParseLocalUrl(url)) return ReadLocal(bench, module, *local);
  return ReadFile(url);
}

bool IsZip(const std::vector<char>& bytes) {
  return bytes.size() > 4 && bytes[0] == 'P' && bytes[1] == 'K' && bytes[2] == 3 && bytes[3] == 4;
}

template <class Interface>
Interface* Find(GenApi_3_4::INodeMap* map, const std::string& name) {
  return dynamic_cast<Interface*>(map->GetNode(name.c_str()));
}

}  // namespace

std::optional<LocalUrl> ParseLocalUrl(const std::string& url) {
  if (!BeginsWith(url, "local:")) return std::nullopt;
  const std::string text = url.substr(0, url.find('?'));
  const std::size_t first = text.find(';');
  const std::size_t second = first == std::string::npos ? first : text.find(';', first + 1);
  Expect(second != std::string::npos, "the URL " + url + " has not the form local:name;address;length");
  LocalUrl parts;
  const std::string path = text.substr(0, first);
  parts.file = path.substr(path.find_last_of(":/") + 1);
  parts.address = Hexadecimal(text.substr(first + 1, second - first - 1), url);
  parts.length = Hexadecimal(text.substr(second + 1), url);
  return parts;
}

std::vector<std::string> UrlsOf(Bench& bench, const Module& module) {
  std::uint32_t count = 0;
  bench.ExpectSuccess("GCGetNumPortURLs of " + module.name,
                      bench.F().GCGetNumPortURLs(module.handle, &count));
  std::vector<std::string> urls;
  for (std::uint32_t i = 0; i < count; ++i) urls.push_back(TextOf(UrlInfo(bench, module, i), URL_INFO_URL));
  return urls;
}

class NodeMap::Port final : public GenApi_3_4::IPort {
 public:
  Port(Functions& f, PORT_HANDLE handle) : f_(f), handle_(handle) {}

  GenApi_3_4::EAccessMode GetAccessMode() const override { return GenApi_3_4::RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Require(f_.GCReadPort(handle_, static_cast<std::uint64_t>(address), buffer, &size), address, length,
            size);
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Require(f_.GCWritePort(handle_, static_cast<std::uint64_t>(address), buffer, &size), address, length,
            size);
  }

 private:
  static void Require(GC_ERROR error, int64_t address, int64_t length, std::size_t size) {
    if (error != GC_ERR_SUCCESS)
      throw ACCESS_EXCEPTION("address %lld: %s", static_cast<long long>(address), NameOf(error).c_str());
    if (size != static_cast<std::size_t>(length))
      throw ACCESS_EXCEPTION("address %lld: success for a part of the bytes",
                             static_cast<long long>(address));
  }

  Functions& f_;
  PORT_HANDLE handle_;
};

NodeMap::NodeMap(Bench& bench, const Module& module)
    : module_(module.name), port_(std::make_unique<Port>(bench.F(), module.handle)) {
  const std::vector<std::string> urls = UrlsOf(bench, module);
  Expect(!urls.empty(), module.name + " has no description");
  const std::vector<char> bytes = Fetch(bench, module, urls.front());
  const auto kind = IsZip(bytes) ? GenApi_3_4::ContentType_ZippedXml : GenApi_3_4::ContentType_Xml;
  try {
    GenApi_3_4::CNodeMapFactory factory(kind, bytes.data(), bytes.size());
    map_ = factory.CreateNodeMap();
  } catch (const GenICam_3_4::GenericException& error) {
    Fail("the description of " + module.name + " does not load: " + error.GetDescription());
  }
  const std::string name = TextOf(PortInfo(bench, module), PORT_INFO_PORTNAME);
  const bool isConnected = map_ != nullptr && map_->Connect(port_.get(), name.c_str());
  if (!isConnected) {
    if (auto* const map = dynamic_cast<GenApi_3_4::IDestroy*>(map_)) map->Destroy();
    Fail("the description of " + module.name + " has no port named \"" + name + "\"");
  }
}

NodeMap::~NodeMap() {
  if (auto* const map = dynamic_cast<GenApi_3_4::IDestroy*>(map_)) map->Destroy();
}

bool NodeMap::Has(const std::string& name) const {
  return map_->GetNode(name.c_str()) != nullptr;
}

std::optional<std::string> NodeMap::Read(const std::string& name, std::string& reason) const {
  try {
    auto* const node = Find<GenApi_3_4::IValue>(map_, name);
    if (node == nullptr) {
      reason = "it has no value";
    } else if (!GenApi_3_4::IsReadable(node)) {
      reason = "it is not readable";
    } else {
      return std::string(node->ToString(false, true).c_str());
    }
  } catch (const GenICam_3_4::GenericException& error) {
    reason = error.GetDescription();
  }
  return std::nullopt;
}

std::optional<std::int64_t> NodeMap::ReadInteger(const std::string& name) const {
  try {
    auto* const node = Find<GenApi_3_4::IInteger>(map_, name);
    if (node != nullptr && GenApi_3_4::IsReadable(node)) return node->GetValue(false, true);
  } catch (const GenICam_3_4::GenericException&) {  // NOLINT(bugprone-empty-catch): no value
  }
  return std::nullopt;
}

void NodeMap::Write(const std::string& name, const std::string& value) const {
  try {
    auto* const node = Find<GenApi_3_4::IValue>(map_, name);
    if (node == nullptr) Fail(module_ + " has no feature " + name);
    node->FromString(value.c_str());
  } catch (const GenICam_3_4::GenericException& error) {
    Fail("writing " + value + " to " + name + " of " + module_ + " failed: " + error.GetDescription());
  }
}

void NodeMap::Execute(const std::string& name) const {
  try {
    auto* const node = Find<GenApi_3_4::ICommand>(map_, name);
    if (node == nullptr) Fail(module_ + " has no command " + name);
    node->Execute();
  } catch (const GenICam_3_4::GenericException& error) {
    Fail("executing " + name + " of " + module_ + " failed: " + error.GetDescription());
  }
}

}  // namespace zyn::producercheck
