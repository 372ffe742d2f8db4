/// Kept for programs that include it; the base types need no compatibility shims.
#ifndef BASE_GCCOMPATIBILITY_H
#define BASE_GCCOMPATIBILITY_H

#include "GCTypes.h"

#endif
