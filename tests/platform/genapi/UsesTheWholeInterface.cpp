// Names every class and function of the interface that applications use, compiled as C++11. It also builds
// against another runtime of the same interface.
#include <fstream>
#include <sstream>
#include <string>

#include "GenApi/ChunkAdapter.h"
#include "GenApi/ChunkAdapterGEV.h"
#include "GenApi/ChunkAdapterGenDC.h"
#include "GenApi/ChunkAdapterGeneric.h"
#include "GenApi/ChunkAdapterU3V.h"
#include "GenApi/ChunkPort.h"
#include "GenApi/Compatibility.h"
#include "GenApi/Counter.h"
#include "GenApi/EnumClasses.h"
#include "GenApi/EventAdapter.h"
#include "GenApi/EventAdapterGEV.h"
#include "GenApi/EventAdapterGeneric.h"
#include "GenApi/EventAdapterU3V.h"
#include "GenApi/EventPort.h"
#include "GenApi/Filestream.h"
#include "GenApi/IEnumerationT.h"
#include "GenApi/PortStackedImpl.h"
#include "GenApi/PortWriteList.h"
#include "GenICam.h"

namespace {

using namespace GenApi;
using GenICam::gcstring;
using GenICam::gcstring_vector;

// Keeps a result from being unused.
template <class T>
void Use(const T&) {}

void UseStrings() {
  gcstring text;
  text = gcstring("abc", 2) + gcstring(3, 'x') + "y";
  text.append(text).append(2, 'z').assign("q").assign("qr", 1).assign(text).assign(2, 'c');
  Use(text.compare("x") + static_cast<int>(text.length() + text.size() + text.max_size()));
  Use(text.find('x') + text.find(text) + text.find("x") + text.find("x", 0, 1) + text.find(text, 0, 1));
  Use(text.find_first_of("x") + text.find_first_not_of("x") + text.find_last_of("x") +
      text.find_last_of('x') + text.find_last_not_of("x") + text.find_last_not_of('x'));
  text.resize(4);
  text.reserve(8);
  text.erase(1, 1);
  gcstring other = text.substr(0, 1);
  other.swap(text);
  text += other;
  text += "a";
  text += 'b';
  Use(text == other || text != other || text == "a" || text != "a" || text < other || text > other);
  Use(gcstring::npos == GCSTRING_NPOS && gcstring::_npos() == GCSTRING_NPOS && text.empty());
  const std::string copy(static_cast<const char*>(text));
  Use(copy + text.c_str());
  const gcstring constant("c");
  Use((constant += constant) + (constant += 'x') + ("x" + constant) + (constant + constant));
  std::stringstream stream;
  stream << constant;
  stream >> text;
  GenICam::getline(stream, text);
  GenICam::getline(stream, text, ';');
  gcstring* const dynamic = new gcstring(constant);
  delete dynamic;

  gcstring_vector list(2, "x");
  list.assign(1, "y");
  list.assign(list);
  list.push_back("z");
  list.insert(list.begin(), "a");
  list.insert(0, "b");
  list.erase(list.begin());
  list.erase(0);
  list.resize(3);
  list.reserve(4);
  list.pop_back();
  list.at(0) = list[0];
  list.front() = list.back();
  for (gcstring_vector::const_iterator it = list.begin(); it != list.end(); ++it) Use(*it);
  gcstring_vector::iterator position = list.insert(list.end(), "e");
  position = list.erase(position);
  Use(position - list.begin() > 0 && position == list.begin() + 1 && position[-1] == list[0]);
  list = gcstring_vector(list);
  Use(list.contains("x") || list.empty() || list.size() + list.capacity() + list.max_size() == 0);
  list.clear();
}

void UseExceptions() {
  try {
    CHECK_RANGE_I64(1, 0, 2, 1);
    CHECK_RANGE_FLT(1.0, 0.0, 2.0);
    const int value = GenICam::INTEGRAL_CAST<int>(5);
    CHECK_DYNAMIC_CAST_POINTER(&value);
    Use(GenICam::INTEGRAL_CAST2<short>(value));
    switch (value) {
      case 0:
        throw GENERIC_EXCEPTION("x");
      case 1:
        throw BAD_ALLOC_EXCEPTION("x");
      case 2:
        throw INVALID_ARGUMENT_EXCEPTION("x %d", value);
      case 3:
        throw OUT_OF_RANGE_EXCEPTION("x");
      case 4:
        throw PROPERTY_EXCEPTION("x");
      case 6:
        throw RUNTIME_EXCEPTION(std::string("x"));
      case 7:
        throw LOGICAL_ERROR_EXCEPTION();
      case 8:
        throw ACCESS_EXCEPTION("x");
      case 9:
        throw TIMEOUT_EXCEPTION("x");
      case 10:
        throw DYNAMICCAST_EXCEPTION("x");
      case 11:
        throw GenICam::ExceptionReporter<GenICam::AccessException>("file", 1).Report(std::stringstream("x"));
      case 12:
        throw GenICam::GenericException("x", "file", 1U, "I.SetValue()", "I", "GenericException");
      default:
        break;
    }
  } catch (const GenICam::OutOfRangeException&) {
  } catch (const GenICam::GenericException& error) {
    Use(error.GetDescription());
    Use(error.GetSourceFileName());
    Use(error.GetSourceLine());
    Use(error.what());
  }
}

void UseNode(INode& node) {
  Use(node.GetName(true).size() + node.GetToolTip().size() + node.GetDescription().size() +
      node.GetDisplayName().size() + node.GetDeviceName().size() + node.GetEventID().size() +
      node.GetDocuURL().size());
  Use(node.GetNameSpace() == Standard && node.GetVisibility() == Guru && node.IsCachable());
  Use(node.IsAccessModeCacheable() == Yes && node.GetCachingMode() == NoCache && node.GetPollingTime() < 0);
  Use(node.IsStreamable() || node.IsDeprecated() || node.IsFeature());
  Use(node.GetPrincipalInterfaceType() == intfIPort);
  NodeList_t nodes;
  node.GetChildren(nodes);
  node.GetChildren(nodes, ctInvalidatingChildren);
  node.GetParents(nodes);
  gcstring_vector names;
  gcstring value, attribute;
  node.GetPropertyNames(names);
  Use(node.GetProperty("Name", value, attribute));
  node.ImposeAccessMode(RO);
  node.ImposeVisibility(Expert);
  Use(node.GetAlias() == node.GetCastAlias());
  node.InvalidateNode();
  Use(node.GetNodeMap());
  CSelectorPtr selector(&node);
  FeatureList_t features;
  if (selector->IsSelector()) selector->GetSelectedFeatures(features);
  selector->GetSelectingFeatures(features);
  CNodeUserDataPtr data(&node);
  data->SetUserData(data->GetUserData());
  Use(GetInterfaceName(&node));
  const CPointer<INode> pointer(&node);
  CPointer<INode> other;
  other = &node;
  Use(pointer == &node || pointer == other || other == 0 || !pointer.IsValid());
  INode* const plain = pointer;
  Use(pointer().GetName() + (*pointer).GetName() + pointer->GetName() + plain->GetName());
  if (other) Use(IsReadable(other) || IsWritable(other) || IsImplemented(other) || IsAvailable(other));
  Use(IsReadable(RW) || IsWritable(RW) || IsAvailable(RW) || IsReadable(node) || IsImplemented(node) ||
      IsAvailable(node) || IsWritable(&node) || IsImplemented(&node) || IsAvailable(&node));
  Use(Combine(RW, RO) == RO && Combine(Guru, Expert) == Guru && Combine(NoCache, WriteThrough) == NoCache);
  Use(IsVisible(Expert, Guru) && IsCacheable(WriteAround) && IsReadable(&node) && IsWritable(node) &&
      IsImplemented(RO) && IsAvailable(selector));
}

void UseValues(INodeMap& map) {
  CValuePtr value(map.GetNode("V"));
  value->FromString(value->ToString(false, true), false);
  Use(value->IsValueCacheValid());
  Use(value->GetNode());
  CIntegerPtr integer(map.GetNode("I"));
  integer->SetValue((*integer)());
  *integer = *(*integer);
  Use(integer->GetValue(true, true) + integer->GetMin() + integer->GetMax() + integer->GetInc());
  const int64_autovector_t valid = integer->GetListOfValidValues(false);
  Use(valid.size() == 0 || valid[0] == 0);
  Use(integer->GetIncMode() == listIncrement && integer->GetRepresentation() == HexNumber);
  Use(integer->GetUnit());
  integer->ImposeMin(0);
  integer->ImposeMax(1);
  CFloatPtr real(map.GetNode("F"));
  *real = (*real)();
  Use(*(*real) + real->GetValue(true) + real->GetMin() + real->GetMax() +
      (real->HasInc() ? real->GetInc() : 0));
  const double_autovector_t steps = real->GetListOfValidValues();
  Use(steps.size());
  Use(real->GetIncMode() == noIncrement && real->GetRepresentation() == Linear &&
      real->GetDisplayNotation() == fnFixed && real->GetDisplayPrecision() == 2);
  real->ImposeMin(0);
  real->ImposeMax(1);
  Use(real.GetIntAlias() == nullptr && real.GetEnumAlias() == nullptr);
  CBooleanPtr boolean(map.GetNode("B"));
  *boolean = (*boolean)();
  boolean->SetValue(boolean->GetValue(true, true), false);
  CStringPtr text(map.GetNode("S"));
  *text = (*text)() + *(*text);
  text->SetValue(text->GetValue());
  Use(text->GetMaxLength());
  CRegisterPtr bytes(map.GetNode("R"));
  uint8_t buffer[4] = {0};
  bytes->Get(buffer, 4);
  bytes->Set(buffer, 4, false);
  Use(bytes->GetLength() + bytes->GetAddress());
  CCommandPtr command(map.GetNode("C"));
  (*command)();
  command->Execute(false);
  Use(command->IsDone());
  CEnumerationPtr enumeration(map.GetNode("E"));
  StringList_t symbolics;
  NodeList_t entries;
  enumeration->GetSymbolics(symbolics);
  enumeration->GetEntries(entries);
  *enumeration = *(*enumeration);
  enumeration->SetIntValue(enumeration->GetIntValue());
  CEnumEntryPtr entry(enumeration->GetEntryByName("x"));
  Use(entry == enumeration->GetEntry(0) || entry == enumeration->GetCurrentEntry());
  Use(static_cast<double>(entry->GetValue()) + entry->GetNumericValue());
  Use(entry->GetSymbolic());
  Use(entry->IsSelfClearing());
  CCategoryPtr category(map.GetNode("Root"));
  FeatureList_t features;
  category->GetFeatures(features);
  Use(CBasePtr(category).IsValid() && CNodePtr(category) == 0);
  FeatureList_t list(2);
  list.assign(2, nullptr);
  list.insert(list.begin(), value);
  list.insert(0, value);
  list.erase(list.begin());
  list.erase(0);
  list.resize(3, value);
  list.reserve(4);
  list.pop_back();
  list.at(0) = list[0];
  list.front() = list.back();
  Use(list.empty() || list.size() + list.capacity() + list.max_size() == 0);
  entries.resize(2);
  entries.assign(1, nullptr);
  entries.push_back(nullptr);
  for (NodeList_t::const_iterator it = entries.begin(); it != entries.end(); ++it) Use(*it);
  entries = NodeList_t(entries);
  double_autovector_t numbers(2);
  numbers[0] = 1;
  const double_autovector_t shared(numbers);
  numbers = shared;
  int64_autovector_t none;
  none = int64_autovector_t(1);
}

void UseMap(INodeMap& map, IPort* port, IPortStacked* stacked) {
  NodeList_t nodes;
  map.GetNodes(nodes);
  map.InvalidateNodes();
  Use(map.Connect(port) && map.Connect(port, "P") && map.Connect(stacked) && map.Connect(stacked, "P"));
  map.Poll(10);
  gcstring_vector errors;
  Use(map.GetNumNodes() == 0 || map.ParseSwissKnifes(&errors));
  Use(map.GetDeviceName());
  const CNodeWriteConcatenatorRef writes(map.NewNodeWriteConcatenator());
  writes._Add("I", static_cast<int64_t>(1));
  writes._Add("F", 1.5);
  writes._Add("B", true);
  writes._Add("S", "x");
  writes._Add("S", gcstring("x"));
  Use(map.ConcatenatedWrite(writes.get(), true, &errors));
  writes._Clear();
  map.SetSuppressCallbackMode(csmOnce);
  CDeviceInfoPtr info(&map);
  Version_t version;
  uint16_t build = 0;
  info->GetGenApiVersion(version, build);
  info->GetSchemaVersion(version);
  info->GetDeviceVersion(version);
  Use(info->GetModelName() + info->GetVendorName() + info->GetToolTip() + info->GetStandardNameSpace() +
      info->GetProductGuid() + info->GetVersionGuid());
  CNodeMapUserDataPtr(&map)->SetUserData(nullptr);
  Use(CNodeMapPtr(&map)->GetNumNodes());
  CLock& lock = map.GetLock();
  if (lock.TryLock()) lock.Unlock();
  const AutoLock guard(lock);
}

struct Registers {
  uint32_t first;
};

class StackedPort : public CPortStackedImpl {
 public:
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void*, int64_t, int64_t) override {}
  void Write(const void*, int64_t, int64_t) override {}
  void Write(PORT_REGISTER_STACK_ENTRY* entries, size_t count) override {
    for (size_t i = 0; i < count; ++i) Use(entries[i].Address + entries[i].Size);
  }
};

