#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "doctor/ProducerFindings.h"
#include "doctor/SystemFindings.h"
#include "doctor/SystemReadings.h"

namespace zyncam {
namespace {

namespace fs = std::filesystem;
using zyn::gige::Adapter;
using zyn::gige::ParseIpv4;

/// A made-up computer: folders like /proc and /sys with one adapter, eth1, that lacks nothing.
class Computer : public testing::Test {
 protected:
  Computer() {
    std::string pattern = (fs::temp_directory_path() / "doctor-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    AddAdapter("eth1", "1");
    Put("sys/class/net/eth1/mtu", "9000");
    Put("sys/class/net/eth1/speed", "1000");
    Put("proc/sys/net/ipv4/conf/all/rp_filter", "0");
    Put("proc/sys/net/ipv4/conf/eth1/rp_filter", "0");
    Put("proc/sys/net/core/rmem_max", "33554432");
    Put("proc/sys/net/core/rmem_default", "212992");
    Put("proc/sys/net/core/netdev_max_backlog", "5000");
    Put("proc/self/status", "Name:\tx\nCapPrm:\t0000000000000000\nCapEff:\t000001ffffffffff\n");
    Put("sys/module/usbcore/parameters/usbfs_memory_mb", "1000");
    adapters_ = {AdapterWith("eth1", "192.168.77.1", "255.255.255.0")};
  }
  ~Computer() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  void Put(const std::string& file, const std::string& text) const {
    fs::create_directories((folder_ / file).parent_path());
    std::ofstream(folder_ / file) << text << '\n';
  }
  void AddAdapter(const std::string& name, const std::string& type) const {
    Put("sys/class/net/" + name + "/type", type);
    Put("sys/class/net/" + name + "/flags", "0x1003");
    Put("sys/class/net/" + name + "/carrier", "1");
  }
  static Adapter AdapterWith(const std::string& name, const char* ip, const char* mask) {
    Adapter adapter;
    adapter.name = name;
    adapter.addresses.push_back({*ParseIpv4(ip), *ParseIpv4(mask), {}});
    return adapter;
  }
  SystemReadings Read() const {
    return ReadSystem({(folder_ / "proc").string(), (folder_ / "sys").string()}, adapters_);
  }
  std::vector<Finding> Findings() const { return FindingsOf(Read()); }
  std::optional<Finding> FindingOn(const std::string& topic, const std::string& subject) const {
    for (const Finding& finding : Findings()) {
      if (finding.topic == topic && finding.subject == subject) return finding;
    }
    return std::nullopt;
  }

  fs::path folder_;
  std::vector<Adapter> adapters_;
};

TEST_F(Computer, ThatLacksNothingIsGood) {
  for (const Finding& finding : Findings()) {
    EXPECT_EQ(finding.verdict, Verdict::good) << finding.subject << ": " << finding.text;
    EXPECT_EQ(finding.advice, "") << finding.subject;
    EXPECT_NE(finding.text, "") << finding.subject;
  }
  EXPECT_EQ(Findings().size(), 10U);
}

TEST_F(Computer, IsReadAsItIs) {
  const SystemReadings readings = Read();
  ASSERT_EQ(readings.adapters.size(), 1U);
  EXPECT_EQ(readings.adapters[0].name, "eth1");
  EXPECT_TRUE(readings.adapters[0].isUp);
  EXPECT_FALSE(readings.adapters[0].isLoopback);
  EXPECT_EQ(readings.adapters[0].mtu, 9000);
  EXPECT_EQ(readings.adapters[0].speedMbps, 1000);
  EXPECT_EQ(readings.adapters[0].pathFilter, 0);
  EXPECT_EQ(readings.receiveBufferMax, 33554432);
  EXPECT_EQ(readings.receiveBufferDefault, 212992);
  EXPECT_EQ(readings.backlog, 5000);
  EXPECT_EQ(readings.capabilities, 0x1ffffffffffU) << "those in force, not those permitted";
  EXPECT_EQ(readings.usbMemoryMb, 1000);
}

struct VerdictCase {
  const char* name;
  std::map<std::string, std::string> files;  // that differ from the good computer's
  const char* topic;
  const char* subject;
  Verdict verdict;
  const char* text;    // what the finding says
  const char* advice;  // what it advises
};

class Verdicts : public Computer, public testing::WithParamInterface<VerdictCase> {};

TEST_P(Verdicts, FollowFromTheReadings) {
  for (const auto& [file, text] : GetParam().files) Put(file, text);
  const auto finding = FindingOn(GetParam().topic, GetParam().subject);
  ASSERT_TRUE(finding);
  EXPECT_EQ(finding->verdict, GetParam().verdict) << finding->text;
  EXPECT_NE(finding->text.find(GetParam().text), std::string::npos) << finding->text;
  EXPECT_NE(finding->advice.find(GetParam().advice), std::string::npos) << finding->advice;
  EXPECT_EQ(finding->advice.empty(), finding->verdict == Verdict::good);
}

constexpr const char* kMtu = "sys/class/net/eth1/mtu";
constexpr const char* kSpeed = "sys/class/net/eth1/speed";
constexpr const char* kFilter = "proc/sys/net/ipv4/conf/eth1/rp_filter";
constexpr const char* kFilterOfAll = "proc/sys/net/ipv4/conf/all/rp_filter";
constexpr const char* kReceive = "proc/sys/net/core/rmem_max";
constexpr const char* kBacklog = "proc/sys/net/core/netdev_max_backlog";
constexpr const char* kStatus = "proc/self/status";
constexpr const char* kUsb = "sys/module/usbcore/parameters/usbfs_memory_mb";

INSTANTIATE_TEST_SUITE_P(
    Table, Verdicts,
    testing::Values(
        VerdictCase{"Good", {}, "network", "eth1", Verdict::good, "192.168.77.1/255.255.255.0", ""},
        VerdictCase{"SwitchedOff",
                    {{"sys/class/net/eth1/flags", "0x1002"}},
                    "network",
                    "eth1",
                    Verdict::note,
                    "switched off",
                    "ip link set eth1 up"},
        VerdictCase{"NoCable",
                    {{"sys/class/net/eth1/carrier", "0"}},
                    "network",
                    "eth1",
                    Verdict::note,
                    "no cable",
                    "check cable"},
        VerdictCase{"Wireless",
                    {{"sys/class/net/eth1/wireless/x", ""}},
                    "network",
                    "eth1",
                    Verdict::warning,
                    "wireless",
                    "by cable"},
        VerdictCase{"Jumbo", {{kMtu, "8000"}}, "network", "eth1 mtu", Verdict::good, "8000", ""},
        VerdictCase{"BelowJumbo", {{kMtu, "7999"}}, "network", "eth1 mtu", Verdict::note, "7999", "mtu 9000"},
        VerdictCase{"UsualMtu", {{kMtu, "1500"}}, "network", "eth1 mtu", Verdict::note, "1500", "mtu 9000"},
        VerdictCase{
            "SmallMtu", {{kMtu, "1499"}}, "network", "eth1 mtu", Verdict::warning, "do not fit", "mtu 1500"},
        VerdictCase{"Gigabit", {{kSpeed, "1000"}}, "network", "eth1 speed", Verdict::good, "1000 Mbit/s", ""},
        VerdictCase{"Slow",
                    {{kSpeed, "100"}},
                    "network",
                    "eth1 speed",
                    Verdict::warning,
                    "100 Mbit/s",
                    "check the cable"},
        VerdictCase{"FilterOff", {}, "reverse path filter", "eth1", Verdict::good, "off", ""},
        VerdictCase{"FilterStrict",
                    {{kFilter, "1"}},
                    "reverse path filter",
                    "eth1",
                    Verdict::warning,
                    "strict",
                    "net.ipv4.conf.eth1.rp_filter=0"},
        VerdictCase{"FilterLoose",
                    {{kFilter, "2"}},
                    "reverse path filter",
                    "eth1",
                    Verdict::note,
                    "loose",
                    "net.ipv4.conf.all.rp_filter=0"},
        VerdictCase{"FilterOfAll",
                    {{kFilterOfAll, "1"}},
                    "reverse path filter",
                    "eth1",
                    Verdict::warning,
                    "strict",
                    "net.ipv4.conf.all.rp_filter=0"},
        VerdictCase{"LooseOfAllBeatsStrict",
                    {{kFilterOfAll, "2"}, {kFilter, "1"}},
                    "reverse path filter",
                    "eth1",
                    Verdict::note,
                    "loose",
                    "rp_filter=0"},
        VerdictCase{"EnoughBuffer",
                    {{kReceive, "8388608"}},
                    "buffers",
                    "net.core.rmem_max",
                    Verdict::good,
                    "8 MiB",
                    ""},
        VerdictCase{"SmallBuffer",
                    {{kReceive, "212992"}},
                    "buffers",
                    "net.core.rmem_max",
                    Verdict::warning,
                    "208 KiB",
                    "net.core.rmem_max=33554432"},
        VerdictCase{"SmallBacklog",
                    {{kBacklog, "999"}},
                    "buffers",
                    "net.core.netdev_max_backlog",
                    Verdict::warning,
                    "999",
                    "netdev_max_backlog=5000"},
        VerdictCase{"EnoughBacklog",
                    {{kBacklog, "1000"}},
                    "buffers",
                    "net.core.netdev_max_backlog",
                    Verdict::good,
                    "1000",
                    ""},
        VerdictCase{"NoRight",
                    {{kStatus, "CapEff:\t0000000000000000"}},
                    "rights",
                    "CAP_NET_RAW",
                    Verdict::note,
                    "no: ",
                    "setcap cap_net_raw"},
        VerdictCase{"NetRawOnly",
                    {{kStatus, "CapEff:\t0000000000002000"}},
                    "rights",
                    "CAP_NET_RAW",
                    Verdict::good,
                    "yes",
                    ""},
        VerdictCase{"NetRawIsNotSysNice",
                    {{kStatus, "CapEff:\t0000000000002000"}},
                    "rights",
                    "CAP_SYS_NICE",
                    Verdict::note,
                    "no: ",
                    "cap_sys_nice"},
        VerdictCase{"SysNiceOnly",
                    {{kStatus, "CapEff:\t0000000000800000"}},
                    "rights",
                    "CAP_SYS_NICE",
                    Verdict::good,
                    "yes",
                    ""},
        VerdictCase{
            "EnoughUsbMemory", {{kUsb, "256"}}, "usb", "usbfs_memory_mb", Verdict::good, "256 MB", ""},
        VerdictCase{"UsualUsbMemory",
                    {{kUsb, "16"}},
                    "usb",
                    "usbfs_memory_mb",
                    Verdict::note,
                    "16 MB",
                    "usbfs_memory_mb=256"},
        VerdictCase{"SmallUsbMemory",
                    {{kUsb, "15"}},
                    "usb",
                    "usbfs_memory_mb",
                    Verdict::warning,
                    "cannot stream",
                    "usbfs_memory_mb=256"},
        VerdictCase{
            "UnlimitedUsbMemory", {{kUsb, "0"}}, "usb", "usbfs_memory_mb", Verdict::good, "unlimited", ""}),
    [](const testing::TestParamInfo<VerdictCase>& param) { return param.param.name; });

TEST_F(Computer, AnAdapterWithoutAddressIsNamed) {
  AddAdapter("eth2", "1");
  const auto finding = FindingOn("network", "eth2");
  ASSERT_TRUE(finding);
  EXPECT_EQ(finding->verdict, Verdict::warning);
  EXPECT_NE(finding->text.find("no IPv4 address"), std::string::npos);
  EXPECT_NE(finding->advice.find("dev eth2"), std::string::npos);
}

TEST_F(Computer, AdaptersOfOtherKindsAreLeftOut) {
  AddAdapter("sit0", "776");
  EXPECT_FALSE(FindingOn("network", "sit0"));
}

TEST_F(Computer, TheLoopbackAdapterIsNotJudgedAsOneForCameras) {
  AddAdapter("lo", "772");
  Put("sys/class/net/lo/mtu", "1000");
  adapters_.push_back(AdapterWith("lo", "127.0.0.1", "255.0.0.0"));
  EXPECT_EQ(FindingOn("network", "lo")->verdict, Verdict::good);
  EXPECT_FALSE(FindingOn("network", "lo mtu"));
  EXPECT_FALSE(FindingOn("network", "adapters"));
}

TEST_F(Computer, WithoutAnAdapterForCamerasOneIsMissed) {
  fs::remove_all(folder_ / "sys/class/net/eth1");
  adapters_ = {AdapterWith("lo", "127.0.0.1", "255.0.0.0")};
  EXPECT_EQ(FindingOn("network", "adapters")->verdict, Verdict::warning);
  adapters_.clear();
  EXPECT_EQ(FindingOn("network", "adapters")->verdict, Verdict::problem);
}

TEST_F(Computer, TwoAdaptersInOneNetworkAreInEachOthersWay) {
  AddAdapter("eth2", "1");
  adapters_.push_back(AdapterWith("eth2", "192.168.0.1", "255.255.0.0"));
  const auto finding = FindingOn("network", "eth1 and eth2");
  ASSERT_TRUE(finding);
  EXPECT_EQ(finding->verdict, Verdict::warning);
  adapters_.back() = AdapterWith("eth2", "192.168.78.1", "255.255.255.0");
  EXPECT_FALSE(FindingOn("network", "eth1 and eth2"));
}

TEST_F(Computer, OfAnotherSystemIsJudgedByItsAddressesAlone) {
  fs::remove_all(folder_);
  const std::vector<Finding> findings = Findings();
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].subject, "eth1");
  EXPECT_EQ(findings[0].verdict, Verdict::good);
}

TEST_F(Computer, SettingsThatAreNoNumbersAreUnknown) {
  Put("proc/sys/net/core/rmem_max", "many");
  Put("sys/class/net/eth1/speed", "-1");
  Put("proc/self/status", "CapEff:\tnone");
  EXPECT_FALSE(Read().receiveBufferMax);
  EXPECT_FALSE(Read().adapters[0].speedMbps);
  EXPECT_FALSE(Read().capabilities);
  EXPECT_FALSE(FindingOn("buffers", "net.core.rmem_max"));
  EXPECT_FALSE(FindingOn("network", "eth1 speed"));
  EXPECT_FALSE(FindingOn("rights", "CAP_NET_RAW"));
}

struct ReportCase {
  const char* name;
  KELGENICAM::LoadReportEntry entry;
  Verdict verdict;
  const char* advice;
};

class Report : public testing::TestWithParam<ReportCase> {};

TEST_P(Report, TellsWhatToDoAboutEachProducer) {
  const KELGENICAM::LoadReportEntry used{"/a/good.cti", true, "A producer 1.0"};
  const std::vector<Finding> findings = FindingsOf({used, GetParam().entry});
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].verdict, Verdict::good);
  EXPECT_EQ(findings[0].text, "A producer 1.0");
  EXPECT_EQ(findings[1].subject, GetParam().entry.path);
  EXPECT_EQ(findings[1].verdict, GetParam().verdict);
  EXPECT_NE(findings[1].text.find(GetParam().entry.message), std::string::npos);
  EXPECT_NE(findings[1].advice.find(GetParam().advice), std::string::npos) << findings[1].advice;
  EXPECT_NE(findings[1].advice, "");
}

