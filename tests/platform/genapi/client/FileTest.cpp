// Files of a device.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/Filestream.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

// A device with files. It acts when its execute register is written, and is done at once.
class FilePort : public MemoryPort {
 public:
  enum Register {
    kSelector = 0,
    kOperation = 4,
    kMode = 8,
    kOffset = 12,
    kLength = 16,
    kExecute = 20,
    kStatus = 24,
    kResult = 28,
    kBuffer = 32
  };
  enum Operation { kOpen, kClose, kRead, kWrite, kDelete };

  void Write(const void* buffer, int64_t address, int64_t length) override {
    MemoryPort::Write(buffer, address, length);
    if (address != kExecute) return;
    operations.push_back(Get(kOperation));
    bytes[kExecute] = 0;
    Put(kStatus, failing ? 1U : 0U);
    std::string& file = files[Get(kSelector)];
    const size_t offset = std::min<size_t>(Get(kOffset), file.size());
    size_t count = Get(kLength);
    if (Get(kOperation) == kRead) {
      count = std::min(count, file.size() - offset);
      std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(offset), count, bytes.begin() + kBuffer);
    } else if (Get(kOperation) == kWrite) {
      count = std::min(count, capacity - offset);
      file.resize(std::max(file.size(), offset + count));
      std::copy_n(bytes.begin() + kBuffer, count, file.begin() + static_cast<std::ptrdiff_t>(offset));
    } else if (Get(kOperation) == kDelete) {
      file.clear();
    }
    Put(kResult, static_cast<uint32_t>(count));
  }

  uint32_t Get(int at) const {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
  }
  void Put(int at, uint32_t value) { std::memcpy(bytes.data() + at, &value, 4); }

  std::map<uint32_t, std::string> files;
  std::vector<uint32_t> operations;
  bool failing = false;
  size_t capacity = 1000;
};

std::string Choice(const char* name, int address, const std::vector<const char*>& entries,
                   const char* more = "") {
  std::string xml = "<Enumeration Name=\"" + std::string(name) + "\">";
  int value = 0;
  for (const char* const entry : entries)
    xml += "<EnumEntry Name=\"" + std::string(entry) + "\"><Value>" + std::to_string(value++) +
           "</Value></EnumEntry>";
  return xml + "<pValue>" + name + "Reg</pValue>" + more + "</Enumeration>" +
         Register("IntReg", std::string(name) + "Reg", address, 4, "<Cachable>NoCache</Cachable>");
}

std::string Nodes() {
  return Choice("FileSelector", FilePort::kSelector, {"Settings", "Firmware"}) +
         Choice("FileOperationSelector", FilePort::kOperation, {"Open", "Close", "Read", "Write", "Delete"}) +
         Choice("FileOpenMode", FilePort::kMode, {"Read", "Write"}) +
         Register("IntReg", "FileAccessOffset", FilePort::kOffset, 4) +
         "<Integer Name=\"FileAccessLength\"><pValue>LengthReg</pValue><Min>0</Min><Max>10</Max></Integer>" +
         Register("IntReg", "LengthReg", FilePort::kLength, 4) +
         "<Command "
         "Name=\"FileOperationExecute\"><pValue>ExecuteReg</pValue><CommandValue>1</CommandValue></Command>" +
         Register("IntReg", "ExecuteReg", FilePort::kExecute, 4, "<Cachable>NoCache</Cachable>") +
         Choice("FileOperationStatus", FilePort::kStatus, {"Success", "Failure"}) +
         Register("IntReg", "FileOperationResult", FilePort::kResult, 4, "<Cachable>NoCache</Cachable>") +
         Register("Register", "FileAccessBuffer", FilePort::kBuffer, 16);
}

struct FileCamera {
  FileCamera() {
    map._LoadXMLFromString(Description(Nodes()).c_str());
    map._Connect(&port);
  }
  FilePort port;
  CNodeMapRef map;
};

TEST(Files, AreReadAndWrittenAsStreams) {
  FileCamera camera;
  const std::string text = "a text that is longer than two pieces of ten bytes";
  {
    ODevFileStream out(camera.map._Ptr, "Settings");
    ASSERT_TRUE(out.is_open());
    out << text;
    out.close();
    EXPECT_TRUE(out.good());
  }
  EXPECT_EQ(camera.port.files[0], text);
  EXPECT_EQ(camera.port.operations.front(), FilePort::kOpen);
  EXPECT_EQ(camera.port.operations.back(), FilePort::kClose);
  IDevFileStream in(camera.map._Ptr, "Settings");
  ASSERT_TRUE(in.is_open());
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), text);
  in.close();
  EXPECT_FALSE(in.is_open());
}

TEST(Files, AnUnclosedStreamWritesWhatIsLeft) {
  FileCamera camera;
  {
    ODevFileStream out;
    out.open(camera.map._Ptr, "Firmware");
    out << "abc";
  }
  EXPECT_EQ(camera.port.files[1], "abc");
  EXPECT_EQ(camera.port.operations.back(), FilePort::kClose);
}

TEST(Files, StreamsFailWhereTheDeviceRefuses) {
  FileCamera camera;
  IDevFileStream missing(camera.map._Ptr, "NoSuchFile");
  EXPECT_TRUE(missing.fail());
  EXPECT_FALSE(missing.is_open());
  camera.port.failing = true;
  ODevFileStream refused(camera.map._Ptr, "Settings");
  EXPECT_TRUE(refused.fail());
  camera.port.failing = false;
  camera.port.capacity = 12;
  ODevFileStream full(camera.map._Ptr, "Settings");
  full << std::string(25, 'x') << std::flush;
  EXPECT_TRUE(full.bad());
  Camera other("");
  EXPECT_TRUE(IDevFileStream(other.map._Ptr, "Settings").fail()) << "a device without files";
  camera.port.fails = true;
  EXPECT_TRUE(IDevFileStream(camera.map._Ptr, "Settings").fail()) << "a device that does not answer";
}

TEST(Files, AdapterTransfersInPieces) {
  FileCamera camera;
  FileProtocolAdapter adapter;
  EXPECT_FALSE(adapter.openFile("Settings", std::ios_base::in)) << "not attached";
  ASSERT_TRUE(adapter.attach(camera.map._Ptr));
  EXPECT_EQ(adapter.getBufSize("Settings", std::ios_base::in), 10);
  EXPECT_EQ(adapter.getBufSize("NoSuchFile", std::ios_base::in), 0);
  EXPECT_TRUE(adapter.openFile("Settings", std::ios_base::out));
  EXPECT_EQ(camera.port.Get(FilePort::kMode), 1U);
  EXPECT_FALSE(adapter.openFile("Settings", std::ios_base::in | std::ios_base::out)) << "has no such mode";
  const std::string data = "0123456789abcdef";
  EXPECT_EQ(adapter.write(data.data(), 2, 16, "Settings"), 16);
  EXPECT_EQ(camera.port.files[0].size(), 16U) << "the file was empty, so the offset was cut";
  char buffer[32] = {};
  EXPECT_EQ(adapter.read(buffer, 4, 32, "Settings"), 12);
  EXPECT_TRUE(adapter.closeFile("Settings"));
  EXPECT_TRUE(adapter.deleteFile("Settings"));
  EXPECT_EQ(camera.port.files[0], "");
  EXPECT_FALSE(adapter.attach(nullptr));
  EXPECT_FALSE(adapter.closeFile("Settings")) << "detached";
}

}  // namespace
