#include "TestNodeMap.h"

#include <cstring>

namespace fakes {

namespace {

constexpr char kHead[] =
    R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Area" VendorName="Test" ToolTip="" StandardNameSpace="None"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
  SubMinorVersion="0" ProductGuid="11111111-2222-3333-4444-555555555555"
  VersionGuid="11111111-2222-3333-4444-555555555555" xmlns="http://www.genicam.org/GenApi/Version_1_1">
)";

constexpr char kTail[] = R"(<Port Name="Device"/>
</RegisterDescription>
)";

constexpr char kArea[] = R"(
<Integer Name="Width"><pValue>WidthReg</pValue><Min>16</Min><Max>4096</Max><Inc>8</Inc></Integer>
<IntReg Name="WidthReg"><Address>0x00</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>

<Float Name="ExposureTimeAbs"><pValue>ExposureReg</pValue><Min>10</Min><Max>1000000</Max></Float>
<FloatReg Name="ExposureReg"><Address>0x10</Address><Length>8</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort><Endianess>BigEndian</Endianess></FloatReg>

<Float Name="Stepped"><pValue>SteppedReg</pValue><Min>0</Min><Max>100</Max><Inc>0.5</Inc></Float>
<FloatReg Name="SteppedReg"><Address>0x40</Address><Length>8</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort><Endianess>BigEndian</Endianess></FloatReg>

<Boolean Name="Flag"><pValue>FlagReg</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
<IntReg Name="FlagReg"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>

<Enumeration Name="TriggerMode">
  <EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <EnumEntry Name="On"><Value>1</Value></EnumEntry>
  <pValue>TriggerModeReg</pValue></Enumeration>
<IntReg Name="TriggerModeReg"><Address>0x24</Address><Length>4</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>

<Enumeration Name="TriggerSource">
  <EnumEntry Name="Software"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Line1"><Value>1</Value></EnumEntry>
  <EnumEntry Name="Line2"><Value>2</Value></EnumEntry>
  <EnumEntry Name="Line3"><Value>3</Value></EnumEntry>
  <EnumEntry Name="Line4"><Value>4</Value></EnumEntry>
  <EnumEntry Name="line1"><Value>5</Value></EnumEntry>
  <EnumEntry Name="Line10"><Value>6</Value></EnumEntry>
  <pValue>TriggerSourceReg</pValue></Enumeration>
<IntReg Name="TriggerSourceReg"><Address>0x28</Address><Length>4</Length><AccessMode>RW</AccessMode>
  <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>

<Command Name="Reset"><pValue>ResetReg</pValue><CommandValue>1</CommandValue></Command>
<IntReg Name="ResetReg"><Address>0x2c</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>

<Enumeration Name="Mode">
  <EnumEntry Name="First"><Value>10</Value></EnumEntry>
  <EnumEntry Name="NotImplemented"><pIsImplemented>Zero</pIsImplemented><Value>11</Value></EnumEntry>
  <EnumEntry Name="NotAvailable"><pIsAvailable>Zero</pIsAvailable><Value>12</Value></EnumEntry>
  <EnumEntry Name="Second"><Value>13</Value></EnumEntry>
  <EnumEntry Name="Third"><Value>14</Value></EnumEntry>
  <EnumEntry Name="Fourth"><Value>15</Value></EnumEntry>
  <pValue>ModeReg</pValue></Enumeration>
<IntReg Name="ModeReg"><Address>0x30</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>

<Integer Name="Volatile"><pValue>VolatileReg</pValue></Integer>
<IntReg Name="VolatileReg"><Address>0x34</Address><Length>4</Length><AccessMode>RO</AccessMode>
  <pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>

<Float Name="VolatileFloat"><pValue>VolatileFloatReg</pValue></Float>
<FloatReg Name="VolatileFloatReg"><Address>0x40</Address><Length>8</Length><AccessMode>RO</AccessMode>
  <pPort>Device</pPort><Cachable>NoCache</Cachable><Endianess>BigEndian</Endianess></FloatReg>

<Enumeration Name="VolatileMode">
  <EnumEntry Name="First"><Value>0</Value></EnumEntry>
  <pValue>VolatileReg</pValue></Enumeration>

