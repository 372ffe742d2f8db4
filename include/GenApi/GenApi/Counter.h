/// Kept so that programs which include it compile: this runtime counts nothing on its own.
#ifndef GENAPI_COUNTER_H
#define GENAPI_COUNTER_H

#include "GenApiDll.h"

#endif
