/// The whole GenICam interface.
#ifndef GENICAM_H
#define GENICAM_H

#include "Base/GCBase.h"
#include "GenApi/GenApi.h"

#endif
