#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Base/GCException.h"
#include "GenApi/GenApiVersion.h"
#include "GenApi/ICategory.h"
#include "GenApi/ICommand.h"
#include "GenApi/IDeviceInfo.h"
#include "GenApi/IEnumeration.h"
#include "GenApi/IFloat.h"
#include "GenApi/INode.h"
#include "GenApi/ISelector.h"
#include "GenApi/Persistence.h"
#include "description/NumberText.h"
#include "persistence/Announcement.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;
using GENICAM_NAMESPACE::GenericException;

namespace {

// Nested selectors multiply: a description may ask for more combinations than anyone could wait for.
constexpr size_t kMaxSettings = 300'000;

gcstring Copy(std::string_view text) {
  return {text.data(), text.size()};
}

std::string_view View(const gcstring& text) {
  return {text.c_str(), text.size()};
}

struct Selector {
  gcstring name;
  gcstring value;
  bool operator==(const Selector&) const = default;
};

struct Setting {
  gcstring name;
  std::vector<Selector> selectors;
  gcstring value;
  bool operator==(const Setting&) const = default;
};

// Floats show few digits; a setting must come back as it was.
gcstring ExactText(IValue& value) {
  gcstring text = value.ToString();
  auto* const real = dynamic_cast<IFloat*>(&value);
  if (!real) return text;
  const double exact = real->GetValue();
  if (!std::isfinite(exact) || zyn::genapi::ParseReal(View(text)) == exact) return text;
  char digits[64];
  const auto end = std::to_chars(digits, digits + sizeof(digits), exact);
  return {digits, static_cast<size_t>(end.ptr - digits)};
}

std::vector<Selector> SelectorsOf(const CSelectorSet& set) {
  CSelectorState state;
  set.GetState(state);
  std::vector<Selector> selectors;
  for (bool more = state.SetFirst(); more; more = state.SetNext())
    selectors.push_back({state.GetNodeName(), state.GetNodeValue()});
  return selectors;
}

CSelectorState StateOf(const std::vector<Selector>& selectors) {
  CSelectorState state;
  for (const Selector& selector : selectors) state.AddSelector(selector.name, selector.value);
  return state;
}

// What lies below Root, every feature once, in the order of the categories.
class FeatureList {
 public:
  explicit FeatureList(INodeMap& map) { Visit(map.GetNode("Root")); }

  // Selectors go behind the features that they select, inner ones first: loading a feature moves its selectors.
  std::vector<IValue*> InStoringOrder() const {
    std::vector<IValue*> order;
    for (IValue* const feature : features_)
      if (!IsSelector(feature)) order.push_back(feature);
    for (IValue* const feature : features_)
      if (IsSelector(feature)) Place(feature, order);
    return order;
  }

 private:
  static bool IsSelector(IValue* feature) {
    const auto* const selector = dynamic_cast<ISelector*>(feature);
    return selector && selector->IsSelector();
  }

  void Visit(INode* start) {
    std::vector<IBase*> waiting{start};
    while (!waiting.empty()) {
      IBase* const node = waiting.back();
      waiting.pop_back();
      auto* const value = dynamic_cast<IValue*>(node);
      if (!value || std::find(seen_.begin(), seen_.end(), value) != seen_.end()) continue;
      seen_.push_back(value);
      const auto* const category = dynamic_cast<ICategory*>(node);
      if (!category) {
        features_.push_back(value);
        continue;
      }
      FeatureList_t children;
      category->GetFeatures(children);
      for (size_t i = children.size(); i-- > 0;) waiting.push_back(children[i]);
    }
  }

  // Before the selector come the selectors that it selects.
  void Place(IValue* selector, std::vector<IValue*>& order) const {
    std::vector<IValue*> path{selector};
    PlaceBehindSelected(path, order);
  }

  void PlaceBehindSelected(std::vector<IValue*>& path, std::vector<IValue*>& order) const {
    IValue* const selector = path.back();
    if (std::find(order.begin(), order.end(), selector) != order.end()) return;
    FeatureList_t selected;
    dynamic_cast<ISelector&>(*selector).GetSelectedFeatures(selected);
    for (IValue* const inner : selected) {
      const bool isKnown = std::find(features_.begin(), features_.end(), inner) != features_.end();
      if (!isKnown || !IsSelector(inner) || std::find(path.begin(), path.end(), inner) != path.end())
        continue;
      path.push_back(inner);
      PlaceBehindSelected(path, order);
      path.pop_back();
    }
    order.push_back(selector);
  }

