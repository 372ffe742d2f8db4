/// Reads and writes single features of a node map without letting exceptions through.
///
/// Every function takes a null map and an unknown name as "the feature is not there".
#ifndef ZYN_TRANSPORT_FEATURES_H
#define ZYN_TRANSPORT_FEATURES_H

#include <cstdint>
#include <optional>
#include <string>

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// The value of an integer, enumeration or boolean feature, past the node map's cache.
std::optional<std::int64_t> ReadInteger(GenApi_3_4::INodeMap* map, const char* name);

/// The value of any feature as text, past the cache.
std::optional<std::string> ReadText(GenApi_3_4::INodeMap* map, const char* name);

/// What came of writing or executing a feature.
enum class FeatureResult { kOk, kAbsent, kRefused, kFailed };

FeatureResult WriteInteger(GenApi_3_4::INodeMap* map, const char* name, std::int64_t value);
FeatureResult WriteText(GenApi_3_4::INodeMap* map, const char* name, const char* value);
FeatureResult Execute(GenApi_3_4::INodeMap* map, const char* name);

/// Marks the cached value of a feature, or of all, as outdated.
void Invalidate(GenApi_3_4::INodeMap* map, const char* name);
void InvalidateAll(GenApi_3_4::INodeMap* map);

}  // namespace zyn::transport

#endif