struct Client {
  void OnChange(INode*) {}
};

void OnChange(INode*) {}

void UseCallbacks(INode* node, Client& client) {
  const CallbackHandleType handle =
      node->RegisterCallback(make_NodeCallback(node, &OnChange, cbPostInsideLock));
  Use(node->DeregisterCallback(handle));
  Deregister(Register(node, client, &Client::OnChange, cbPostOutsideLock));
  Deregister(Register(node, &OnChange));
  CNodeCallback* const callback = make_NodeCallback(node, client, &Client::OnChange, cbPostInsideLock);
  (*callback)(cbPostInsideLock);
  Use(callback->GetNode());
  callback->Destroy();
}

void UsePorts(INodeMap& map) {
  CTestPortStruct<Registers> memory(0x100);
  memory.first = 1;
  memory.MemSet(0);
  memory.ResetStatistics();
  Use(memory.GetNumReads() + memory.GetNumWrites());
  memory.InvalidateNode();
  StackedPort stacked;
  CPortWriteList list;
  list.SetCookie(list.GetCookie());
  memory.Replay(&list, false);
  stacked.Replay(&list);
  UseMap(map, &memory, &stacked);
  CPortRecorderPtr recorder(map.GetNode("Device"));
  recorder->StartRecording(&list);
  recorder->StopRecording();
  CPortReplayPtr(map.GetNode("Device"))->Replay(&list, true);
  CPortConstructPtr(map.GetNode("Device"))->SetPortImpl(&memory);
  Use(CPortConstructPtr(map.GetNode("Device"))->GetSwapEndianess());
  CChunkPortPtr chunk(map.GetNode("Device"));
  Use(chunk->GetChunkID().size() + static_cast<size_t>(chunk->CacheChunkData()));
  CPortPtr(map.GetNode("Device"))->Read(&memory.first, 0x100, 4);
  CPortWriteListPtr writeList(&list);
  CPortStackedConstructPtr construct(&stacked);
  Use(writeList.IsValid() && construct.IsValid());
}

