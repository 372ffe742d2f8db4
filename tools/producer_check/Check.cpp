#include "Check.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

struct ErrorFacts {
  const char* name;
  GC_ERROR code;
  int since;
};

#define ZYN_ERROR(code, since) \
  { #code, code, since }
constexpr ErrorFacts kErrors[] = {
    ZYN_ERROR(GC_ERR_SUCCESS, 0),
    ZYN_ERROR(GC_ERR_ERROR, 0),
    ZYN_ERROR(GC_ERR_NOT_INITIALIZED, 0),
    ZYN_ERROR(GC_ERR_NOT_IMPLEMENTED, 0),
    ZYN_ERROR(GC_ERR_RESOURCE_IN_USE, 0),
    ZYN_ERROR(GC_ERR_ACCESS_DENIED, 0),
    ZYN_ERROR(GC_ERR_INVALID_HANDLE, 0),
    ZYN_ERROR(GC_ERR_INVALID_ID, 0),
    ZYN_ERROR(GC_ERR_NO_DATA, 0),
    ZYN_ERROR(GC_ERR_INVALID_PARAMETER, 0),
    ZYN_ERROR(GC_ERR_IO, 0),
    ZYN_ERROR(GC_ERR_TIMEOUT, 0),
    ZYN_ERROR(GC_ERR_ABORT, 1),
    ZYN_ERROR(GC_ERR_INVALID_BUFFER, 1),
    ZYN_ERROR(GC_ERR_NOT_AVAILABLE, 2),
    ZYN_ERROR(GC_ERR_INVALID_ADDRESS, 3),
    ZYN_ERROR(GC_ERR_BUFFER_TOO_SMALL, 4),
    ZYN_ERROR(GC_ERR_INVALID_INDEX, 4),
    ZYN_ERROR(GC_ERR_PARSING_CHUNK_DATA, 4),
    ZYN_ERROR(GC_ERR_INVALID_VALUE, 4),
    ZYN_ERROR(GC_ERR_RESOURCE_EXHAUSTED, 4),
    ZYN_ERROR(GC_ERR_OUT_OF_MEMORY, 4),
    ZYN_ERROR(GC_ERR_BUSY, 5),
    ZYN_ERROR(GC_ERR_AMBIGUOUS, 6),
};
#undef ZYN_ERROR

void Append(std::vector<Check>& all, std::vector<Check> some) {
  all.insert(all.end(), some.begin(), some.end());
}

}  // namespace

void Fail(const std::string& sentence) {
  throw CheckFailed{sentence};
}

void Skip(const std::string& reason) {
  throw NotApplicable{reason};
}

void Expect(bool condition, const std::string& sentence) {
  if (!condition) Fail(sentence);
}

std::string NameOf(GC_ERROR error) {
  for (const ErrorFacts& facts : kErrors) {
    if (facts.code == error) return facts.name;
  }
  return "code " + std::to_string(error);
}

int VersionOf(GC_ERROR error) {
  for (const ErrorFacts& facts : kErrors) {
    if (facts.code == error) return facts.since;
  }
  return 0;
}

std::vector<Check> Catalogue() {
  std::vector<Check> all = LifeCycleChecks();
  Append(all, ListChecks());
  Append(all, InfoChecks());
  Append(all, HandleChecks());
  Append(all, PortChecks());
  Append(all, EventChecks());
  Append(all, BufferChecks());
  Append(all, AcquisitionChecks());
  return all;
}

}  // namespace zyn::producercheck
