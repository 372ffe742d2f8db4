// The producer as a file: what it exports, and that two of them live in one process without touching each other.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "GenTL/GenTL.h"

namespace {

using namespace GenTL;

// The defined dynamic symbols of a file, as the tool chain's own tool lists them.
std::set<std::string> Exports(const std::string& path) {
  std::set<std::string> names;
  FILE* const pipe = popen(("nm -D --defined-only --format=posix '" + path + "'").c_str(), "r");
  if (pipe == nullptr) return names;
  char line[512];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    const std::string text = line;
    names.insert(text.substr(0, text.find(' ')));
  }
  pclose(pipe);
  return names;
}

class Loaded {
 public:
  explicit Loaded(const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(library_, nullptr) << dlerror();
  }
  ~Loaded() {
    if (library_ != nullptr) dlclose(library_);
  }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;

  template <class Function>
  Function Get(const char* name) const {
    return reinterpret_cast<Function>(dlsym(library_, name));
  }

 private:
  void* library_;
};

std::string Path(const Loaded& producer) {
  INFO_DATATYPE type = 0;
  char text[4200];
  std::size_t size = sizeof text;
  EXPECT_EQ(producer.Get<PGCGetInfo>("GCGetInfo")(TL_INFO_PATHNAME, &type, text, &size), GC_ERR_SUCCESS);
  return text;
}

TEST(ProducerFile, ExportsTheSixtyFourFunctionsAndNothingElse) {
  const std::set<std::string> expected = {
      "GCInitLib",
      "GCCloseLib",
      "GCGetInfo",
      "GCGetLastError",
      "GCReadPort",
      "GCWritePort",
      "GCGetPortURL",
      "GCGetPortInfo",
      "GCGetNumPortURLs",
      "GCGetPortURLInfo",
      "GCReadPortStacked",
      "GCWritePortStacked",
      "GCRegisterEvent",
      "GCUnregisterEvent",
      "EventGetData",
      "EventGetDataInfo",
      "EventGetInfo",
      "EventFlush",
      "EventKill",
      "TLOpen",
      "TLClose",
      "TLGetInfo",
      "TLGetNumInterfaces",
      "TLGetInterfaceID",
      "TLGetInterfaceInfo",
      "TLOpenInterface",
      "TLUpdateInterfaceList",
      "IFClose",
      "IFGetInfo",
      "IFGetNumDevices",
      "IFGetDeviceID",
      "IFUpdateDeviceList",
      "IFGetDeviceInfo",
      "IFOpenDevice",
      "IFGetParentTL",
      "DevGetPort",
      "DevGetNumDataStreams",
      "DevGetDataStreamID",
      "DevOpenDataStream",
      "DevGetInfo",
      "DevClose",
      "DevGetParentIF",
      "DSAnnounceBuffer",
      "DSAllocAndAnnounceBuffer",
      "DSFlushQueue",
      "DSStartAcquisition",
      "DSStopAcquisition",
      "DSGetInfo",
      "DSGetBufferID",
      "DSClose",
      "DSRevokeBuffer",
      "DSQueueBuffer",
      "DSGetBufferInfo",
      "DSGetBufferChunkData",
      "DSGetParentDev",
      "DSGetNumBufferParts",
      "DSGetBufferPartInfo",
      "DSAnnounceCompositeBuffer",
      "DSGetBufferInfoStacked",
      "DSGetBufferPartInfoStacked",
      "DSGetNumFlows",
      "DSGetFlowInfo",
      "DSGetNumBufferSegments",
      "DSGetBufferSegmentInfo",
  };
  ASSERT_EQ(expected.size(), 64U);
  EXPECT_EQ(Exports(ZYN_TEST_PRODUCER_A), expected);
}

TEST(ProducerFile, TwoProducersDoNotKnowEachOther) {
  const Loaded a(ZYN_TEST_PRODUCER_A);
  const Loaded b(ZYN_TEST_PRODUCER_B);
  ASSERT_EQ(a.Get<PGCInitLib>("GCInitLib")(), GC_ERR_SUCCESS);
  TL_HANDLE systemA = nullptr;
  TL_HANDLE systemB = nullptr;
  EXPECT_EQ(b.Get<PTLOpen>("TLOpen")(&systemB), GC_ERR_NOT_INITIALIZED);
  ASSERT_EQ(b.Get<PGCInitLib>("GCInitLib")(), GC_ERR_SUCCESS);
  EXPECT_EQ(a.Get<PTLOpen>("TLOpen")(&systemA), GC_ERR_SUCCESS);
  EXPECT_EQ(b.Get<PTLOpen>("TLOpen")(&systemB), GC_ERR_SUCCESS);
  EXPECT_EQ(b.Get<PTLClose>("TLClose")(systemA), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(a.Get<PTLClose>("TLClose")(systemB), GC_ERR_INVALID_HANDLE);
  EXPECT_TRUE(Path(a).ends_with("/ScriptedA.cti")) << Path(a);
  EXPECT_TRUE(Path(b).ends_with("/ScriptedB.cti")) << Path(b);
  EXPECT_EQ(a.Get<PGCCloseLib>("GCCloseLib")(), GC_ERR_SUCCESS);
  EXPECT_EQ(b.Get<PTLClose>("TLClose")(systemB), GC_ERR_SUCCESS);
  EXPECT_EQ(b.Get<PGCCloseLib>("GCCloseLib")(), GC_ERR_SUCCESS);
}

TEST(ProducerFile, UnloadingWithoutClosingEndsWhatRuns) {
  for (int i = 0; i < 10; ++i) {
    const Loaded a(ZYN_TEST_PRODUCER_A);
    ASSERT_EQ(a.Get<PGCInitLib>("GCInitLib")(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(a.Get<PTLOpen>("TLOpen")(&system), GC_ERR_SUCCESS);
  }
}

}  // namespace