void UsePersistence(INodeMap& map) {
  CFeatureBag bag;
  gcstring_vector list;
  Use(bag.StoreToBag(&map, 10, &list) == 0 || bag.LoadFromBag(&map, true, &list));
  bag.SetInfo("info");
  bag.SetBagName(bag.GetBagName());
  const CFeatureBag copy(bag);
  Use(copy == bag);
  Use(bag.ToString());
  std::fstream file("settings");
  file << bag;
  file >> bag;
  EatComments(file);
  CSelectorSet set(map.GetNode("F"));
  CSelectorState state;
  for (bool more = set.SetFirst(); more; more = set.SetNext()) set.GetState(state);
  set.Restore();
  FeatureList_t selectors;
  set.GetSelectorList(selectors, true);
  Use(set.ToString().empty() == set.IsEmpty());
  state.AddSelector("S", "V");
  state.AddSelector(*CValuePtr(map.GetNode("S")));
  for (bool more = state.SetFirst(); more; more = state.SetNext())
    Use(state.GetNodeName() + state.GetNodeValue());
  Use(state.IsEmpty() || state.RestoreState(&map, &list));
}

void UseAdapters(INodeMap& map, uint8_t* buffer, int64_t length) {
  AttachStatistics_t statistics;
  CChunkAdapterGEV gev(&map, 100);
  CChunkAdapterU3V u3v;
  CChunkAdapterGenDC genDc;
  u3v.AttachNodeMap(&map);
  CChunkAdapter* const adapters[] = {&gev, &u3v, &genDc};
  for (CChunkAdapter* const adapter : adapters) {
    if (!adapter->CheckBufferLayout(buffer, length)) continue;
    adapter->AttachBuffer(buffer, length, &statistics);
    adapter->UpdateBuffer(buffer);
    adapter->DetachBuffer();
    adapter->ClearCaches();
    adapter->DetachNodeMap();
  }
  CChunkAdapterGeneric generic(&map);
  SingleChunkData_t numbers[1] = {{1, 0, 4}};
  SingleChunkDataStr_t texts[1];
  texts[0].ChunkID = "1";
  generic.AttachBuffer(buffer, numbers, 1, &statistics);
  generic.AttachBuffer(buffer, texts, 1);
  CEventAdapterGEV gevEvents(&map);
  gevEvents.DeliverMessage(buffer, 8);
  gevEvents.DeliverEventMessage(reinterpret_cast<const GVCP_EVENT_REQUEST*>(buffer));
  gevEvents.DeliverEventMessage(reinterpret_cast<const GVCP_EVENTDATA_REQUEST*>(buffer));
  CEventAdapterU3V u3vEvents(&map);
  u3vEvents.DeliverEventMessage(reinterpret_cast<const U3V_EVENT_MESSAGE*>(buffer));
  CEventAdapterGeneric events;
  events.AttachNodeMap(&map);
  events.DeliverMessage(buffer, 8, static_cast<uint64_t>(1));
  events.DeliverMessage(buffer, 8, gcstring("1"));
  events.DetachNodeMap();
  CChunkPort chunkPort;
  chunkPort.AttachPort(CPortPtr(map.GetNode("P")));
  chunkPort.AttachChunk(buffer, 0, 4, true);
  Use(chunkPort.CheckChunkID(buffer, 1) || chunkPort.CheckChunkID(static_cast<uint64_t>(1)));
  chunkPort.UpdateBuffer(buffer);
  chunkPort.ClearCache();
  chunkPort.DetachChunk();
  chunkPort.DetachPort();
  Use(chunkPort.GetChunkIDLength());
  CEventPort eventPort;
  eventPort.AttachNode(map.GetNode("P"));
  eventPort.AttachEvent(buffer, 4);
  Use(eventPort.CheckEventID(buffer, 1) || eventPort.CheckEventID(static_cast<uint64_t>(1)));
  eventPort.DetachEvent();
  eventPort.DetachNode();
}

