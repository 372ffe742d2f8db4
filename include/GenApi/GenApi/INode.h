/// What every node has.
#ifndef GENAPI_INODE_H
#define GENAPI_INODE_H

#include <cstdint>
#include "../Base/GCString.h"
#include "../Base/GCStringVector.h"
#include "Container.h"
#include "IBase.h"

namespace GENAPI_NAMESPACE {

class CNodeCallback;
GENICAM_INTERFACE INodeMap;

typedef intptr_t CallbackHandleType;

/// A node of a node map. Owned by its map, valid until the map is destroyed. Every call takes the map's lock.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT INode : virtual public IBase {
  /// The name; with FullQualified "Std::Name" or "Cust::Name".
  virtual GENICAM_NAMESPACE::gcstring GetName(bool FullQualified = false) const = 0;
  virtual ENameSpace GetNameSpace() const = 0;
  virtual EVisibility GetVisibility() const = 0;
  /// Forgets the cached state of this node and of everything that depends on it, and fires their callbacks.
  virtual void InvalidateNode() = 0;
  virtual bool IsCachable() const = 0;
  virtual EYesNo IsAccessModeCacheable() const = 0;
  virtual ECachingMode GetCachingMode() const = 0;
  /// Milliseconds between two polls; -1 when the node is not polled.
  virtual int64_t GetPollingTime() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetToolTip() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDescription() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDisplayName() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDeviceName() const = 0;
  /// Replaces the content of Children by the nodes linked in the given way.
  virtual void GetChildren(NodeList_t & Children, ELinkType LinkType = ctReadingChildren) const = 0;
  virtual void GetParents(NodeList_t & Parents) const = 0;
  /// The handle stays valid until it is deregistered. The caller keeps the callback until then; a callback
  /// still registered when the map is destroyed is destroyed with it.
  virtual CallbackHandleType RegisterCallback(CNodeCallback * pCallback) = 0;
  /// Returns false for an unknown handle. Does not destroy the callback.
  virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
  virtual INodeMap* GetNodeMap() const = 0;
  /// Hexadecimal digits; empty when the node has no event.
  virtual GENICAM_NAMESPACE::gcstring GetEventID() const = 0;
  virtual bool IsStreamable() const = 0;
  /// The elements that the description has for this node, and of every node: Name, NodeType (the XML element), NameSpace,
  /// DeviceName, Visibility, ImposedAccessMode, Streamable, IsFeature, IsDeprecated, ExposeStatic, pTerminal and pDependent.
  virtual void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector & PropertyNames) const = 0;
  /// The value as a text, and the element's attribute when it has one. Several are joined with tabs; a node that
  /// depends on nothing has an empty pDependent. Returns false for an unknown property, and leaves ValueStr alone.
  virtual bool GetProperty(const GENICAM_NAMESPACE::gcstring& PropertyName,
                           GENICAM_NAMESPACE::gcstring& ValueStr,
                           GENICAM_NAMESPACE::gcstring& AttributeStr) = 0;
  /// Restricts the access mode to what it allows together with ImposedAccessMode.
  virtual void ImposeAccessMode(EAccessMode ImposedAccessMode) = 0;
  virtual void ImposeVisibility(EVisibility ImposedVisibility) = 0;
  virtual INode* GetAlias() const = 0;
  virtual INode* GetCastAlias() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDocuURL() const = 0;
  virtual bool IsDeprecated() const = 0;
  virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
  /// Whether the node can be reached from the category Root.
  virtual bool IsFeature() const = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
