/// Owns a node map and loads it.
#ifndef GENAPI_NODEMAPREF_H
#define GENAPI_NODEMAPREF_H

#include <memory>
#include "../Base/GCException.h"
#include "IDestroy.h"
#include "INodeMap.h"
#include "NodeMapFactory.h"
#include "Pointer.h"

namespace GENAPI_NAMESPACE {

/// The interface to end a node map with; null for a null map.
inline IDestroy* CastToIDestroy(INodeMap* pNodeMap) {
  return dynamic_cast<IDestroy*>(pNodeMap);
}

/// Parameters of a camera that is only known from its description.
class CGeneric_XMLLoaderParams {
 protected:
  virtual void _Initialize(INodeMap*) {}

 public:
  virtual ~CGeneric_XMLLoaderParams() {}
};

/// A counted owner of one node map: copies share it, the last one destroys it. Starts without a map; until
/// one is loaded every question throws AccessException, and loading a second one throws RuntimeException.
template <class TCameraParams>
class CNodeMapRefT : public TCameraParams {
 public:
  CNodeMapRefT(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
      : _Ptr(nullptr), m_DeviceName(DeviceName) {}
  /// Takes the map over.
  CNodeMapRefT(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
      : _Ptr(nullptr), m_DeviceName(DeviceName) {
    Attach(std::shared_ptr<INodeMap>(pNodeMap, &Delete));
  }
  CNodeMapRefT(const CNodeMapRefT& Them) : TCameraParams(), _Ptr(nullptr), m_DeviceName(Them.m_DeviceName) {
    Attach(Them.m_Owner);
  }
  virtual ~CNodeMapRefT() {}
  CNodeMapRefT& operator=(const CNodeMapRefT& Them) {
    m_DeviceName = Them.m_DeviceName;
    Attach(std::shared_ptr<INodeMap>(Them.m_Owner));
    return *this;
  }
  CNodeMapRefT& operator=(INodeMap* pNodeMap) {
    if (pNodeMap != _Ptr) Attach(std::shared_ptr<INodeMap>(pNodeMap, &Delete));
    return *this;
  }

  /// Gives the map up; the last owner destroys it.
  void _Destroy() {
    _Ptr = nullptr;
    m_Owner.reset();
  }

  void _LoadXMLFromFile(const GENICAM_NAMESPACE::gcstring& FileName) {
    Load([&FileName] { return CNodeMapFactory(ContentType_Xml, FileName); });
  }
  void _LoadXMLFromZIPFile(const GENICAM_NAMESPACE::gcstring& ZipFileName) {
    Load([&ZipFileName] { return CNodeMapFactory(ContentType_ZippedXml, ZipFileName); });
  }
  void _LoadXMLFromZIPData(const void* zipData, size_t zipSize) {
    Load([zipData, zipSize] { return CNodeMapFactory(ContentType_ZippedXml, zipData, zipSize); });
  }
  void _LoadXMLFromString(const GENICAM_NAMESPACE::gcstring& XMLData) {
    Load([&XMLData] { return CNodeMapFactory(XMLData); });
  }
  /// The same with a second description merged into the first, see CNodeMapFactory::AddInjectionData().
  void _LoadXMLFromFileInject(const GENICAM_NAMESPACE::gcstring& TargetFileName,
                              const GENICAM_NAMESPACE::gcstring& InjectFileName) {
    Load([&TargetFileName, &InjectFileName] {
      return Inject(CNodeMapFactory(ContentType_Xml, TargetFileName),
                    CNodeMapFactory(ContentType_Xml, InjectFileName));
    });
  }
  void _LoadXMLFromStringInject(const GENICAM_NAMESPACE::gcstring& TargetXMLData,
                                const GENICAM_NAMESPACE::gcstring& InjectXMLData) {
    Load([&TargetXMLData, &InjectXMLData] {
      return Inject(CNodeMapFactory(TargetXMLData), CNodeMapFactory(InjectXMLData));
    });
  }

  void _GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const {
    CNodeMapFactory().GetSupportedSchemaVersions(SchemaVersions);
  }
  GENICAM_NAMESPACE::gcstring _GetDeviceName() const { return Map()->GetDeviceName(); }
  void _Poll(int64_t ElapsedTime) { Map()->Poll(ElapsedTime); }
  static bool _ClearXMLCache() { return CNodeMapFactory::ClearCache(); }
  void _GetNodes(NodeList_t& Nodes) const { Map()->GetNodes(Nodes); }
  INode* _GetNode(const GENICAM_NAMESPACE::gcstring& key) const { return Map()->GetNode(key); }
  void _SetSuppressCallbackMode(ECallbackSuppressMode mode) const { Map()->SetSuppressCallbackMode(mode); }
  CNodeWriteConcatenator* _NewNodeWriteConcatenator() const { return Map()->NewNodeWriteConcatenator(); }
  bool _ConcatenatedWrite(CNodeWriteConcatenator* pConcatenatedWrite, bool featureStreaming = true,
                          GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) {
    return Map()->ConcatenatedWrite(pConcatenatedWrite, featureStreaming, pErrorList);
  }
  void _InvalidateNodes() const { Map()->InvalidateNodes(); }
  bool _Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const {
    return Map()->Connect(pPort, PortName);
  }
  bool _Connect(IPort* pPort) const { return Map()->Connect(pPort); }
  bool _Connect(IPortStacked* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const {
    return Map()->Connect(pPort, PortName);
  }
  bool _Connect(IPortStacked* pPort) const { return Map()->Connect(pPort); }
  bool _ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const {
    return Map()->ParseSwissKnifes(pErrorList);
  }

  /// The map, borrowed; null until one was loaded.
  INodeMap* _Ptr;

 private:
  static void Delete(INodeMap* pNodeMap) {
    if (IDestroy* const destroyable = CastToIDestroy(pNodeMap)) destroyable->Destroy();
  }
  void Attach(std::shared_ptr<INodeMap> owner) {
    m_Owner.swap(owner);
    _Ptr = m_Owner.get();
    if (_Ptr) TCameraParams::_Initialize(_Ptr);
  }
  static CNodeMapFactory Inject(CNodeMapFactory target, CNodeMapFactory injected) {
    target.AddInjectionData(injected);
    return target;
  }
  template <class MakeFactory>
  void Load(MakeFactory makeFactory) {
    if (_Ptr) throw RUNTIME_EXCEPTION("Node map already created");
    Attach(std::shared_ptr<INodeMap>(makeFactory().CreateNodeMap(m_DeviceName), &Delete));
  }
  INodeMap* Map() const {
    if (!_Ptr) throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
    return _Ptr;
  }

  GENICAM_NAMESPACE::gcstring m_DeviceName;
  std::shared_ptr<INodeMap> m_Owner;
};

/// A node map whose features are looked up by name.
class CNodeMapRef : public CNodeMapRefT<CGeneric_XMLLoaderParams> {
 public:
  CNodeMapRef(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
      : CNodeMapRefT<CGeneric_XMLLoaderParams>(DeviceName) {}
  CNodeMapRef(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
      : CNodeMapRefT<CGeneric_XMLLoaderParams>(pNodeMap, DeviceName) {}

  CNodeMapRef& operator=(INodeMap* pNodeMap) {
    CNodeMapRefT<CGeneric_XMLLoaderParams>::operator=(pNodeMap);
    return *this;
  }
};

}  // namespace GENAPI_NAMESPACE

#endif
