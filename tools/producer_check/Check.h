/// What a check is made of.
#ifndef ZYN_PRODUCER_CHECK_CHECK_H
#define ZYN_PRODUCER_CHECK_CHECK_H

#include <GenTL/GenTL.h>

#include <string>
#include <vector>

namespace zyn::producercheck {

class Bench;

/// One rule. `run` returns when the producer keeps it, and throws otherwise.
struct Check {
  const char* name;
  const char* what;
  void (*run)(Bench& bench);
  bool isGate = false;  ///< when it fails, the checks after it have nothing to work with
};

/// The producer breaks the rule; the sentence says how.
struct CheckFailed {
  std::string sentence;
};

/// The rule says nothing about this producer or camera; the sentence says why.
struct NotApplicable {
  std::string reason;
  bool lacksCamera = false;  ///< the camera that was asked for is not there
};

[[noreturn]] void Fail(const std::string& sentence);
[[noreturn]] void Skip(const std::string& reason);

/// Fails with the sentence unless the condition holds.
void Expect(bool condition, const std::string& sentence);

/// "GC_ERR_SUCCESS" and so on; the number of a code that has no name.
std::string NameOf(GenTL::GC_ERROR error);

/// The minor version of GenTL 1.x that brought the code.
int VersionOf(GenTL::GC_ERROR error);

// The checks, topic by topic.
std::vector<Check> LifeCycleChecks();
std::vector<Check> InfoChecks();
std::vector<Check> ListChecks();
std::vector<Check> HandleChecks();
std::vector<Check> PortChecks();
std::vector<Check> EventChecks();
std::vector<Check> BufferChecks();
std::vector<Check> AcquisitionChecks();

/// All of them, in the order in which they run.
std::vector<Check> Catalogue();

}  // namespace zyn::producercheck

#endif
