/// The mock producer's module descriptions and the addresses they use.
#ifndef ZYN_TESTS_MOCK_DESCRIPTIONS_H
#define ZYN_TESTS_MOCK_DESCRIPTIONS_H

#include <cstdint>
#include <string>

namespace zyn::mock {

constexpr std::uint64_t kSelectorAt = 0x10;
constexpr std::uint64_t kDeviceIpAt = 0x14;
constexpr std::uint64_t kDeviceMaskAt = 0x18;
constexpr std::uint64_t kDeviceGatewayAt = 0x1C;
constexpr std::uint64_t kDeviceMacAt = 0x20;
constexpr std::uint64_t kSubnetIpAt = 0x28;
constexpr std::uint64_t kSubnetMaskAt = 0x2C;
constexpr std::uint64_t kDeviceCountAt = 0x30;
constexpr std::uint64_t kDeviceIdAt = 0x40;
constexpr std::uint64_t kFrameIdChunk = 0xF1;

inline std::string Describe(const std::string& nodes) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<RegisterDescription ModelName="Mock" VendorName="Maker" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="0" VersionGuid="0" xmlns="http://www.genicam.org/GenApi/Version_1_1">
)" + nodes +
         R"(<Port Name="Device"/>
</RegisterDescription>)";
}

inline std::string IntRegister(const std::string& name, std::uint64_t address, int length, const char* access,
                               const std::string& more = "<pPort>Device</pPort>") {
  return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
         std::to_string(length) + "</Length><AccessMode>" + access + "</AccessMode>" + more +
         "<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
}

inline std::string CommandAt(const std::string& name, std::uint64_t address) {
  return "<Command Name=\"" + name + "\"><pValue>" + name +
         "Reg</pValue><CommandValue>1</CommandValue></Command>\n" +
         IntRegister(name + "Reg", address, 4, "WO");
}

inline std::string RemoteXml() {
  return Describe(
      R"(<Category Name="Root"><pFeature>Width</pFeature><pFeature>Height</pFeature></Category>
)" + IntRegister("Width", 0x100, 4, "RW") +
      IntRegister("Height", 0x104, 4, "RW") + IntRegister("PixelFormat", 0x108, 4, "RW") +
      IntRegister("PayloadSize", 0x10C, 4, "RO") + IntRegister("TLParamsLocked", 0x110, 4, "RW") +
      CommandAt("AcquisitionStart", 0x114) + CommandAt("AcquisitionStop", 0x118) +
      "<Integer "
      "Name=\"ChunkFrameID\"><pIsAvailable>TLParamsLocked</pIsAvailable><pValue>ChunkFrameIDReg</pValue></"
      "Integer>\n" +
      IntRegister("ChunkFrameIDReg", 0, 4, "RO", "<pPort>FrameIdPort</pPort>") +
      "<Port Name=\"FrameIdPort\"><ChunkID>F1</ChunkID></Port>\n");
}

/// A card with one setting of each kind.
inline std::string LocalXml() {
  return Describe(
      "<Category Name=\"Root\"><pFeature>CardGain</pFeature></Category>\n" +
      IntRegister("CardGain", 0x200, 4, "RW") + IntRegister("CardTemperature", 0x204, 4, "RO") +
      "<Integer Name=\"CardTaps\"><pValue>CardTapsReg</pValue><Min>1</Min><Max>10</Max></Integer>\n" +
      IntRegister("CardTapsReg", 0x208, 4, "RW") +
      "<Boolean Name=\"CardMirror\"><pValue>CardMirrorReg</pValue></Boolean>\n" +
      IntRegister("CardMirrorReg", 0x20C, 4, "RW") +
      "<Enumeration Name=\"CardLink\"><EnumEntry Name=\"Base\"><Value>0</Value></EnumEntry>"
      "<EnumEntry Name=\"Full\"><Value>2</Value></EnumEntry><pValue>CardLinkReg</pValue></Enumeration>\n" +
      IntRegister("CardLinkReg", 0x210, 4, "RW") +
      "<FloatReg Name=\"CardScale\"><Address>0x214</Address><Length>4</Length><AccessMode>RW</AccessMode>"
      "<pPort>Device</pPort><Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess></FloatReg>\n" +
      CommandAt("CardReset", 0x218));
}

inline std::string InterfaceXml() {
  return Describe(
      "<Category Name=\"Root\"><pFeature>DeviceSelector</pFeature></Category>\n"
      "<Integer Name=\"DeviceSelector\"><pValue>SelectorReg</pValue><Min>0</Min>"
      "<pMax>LastDevice</pMax></Integer>\n" +
      IntRegister("SelectorReg", kSelectorAt, 4, "RW") + IntRegister("DeviceCount", kDeviceCountAt, 4, "RO") +
      "<IntSwissKnife Name=\"LastDevice\"><pVariable Name=\"N\">DeviceCount</pVariable>"
      "<Formula>N-1</Formula></IntSwissKnife>\n" +
      IntRegister("GevDeviceIPAddress", kDeviceIpAt, 4, "RO") +
      IntRegister("GevDeviceSubnetMask", kDeviceMaskAt, 4, "RO") +
      IntRegister("GevDeviceGateway", kDeviceGatewayAt, 4, "RO") +
      IntRegister("GevDeviceMACAddress", kDeviceMacAt, 8, "RO") +
      IntRegister("GevInterfaceSubnetIPAddress", kSubnetIpAt, 4, "RO") +
      IntRegister("GevInterfaceSubnetMask", kSubnetMaskAt, 4, "RO") +
      "<StringReg Name=\"DeviceID\"><Address>" + std::to_string(kDeviceIdAt) +
      "</Address><Length>32</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
      "<Cachable>NoCache</Cachable></StringReg>\n");
}

}  // namespace zyn::mock

#endif
