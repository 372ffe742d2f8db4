#include <KELGeniCam.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <list>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "camera/LibraryInquiry.h"
#include "mock/CameraLinkSerial.h"

namespace zyn::transport_test {
namespace {

namespace fs = std::filesystem;
using Texts = std::list<std::string>;

constexpr std::int32_t kTooSmall = -10001;
constexpr std::int32_t kFailure = -10006;

/// A folder of libraries that the variables name.
class CameraLink : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "transport-cl-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    setenv("CLSERIALPATH", ("/nowhere:" + folder_.string()).c_str(), 1);
    setenv("GENICAM_CLPROTOCOL", folder_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("CLSERIALPATH");
    unsetenv("GENICAM_CLPROTOCOL");
    fs::remove_all(folder_);
  }

  /// Installs a copy, which is a library of its own.
  std::string Install(const char* library, const std::string& name) const {
    fs::create_directories((folder_ / name).parent_path());
    fs::copy_file(library, folder_ / name);
    return (folder_ / name).string();
  }

  /// Installs a serial library whose functions the test may exchange. It stays loaded, as it does for the library.
  MockSerial& Serial(const std::string& name) const {
    void* const library = dlopen(Install(ZYN_MOCK_CL_SERIAL, name).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) throw std::runtime_error(dlerror());
    return *static_cast<MockSerial*>(dlsym(library, "zynSerial"));
  }

  static Texts Serials() {
    Texts serials{"old"};
    EXPECT_EQ(KELGENICAM::GetCLSerials(serials), KELGENICAM::RESULT_OK);
    return serials;
  }

  static Texts Protocols() {
    Texts protocols{"old"};
    EXPECT_EQ(KELGENICAM::GetCLProtocols(protocols), KELGENICAM::RESULT_OK);
    return protocols;
  }

