/// Judges what was read of the system. Pure: the same readings give the same findings.
#ifndef ZYNCAM_DOCTOR_SYSTEM_FINDINGS_H
#define ZYNCAM_DOCTOR_SYSTEM_FINDINGS_H

#include <vector>

#include "doctor/Finding.h"
#include "doctor/SystemReadings.h"

namespace zyncam {

/// Adapters, buffers, rights, USB memory. What could not be read is left out.
std::vector<Finding> FindingsOf(const SystemReadings& readings);

}  // namespace zyncam

#endif
