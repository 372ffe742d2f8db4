/// The files of a device as C++ streams.
#ifndef GENAPI_FILESTREAM_H
#define GENAPI_FILESTREAM_H

#include <algorithm>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "../Base/GCException.h"
#include "../Base/GCTypes.h"
#include "GenApiDll.h"
#include "INodeMap.h"

namespace GENAPI_NAMESPACE {

typedef int64_t GenICam_streamsize;

/// Access to the files of a device.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IFileProtocolAdapter {
  virtual bool attach(INodeMap * pInterface) = 0;
  virtual bool openFile(const char* pFileName, std::ios_base::openmode mode) = 0;
  virtual bool closeFile(const char* pFileName) = 0;
  virtual GenICam_streamsize write(const char* buf, int64_t offs, int64_t len, const char* pFileName) = 0;
  virtual GenICam_streamsize read(char* buf, int64_t offs, GenICam_streamsize len, const char* pFileName) = 0;
  virtual int64_t getBufSize(const char* pFileName, std::ios_base::openmode mode) = 0;
  virtual bool deleteFile(const char* pFileName) = 0;
  virtual ~IFileProtocolAdapter() {}
};

/// Works on the standard features: FileSelector, FileOperationSelector and what they select. Each call takes
/// the lock of the node map. Whatever the device does not let happen gives false or 0; exceptions are the
/// port's, and TimeoutException when an operation does not end.
class GENAPI_DECL FileProtocolAdapter : public IFileProtocolAdapter {
 public:
  FileProtocolAdapter();
  ~FileProtocolAdapter() override;
  FileProtocolAdapter(const FileProtocolAdapter&) = delete;
  FileProtocolAdapter& operator=(const FileProtocolAdapter&) = delete;

  /// The map is borrowed. Returns false when it lacks the features.
  bool attach(INodeMap* pInterface) override;
  /// For reading, writing, or both, as mode has in and out.
  bool openFile(const char* pFileName, std::ios_base::openmode mode) override;
  bool closeFile(const char* pFileName) override;
  /// Transfers in pieces of the device's buffer. Returns the number of bytes that the device took or gave.
  GenICam_streamsize write(const char* buf, int64_t offs, int64_t len, const char* pFileName) override;
  GenICam_streamsize read(char* buf, int64_t offs, GenICam_streamsize len, const char* pFileName) override;
  /// Bytes that one operation transfers at most; 0 when the device has no such file.
  int64_t getBufSize(const char* pFileName, std::ios_base::openmode mode) override;
  bool deleteFile(const char* pFileName) override;

 private:
  struct Impl;
  Impl* m_pImpl;
};

/// The buffer of a stream that reads a file of a device.
template <class CharType, class Traits>
class IDevFileStreamBuf : public std::basic_streambuf<CharType, Traits> {
 public:
  IDevFileStreamBuf() : m_Position(0), m_IsOpen(false) {}
  ~IDevFileStreamBuf() override { Quietly(); }

  bool open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode) {
    if (m_IsOpen || !pFileName || !m_Adapter.attach(pInterface)) return false;
    const int64_t size = m_Adapter.getBufSize(pFileName, std::ios_base::in);
    if (size <= 0 || !m_Adapter.openFile(pFileName, mode)) return false;
    m_Buffer.resize((std::max)(static_cast<size_t>(size) / sizeof(CharType), size_t(1)));
    m_FileName = pFileName;
    m_Position = 0;
    m_IsOpen = true;
    this->setg(m_Buffer.data(), m_Buffer.data(), m_Buffer.data());
    return true;
  }
  bool is_open() const { return m_IsOpen; }
  bool close() {
    if (!m_IsOpen) return false;
    m_IsOpen = false;
    return m_Adapter.closeFile(m_FileName.c_str());
  }

 protected:
  typename Traits::int_type underflow() override {
    if (!m_IsOpen) return Traits::eof();
    const GenICam_streamsize bytes = m_Adapter.read(
        reinterpret_cast<char*>(m_Buffer.data()), m_Position,
        static_cast<GenICam_streamsize>(m_Buffer.size() * sizeof(CharType)), m_FileName.c_str());
    const size_t count = bytes > 0 ? static_cast<size_t>(bytes) / sizeof(CharType) : 0;
    m_Position += static_cast<int64_t>(count * sizeof(CharType));
    this->setg(m_Buffer.data(), m_Buffer.data(), m_Buffer.data() + count);
    return count == 0 ? Traits::eof() : Traits::to_int_type(m_Buffer[0]);
  }

 private:
  void Quietly() {
    try {
      close();
    } catch (...) {
    }
  }

  FileProtocolAdapter m_Adapter;
  std::string m_FileName;
  std::vector<CharType> m_Buffer;
  int64_t m_Position;
  bool m_IsOpen;
};

/// The buffer of a stream that writes a file of a device.
template <class CharType, class Traits>
class ODevFileStreamBuf : public std::basic_streambuf<CharType, Traits> {
 public:
  ODevFileStreamBuf() : m_Position(0), m_IsOpen(false) {}
  ~ODevFileStreamBuf() override { Quietly(); }

