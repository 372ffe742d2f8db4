/// Base of all nodes.
#ifndef ZYN_GENAPI_NODES_NODE_H
#define ZYN_GENAPI_NODES_NODE_H

#include <cstdarg>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "map/NodeMap.h"

namespace zyn::genapi {

/// How a value is read: Verify checks it, ignoreCache asks the device.
struct ReadMode {
  bool verify = false;
  bool ignoreCache = false;
};

/// A number that a node takes from its description or from another node.
template <class T>
struct Source {
  bool present = false;
  NodeId node = kNoNode;
  T constant{};
};

/// What all nodes share: names, access mode, links, callbacks. The second half is how nodes see each other;
/// those functions need the map's lock, and throw what the public calls throw.
class Node : public INode, public ISelector, public IUserData {
 public:
  Node(NodeMap& map, NodeId id);
  ~Node() override;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  EAccessMode GetAccessMode() const override;
  gcstring GetName(bool FullQualified) const override;
  ENameSpace GetNameSpace() const override;
  EVisibility GetVisibility() const override;
  void InvalidateNode() override;
  bool IsCachable() const override;
  EYesNo IsAccessModeCacheable() const override;
  ECachingMode GetCachingMode() const override;
  int64_t GetPollingTime() const override;
  gcstring GetToolTip() const override;
  gcstring GetDescription() const override;
  gcstring GetDisplayName() const override;
  gcstring GetDeviceName() const override;
  void GetChildren(NodeList_t& Children, ELinkType LinkType) const override;
  void GetParents(NodeList_t& Parents) const override;
  CallbackHandleType RegisterCallback(CNodeCallback* pCallback) override;
  bool DeregisterCallback(CallbackHandleType hCallback) override;
  INodeMap* GetNodeMap() const override;
  gcstring GetEventID() const override;
  bool IsStreamable() const override;
  void GetPropertyNames(gcstring_vector& PropertyNames) const override;
  bool GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) override;
  void ImposeAccessMode(EAccessMode ImposedAccessMode) override;
  void ImposeVisibility(EVisibility ImposedVisibility) override;
  INode* GetAlias() const override;
  INode* GetCastAlias() const override;
  gcstring GetDocuURL() const override;
  bool IsDeprecated() const override;
  EInterfaceType GetPrincipalInterfaceType() const override;
  bool IsFeature() const override;

  bool IsSelector() const override;
  void GetSelectedFeatures(FeatureList_t& SelectedFeatures) const override;
  void GetSelectingFeatures(FeatureList_t& SelectingFeatures) const override;

  UserData_t GetUserData() const override;
  UserData_t SetUserData(UserData_t pUserData) override;

  NodeMap& Map() const { return map_; }
  NodeId Id() const { return id_; }
  NodeKind Kind() const { return Record().kind; }
  const NodeRecord& Record() const { return map_.Facts().nodes[id_]; }
  std::span<const Property> Properties() const { return map_.Facts().Properties(id_); }
  std::string_view Name() const { return map_.Facts().Name(id_); }
  const std::vector<CNodeCallback*>& Callbacks() const { return callbacks_; }
  EAccessMode ImposedAccess() const { return imposedAccess_; }

  /// The access mode, worked out when it is not known.
  EAccessMode Access();
  void RequireReadable();
  void RequireWritable();
  void RequireAvailable();
  ECachingMode CachingMode();
  bool IsAccessCacheable();
  /// Whether limits may be remembered: nothing that they come from has to be read every time.
  bool AreLimitsCacheable();
  /// Forgets what may be remembered, when that is no longer what the description says.
  void ForgetCachingModes();
  /// Ends a registration and destroys the callback, at once or as soon as it is no longer running.
  void DeregisterAndDestroy(CallbackHandleType handle);
  /// Throws what the error registers say.
  void CheckError();

