/// What a description says about its device.
#ifndef GENAPI_IDEVICEINFO_H
#define GENAPI_IDEVICEINFO_H

#include "../Base/GCString.h"
#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// Implemented by every node map.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IDeviceInfo {
  virtual GENICAM_NAMESPACE::gcstring GetModelName() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetVendorName() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetToolTip() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetStandardNameSpace() = 0;
  virtual void GetGenApiVersion(Version_t & Version, uint16_t & Build) = 0;
  virtual void GetSchemaVersion(Version_t & Version) = 0;
  virtual void GetDeviceVersion(Version_t & Version) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetProductGuid() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetVersionGuid() = 0;
  virtual ~IDeviceInfo() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