INSTANTIATE_TEST_SUITE_P(
    Table, Report,
    testing::Values(
        ReportCase{"Missing", {"/none", false, "does not exist"}, Verdict::warning, "install it"},
        ReportCase{"Empty", {"/a", false, "holds no .cti file"}, Verdict::warning, "install a producer"},
        ReportCase{"Unreadable",
                   {"/a/x.cti", false, "cannot be read: Permission denied"},
                   Verdict::warning,
                   "rights"},
        ReportCase{
            "Twice", {"/a/x.cti", false, "is the same file as one found before"}, Verdict::note, "once"},
        ReportCase{"MissingLibrary",
                   {"/a/x.cti", false, "cannot be loaded: libx.so.1: cannot open shared object file"},
                   Verdict::warning,
                   "ldd"},
        ReportCase{"OtherProcessor",
                   {"/a/x.cti", false, "cannot be loaded: /a/x.cti: wrong ELF class: ELFCLASS32"},
                   Verdict::warning,
                   "processor"},
        ReportCase{"NoLibrary",
                   {"/a/x.cti", false, "cannot be loaded: /a/x.cti: invalid ELF header"},
                   Verdict::warning,
                   "damaged"},
        ReportCase{"NoProducer",
                   {"/a/x.cti", false, "is no GenTL producer: it lacks the function GCInitLib"},
                   Verdict::warning,
                   "remove it"},
        ReportCase{
            "Unknown", {"/a/x.cti", false, "TLOpen failed: -1004"}, Verdict::warning, "producer's maker"}),
    [](const testing::TestParamInfo<ReportCase>& param) { return param.param.name; });

