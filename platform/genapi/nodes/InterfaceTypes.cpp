#include "nodes/InterfaceTypes.h"

namespace zyn::genapi {

using namespace GENAPI_NAMESPACE;

EInterfaceType InterfaceTypeOf(NodeKind kind) {
  switch (kind) {
    case NodeKind::category:
      return intfICategory;
    case NodeKind::integer:
    case NodeKind::intReg:
    case NodeKind::maskedIntReg:
    case NodeKind::intConverter:
    case NodeKind::intSwissKnife:
    case NodeKind::intKey:
    case NodeKind::smartFeature:
      return intfIInteger;
    case NodeKind::boolean:
      return intfIBoolean;
    case NodeKind::command:
      return intfICommand;
    case NodeKind::enumeration:
      return intfIEnumeration;
    case NodeKind::enumEntry:
      return intfIEnumEntry;
    case NodeKind::floating:
    case NodeKind::floatReg:
    case NodeKind::converter:
    case NodeKind::swissKnife:
      return intfIFloat;
    case NodeKind::string:
    case NodeKind::stringReg:
    case NodeKind::textDesc:
      return intfIString;
    case NodeKind::reg:
      return intfIRegister;
    case NodeKind::port:
      return intfIPort;
    case NodeKind::node:
    case NodeKind::confRom:
    case NodeKind::advFeatureLock:
    case NodeKind::unknown:
      return intfIValue;
  }
  return intfIBase;
}

}  // namespace zyn::genapi