<Integer Name="WriteOnly"><pValue>WriteOnlyReg</pValue></Integer>
<IntReg Name="WriteOnlyReg"><Address>0x38</Address><Length>4</Length><AccessMode>WO</AccessMode>
  <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
<Boolean Name="WriteOnlyFlag"><pValue>WriteOnlyReg</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
<Float Name="NotAvailableFloat"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Float>
<Enumeration Name="WriteOnlyMode"><EnumEntry Name="First"><Value>0</Value></EnumEntry>
  <pValue>WriteOnlyReg</pValue></Enumeration>
<Integer Name="NotAvailable"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>

<Integer Name="GainRaw"><Value>7</Value></Integer>
<Float Name="Negative"><Value>-2.9</Value><Min>-1e30</Min><Max>1e30</Max></Float>
<Integer Name="Hidden"><Visibility>Invisible</Visibility><Value>1</Value></Integer>
<Integer Name="ForExperts"><Visibility>Expert</Visibility><Value>1</Value></Integer>
<Integer Name="ForGurus"><Visibility>Guru</Visibility><Value>1</Value></Integer>
<Integer Name="NoFeature"><Value>1</Value></Integer>
<Integer Name="Zero"><Value>0</Value></Integer>
<String Name="Text"><Value>abc</Value></String>
<Register Name="Raw"><Address>0x80</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
</Register>
<Category Name="Group"><pFeature>ForExperts</pFeature></Category>
)";

const std::vector<std::string> kAreaFeatures = {"Width",         "ExposureTimeAbs",
                                                "Stepped",       "Flag",
                                                "TriggerMode",   "TriggerSource",
                                                "Reset",         "Mode",
                                                "Volatile",      "VolatileFloat",
                                                "VolatileMode",  "WriteOnly",
                                                "WriteOnlyFlag", "NotAvailableFloat",
                                                "WriteOnlyMode", "NotAvailable",
                                                "GainRaw",       "Negative",
                                                "Hidden",        "ForGurus",
                                                "Text",          "Raw",
                                                "Group"};

}  // namespace

void MemoryPort::Read(void* buffer, std::int64_t address, std::int64_t length) {
  ++reads;
  if (failingReads > 0) {
    --failingReads;
    throw RUNTIME_EXCEPTION("read failed");
  }
  std::memcpy(buffer, &memory_.at(static_cast<std::size_t>(address)), static_cast<std::size_t>(length));
  if (address == kCommand && clearsAfterReads > 0 && --clearsAfterReads == 0) Put(kCommand, 0);
}

void MemoryPort::Write(const void* buffer, std::int64_t address, std::int64_t length) {
  ++writes;
  if (failsToWrite) throw RUNTIME_EXCEPTION("write failed");
  std::memcpy(&memory_.at(static_cast<std::size_t>(address)), buffer, static_cast<std::size_t>(length));
  zyn::MutexLock lock(mutex_);
  written_.emplace_back(address, Get(address));
}

std::vector<std::pair<std::int64_t, std::uint32_t>> MemoryPort::Written() const {
  zyn::MutexLock lock(mutex_);
  return written_;
}

void MemoryPort::Put(std::int64_t address, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) {
    memory_.at(static_cast<std::size_t>(address + i)) = static_cast<unsigned char>(value >> (24 - 8 * i));
  }
}

std::uint32_t MemoryPort::Get(std::int64_t address) const {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | memory_.at(static_cast<std::size_t>(address + i));
  return value;
}

TestNodeMap::TestNodeMap() {
  Load(kArea, kAreaFeatures);
  port.Put(MemoryPort::kWidth, 640);
  port.Put(MemoryPort::kMode, 13);
}

TestNodeMap::TestNodeMap(const std::string& nodes, const std::vector<std::string>& features) {
  Load(nodes, features);
}

void TestNodeMap::Load(const std::string& nodes, const std::vector<std::string>& features) {
  std::string root = R"(<Category Name="Root">)";
  for (const std::string& feature : features) root += "<pFeature>" + feature + "</pFeature>";
  map_._LoadXMLFromString((kHead + root + "</Category>" + nodes + kTail).c_str());
  map_._Connect(&port);
}

}  // namespace fakes