  /// Forgets the access mode and computed values; with `device` also the bytes read from the device.
  virtual void Forget(bool device);
  /// Forgets the access mode and the limits, but not the value.
  virtual void ForgetDerived() { access_.reset(); }
  /// Called when polling is due; a node that is not waiting for anything says no.
  virtual bool WantsPolling() { return true; }
  /// Compiles what the node would compile on first use. Throws when it is malformed.
  virtual void CompileFormulas() {}

  // As numbers and texts. The defaults throw RuntimeException: not every node is a number.
  virtual bool IsIntegerKind() const { return false; }
  virtual std::int64_t IntegerValue(ReadMode read);
  virtual double RealValue(ReadMode read);
  /// As a condition: any number but zero counts.
  virtual bool IsTrue() { return IntegerValue({}) != 0; }
  virtual void WriteInteger(std::int64_t value, bool verify);
  virtual void WriteReal(double value, bool verify);
  virtual std::int64_t IntegerMin();
  virtual std::int64_t IntegerMax();
  virtual std::int64_t IntegerInc();
  virtual double RealMin();
  virtual double RealMax();
  virtual std::optional<double> RealInc();
  virtual ERepresentation RepresentationOf();
  virtual std::string_view UnitOf();
  virtual EDisplayNotation NotationOf();
  virtual std::int64_t PrecisionOf();
  virtual gcstring TextValue(ReadMode read);
  virtual void WriteText(const gcstring& text, bool verify);
  virtual std::int64_t TextMaxLength();

  /// Throws E with this node's name and the outermost call.
  template <class E>
  [[noreturn]] __attribute__((format(printf, 3, 4))) void Throw(const char* type, const char* format,
                                                                ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = Format(format, arguments);
    va_end(arguments);
    throw E(text.c_str(), "description", static_cast<int>(Record().line), map_.EntryPoint().c_str(),
            std::string(Name()).c_str(), type);
  }

  /// First property of that element, or null.
  const Property* Find(Element element) const { return map_.Facts().Find(id_, element); }
  std::int64_t Number(Element element, std::int64_t absent) const {
    const Property* const property = Find(element);
    return property ? property->number : absent;
  }
  std::string_view Text(Element element) const;
  NodeId Link(Element element) const;
  Node& At(NodeId id) const { return map_.At(id); }

 protected:
  /// The mode without conditions, helpers and imposed restrictions.
  virtual EAccessMode BaseAccess() { return RW; }
  virtual bool IgnoresAvailability() const { return false; }
  virtual ECachingMode ComputeCachingMode();
  virtual std::string_view DefaultDisplayName() const { return Name(); }

  template <class T>
  Source<T> FindSource(Element constant, Element link) const {
    Source<T> source;
    if (const Property* const property = Find(link)) {
      source.present = true;
      source.node = property->Target();
    } else if (const Property* const value = Find(constant)) {
      source.present = true;
      source.constant =
          std::is_same_v<T, double> ? static_cast<T>(value->Real()) : static_cast<T>(value->number);
    }
    return source;
  }

 private:
  static std::string Format(const char* format, std::va_list arguments);
  EAccessMode ComputeAccess();
  EAccessMode ConditionAccess();
  EAccessMode HelperAccess();
  INode* LinkedNode(Element element) const;
  CNodeCallback* RemoveCallback(CallbackHandleType handle);
  void CollectTerminals(std::vector<NodeId>& terminals) const;

  NodeMap& map_;
  const NodeId id_;
  std::optional<EAccessMode> access_;
  bool accessInProgress_ = false;
  std::optional<ECachingMode> cachingMode_;
  std::optional<bool> accessCacheable_;
  std::optional<bool> limitsCacheable_;
  EAccessMode imposedAccess_;
  std::optional<EVisibility> imposedVisibility_;
  std::vector<CNodeCallback*> callbacks_;
  UserData_t userData_ = nullptr;
};

#define ZYN_THROW(Type, ...) this->template Throw<GENICAM_NAMESPACE::Type>(#Type, __VA_ARGS__)

}  // namespace zyn::genapi

#endif
