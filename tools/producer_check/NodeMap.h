/// The node map of a module, built by our own GenICam runtime.
#ifndef ZYN_PRODUCER_CHECK_NODE_MAP_H
#define ZYN_PRODUCER_CHECK_NODE_MAP_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Modules.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::producercheck {

/// The parts of a "local:" URL, as the rules write it: hexadecimal numbers without a prefix.
struct LocalUrl {
  std::string file;
  std::uint64_t address = 0;
  std::uint64_t length = 0;
};

/// Nothing for a URL of another scheme. Throws CheckFailed for a malformed one.
std::optional<LocalUrl> ParseLocalUrl(const std::string& url);

/// The URLs of a module.
std::vector<std::string> UrlsOf(Bench& bench, const Module& module);

class NodeMap {
 public:
  /// Loads the description of the first URL and connects the port that the producer names. Throws CheckFailed.
  NodeMap(Bench& bench, const Module& module);
  ~NodeMap();
  NodeMap(const NodeMap&) = delete;
  NodeMap& operator=(const NodeMap&) = delete;

  bool Has(const std::string& name) const;
  /// The value as text; nothing when it cannot be read, and then `reason` says why.
  std::optional<std::string> Read(const std::string& name, std::string& reason) const;
  std::optional<std::int64_t> ReadInteger(const std::string& name) const;
  /// Throws CheckFailed when it fails.
  void Write(const std::string& name, const std::string& value) const;
  void Execute(const std::string& name) const;

 private:
  class Port;

  std::string module_;
  std::unique_ptr<Port> port_;
  GenApi_3_4::INodeMap* map_ = nullptr;
};

}  // namespace zyn::producercheck

#endif
