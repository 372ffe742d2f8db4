#include <filesystem>
#include <fstream>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

namespace fs = std::filesystem;
using namespace KELGENICAM;

// A folder of its own that ends with the test.
class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "transport-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() { fs::remove_all(path_); }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::string Path() const { return path_.string(); }

 private:
  fs::path path_;
};

class ProducerLoading : public TransportTest {
 protected:
  // The report's message for a path; "<none>" when it is not in the report.
  static std::string Message(const std::string& path, bool expectLoaded) {
    std::list<LoadReportEntry> entries;
    LoadReport(entries);
    for (const LoadReportEntry& entry : entries) {
      if (entry.path != path) continue;
      EXPECT_EQ(entry.loaded, expectLoaded) << entry.message;
      return entry.message;
    }
    return "<none>";
  }
};

TEST_F(ProducerLoading, EveryUnusableEntryIsReportedAndTheRestIsUsed) {
  const Folder folder;
  std::ofstream(folder / "text.cti") << "no library";
  fs::create_symlink(ZYN_MOCK_MISSING_CTI, folder / "missing.cti");
  fs::create_directory(folder / "empty");
  SetPath("/nowhere/at/all:" + folder.Path() + ":" + (folder / "empty") + "::" + ZYN_MOCK_CTI);
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam", "SN1"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(Message("/nowhere/at/all", false), "does not exist");
  EXPECT_EQ(Message(folder / "empty", false), "holds no .cti file");
  EXPECT_NE(Message(folder / "text.cti", false).find("cannot be loaded"), std::string::npos);
  EXPECT_NE(Message(folder / "missing.cti", false).find("lacks the function GCCloseLib"), std::string::npos);
  EXPECT_NE(Message(ZYN_MOCK_CTI, true), "<none>");
  EXPECT_EQ(Discover().size(), 1U);
}

TEST_F(ProducerLoading, AProducerThatFailsToInitialiseIsSkippedWithItsError) {
  mock_.SetHook("GCInitLib", [](const std::string&) { return GenTL::GC_ERR_RESOURCE_EXHAUSTED; });
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(Message(ZYN_MOCK_CTI, false), "GCInitLib failed: GC_ERR_RESOURCE_EXHAUSTED");
  EXPECT_TRUE(Discover().empty());
}

TEST_F(ProducerLoading, AProducerWhoseSystemDoesNotOpenIsClosedAgain) {
  mock_.SetHook("TLOpen", [](const std::string&) { return GenTL::GC_ERR_ACCESS_DENIED; });
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(Message(ZYN_MOCK_CTI, false), "TLOpen failed: GC_ERR_ACCESS_DENIED");
  EXPECT_EQ(mock_.Calls("GCCloseLib"), 1);
}

TEST_F(ProducerLoading, AFileIsLoadedOnceHoweverManyPathsLeadToIt) {
  const Folder folder;
  fs::create_symlink(ZYN_MOCK_CTI, folder / "again.cti");
  SetPath(std::string(ZYN_MOCK_CTI) + ":" + ZYN_MOCK_CTI + ":" + folder.Path());
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam", "SN1"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("GCInitLib"), 1);
  EXPECT_EQ(Message(folder / "again.cti", false), "is the same file as one found before");
  EXPECT_EQ(Discover().size(), 1U);
}

TEST_F(ProducerLoading, InitIsCountedAndTheLastUnInitCloses) {
  ASSERT_EQ(Init(), RESULT_OK);
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("GCInitLib"), 1);
  EXPECT_EQ(UnInit(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("GCCloseLib"), 0);
  EXPECT_EQ(UnInit(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("GCCloseLib"), 1);
  EXPECT_EQ(UnInit(), RESULT_NOT_INITIALIZED);
}

TEST_F(ProducerLoading, AProducerCanBeStartedAgainAfterItWasClosed) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam", "SN1"}}}});
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(Init(), RESULT_OK);
    EXPECT_EQ(Discover().size(), 1U);
    ASSERT_EQ(UnInit(), RESULT_OK);
    EXPECT_EQ(mock_.OpenHandles(), 0);
  }
}

TEST_F(ProducerLoading, NothingIsFoundBeforeInit) {
  InfoList found{nullptr};
  EXPECT_EQ(Discovery(nullptr, found), RESULT_NOT_INITIALIZED);
  EXPECT_TRUE(found.empty());
}

}  // namespace
}  // namespace zyn::transport_test
