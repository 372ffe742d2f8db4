#include "doctor/Finding.h"

#include <algorithm>

namespace zyncam {

const char* ToText(Verdict verdict) {
  switch (verdict) {
    case Verdict::good:
      return "ok";
    case Verdict::note:
      return "note";
    case Verdict::warning:
      return "warning";
    case Verdict::problem:
      break;
  }
  return "problem";
}

Verdict WorstOf(const std::vector<Finding>& findings) {
  Verdict worst = Verdict::good;
  for (const Finding& finding : findings) worst = std::max(worst, finding.verdict);
  return worst;
}

}  // namespace zyncam
