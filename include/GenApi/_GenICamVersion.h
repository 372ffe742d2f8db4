/// Older name of GenICamVersion.h, kept for programs that include it.
#ifndef GENICAM_VERSION_COMPAT_H
#define GENICAM_VERSION_COMPAT_H

#include "GenICamVersion.h"

#endif
