// A program may keep its runtime apart from another one of the same version: with a suffix of its own on the name
// spaces, and with the short names left for something else.
#define GENICAM_COMPANY_SUFFIX ACME
#define GENICAM_SUPPRESS_NAMESPACE_ALIAS
#define NO_UNDEFINEDED_REPRESENTATION

#include <type_traits>

#include "GenICam.h"

namespace GenApi {
struct INode;  // of the other one
}
namespace GenICam {
struct gcstring;
}

static_assert(std::is_same<GenApi_3_4_ACME::INode, GENAPI_NAMESPACE::INode>::value, "nodes");
static_assert(std::is_same<GenICam_3_4_ACME::gcstring, GENICAM_NAMESPACE::gcstring>::value, "base");
static_assert(!std::is_same<GenApi_3_4_ACME::INode, GenApi::INode>::value, "the short name is free");
#ifdef _UndefindedRepresentation
#error "the misspelt name was not wanted"
#endif