void UseFiles(INodeMap* map) {
  FileProtocolAdapter adapter;
  char bytes[4] = {0};
  if (adapter.attach(map) && adapter.openFile("f", std::ios_base::in)) {
    Use(adapter.getBufSize("f", std::ios_base::in) + adapter.read(bytes, 0, 4, "f") +
        adapter.write(bytes, 0, 4, "f"));
    Use(adapter.closeFile("f") && adapter.deleteFile("f"));
  }
  IDevFileStream in(map, "f", std::ios_base::in);
  ODevFileStream out;
  out.open(map, "f");
  if (in.is_open() && out.is_open()) out << in.rdbuf();
  in.close();
  out.close();
}

enum Format { Mono8, Mono16 };

// What a generated camera class looks like.
class CameraParams : public CGeneric_XMLLoaderParams {
 public:
  CIntegerRef Width;
  CFloatRef Gain;
  CBooleanRef Reverse;
  CStringRef Id;
  CRegisterRef Lut;
  CCommandRef Start;
  CCategoryRef Root;
  CEnumEntryRef Entry;
  CEnumerationRef Mode;
  CBaseRef Base;
  CValueRef Value;
  CSelectorRef Selector;
  CPortStackedRef Stacked;
  CPortRecorderRef Recorder;
  CEnumerationTRef<Format> PixelFormat;
  CPortRef Device;

