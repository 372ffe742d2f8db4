/// Saving and loading the settings of a device.
#ifndef GENAPI_PERSISTENCE_H
#define GENAPI_PERSISTENCE_H

#include <istream>
#include <ostream>
#include <string>

#include "../Base/GCString.h"
#include "../Base/GCStringVector.h"
#include "GenApiDll.h"
#include "INodeMap.h"
#include "IValue.h"
#include "SelectorSet.h"

/// Stands in the first line of every file of settings.
#define GENAPI_PERSISTENCE_MAGIC "{05D8C294-F295-4dfb-9D01-096BD04049F4}"
#define GENAPI_PERSISTENCE_MAGIC_FEATUREBAGGER "{4709CB3C-7322-4460-84C3-DA11DDA09939}"

namespace GENAPI_NAMESPACE {

/// Skips lines that begin with '#'.
inline std::istream& EatComments(std::istream& is) {
  while (is.peek() == '#') {
    std::string line;
    std::getline(is, line);
  }
  return is;
}

/// Takes settings one after the other.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPersistScript {
  virtual void SetInfo(const GENICAM_NAMESPACE::gcstring& Info) = 0;
  /// pSelectorSet holds the selectors that the value belongs to.
  virtual void PersistFeature(IValue & item, CSelectorSet* pSelectorSet = nullptr) = 0;

 protected:
  virtual ~IPersistScript() {}
};

/// The settings of a device: one value per streamable feature, and per combination of its selectors where it
/// has some. Not synchronised; storing and loading hold the lock of the node map.
class GENAPI_DECL CFeatureBag : public IPersistScript {
 public:
  CFeatureBag();
  CFeatureBag(const CFeatureBag& other);
  CFeatureBag& operator=(const CFeatureBag& other);
  ~CFeatureBag() override;

  void SetInfo(const GENICAM_NAMESPACE::gcstring& Info) override;
  void PersistFeature(IValue& item, CSelectorSet* pSelectorSet = nullptr) override;

  /// Replaces the content by the settings of the map: what lies below the category Root, is streamable and can
  /// be read and written now. Selectors come behind the features that they select, and keep their values.
  /// pFeatureFilter, when given, names the features to take. Stops after MaxNumPersistSkriptEntries settings,
  /// unless that is below 0. Returns their number.
  int64_t StoreToBag(INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries = -1,
                     GENICAM_NAMESPACE::gcstring_vector* pFeatureFilter = nullptr);
  /// Writes all settings into the map. Values are not checked while they are written, so their order does not
  /// matter, and what failed is tried once more in the end; with Verify they are checked afterwards. Does not
  /// stop at errors and does not throw for them: returns false and appends a message each to pErrorList.
  bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true,
                   GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);

  /// Whether the settings are the same, in the same order. Infos and names of bags do not count.
  bool operator==(const CFeatureBag& FeatureBag) const;
  /// The settings as they stand in a file, without its head.
  GENICAM_NAMESPACE::gcstring ToString();
  virtual void Destroy();
  const GENICAM_NAMESPACE::gcstring& GetBagName() const;
  void SetBagName(const GENICAM_NAMESPACE::gcstring& BagName);

 private:
  struct Impl;
  Impl* m_pImpl;

  friend GENAPI_DECL std::istream& operator>>(std::istream& is, CFeatureBag& FeatureBag);
  friend GENAPI_DECL std::ostream& operator<<(std::ostream& os, const CFeatureBag& FeatureBag);
};

/// Reads a file of settings in place of the bag's content. Throws RuntimeException, and leaves the bag alone,
/// when the first line lacks the magic or a line is malformed.
GENAPI_DECL std::istream& operator>>(std::istream& is, CFeatureBag& FeatureBag);
/// Line breaks inside of values become blanks: the format has no place for them.
GENAPI_DECL std::ostream& operator<<(std::ostream& os, const CFeatureBag& FeatureBag);

}  // namespace GENAPI_NAMESPACE

#endif
