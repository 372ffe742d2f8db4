/// All base types.
#ifndef BASE_GCBASE_H
#define BASE_GCBASE_H

#include "GCException.h"
#include "GCString.h"
#include "GCStringVector.h"
#include "GCSynch.h"
#include "GCTypes.h"
#include "GCUtilities.h"

#endif