 protected:
  void _Initialize(INodeMap* map) override {
    IReference* const references[] = {&Width, &Gain,     &Reverse, &Id,          &Lut,  &Start,
                                      &Root,  &Entry,    &Device,  &PixelFormat, &Mode, &Base,
                                      &Value, &Selector, &Stacked, &Recorder};
    for (IReference* const reference : references) reference->SetReference(map->GetNode("x"));
    PixelFormat.SetNumEnums(2);
    PixelFormat.SetEnumReference(Mono8, "Mono8");
  }
};

void UseReferences() {
  CNodeMapRefT<CameraParams> camera;
  camera._LoadXMLFromString("<RegisterDescription/>");
  camera.Width = 5;
  Use(camera.Width() + camera.Width.GetMax());
  camera.PixelFormat = Mono16;
  Use(camera.PixelFormat() == Mono8 && camera.PixelFormat.GetEntry(Mono8));
  camera.PixelFormat.SetValue(camera.PixelFormat.GetValue());
  camera.Gain = 1.5;
  camera.Reverse = true;
  camera.Id = "x";
  camera.Start();
  IEnumReference& names = camera.PixelFormat;
  names.SetNumEnums(1);
  Use(IsReadable(&camera.Base) || camera.Selector.IsSelector() || camera.Gain.GetEnumAlias() == nullptr);
  Use(camera.Value.ToString() + camera.Mode.ToString());
  camera.Stacked.Write(static_cast<PORT_REGISTER_STACK_ENTRY*>(nullptr), 0);
  camera.Recorder.StopRecording();
  Use(camera.Width.GetFloatAlias() == nullptr && camera.Gain.GetIntAlias() == nullptr);
}

