#ifndef ZYN_DATA_GIVE_BACK_H
#define ZYN_DATA_GIVE_BACK_H

#include <exception>

namespace ZYNSDK {

/// For guards whose destructor gives something back by a call that may throw: made with the guard, it lets that
/// exception out, unless one that began since then is already on its way, which is then the one to report.
class GiveBack {
 public:
  template <class Work>
  void operator()(Work work) const {
    if (std::uncaught_exceptions() == exceptionsInFlight_) {
      work();
      return;
    }
    try {
      work();
    } catch (...) {  // NOLINT(bugprone-empty-catch): the exception already on its way is the one to report
    }
  }

 private:
  int exceptionsInFlight_ = std::uncaught_exceptions();
};

}  // namespace ZYNSDK

#endif