  std::vector<IValue*> seen_;
  std::vector<IValue*> features_;
};

bool MayBeStored(IValue& feature) {
  return feature.GetNode()->IsStreamable() && !dynamic_cast<ICommand*>(&feature);
}

gcstring InfoOf(INodeMap& map) {
  auto* const device = dynamic_cast<IDeviceInfo*>(&map);
  if (!device) return map.GetDeviceName();
  Version_t version;
  device->GetDeviceVersion(version);
  const std::string number = std::to_string(version.Major) + "." + std::to_string(version.Minor) + "." +
                             std::to_string(version.SubMinor);
  return map.GetDeviceName() + " = " + device->GetVendorName() + "::" + device->GetModelName() + " -- " +
         device->GetToolTip() + " -- Device version = " + number.c_str() +
         " -- Product GUID = " + device->GetProductGuid() +
         " -- Product version GUID = " + device->GetVersionGuid();
}

class Loader {
 public:
  Loader(INodeMap& map, gcstring_vector* errors) : map_(map), errors_(errors) {}

  bool Load(const std::vector<Setting>& settings, bool verify) {
    RememberSelectors(settings);
    std::vector<const Setting*> failed;
    for (const Setting& setting : settings)
      if (!Write(setting).empty()) failed.push_back(&setting);
    // Some features can only be written once others have their value.
    std::vector<const Setting*> lost;
    const CSelectorState afterFirst = PresentSelectors();
    for (const Setting* const setting : failed) {
      const gcstring error = Write(*setting);
      if (error.empty()) continue;
      Report(error);
      lost.push_back(setting);
    }
    if (verify) Check(settings, lost);
    if (!failed.empty() || verify) afterFirst.RestoreState(&map_);
    return allGood_;
  }

 private:
  void RememberSelectors(const std::vector<Setting>& settings) {
    for (const Setting& setting : settings)
      for (const Selector& selector : setting.selectors)
        if (std::find(selectors_.begin(), selectors_.end(), selector.name) == selectors_.end())
          selectors_.push_back(selector.name);
  }

  CSelectorState PresentSelectors() {
    CSelectorState state;
    for (const gcstring& name : selectors_) {
      try {
        auto* const selector = dynamic_cast<IValue*>(map_.GetNode(name));
        if (selector && IsReadable(selector->GetAccessMode())) state.AddSelector(*selector);
      } catch (const GenericException&) {
        continue;  // cannot be put back either
      }
    }
    return state;
  }

  // Empty when it worked.
  gcstring SetSelectors(const Setting& setting) {
    gcstring_vector errors;
    StateOf(setting.selectors).RestoreState(&map_, &errors);
    return errors.empty() ? gcstring() : errors[0];
  }

  IValue* Find(const gcstring& name) { return dynamic_cast<IValue*>(map_.GetNode(name)); }

  gcstring Write(const Setting& setting) {
    IValue* const value = Find(setting.name);
    if (!value) return gcstring("Error while writing node: '") + setting.name + "' not found";
    const gcstring selectorError = SetSelectors(setting);
    if (!selectorError.empty())
      return gcstring("Error while writing node: '") + setting.name + "': " + selectorError;
    try {
      value->FromString(setting.value, false);
      return {};
    } catch (const GenericException& error) {
      return gcstring("Error while writing node: '") + setting.name + "': " + error.what();
    }
  }

  void Check(const std::vector<Setting>& settings, const std::vector<const Setting*>& lost) {
    for (const Setting& setting : settings) {
      if (std::find(lost.begin(), lost.end(), &setting) != lost.end()) continue;
      const gcstring selectorError = SetSelectors(setting);
      IValue* const value = Find(setting.name);
      try {
        if (!selectorError.empty()) throw RUNTIME_EXCEPTION("%s", selectorError.c_str());
        if (IsReadable(value->GetAccessMode())) value->ToString(true);
      } catch (const GenericException& error) {
        Report(gcstring("Error while verifying node: '") + setting.name + "': " + error.what());
      }
    }
  }