void UseEnumTexts() {
  EAccessMode mode = RO;
  gcstring text;
  Use(EAccessModeClass::FromString("RW", &mode));
  EAccessModeClass::ToString(text, &mode);
  Use(EVisibilityClass::ToString(Guru) + ERepresentationClass::ToString(Linear) +
      ESignClass::ToString(Signed) + EEndianessClass::ToString(BigEndian) +
      ECachingModeClass::ToString(NoCache) + ENameSpaceClass::ToString(Custom) + EYesNoClass::ToString(Yes) +
      EStandardNameSpaceClass::ToString(GEV) + ESlopeClass::ToString(Varying) +
      EDisplayNotationClass::ToString(fnFixed) + EInputDirectionClass::ToString(idFrom) +
      EGenApiSchemaVersionClass::ToString(v1_1));
}

void UseFactories(const void* data, size_t size) {
  CNodeMapFactory factory(ContentType_Xml, data, size, CacheUsage_Ignore, true);
  CNodeMapFactory injected(ContentType_ZippedXml, "file.zip");
  factory.AddInjectionData(injected);
  factory.LoadAndInject();
  factory.Preprocess();
  Use(factory.IsEmpty() || factory.IsLoaded() || factory.IsPreprocessed());
  CLock lock;
  CNodeMapRef map(factory.CreateNodeMap(lock, "Device", false), "Device");
  Use(factory.ToXml());
  factory.ReleaseCameraDescriptionFileData();
  Use(factory.IsCameraDescriptionFileDataReleased() && CNodeMapFactory::ClearCache());
  gcstring_vector versions;
  factory.GetSupportedSchemaVersions(versions);
  IDestroy* const destroyable = CastToIDestroy(CNodeMapFactory::CreateEmptyNodeMap());
  destroyable->Destroy();
  map._LoadXMLFromFile("a.xml");
  map._LoadXMLFromZIPFile("a.zip");
  map._LoadXMLFromZIPData(data, size);
  map._LoadXMLFromFileInject("a", "b");
  map._LoadXMLFromStringInject("a", "b");
  map._GetSupportedSchemaVersions(versions);
  Use(map._GetDeviceName());
  map._Poll(1);
  NodeList_t nodes;
  map._GetNodes(nodes);
  map._InvalidateNodes();
  map._SetSuppressCallbackMode(csmOff);
  Use(map._ParseSwissKnifes(&versions) && CNodeMapRef::_ClearXMLCache());
  CNodeWriteConcatenator* const writes = map._NewNodeWriteConcatenator();
  Use(map._ConcatenatedWrite(writes));
  writes->Destroy();
  map._Destroy();
  CNodeMapFactory copied(factory);
  copied = CNodeMapFactory(gcstring("<RegisterDescription/>"), CacheUsage_ForceWrite);
  map = copied.CreateNodeMap();
  CNodeMapRef shared(map);
  shared = map;
  const CNodeMapRef named("Device");
  Use(shared._Ptr == map._Ptr && named._Ptr == nullptr);
}

