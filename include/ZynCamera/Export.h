/// What every public header of the SDK starts from.
#ifndef ZYNCAMERA_EXPORT_H
#define ZYNCAMERA_EXPORT_H

#if defined(__GNUC__)
#define ZYNSDK_API __attribute__((visibility("default")))
#else
#define ZYNSDK_API
#endif

#endif
