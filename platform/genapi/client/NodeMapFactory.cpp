#include "GenApi/NodeMapFactory.h"

#include "Base/GCException.h"

namespace GENAPI_NAMESPACE {

struct CNodeMapFactory::Impl {
  GENICAM_NAMESPACE::gcstring text;
};

CNodeMapFactory::CNodeMapFactory() : m_pImpl(nullptr) {}
CNodeMapFactory::CNodeMapFactory(EContentType_t, const GENICAM_NAMESPACE::gcstring&, ECacheUsage_t, bool)
    : CNodeMapFactory() {}
CNodeMapFactory::CNodeMapFactory(EContentType_t, const void*, size_t, ECacheUsage_t, bool)
    : CNodeMapFactory() {}
CNodeMapFactory::CNodeMapFactory(const GENICAM_NAMESPACE::gcstring&, ECacheUsage_t, bool)
    : CNodeMapFactory() {}
CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& rhs) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& rhs) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const { return !m_pImpl || m_pImpl->text.empty(); }
bool CNodeMapFactory::IsLoaded() const {
  return false;
}
bool CNodeMapFactory::IsPreprocessed() const {
  return false;
}
bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const {
  return true;
}
void CNodeMapFactory::Preprocess() {}
void CNodeMapFactory::ReleaseCameraDescriptionFileData() {}
INodeMap* CNodeMapFactory::CreateNodeMap(const GENICAM_NAMESPACE::gcstring&, bool) {
  throw RUNTIME_EXCEPTION("The factory holds no description");
}
INodeMap* CNodeMapFactory::CreateNodeMap(CLock&, const GENICAM_NAMESPACE::gcstring& DeviceName,
                                         bool release) {
  return CreateNodeMap(DeviceName, release);
}
INodeMap* CNodeMapFactory::CreateEmptyNodeMap() {
  throw RUNTIME_EXCEPTION("The factory holds no description");
}
bool CNodeMapFactory::ClearCache() {
  return true;
}
void CNodeMapFactory::GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const {
  SchemaVersions.clear();
  SchemaVersions.push_back("1.0");
  SchemaVersions.push_back("1.1");
}

}  // namespace GENAPI_NAMESPACE