  fs::path folder_;
};

const Texts kBoth = {"Grabbers#Port 0", "Grabbers#Port 1"};

// ---- serial ports ---------------------------------------------------------------------------------------

TEST_F(CameraLink, ListsThePortsOfEverySerialLibraryInTheOrderOfTheirNames) {
  Serial("libclserB.so");
  Serial("libclserA.so").manufacturer = [](char* name, std::uint32_t*, std::uint32_t*) {
    std::strcpy(name, "First");
    return 0;
  };
  EXPECT_EQ(Serials(), (Texts{"First#Port 0", "First#Port 1", "Grabbers#Port 0", "Grabbers#Port 1"}));
}

TEST_F(CameraLink, ALibraryThatSeveralNamesLeadToIsListedOnce) {
  fs::create_symlink(ZYN_MOCK_CL_SERIAL, folder_ / "libclserGrabbers.so");
  fs::create_symlink(ZYN_MOCK_CL_SERIAL, folder_ / "libclserAgain.so");
  EXPECT_EQ(Serials(), kBoth);
}

TEST_F(CameraLink, OtherFilesAreNoSerialLibraries) {
  Install(ZYN_MOCK_CL_SERIAL, "libserial.so");         // another name
  Install(ZYN_MOCK_CL_SERIAL, "libclserOld.so.bak");   // another ending
  Install(ZYN_MOCK_CL_PROTOCOL, "libclserOther.so");   // another kind of library
  Install(ZYN_MOCK_CL_UNRESOLVED, "libclserLost.so");  // cannot be loaded
  std::ofstream(folder_ / "libclserBroken.so") << "no library";
  std::ofstream(folder_ / "libclserEmpty.so");
  fs::create_directory(folder_ / "libclserFolder.so");
  fs::create_symlink(folder_ / "gone.so", folder_ / "libclserDangling.so");
  EXPECT_EQ(Serials(), Texts{});
}

TEST_F(CameraLink, ALibraryWithoutAManufacturerGoesByItsName) {
  Install(ZYN_MOCK_CL_NO_MANUFACTURER, "libclserCards.so");
  EXPECT_EQ(Serials(), (Texts{"Cards#Port 0", "Cards#Port 1"}));
}

TEST_F(CameraLink, ALibraryThatCannotTellItsPortsHasNone) {
  Install(ZYN_MOCK_CL_NO_COUNT, "libclserFirst.so");
  Install(ZYN_MOCK_CL_NO_IDENTIFIER, "libclserSecond.so");
  EXPECT_EQ(Serials(), Texts{});
}

TEST_F(CameraLink, ATextLongerThanTheBufferIsAskedForWithTheSizeThatTheLibraryTells) {
  static std::atomic<int> calls{0};
  calls = 0;
  Serial("libclserLong.so").identify = [](std::uint32_t index, char* id, std::uint32_t* size) {
    ++calls;
    constexpr std::uint32_t kNeeded = 3001;
    const bool fits = *size >= kNeeded;
    *size = kNeeded;
    if (!fits) return kTooSmall;
    std::memset(id, index == 0 ? 'a' : 'b', kNeeded - 1);
    id[kNeeded - 1] = '\0';
    return 0;
  };
  EXPECT_EQ(Serials(), (Texts{"Grabbers#" + std::string(3000, 'a'), "Grabbers#" + std::string(3000, 'b')}));
  EXPECT_EQ(calls, 4);
}

struct BadSerial {
  const char* name;
  MockSerial functions;  // null: as usual
  Texts expected;
};

class BadSerialLibrary : public CameraLink, public testing::WithParamInterface<BadSerial> {};

TEST_P(BadSerialLibrary, LosesWhatItSpoiltAndNothingElse) {
  MockSerial& bad = Serial("libclserBad.so");
  const MockSerial& functions = GetParam().functions;
  if (functions.manufacturer) bad.manufacturer = functions.manufacturer;
  if (functions.count) bad.count = functions.count;
  if (functions.identify) bad.identify = functions.identify;
  Serial("libclserGood.so");
  Texts expected = GetParam().expected;
  expected.insert(expected.end(), kBoth.begin(), kBoth.end());
  EXPECT_EQ(Serials(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadSerialLibrary,
    testing::Values(
        BadSerial{"NoManufacturerToTell",
                  {[](char*, std::uint32_t*, std::uint32_t*) { return kFailure; }, nullptr, nullptr},
                  {"Bad#Port 0", "Bad#Port 1"}},
        BadSerial{"EmptyManufacturer",
                  {[](char* name, std::uint32_t*, std::uint32_t*) {
                     *name = '\0';
                     return 0;
                   },
                   nullptr, nullptr},
                  {"Bad#Port 0", "Bad#Port 1"}},
        BadSerial{"NoCountToTell", {nullptr, [](std::uint32_t*) { return kFailure; }, nullptr}, {}},
        BadSerial{"SuccessWithoutACount", {nullptr, [](std::uint32_t*) { return 0; }, nullptr}, {}},
        BadSerial{"ResultsAboveZero",
                  {nullptr,
                   [](std::uint32_t* count) {
                     *count = 2;
                     return 1;
                   },
                   nullptr},
                  {}},
        BadSerial{"AbsurdCount",
                  {nullptr,
                   [](std::uint32_t* count) {
                     *count = 0xFFFFFFFF;
                     return 0;
                   },
                   nullptr},
                  {}},
        BadSerial{"OnePortFails",
                  {nullptr, nullptr,
                   [](std::uint32_t index, char* id, std::uint32_t*) {
                     if (index == 0) return kFailure;
                     std::strcpy(id, "second");
                     return 0;
                   }},
                  {"Grabbers#second"}},
        BadSerial{"EmptyText",
                  {nullptr, nullptr,
                   [](std::uint32_t, char* id, std::uint32_t*) {
                     *id = '\0';
                     return 0;
                   }},
                  {}},
        BadSerial{"SuccessWithoutAText",
                  {nullptr, nullptr, [](std::uint32_t, char*, std::uint32_t*) { return 0; }},
                  {}},
        BadSerial{"TextWithoutAnEnd",
                  {nullptr, nullptr,
                   [](std::uint32_t index, char* id, std::uint32_t* size) {
                     if (index == 1) return kFailure;
                     std::memset(id, 'x', *size);
                     return 0;
                   }},
                  {"Grabbers#" + std::string(512, 'x')}},
        BadSerial{"ControlCharacters",
                  {nullptr, nullptr,
                   [](std::uint32_t, char* id, std::uint32_t*) {
                     std::strcpy(id, "a\x01\nb");
                     return 0;
                   }},
                  {}},
        BadSerial{"AbsurdSizeBesideTheText",
                  {nullptr, nullptr,
                   [](std::uint32_t, char* id, std::uint32_t* size) {
                     std::strcpy(id, "port");
                     *size = 0xFFFFFFFF;
                     return 0;
                   }},
                  {"Grabbers#port", "Grabbers#port"}},
        BadSerial{"NeverLargeEnough",
                  {nullptr, nullptr,
                   [](std::uint32_t, char*, std::uint32_t* size) {
                     ++*size;
                     return kTooSmall;
                   }},
                  {}},
        BadSerial{"TooSmallButNoLarger",
                  {nullptr, nullptr,
                   [](std::uint32_t, char*, std::uint32_t* size) {
                     *size = 0;
                     return kTooSmall;
                   }},
                  {}},
        BadSerial{"NeedsAbsurdlyMuch",
                  {nullptr, nullptr,
                   [](std::uint32_t, char*, std::uint32_t* size) {
                     *size = 0xFFFFFFFF;
                     return kTooSmall;
                   }},
                  {}},
        BadSerial{
            "Throws",
            {nullptr, [](std::uint32_t*) -> std::int32_t { throw std::runtime_error("a driver's mistake"); },
             nullptr},
            {}}),
    [](const auto& row) { return row.param.name; });

/// The gate at which a hanging library waits.
std::mutex& Gate() {
  static auto* const gate = new std::mutex;  // the library's thread may outlive the test
  return *gate;
}

TEST_F(CameraLink, ALibraryThatHangsIsLeftOutAndListedAgainWhenItCameBack) {
  static std::atomic<int> calls{0};
  calls = 0;
  Serial("libclserHanging.so").count = [](std::uint32_t* count) {
    ++calls;
    const std::lock_guard<std::mutex> wait(Gate());
    *count = 1;
    return 0;
  };
  Serial("libclserOther.so");
  Gate().lock();
  EXPECT_EQ(Serials(), kBoth);
  EXPECT_EQ(Serials(), kBoth);
  EXPECT_EQ(calls, 1) << "while it hangs it is not asked again";
  Gate().unlock();
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (Serials() == kBoth && std::chrono::steady_clock::now() < deadline) {
  }
  EXPECT_EQ(Serials(), (Texts{"Grabbers#Port 0", "Grabbers#Port 0", "Grabbers#Port 1"}));
}

// ---- protocol drivers -----------------------------------------------------------------------------------

TEST_F(CameraLink, ListsTheProtocolDriversInTheFoldersOfTheVariable) {
  const std::string second = Install(ZYN_MOCK_CL_PROTOCOL, "b/libDriver.so");
  const std::string first = Install(ZYN_MOCK_CL_PROTOCOL, "a/libDriver.so");
  const std::string another = Install(ZYN_MOCK_CL_PROTOCOL, "a/AnotherDriver.so");
  Install(ZYN_MOCK_CL_SERIAL, "a/libNoDriver.so");
  Install(ZYN_MOCK_CL_UNRESOLVED, "a/libLost.so");
  std::ofstream(folder_ / "a/libBroken.so") << "no library";
  setenv("GENICAM_CLPROTOCOL", ((folder_ / "a").string() + ":" + (folder_ / "b").string()).c_str(), 1);
  EXPECT_EQ(Protocols(), (Texts{another, first, second}));
}

TEST_F(CameraLink, ProtocolDriversAreFoundInTheFolderOfThePlatformToo) {
#if defined(__APPLE__)
  const std::string driver = Install(ZYN_MOCK_CL_PROTOCOL, "Maci64_x64/libDriver.so");
#elif defined(__aarch64__)
  const std::string driver = Install(ZYN_MOCK_CL_PROTOCOL, "Linux64_ARM/libDriver.so");
#else
  const std::string driver = Install(ZYN_MOCK_CL_PROTOCOL, "Linux64_x64/libDriver.so");
#endif
  Install(ZYN_MOCK_CL_PROTOCOL, "Win64_x64/libDriver.so");
  EXPECT_EQ(Protocols(), Texts{driver});
}

TEST_F(CameraLink, WithoutTheVariableThereIsNoDriver) {
  unsetenv("GENICAM_CLPROTOCOL");
  EXPECT_EQ(Protocols(), Texts{});
}

// ---- inquiries ------------------------------------------------------------------------------------------

using transport::LibraryInquiry;
constexpr std::chrono::milliseconds kLong{60000};

TEST(LibraryInquiry, AnswersComeInTheOrderOfTheFilesWhateverAnswersFirst) {
  std::promise<void> second;
  LibraryInquiry inquiry([&](const std::string& file) {
    if (file == "first") second.get_future().wait();
    if (file == "second") second.set_value();
    return Texts{file + " answers"};
  });
  EXPECT_EQ(inquiry.Ask({"first", "second"}, kLong), (Texts{"first answers", "second answers"}));
}

TEST(LibraryInquiry, WhoAsksMeanwhileSharesTheAnswer) {
  std::atomic<int> calls{0};
  std::promise<void> begun;
  std::promise<void> joined;
  LibraryInquiry inquiry([&](const std::string& file) {
    if (file == "later") joined.set_value();  // begun behind "file", which was joined by then
    if (file != "file") return Texts{};
    if (++calls == 1) begun.set_value();
    joined.get_future().wait();
    return Texts{"answer"};
  });
  auto first = std::async(std::launch::async, [&] { return inquiry.Ask({"file"}, kLong); });
  begun.get_future().wait();
  EXPECT_EQ(inquiry.Ask({"file", "later"}, kLong), Texts{"answer"});
  EXPECT_EQ(first.get(), Texts{"answer"});
  EXPECT_EQ(calls, 1);
}

TEST(LibraryInquiry, EveryInquiryAsksAnew) {
  int calls = 0;
  LibraryInquiry inquiry([&](const std::string&) { return Texts{std::to_string(++calls)}; });
  EXPECT_EQ(inquiry.Ask({"file"}, kLong), Texts{"1"});
  EXPECT_EQ(inquiry.Ask({"file"}, kLong), Texts{"2"});
}

}  // namespace
}  // namespace zyn::transport_test
