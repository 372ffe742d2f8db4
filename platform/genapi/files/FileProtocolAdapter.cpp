#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

#include "GenApi/Filestream.h"
#include "GenApi/ICommand.h"
#include "GenApi/IEnumeration.h"
#include "GenApi/IInteger.h"
#include "GenApi/IRegister.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

// Erasing a flash memory takes long; no device needs a minute.
constexpr std::chrono::seconds kOperationTimeout{60};

// Devices are written in whole words.
constexpr int64_t kWordBytes = 4;

}  // namespace

struct FileProtocolAdapter::Impl {
  INodeMap* map = nullptr;
  IEnumeration* file = nullptr;
  IEnumeration* operation = nullptr;
  IEnumeration* openMode = nullptr;
  IRegister* buffer = nullptr;
  IInteger* offset = nullptr;
  IInteger* length = nullptr;
  ICommand* execute = nullptr;
  IEnumeration* status = nullptr;
  IInteger* result = nullptr;

  template <class Interface>
  Interface* Get(const char* name) const {
    return dynamic_cast<Interface*>(map->GetNode(name));
  }

  bool FindFeatures() {
    file = Get<IEnumeration>("FileSelector");
    operation = Get<IEnumeration>("FileOperationSelector");
    openMode = Get<IEnumeration>("FileOpenMode");
    buffer = Get<IRegister>("FileAccessBuffer");
    offset = Get<IInteger>("FileAccessOffset");
    length = Get<IInteger>("FileAccessLength");
    execute = Get<ICommand>("FileOperationExecute");
    status = Get<IEnumeration>("FileOperationStatus");
    result = Get<IInteger>("FileOperationResult");
    return file && operation && openMode && buffer && offset && length && execute && status && result;
  }

  // Whether the device has that file and that operation; both are chosen then.
  bool Choose(const char* fileName, const char* operationName) const {
    if (!map || !fileName) return false;
    if (!IsAvailable(file->GetEntryByName(fileName))) return false;
    *file = gcstring(fileName);
    if (!IsAvailable(operation->GetEntryByName(operationName))) return false;
    *operation = gcstring(operationName);
    return true;
  }

  bool Run() const {
    execute->Execute();
    const auto end = std::chrono::steady_clock::now() + kOperationTimeout;
    while (!execute->IsDone()) {
      if (std::chrono::steady_clock::now() > end)
        throw TIMEOUT_EXCEPTION("The file operation of the device did not end");
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return status->ToString(false, true) == "Success";
  }

  // What one operation transfers at most.
  int64_t PieceBytes() const {
    int64_t bytes = buffer->GetLength();
    if (IsAvailable(length)) bytes = std::min(bytes, length->GetMax());
    return std::max<int64_t>(bytes, 0);
  }

  void SetRange(int64_t at, int64_t bytes) const {
    if (IsWritable(offset)) offset->SetValue(at);
    if (IsWritable(length)) length->SetValue(bytes);
  }

  void Fill(const char* bytes, int64_t count) const {
    const int64_t whole = std::min((count + kWordBytes - 1) / kWordBytes * kWordBytes, buffer->GetLength());
    std::vector<uint8_t> words(static_cast<size_t>(whole), 0);
    std::copy_n(bytes, std::min(count, whole), words.begin());
    buffer->Set(words.data(), whole);
  }
};

FileProtocolAdapter::FileProtocolAdapter() : m_pImpl(new Impl) {}
FileProtocolAdapter::~FileProtocolAdapter() {
  delete m_pImpl;
}

bool FileProtocolAdapter::attach(INodeMap* pInterface) {
  Impl found;
  found.map = pInterface;
  const bool isComplete = pInterface && found.FindFeatures();
  *m_pImpl = isComplete ? found : Impl();
  return isComplete;
}

bool FileProtocolAdapter::openFile(const char* pFileName, std::ios_base::openmode mode) {
  if (!m_pImpl->map) return false;
  const AutoLock lock(m_pImpl->map->GetLock());
  const bool reads = (mode & std::ios_base::in) != 0;
  const bool writes = (mode & std::ios_base::out) != 0;
  const char* const name = reads && writes ? "ReadWrite" : (writes ? "Write" : "Read");
  if ((!reads && !writes) || !m_pImpl->Choose(pFileName, "Open")) return false;
  if (!IsAvailable(m_pImpl->openMode->GetEntryByName(name))) return false;
  *m_pImpl->openMode = gcstring(name);
  return m_pImpl->Run();
}

bool FileProtocolAdapter::closeFile(const char* pFileName) {
  if (!m_pImpl->map) return false;
  const AutoLock lock(m_pImpl->map->GetLock());
  return m_pImpl->Choose(pFileName, "Close") && m_pImpl->Run();
}

bool FileProtocolAdapter::deleteFile(const char* pFileName) {
  if (!m_pImpl->map) return false;
  const AutoLock lock(m_pImpl->map->GetLock());
  return m_pImpl->Choose(pFileName, "Delete") && m_pImpl->Run();
}

int64_t FileProtocolAdapter::getBufSize(const char* pFileName, std::ios_base::openmode mode) {
  if (!m_pImpl->map) return 0;
  const AutoLock lock(m_pImpl->map->GetLock());
  const bool writes = (mode & std::ios_base::out) != 0;
  return m_pImpl->Choose(pFileName, writes ? "Write" : "Read") ? m_pImpl->PieceBytes() : 0;
}

GenICam_streamsize FileProtocolAdapter::write(const char* buf, int64_t offs, int64_t len,
                                              const char* pFileName) {
  if (!m_pImpl->map || !buf) return 0;
  const AutoLock lock(m_pImpl->map->GetLock());
  if (!m_pImpl->Choose(pFileName, "Write")) return 0;
  const int64_t pieceBytes = m_pImpl->PieceBytes();
  int64_t done = 0;
  while (done < len && pieceBytes > 0) {
    const int64_t piece = std::min(len - done, pieceBytes);
    m_pImpl->SetRange(offs + done, piece);
    m_pImpl->Fill(buf + done, piece);
    if (!m_pImpl->Run()) break;
    const int64_t taken = std::clamp<int64_t>(m_pImpl->result->GetValue(false, true), 0, piece);
    done += taken;
    if (taken < piece) break;
  }
  return done;
}

GenICam_streamsize FileProtocolAdapter::read(char* buf, int64_t offs, GenICam_streamsize len,
                                             const char* pFileName) {
  if (!m_pImpl->map || !buf) return 0;
  const AutoLock lock(m_pImpl->map->GetLock());
  if (!m_pImpl->Choose(pFileName, "Read")) return 0;
  const int64_t pieceBytes = m_pImpl->PieceBytes();
  int64_t done = 0;
  while (done < len && pieceBytes > 0) {
    const int64_t piece = std::min(len - done, pieceBytes);
    m_pImpl->SetRange(offs + done, piece);
    if (!m_pImpl->Run()) break;
    const int64_t given = std::clamp<int64_t>(m_pImpl->result->GetValue(false, true), 0, piece);
    if (given > 0) m_pImpl->buffer->Get(reinterpret_cast<uint8_t*>(buf + done), given, false, true);
    done += given;
    if (given < piece) break;
  }
  return done;
}

}  // namespace GENAPI_NAMESPACE
