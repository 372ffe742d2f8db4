/// What 'zyncam doctor' says about one thing.
#ifndef ZYNCAM_DOCTOR_FINDING_H
#define ZYNCAM_DOCTOR_FINDING_H

#include <string>
#include <vector>

namespace zyncam {

enum class Verdict {
  good,
  note,     ///< works; better is possible
  warning,  ///< some cameras, or some speeds, will not work
  problem   ///< no camera can work
};

struct Finding {
  std::string topic;    ///< "producers", "network", … Findings of one topic follow each other
  std::string subject;  ///< what was looked at: a file, an adapter, a setting
  Verdict verdict = Verdict::good;
  std::string text;    ///< what was found
  std::string advice;  ///< what to do; empty when there is nothing to do
};

/// "ok", "note", "warning" or "problem".
const char* ToText(Verdict verdict);

/// The worst of them; good for none.
Verdict WorstOf(const std::vector<Finding>& findings);

}  // namespace zyncam

#endif