TEST(Producers, WithoutAnyInUseNoCameraCanWork) {
  EXPECT_EQ(WorstOf(FindingsOf(std::list<KELGENICAM::LoadReportEntry>())), Verdict::problem);
  EXPECT_EQ(WorstOf(FindingsOf({KELGENICAM::LoadReportEntry{"/none", false, "does not exist"}})),
            Verdict::problem);
}

TEST_F(Computer, TheSearchPathIsToldInItsOrder) {
  Put("own/a.cti", "");
  Put("own/b.cti", "");
  Put("own/c.txt", "");
  const std::string own = (folder_ / "own").string();
  const std::string list = "/none:" + std::string() + "\"" + own + "/a.cti\"";
  const std::vector<Finding> findings = FindingsOfSearchPath(own, list.c_str());
  ASSERT_EQ(findings.size(), 3U);
  EXPECT_EQ(findings[0].text, own + " (2 producers)");
  EXPECT_EQ(findings[1].text, "/none (does not exist)");
  EXPECT_EQ(findings[2].text, own + "/a.cti (a file)");
  EXPECT_EQ(FindingsOfSearchPath(own, nullptr).size(), 1U);
}

TEST_F(Computer, TheEnvironmentIsShownAndAMissingFileIsWarnedOf) {
  std::map<std::string, std::string> environment = {{"GENICAM_GENTL64_PATH", "/a:/b"},
                                                    {"ZYN_SIMULATOR_CONFIG", "/none.json"}};
  const auto valueOf = [&](const char* name) -> const char* {
    const auto found = environment.find(name);
    return found == environment.end() ? nullptr : found->second.c_str();
  };
  std::vector<Finding> findings = FindingsOfEnvironment(valueOf);
  ASSERT_EQ(findings.size(), 4U);
  EXPECT_EQ(findings[0].subject, "GENICAM_GENTL64_PATH");
  EXPECT_EQ(findings[0].text, "/a:/b");
  EXPECT_EQ(findings[1].subject, "GENICAM_CLPROTOCOL");
  EXPECT_NE(findings[1].text.find("not set"), std::string::npos);
  EXPECT_EQ(findings[3].verdict, Verdict::warning);
  Put("cameras.json", "{}");
  environment["ZYN_SIMULATOR_CONFIG"] = (folder_ / "cameras.json").string();
  EXPECT_EQ(WorstOf(FindingsOfEnvironment(valueOf)), Verdict::good);
}

}  // namespace
}  // namespace zyncam
