#include "GenApi/NodeMapFactory.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Base/GCException.h"
#include "description/DescriptionBuilder.h"
#include "description/DescriptionWriter.h"
#include "description/SourceText.h"
#include "map/NodeMap.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

std::string Copy(const gcstring& text) {
  return {text.c_str(), text.size()};
}

// Zip archives are told by their content: the names that devices give their files often mislead.
struct Source {
  std::string xml;
  std::vector<std::string> notes;
};

Source XmlOf(EContentType_t type, std::string data) {
  Source source;
  const bool isZip = zyn::genapi::IsZip(data);
  if (type == ContentType_ZippedXml && !isZip)
    throw RUNTIME_EXCEPTION("The zipped description does not begin like a zip archive");
  if (type == ContentType_Xml && isZip)
    source.notes.emplace_back("A zip archive stood where a text was expected");
  source.xml = zyn::genapi::ToCleanUtf8(isZip ? zyn::genapi::Unzip(data, source.notes) : std::move(data),
                                        source.notes);
  return source;
}

std::string CopyBytes(const void* data, size_t size) {
  if (!data && size > 0) throw INVALID_ARGUMENT_EXCEPTION("The description is null");
  if (size > zyn::genapi::kMaxDescriptionBytes)
    throw RUNTIME_EXCEPTION("The description is too large: %zu bytes", size);
  return {static_cast<const char*>(data), size};
}

}  // namespace

/// Shared by the copies of one factory.
struct CNodeMapFactory::Impl {
  struct Shared {
    Source source;
    std::vector<std::string> injected;
    bool released = false;
    std::shared_ptr<const zyn::genapi::Description> description;
  };
  std::shared_ptr<Shared> shared;

  explicit Impl(Source source) : shared(std::make_shared<Shared>()) { shared->source = std::move(source); }

  std::shared_ptr<const zyn::genapi::Description> Parsed() const {
    if (!shared->description) {
      if (shared->released) throw RUNTIME_EXCEPTION("The description was released before it was parsed");
      shared->description =
          zyn::genapi::BuildDescription(shared->source.xml, shared->injected, shared->source.notes);
    }
    return shared->description;
  }
};

CNodeMapFactory::CNodeMapFactory() : m_pImpl(nullptr) {}

CNodeMapFactory::CNodeMapFactory(EContentType_t FileType, const gcstring& FileName, ECacheUsage_t, bool)
    : m_pImpl(new Impl(XmlOf(FileType, zyn::genapi::ReadFile(Copy(FileName))))) {}

CNodeMapFactory::CNodeMapFactory(EContentType_t ContentType, const void* pData, size_t DataSize,
                                 ECacheUsage_t, bool)
    : m_pImpl(new Impl(XmlOf(ContentType, CopyBytes(pData, DataSize)))) {}

CNodeMapFactory::CNodeMapFactory(const gcstring& XmlData, ECacheUsage_t, bool)
    : m_pImpl(new Impl(XmlOf(ContentType_Xml, Copy(XmlData)))) {}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& rhs)
    : m_pImpl(rhs.m_pImpl ? new Impl(*rhs.m_pImpl) : nullptr) {}

CNodeMapFactory::~CNodeMapFactory() {
  delete m_pImpl;
}

CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& rhs) {
  CNodeMapFactory copy(rhs);
  std::swap(m_pImpl, copy.m_pImpl);
  return *this;
}

bool CNodeMapFactory::IsEmpty() const {
  return !m_pImpl;
}
bool CNodeMapFactory::IsLoaded() const {
  return m_pImpl != nullptr;
}
bool CNodeMapFactory::IsPreprocessed() const {
  return m_pImpl && m_pImpl->shared->description;
}
bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const {
  return !m_pImpl || m_pImpl->shared->released;
}

void CNodeMapFactory::Preprocess() {
  if (m_pImpl) m_pImpl->Parsed();
}

void CNodeMapFactory::ReleaseCameraDescriptionFileData() {
  if (!m_pImpl) return;
  m_pImpl->shared->released = true;
  m_pImpl->shared->source = {};
  m_pImpl->shared->injected.clear();
}

void CNodeMapFactory::AddInjectionData(CNodeMapFactory& injectionData) {
  if (!m_pImpl || !injectionData.m_pImpl) throw RUNTIME_EXCEPTION("The factory holds no description");
  if (m_pImpl->shared->released || injectionData.m_pImpl->shared->released)
    throw RUNTIME_EXCEPTION("The description was released before it could be merged");
  // Copies of this factory keep the description without the injection.
  auto merged = std::make_shared<Impl::Shared>(*m_pImpl->shared);
  merged->description.reset();
  const Source& injected = injectionData.m_pImpl->shared->source;
  merged->injected.push_back(injected.xml);
  std::vector<std::string>& notes = merged->source.notes;
  notes.insert(notes.end(), injected.notes.begin(), injected.notes.end());
  m_pImpl->shared = std::move(merged);
}

gcstring CNodeMapFactory::ToXml() const {
  if (!m_pImpl) throw RUNTIME_EXCEPTION("The factory holds no description");
  const std::string xml = zyn::genapi::WriteXml(*m_pImpl->Parsed());
  return {xml.data(), xml.size()};
}

void CNodeMapFactory::LoadAndInject() {
  Preprocess();
}

namespace {

template <class Factory>
INodeMap* Create(Factory& factory, std::shared_ptr<const zyn::genapi::Description> description, CLock* lock,
                 const gcstring& deviceName, bool release) {
  auto map = std::make_unique<zyn::genapi::NodeMap>(std::move(description), Copy(deviceName), lock);
  if (release) factory.ReleaseCameraDescriptionFileData();
  return map.release();
}

}  // namespace

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& DeviceName,
                                         bool DoReleaseCameraDescriptionFileData) {
  if (!m_pImpl) throw RUNTIME_EXCEPTION("The factory holds no description");
  return Create(*this, m_pImpl->Parsed(), nullptr, DeviceName, DoReleaseCameraDescriptionFileData);
}

INodeMap* CNodeMapFactory::CreateNodeMap(CLock& UserProvidedLock, const gcstring& DeviceName,
                                         bool DoReleaseCameraDescriptionFileData) {
  if (!m_pImpl) throw RUNTIME_EXCEPTION("The factory holds no description");
  return Create(*this, m_pImpl->Parsed(), &UserProvidedLock, DeviceName, DoReleaseCameraDescriptionFileData);
}

INodeMap* CNodeMapFactory::CreateEmptyNodeMap() {
  constexpr const char* kEmpty =
      "<RegisterDescription ModelName=\"\" VendorName=\"\" StandardNameSpace=\"None\" ProductGuid=\"\" "
      "VersionGuid=\"\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\" SchemaSubMinorVersion=\"0\" "
      "MajorVersion=\"0\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
      "xmlns=\"http://www.genicam.org/GenApi/Version_1_0\"/>";
  return new zyn::genapi::NodeMap(zyn::genapi::BuildDescription(kEmpty), "Device", nullptr);
}

bool CNodeMapFactory::ClearCache() {
  return true;
}

void CNodeMapFactory::GetSupportedSchemaVersions(gcstring_vector& SchemaVersions) const {
  SchemaVersions.clear();
  SchemaVersions.push_back("1.0");
  SchemaVersions.push_back("1.1");
}

}  // namespace GENAPI_NAMESPACE