  bool open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode) {
    if (m_IsOpen || !pFileName || !m_Adapter.attach(pInterface)) return false;
    const int64_t size = m_Adapter.getBufSize(pFileName, std::ios_base::out);
    if (size <= 0 || !m_Adapter.openFile(pFileName, mode)) return false;
    m_Buffer.resize((std::max)(static_cast<size_t>(size) / sizeof(CharType), size_t(1)));
    m_FileName = pFileName;
    m_Position = 0;
    m_IsOpen = true;
    this->setp(m_Buffer.data(), m_Buffer.data() + m_Buffer.size());
    return true;
  }
  bool is_open() const { return m_IsOpen; }
  /// Writes what is left; false when the device did not take all of it.
  bool close() {
    if (!m_IsOpen) return false;
    const bool isComplete = sync() == 0;
    m_IsOpen = false;
    return m_Adapter.closeFile(m_FileName.c_str()) && isComplete;
  }

 protected:
  typename Traits::int_type overflow(typename Traits::int_type c) override {
    if (!m_IsOpen || sync() != 0) return Traits::eof();
    if (Traits::eq_int_type(c, Traits::eof())) return Traits::not_eof(c);
    *this->pptr() = Traits::to_char_type(c);
    this->pbump(1);
    return c;
  }
  int sync() override {
    if (!m_IsOpen) return -1;
    const int64_t bytes =
        static_cast<int64_t>(this->pptr() - this->pbase()) * static_cast<int64_t>(sizeof(CharType));
    if (bytes == 0) return 0;
    const GenICam_streamsize taken =
        m_Adapter.write(reinterpret_cast<const char*>(this->pbase()), m_Position, bytes, m_FileName.c_str());
    this->setp(m_Buffer.data(), m_Buffer.data() + m_Buffer.size());
    m_Position += taken;
    return taken == bytes ? 0 : -1;
  }

 private:
  void Quietly() {
    try {
      close();
    } catch (...) {
    }
  }

  FileProtocolAdapter m_Adapter;
  std::string m_FileName;
  std::vector<CharType> m_Buffer;
  int64_t m_Position;
  bool m_IsOpen;
};

/// Reads a file of a device. Opening and reading set the stream's failbit or badbit, as of any stream.
template <class CharType, class Traits>
class IDevFileStreamBase : public std::basic_istream<CharType, Traits> {
 public:
  typedef IDevFileStreamBuf<CharType, Traits> filebuf_type;

  IDevFileStreamBase() : std::basic_istream<CharType, Traits>(nullptr) { this->init(&m_Buf); }
  IDevFileStreamBase(INodeMap* pInterface, const char* pFileName,
                     std::ios_base::openmode mode = std::ios_base::in)
      : std::basic_istream<CharType, Traits>(nullptr) {
    this->init(&m_Buf);
    open(pInterface, pFileName, mode);
  }

  void open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in) {
    bool isOpen = false;
    try {
      isOpen = m_Buf.open(pInterface, pFileName, mode | std::ios_base::in);
    } catch (const GENICAM_NAMESPACE::GenericException&) {
    }
    if (isOpen) return this->clear();
    this->setstate(std::ios_base::failbit);
  }
  void close() {
    bool isClosed = false;
    try {
      isClosed = m_Buf.close();
    } catch (const GENICAM_NAMESPACE::GenericException&) {
    }
    if (!isClosed) this->setstate(std::ios_base::failbit);
  }
  bool is_open() const { return m_Buf.is_open(); }
  filebuf_type* rdbuf() const { return const_cast<filebuf_type*>(&m_Buf); }

 private:
  filebuf_type m_Buf;
};

/// Writes a file of a device.
template <class CharType, class Traits>
class ODevFileStreamBase : public std::basic_ostream<CharType, Traits> {
 public:
  typedef ODevFileStreamBuf<CharType, Traits> filebuf_type;

  ODevFileStreamBase() : std::basic_ostream<CharType, Traits>(nullptr) { this->init(&m_Buf); }
  ODevFileStreamBase(INodeMap* pInterface, const char* pFileName,
                     std::ios_base::openmode mode = std::ios_base::out)
      : std::basic_ostream<CharType, Traits>(nullptr) {
    this->init(&m_Buf);
    open(pInterface, pFileName, mode);
  }

  void open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out) {
    bool isOpen = false;
    try {
      isOpen = m_Buf.open(pInterface, pFileName, mode | std::ios_base::out);
    } catch (const GENICAM_NAMESPACE::GenericException&) {
    }
    if (isOpen) return this->clear();
    this->setstate(std::ios_base::failbit);
  }
  void close() {
    bool isClosed = false;
    try {
      isClosed = m_Buf.close();
    } catch (const GENICAM_NAMESPACE::GenericException&) {
    }
    if (!isClosed) this->setstate(std::ios_base::failbit);
  }
  bool is_open() const { return m_Buf.is_open(); }
  filebuf_type* rdbuf() const { return const_cast<filebuf_type*>(&m_Buf); }

 private:
  filebuf_type m_Buf;
};

typedef IDevFileStreamBase<char, std::char_traits<char>> IDevFileStream;
typedef ODevFileStreamBase<char, std::char_traits<char>> ODevFileStream;

}  // namespace GENAPI_NAMESPACE

#endif