  void Report(const gcstring& error) {
    allGood_ = false;
    if (errors_) errors_->push_back(error);
  }

  INodeMap& map_;
  gcstring_vector* const errors_;
  std::vector<gcstring> selectors_;
  bool allGood_ = true;
};

// Text form

std::string WithoutLineBreaks(std::string_view text) {
  std::string line(text);
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::replace(line.begin(), line.end(), '\r', ' ');
  return line;
}

void AppendLine(const Setting& setting, std::string& out) {
  out.append(View(setting.name));
  out += '\t';
  for (size_t i = 0; i < setting.selectors.size(); ++i) {
    out += i == 0 ? '{' : '\t';
    out.append(View(setting.selectors[i].name)).append("=").append(View(setting.selectors[i].value));
  }
  if (!setting.selectors.empty()) out += "}\t";
  out.append(WithoutLineBreaks(View(setting.value))).append("\n");
}

[[noreturn]] void Malformed(size_t line, const char* what) {
  throw RUNTIME_EXCEPTION("Line %zu of the settings %s", line, what);
}

std::vector<Selector> ParseSelectors(std::string_view text, size_t line) {
  std::vector<Selector> selectors;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\t'), text.size());
    const std::string_view part = text.substr(0, end);
    const size_t equals = part.find('=');
    if (equals == std::string_view::npos) Malformed(line, "has a selector without a value");
    selectors.push_back({Copy(zyn::genapi::Trim(part.substr(0, equals))), Copy(part.substr(equals + 1))});
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return selectors;
}

Setting ParseLine(std::string_view text, size_t line) {
  const size_t tab = text.find('\t');
  if (tab == std::string_view::npos) Malformed(line, "has no tabulator behind its name");
  Setting setting;
  setting.name = Copy(zyn::genapi::Trim(text.substr(0, tab)));
  if (setting.name.empty()) Malformed(line, "has no name");
  text.remove_prefix(tab + 1);
  if (!text.empty() && text.front() == '{') {
    const size_t close = text.find("}\t");
    if (close == std::string_view::npos) Malformed(line, "does not end its selectors");
    setting.selectors = ParseSelectors(text.substr(1, close - 1), line);
    text.remove_prefix(close + 2);
  }
  setting.value = Copy(text);
  return setting;
}

}  // namespace

struct CFeatureBag::Impl {
  gcstring info;
  gcstring bagName;
  std::vector<Setting> settings;
};

CFeatureBag::CFeatureBag() : m_pImpl(new Impl) {}
CFeatureBag::CFeatureBag(const CFeatureBag& other) : IPersistScript(), m_pImpl(new Impl(*other.m_pImpl)) {}
CFeatureBag::~CFeatureBag() {
  delete m_pImpl;
}

CFeatureBag& CFeatureBag::operator=(const CFeatureBag& other) {
  if (this != &other) *m_pImpl = Impl(*other.m_pImpl);
  return *this;
}

void CFeatureBag::Destroy() {
  delete this;
}

const gcstring& CFeatureBag::GetBagName() const {
  return m_pImpl->bagName;
}
void CFeatureBag::SetBagName(const gcstring& BagName) {
  m_pImpl->bagName = BagName;
}
void CFeatureBag::SetInfo(const gcstring& Info) {
  m_pImpl->info = Info;
}

void CFeatureBag::PersistFeature(IValue& item, CSelectorSet* pSelectorSet) {
  Setting setting{item.GetNode()->GetName(), {}, ExactText(item)};
  if (pSelectorSet) setting.selectors = SelectorsOf(*pSelectorSet);
  m_pImpl->settings.push_back(std::move(setting));
}

