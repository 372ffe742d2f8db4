/// Forward declarations for headers that only pass interfaces through.
#ifndef GENICAM_FWD_H
#define GENICAM_FWD_H

#include "Base/GCTypes.h"
#include "GenApi/GenApiNamespace.h"

namespace GENICAM_NAMESPACE {
class gcstring;
class gcstring_vector;
class GenericException;
}  // namespace GENICAM_NAMESPACE

namespace GENAPI_NAMESPACE {
class CLock;
class CNodeCallback;
class node_vector;
class value_vector;
GENICAM_INTERFACE IBase;
GENICAM_INTERFACE INode;
GENICAM_INTERFACE INodeMap;
GENICAM_INTERFACE IValue;
GENICAM_INTERFACE IInteger;
GENICAM_INTERFACE IFloat;
GENICAM_INTERFACE IBoolean;
GENICAM_INTERFACE IString;
GENICAM_INTERFACE IRegister;
GENICAM_INTERFACE ICommand;
GENICAM_INTERFACE IEnumeration;
GENICAM_INTERFACE IEnumEntry;
GENICAM_INTERFACE ICategory;
GENICAM_INTERFACE ISelector;
GENICAM_INTERFACE IPort;
GENICAM_INTERFACE IPortStacked;
GENICAM_INTERFACE IPortConstruct;
GENICAM_INTERFACE IChunkPort;
GENICAM_INTERFACE IDestroy;
GENICAM_INTERFACE IDeviceInfo;
GENICAM_INTERFACE IUserData;
}  // namespace GENAPI_NAMESPACE

#endif
