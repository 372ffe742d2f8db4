/// Judges what became of the producers, and the environment that they are looked for with.
#ifndef ZYNCAM_DOCTOR_PRODUCER_FINDINGS_H
#define ZYNCAM_DOCTOR_PRODUCER_FINDINGS_H

#include <KELGeniCam.h>

#include <functional>
#include <list>
#include <string>
#include <vector>

#include "doctor/Finding.h"

namespace zyncam {

/// One finding for each file or place of the transport's report, and one more when none is in use.
std::vector<Finding> FindingsOf(const std::list<KELGENICAM::LoadReportEntry>& report);

/// The variables that tell where to look. `valueOf`: null for one that is not set.
std::vector<Finding> FindingsOfEnvironment(const std::function<const char*(const char* name)>& valueOf);

/// The folders that are searched, in this order: `ownFolder`, then those of the variable's `list`.
std::vector<Finding> FindingsOfSearchPath(const std::string& ownFolder, const char* list);

}  // namespace zyncam

#endif
