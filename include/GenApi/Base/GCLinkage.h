/// Export macros of the base types. Everything that crosses the library boundary has default visibility,
/// because exceptions are caught, and interfaces are cross-cast, on the other side.
#ifndef BASE_GCLINKAGE_H
#define BASE_GCLINKAGE_H

#if defined(__GNUC__) || defined(__clang__)
#define GCBASE_API __attribute__((visibility("default")))
#define GCBASE_RTTI_CLASS_API __attribute__((visibility("default")))
#else
#define GCBASE_API
#define GCBASE_RTTI_CLASS_API
#endif

#endif
