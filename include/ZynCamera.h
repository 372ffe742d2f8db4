/// The ZynCamera SDK: find industrial cameras on GigE Vision, USB3 Vision and Camera Link, open them, read
/// and write their GenICam features, acquire images.
///
/// The classes are small: a handle (camera, feature, description) refers to an object that the SDK owns, a
/// container owns or shares its data as its header says. Operations report a status as `long`: 0 for success,
/// otherwise a ZynStatus.
#ifndef ZYNCAMERA_H
#define ZYNCAMERA_H

#include "ZynCamera/CameraEvents.h"
#include "ZynCamera/CameraHandles.h"
#include "ZynCamera/Export.h"
#include "ZynCamera/Functions.h"
#include "ZynCamera/HandleArrays.h"
#include "ZynCamera/IImageHandler.h"
#include "ZynCamera/Status.h"
#include "ZynCamera/Types.h"
#include "ZynCamera/Zyn3DIntArray.h"
#include "ZynCamera/ZynCameraAttribute.h"
#include "ZynCamera/ZynChunkData.h"
#include "ZynCamera/ZynColorArray.h"
#include "ZynCamera/ZynImage.h"
#include "ZynCamera/ZynNode.h"
#include "ZynCamera/ZynRangeImage.h"
#include "ZynCamera/ZynString.h"

#endif