int64_t CFeatureBag::StoreToBag(INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries,
                                gcstring_vector* pFeatureFilter) {
  if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("The settings of a null node map cannot be stored.");
  const AutoLock lock(pNodeMap->GetLock());
  const zyn::genapi::Announcement announcement(*pNodeMap, "DeviceFeaturePersistenceStart",
                                               "DeviceFeaturePersistenceEnd");
  CFeatureBag bag;
  bag.SetInfo(InfoOf(*pNodeMap));
  bag.SetBagName(GetBagName());
  const auto isFull = [&] {
    return MaxNumPersistSkriptEntries >= 0 &&
           bag.m_pImpl->settings.size() >= static_cast<size_t>(MaxNumPersistSkriptEntries);
  };
  const auto store = [&](IValue& feature, CSelectorSet* selectors) {
    if (!isFull() && feature.GetAccessMode() == RW) bag.PersistFeature(feature, selectors);
  };
  for (IValue* const feature : FeatureList(*pNodeMap).InStoringOrder()) {
    if (pFeatureFilter && !pFeatureFilter->contains(feature->GetNode()->GetName())) continue;
    if (isFull() || !MayBeStored(*feature)) continue;
    CSelectorSet selectors(feature);
    if (selectors.IsEmpty()) {
      store(*feature, nullptr);
      continue;
    }
    try {
      size_t combinations = 0;
      for (bool more = selectors.SetFirst(); more && !isFull(); more = selectors.SetNext()) {
        if (++combinations > kMaxSettings)
          throw RUNTIME_EXCEPTION("The selectors of '%s' have too many combinations",
                                  feature->GetNode()->GetName().c_str());
        store(*feature, &selectors);
      }
      selectors.Restore();
    } catch (const GenericException&) {
      selectors.Restore();
      throw;
    }
  }
  *this = bag;
  return static_cast<int64_t>(m_pImpl->settings.size());
}

bool CFeatureBag::LoadFromBag(INodeMap* pNodeMap, bool Verify, gcstring_vector* pErrorList) {
  if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("Settings cannot be loaded into a null node map.");
  const AutoLock lock(pNodeMap->GetLock());
  const zyn::genapi::Announcement announcement(*pNodeMap, "DeviceRegistersStreamingStart",
                                               "DeviceRegistersStreamingEnd");
  return Loader(*pNodeMap, pErrorList).Load(m_pImpl->settings, Verify);
}

bool CFeatureBag::operator==(const CFeatureBag& FeatureBag) const {
  return m_pImpl->settings == FeatureBag.m_pImpl->settings;
}

gcstring CFeatureBag::ToString() {
  std::string text;
  for (const Setting& setting : m_pImpl->settings) AppendLine(setting, text);
  return Copy(text);
}

std::ostream& operator<<(std::ostream& os, const CFeatureBag& FeatureBag) {
  std::string text = "# " GENAPI_PERSISTENCE_MAGIC "\n# GenApi persistence file (version ";
  text.append(std::to_string(GENAPI_VERSION_MAJOR)).append(".");
  text.append(std::to_string(GENAPI_VERSION_MINOR)).append(".");
  text.append(std::to_string(GENAPI_VERSION_SUBMINOR)).append(")\n# ");
  text.append(WithoutLineBreaks(View(FeatureBag.m_pImpl->info))).append("\n");
  for (const Setting& setting : FeatureBag.m_pImpl->settings) AppendLine(setting, text);
  return os << text;
}

std::istream& operator>>(std::istream& is, CFeatureBag& FeatureBag) {
  std::vector<Setting> settings;
  gcstring info;
  std::string text;
  size_t line = 0;
  while (std::getline(is, text)) {
    ++line;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    if (line == 1 && text.find(GENAPI_PERSISTENCE_MAGIC) == std::string::npos)
      throw RUNTIME_EXCEPTION("The text is no file of settings: its first line lacks the identifier");
    if (line == 3 && text.compare(0, 2, "# ") == 0) info = Copy(std::string_view(text).substr(2));
    if (zyn::genapi::Trim(text).empty() || text.front() == '#') continue;
    settings.push_back(ParseLine(text, line));
  }
  if (line == 0) throw RUNTIME_EXCEPTION("The text is no file of settings: it is empty");
  if (!is.bad()) is.clear(std::ios_base::eofbit);
  FeatureBag.m_pImpl->settings = std::move(settings);
  FeatureBag.m_pImpl->info = info;
  return is;
}

}  // namespace GENAPI_NAMESPACE
