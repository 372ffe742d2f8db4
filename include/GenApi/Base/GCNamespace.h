/// Names the versioned namespace of the GenICam base types, and its short alias.
#ifndef BASE_GCNAMESPACE_H
#define BASE_GCNAMESPACE_H

#include "../GenICamVersion.h"

#define GENICAM_PASTE_IMPL(prefix, major, minor) prefix##_##major##_##minor
#define GENICAM_PASTE(prefix, major, minor) GENICAM_PASTE_IMPL(prefix, major, minor)
#define GENICAM_PASTE_SUFFIX_IMPL(prefix, major, minor, suffix) prefix##_##major##_##minor##_##suffix
#define GENICAM_PASTE_SUFFIX(prefix, major, minor, suffix) \
  GENICAM_PASTE_SUFFIX_IMPL(prefix, major, minor, suffix)

#ifndef GENICAM_NAMESPACE_DEFINED
#define GENICAM_NAMESPACE_DEFINED
#ifdef GENICAM_COMPANY_SUFFIX
#define GENICAM_NAMESPACE \
  GENICAM_PASTE_SUFFIX(GenICam, GENICAM_VERSION_MAJOR, GENICAM_VERSION_MINOR, GENICAM_COMPANY_SUFFIX)
#else
#define GENICAM_NAMESPACE GENICAM_PASTE(GenICam, GENICAM_VERSION_MAJOR, GENICAM_VERSION_MINOR)
#endif
#endif

namespace GENICAM_NAMESPACE {}

#ifndef GENICAM_SUPPRESS_NAMESPACE_ALIAS
namespace GenICam = GENICAM_NAMESPACE;
#endif

#endif
