/// Builds node maps from descriptions.
#ifndef GENAPI_NODEMAPFACTORY_H
#define GENAPI_NODEMAPFACTORY_H

#include "../Base/GCString.h"
#include "../Base/GCStringVector.h"
#include "GenApiDll.h"
#include "INodeMap.h"
#include "Synch.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// Holds one device description, parsed at most once, and creates any number of independent node maps from
/// it. Copies share the description. Not synchronised; the node maps are independent of the factory.
///
/// Texts are UTF-8 (with or without byte-order mark) or Latin-1; zipped descriptions are recognised by their
/// content. Whatever is wrong with a description throws a GenericException that names the element and the
/// line.
class GENAPI_DECL CNodeMapFactory {
 public:
  /// An empty factory. Creating a map from it throws.
  CNodeMapFactory();
  CNodeMapFactory(EContentType_t FileType, const GENICAM_NAMESPACE::gcstring& FileName,
                  ECacheUsage_t CacheUsage = CacheUsage_Automatic, bool SuppressStringsOnLoad = false);
  CNodeMapFactory(EContentType_t ContentType, const void* pData, size_t DataSize,
                  ECacheUsage_t CacheUsage = CacheUsage_Automatic, bool SuppressStringsOnLoad = false);
  CNodeMapFactory(const GENICAM_NAMESPACE::gcstring& XmlData, ECacheUsage_t CacheUsage = CacheUsage_Automatic,
                  bool SuppressStringsOnLoad = false);
  CNodeMapFactory(const CNodeMapFactory& rhs);
  virtual ~CNodeMapFactory();
  CNodeMapFactory& operator=(const CNodeMapFactory& rhs);

  bool IsEmpty() const;
  bool IsLoaded() const;
  bool IsPreprocessed() const;
  bool IsCameraDescriptionFileDataReleased() const;
  /// Merges another factory's description into this one's when it is parsed. Nodes that only the injected one
  /// has are added. Of nodes that both have, an injected one with MergePriority -1 is dropped and one with +1
  /// replaces the other; without priority, the feature lists of two categories are joined, and any other pair
  /// is an error.
  void AddInjectionData(CNodeMapFactory& injectionData);
  /// Parses and merges now.
  void LoadAndInject();

  /// Parses and links now instead of with the first map.
  void Preprocess();
  /// Frees the text. Maps can still be created when it was parsed before.
  void ReleaseCameraDescriptionFileData();

  /// The description as XML, after parsing and merging: entries, structures and addresses are written out, what
  /// was unknown is missing. Throws when it was released before it was parsed.
  GENICAM_NAMESPACE::gcstring ToXml() const;

  /// The caller owns the map and ends it through IDestroy. With a lock of the caller's, the lock must outlive
  /// the map.
  INodeMap* CreateNodeMap(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
                          bool DoReleaseCameraDescriptionFileData = true);
  INodeMap* CreateNodeMap(CLock& UserProvidedLock, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
                          bool DoReleaseCameraDescriptionFileData = true);
  static INodeMap* CreateEmptyNodeMap();

  /// Nothing is cached on disk: always true.
  static bool ClearCache();
  /// "1.0" and "1.1".
  void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const;

 private:
  struct Impl;
  Impl* m_pImpl;
};

}  // namespace GENAPI_NAMESPACE

#endif
