/// Data that applications attach.
#ifndef GENAPI_IUSERDATA_H
#define GENAPI_IUSERDATA_H

#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

typedef void* UserData_t;

/// One pointer of the application's choice, kept at a node or a node map and never touched.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IUserData {
  virtual UserData_t GetUserData() const = 0;
  /// Returns the previous one.
  virtual UserData_t SetUserData(UserData_t pUserData) = 0;
  virtual ~IUserData() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
