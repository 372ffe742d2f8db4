#include "Features.h"

#include <exception>

#include <GenICam.h>

namespace zyn::transport {

namespace {

// Runs `action` and turns every exception into the result that fits.
template <class Action>
FeatureResult Guarded(Action&& action) {
  try {
    return action();
  } catch (const GenICam_3_4::AccessException&) {
    return FeatureResult::kRefused;
  } catch (const GenICam_3_4::OutOfRangeException&) {
    return FeatureResult::kRefused;
  } catch (const GenICam_3_4::InvalidArgumentException&) {
    return FeatureResult::kRefused;
  } catch (const GenICam_3_4::GenericException&) {
    return FeatureResult::kFailed;
  } catch (const std::exception&) {
    return FeatureResult::kFailed;
  }
}

template <class Interface>
Interface* Find(GenApi_3_4::INodeMap* map, const char* name) {
  return map ? dynamic_cast<Interface*>(map->GetNode(name)) : nullptr;
}

std::optional<std::int64_t> ValueOf(GenApi_3_4::INode* node) {
  if (!GenApi_3_4::IsReadable(node)) return std::nullopt;
  if (auto* integer = dynamic_cast<GenApi_3_4::IInteger*>(node)) return integer->GetValue(false, true);
  if (auto* entry = dynamic_cast<GenApi_3_4::IEnumeration*>(node)) return entry->GetIntValue(false, true);
  if (auto* boolean = dynamic_cast<GenApi_3_4::IBoolean*>(node))
    return boolean->GetValue(false, true) ? 1 : 0;
  return std::nullopt;
}

}  // namespace

std::optional<std::int64_t> ReadInteger(GenApi_3_4::INodeMap* map, const char* name) {
  std::optional<std::int64_t> value;
  Guarded([&] {
    if (auto* node = Find<GenApi_3_4::INode>(map, name)) value = ValueOf(node);
    return FeatureResult::kOk;
  });
  return value;
}

std::optional<std::string> ReadText(GenApi_3_4::INodeMap* map, const char* name) {
  std::optional<std::string> text;
  Guarded([&] {
    auto* node = Find<GenApi_3_4::IValue>(map, name);
    if (node && GenApi_3_4::IsReadable(node)) text = node->ToString(false, true).c_str();
    return FeatureResult::kOk;
  });
  return text;
}

FeatureResult WriteInteger(GenApi_3_4::INodeMap* map, const char* name, std::int64_t value) {
  return Guarded([&] {
    if (auto* integer = Find<GenApi_3_4::IInteger>(map, name)) {
      integer->SetValue(value);
      return FeatureResult::kOk;
    }
    if (auto* boolean = Find<GenApi_3_4::IBoolean>(map, name)) {
      boolean->SetValue(value != 0);
      return FeatureResult::kOk;
    }
    return FeatureResult::kAbsent;
  });
}

FeatureResult WriteText(GenApi_3_4::INodeMap* map, const char* name, const char* value) {
  return Guarded([&] {
    auto* node = Find<GenApi_3_4::IValue>(map, name);
    if (!node) return FeatureResult::kAbsent;
    node->FromString(value);
    return FeatureResult::kOk;
  });
}

FeatureResult Execute(GenApi_3_4::INodeMap* map, const char* name) {
  return Guarded([&] {
    auto* command = Find<GenApi_3_4::ICommand>(map, name);
    if (!command) return FeatureResult::kAbsent;
    command->Execute();
    return FeatureResult::kOk;
  });
}

void Invalidate(GenApi_3_4::INodeMap* map, const char* name) {
  Guarded([&] {
    if (auto* node = Find<GenApi_3_4::INode>(map, name)) node->InvalidateNode();
    return FeatureResult::kOk;
  });
}

void InvalidateAll(GenApi_3_4::INodeMap* map) {
  Guarded([&] {
    if (map) map->InvalidateNodes();
    return FeatureResult::kOk;
  });
}

}  // namespace zyn::transport
