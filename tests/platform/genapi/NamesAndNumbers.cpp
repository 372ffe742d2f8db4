// The numbers behind the names of the interface: programs store them and pass them across libraries. Checked by the
// compiler, as C++11. It also builds against another runtime of the same interface.
#include <cstdint>
#include <exception>
#include <type_traits>

#include "GenICam.h"
#include "GenICamFwd.h"
#include "_GenICamVersion.h"

namespace {

using namespace GenApi;

static_assert(Signed == 0 && Unsigned == 1 && _UndefinedSign == 2, "ESign");
static_assert(NI == 0 && NA == 1 && WO == 2 && RO == 3 && RW == 4 && _UndefinedAccesMode == 5 &&
                  _CycleDetectAccesMode == 6,
              "EAccessMode");
static_assert(Beginner == 0 && Expert == 1 && Guru == 2 && Invisible == 3 && _UndefinedVisibility == 99,
              "EVisibility");
static_assert(NoCache == 0 && WriteThrough == 1 && WriteAround == 2 && _UndefinedCachingMode == 3,
              "ECachingMode");
static_assert(Linear == 0 && Logarithmic == 1 && Boolean == 2 && PureNumber == 3 && HexNumber == 4 &&
                  IPV4Address == 5 && MACAddress == 6 && _UndefinedRepresentation == 7 &&
                  _UndefindedRepresentation == 7,
              "ERepresentation");
static_assert(BigEndian == 0 && LittleEndian == 1 && _UndefinedEndian == 2, "EEndianess");
static_assert(Custom == 0 && Standard == 1 && _UndefinedNameSpace == 2, "ENameSpace");
static_assert(None == 0 && GEV == 1 && IIDC == 2 && CL == 3 && USB == 4 && _UndefinedStandardNameSpace == 5,
              "EStandardNameSpace");
static_assert(No == 0 && Yes == 1 && _UndefinedYesNo == 2, "EYesNo");
static_assert(Increasing == 0 && Decreasing == 1 && Varying == 2 && Automatic == 3 && _UndefinedESlope == 4,
              "ESlope");
static_assert(xvLoad == 1 && xvCycles == 2 && xvSFNC == 4 && xvDefault == 0 &&
                  static_cast<uint32_t>(xvAll) == 0xffffffffU && _UndefinedEXMLValidation == 0x8000000,
              "EXMLValidation");
static_assert(fnAutomatic == 0 && fnFixed == 1 && fnScientific == 2 && _UndefinedEDisplayNotation == 3,
              "EDisplayNotation");
static_assert(intfIValue == 0 && intfIBase == 1 && intfIInteger == 2 && intfIBoolean == 3 &&
                  intfICommand == 4 && intfIFloat == 5 && intfIString == 6 && intfIRegister == 7 &&
                  intfICategory == 8 && intfIEnumeration == 9 && intfIEnumEntry == 10 && intfIPort == 11,
              "EInterfaceType");
static_assert(ctParentNodes == 0 && ctReadingChildren == 1 && ctWritingChildren == 2 &&
                  ctInvalidatingChildren == 3 && ctDependingNodes == 4 && ctTerminalNodes == 5 &&
                  ctValueChangingChildren == 6,
              "ELinkType");
static_assert(noIncrement == 0 && fixedIncrement == 1 && listIncrement == 2, "EIncMode");
static_assert(idFrom == 0 && idTo == 1 && idNone == 2, "EInputDirection");
static_assert(v1_0 == 1 && v1_1 == 2 && _Undefined == -1, "EGenApiSchemaVersion");
static_assert(csmOff == 0 && csmActive == 1 && csmOnce == 2, "ECallbackSuppressMode");
static_assert(cbPostInsideLock == 1 && cbPostOutsideLock == 2, "ECallbackType");
static_assert(CacheUsage_Automatic == 0 && CacheUsage_ForceWrite == 1 && CacheUsage_ForceRead == 2 &&
                  CacheUsage_Ignore == 3,
              "ECacheUsage_t");
static_assert(ContentType_Xml == 0 && ContentType_ZippedXml == 1, "EContentType_t");

// Versions and name spaces
static_assert(GENICAM_VERSION_MAJOR == 3 && GENICAM_VERSION_MINOR == 4 && GENICAM_VERSION_SUBMINOR == 0 &&
                  GENICAM_VERSION_BUILD == 0,
              "version of the whole");
static_assert(GENAPI_VERSION_MAJOR == 3 && GENAPI_VERSION_MINOR == 4 && GENAPI_VERSION_SUBMINOR == 0 &&
                  GENAPI_VERSION_BUILD == 0,
              "version of the nodes");
static_assert(std::is_same<GenApi::INode, GenApi_3_4::INode>::value &&
                  std::is_same<GENAPI_NAMESPACE::INode, GenApi_3_4::INode>::value,
              "name space of the nodes");
static_assert(std::is_same<GenICam::gcstring, GenICam_3_4::gcstring>::value &&
                  std::is_same<GENICAM_NAMESPACE::gcstring, GenICam_3_4::gcstring>::value,
              "name space of the base");

// Types
static_assert(std::is_same<Version_t, GenICam::Version_t>::value &&
                  std::is_same<decltype(Version_t::Major), uint16_t>::value &&
                  std::is_same<decltype(Version_t::Minor), uint16_t>::value &&
                  std::is_same<decltype(Version_t::SubMinor), uint16_t>::value,
              "Version_t");
static_assert(std::is_same<StringList_t, GenICam::gcstring_vector>::value, "StringList_t");
static_assert(std::is_same<NodeList_t, node_vector>::value &&
                  std::is_same<FeatureList_t, value_vector>::value,
              "lists");
static_assert(std::is_same<CallbackHandleType, intptr_t>::value && std::is_same<UserData_t, void*>::value,
              "handles");
static_assert(std::is_same<float32_t, float>::value && std::is_same<float64_t, double>::value, "floats");

// Limits
static_assert(GC_INT64_MAX == INT64_MAX && GC_INT64_MIN == INT64_MIN && GC_UINT64_MAX == UINT64_MAX &&
                  GC_INT32_MAX == INT32_MAX && GC_INT32_MIN == INT32_MIN && GC_UINT32_MAX == UINT32_MAX &&
                  GC_INT8_MAX == INT8_MAX && GC_INT8_MIN == INT8_MIN && GC_UINT8_MAX == UINT8_MAX,
              "limits");
static_assert(GCSTRING_NPOS == static_cast<size_t>(-1), "GCSTRING_NPOS");
static_assert(sizeof(FMT_I64) == (sizeof(long) == 8 ? 2 : 3), "FMT_I64");

// Exceptions stand apart from those of the language.
static_assert(!std::is_base_of<std::exception, GenICam::GenericException>::value, "GenericException");
template <class Exception>
struct IsKindOfException {
  static const bool value =
      std::is_base_of<GenICam::GenericException, Exception>::value &&
      std::is_constructible<Exception, const char*, const char*, int>::value &&
      std::is_constructible<Exception, const char*, const char*, int, const char*>::value &&
      std::is_constructible<Exception, const char*, const char*, int, const char*, const char*,
                            const char*>::value;
};
static_assert(IsKindOfException<GenICam::BadAllocException>::value &&
                  IsKindOfException<GenICam::InvalidArgumentException>::value &&
                  IsKindOfException<GenICam::OutOfRangeException>::value &&
                  IsKindOfException<GenICam::PropertyException>::value &&
                  IsKindOfException<GenICam::RuntimeException>::value &&
                  IsKindOfException<GenICam::LogicalErrorException>::value &&
                  IsKindOfException<GenICam::AccessException>::value &&
                  IsKindOfException<GenICam::TimeoutException>::value &&
                  IsKindOfException<GenICam::DynamicCastException>::value,
              "kinds of exceptions");

// Every interface of a node begins virtually at IBase.
static_assert(std::is_base_of<IBase, INode>::value && std::is_base_of<IBase, ISelector>::value &&
                  std::is_base_of<IBase, IPort>::value && std::is_base_of<IValue, IInteger>::value &&
                  std::is_base_of<IValue, IFloat>::value && std::is_base_of<IValue, IBoolean>::value &&
                  std::is_base_of<IValue, IString>::value && std::is_base_of<IValue, IRegister>::value &&
                  std::is_base_of<IValue, ICommand>::value && std::is_base_of<IValue, IEnumeration>::value &&
                  std::is_base_of<IValue, IEnumEntry>::value && std::is_base_of<IValue, ICategory>::value &&
                  std::is_base_of<IPort, IPortStacked>::value &&
                  std::is_base_of<IPort, IPortConstruct>::value &&
                  std::is_base_of<IPort, IChunkPort>::value && std::is_base_of<IPort, IPortReplay>::value &&
                  std::is_base_of<IPortReplay, IPortRecorder>::value &&
                  std::is_base_of<IPortStacked, IPortStackedConstruct>::value,
              "bases");
static_assert(!std::is_copy_constructible<CLock>::value && !std::is_copy_constructible<CLockEx>::value &&
                  !std::is_copy_constructible<GenICam::CLock>::value,
              "locks stay where they are");

}  // namespace

GENICAM_DEPRECATED(int OldFunction());

// A program may forward-declare what it passes on.
namespace GenApi_3_4 {
GENICAM_INTERFACE INodeMap;
}

int UseMacros(int argument);
int UseMacros(int argument) {
  const int list[5] = {};
  GENICAM_UNUSED(argument);
  GC_UNUSED(list);
  static_assert(GC_COUNTOF(list) == 5, "GC_COUNTOF");
  return static_cast<int>(
      sizeof(GENICAM_VERSION_MAJOR_STR GENICAM_VERSION_MINOR_STR GENICAM_VERSION_SUBMINOR_STR
                 GENICAM_VERSION_BUILD_STR GENAPI_VERSION_MAJOR_STR GENAPI_VERSION_MINOR_STR
                     GENAPI_VERSION_SUBMINOR_STR GENAPI_VERSION_BUILD_STR));
}
