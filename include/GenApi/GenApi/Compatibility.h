/// Kept so that programs which include it compile: there is nothing here that GenApi.h does not have.
#ifndef GENAPI_COMPATIBILITY_H
#define GENAPI_COMPATIBILITY_H

#include "GenApiDll.h"
#include "Types.h"

#endif
