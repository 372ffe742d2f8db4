/// Export macros of the node interface. Interfaces have default visibility so that they can be cross-cast
/// everywhere.
#ifndef GENAPI_GENAPIDLL_H
#define GENAPI_GENAPIDLL_H

#include "GenApiNamespace.h"

#if defined(__GNUC__) || defined(__clang__)
#define GENAPI_DECL __attribute__((visibility("default")))
#define GENAPI_DECL_ABSTRACT __attribute__((visibility("default")))
#else
#define GENAPI_DECL
#define GENAPI_DECL_ABSTRACT
#endif

#endif
