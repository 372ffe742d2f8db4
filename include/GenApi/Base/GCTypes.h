/// Integer and floating-point types, their limits, and small helper macros.
#ifndef BASE_GCTYPES_H
#define BASE_GCTYPES_H

#include <cstddef>
#include <cstdint>

#include "GCLinkage.h"
#include "GCNamespace.h"

#ifndef GENICAM_INTERFACE
#define GENICAM_INTERFACE struct
#endif

#if defined(__LP64__)
#define FMT_I64 "l"
#else
#define FMT_I64 "ll"
#endif

#define GC_INT64_MAX INT64_MAX
#define GC_INT64_MIN INT64_MIN
#define GC_UINT64_MAX UINT64_MAX
#define GC_INT32_MAX INT32_MAX
#define GC_INT32_MIN INT32_MIN
#define GC_UINT32_MAX UINT32_MAX
#define GC_INT8_MAX INT8_MAX
#define GC_INT8_MIN INT8_MIN
#define GC_UINT8_MAX UINT8_MAX

#define GENICAM_UNUSED(unused_var) ((void)(unused_var))
#define GC_UNUSED(unused_var) ((void)(unused_var))
#define GC_COUNTOF(arr) (sizeof(arr) / sizeof((arr)[0]))

#if defined(__GNUC__) || defined(__clang__)
#define GENICAM_DEPRECATED(FUNCTION) FUNCTION __attribute__((deprecated))
#else
#define GENICAM_DEPRECATED(FUNCTION) FUNCTION
#endif

typedef float float32_t;
typedef double float64_t;

namespace GENICAM_NAMESPACE {

/// A version with three parts.
struct Version_t {
  uint16_t Major;
  uint16_t Minor;
  uint16_t SubMinor;
};

}  // namespace GENICAM_NAMESPACE

using GENICAM_NAMESPACE::Version_t;

#endif