// Functions that give a camera from what they have.
CNodeMapRef MapOf(INodeMap* map) {
  return map;
}

class Lockable : public LockableObject<Lockable> {};
class BaseLockable : public GenICam::LockableObject<BaseLockable> {};

void UseLocks() {
  CLockEx lock;
  GenICam::CLockEx baseLock;
  if (baseLock.TryLock()) baseLock.Unlock();
  const AutoLock guard(lock);
  const GenICam::AutoLock baseGuard(baseLock);
  const Lockable object;
  const Lockable::Lock objectGuard(object);
  const BaseLockable baseObject;
  const BaseLockable::Lock baseObjectGuard(baseObject);
}

// Steps through anything that has values.
void UseDigit(ISelectorDigit& digit) {
  FeatureList_t selectors;
  for (bool more = digit.SetFirst(); more; more = digit.SetNext()) Use(digit.ToString());
  digit.GetSelectorList(selectors);
  digit.Restore();
}

}  // namespace

void UseTheWholeInterface(uint8_t* buffer);
void UseTheWholeInterface(uint8_t* buffer) {
  UseStrings();
  UseExceptions();
  UseReferences();
  UseEnumTexts();
  UseFactories(buffer, 10);
  CNodeMapRef camera;
  Client client;
  UseNode(*camera._GetNode("x"));
  UseValues(*camera._Ptr);
  UseCallbacks(camera._GetNode("x"), client);
  UsePorts(*camera._Ptr);
  UsePersistence(*camera._Ptr);
  UseAdapters(*camera._Ptr, buffer, 10);
  UseFiles(camera._Ptr);
  UseLocks();
  CSelectorSet set(camera._GetNode("x"));
  UseDigit(set);
  Use(MapOf(camera._Ptr)._Ptr);
}
