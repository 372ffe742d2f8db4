/// A list of recorded writes.
#ifndef GENAPI_PORTWRITELIST_H
#define GENAPI_PORTWRITELIST_H

#include "GenApiDll.h"
#include "IPortRecorder.h"

namespace GENAPI_NAMESPACE {

/// Keeps copies of what was written, in order. Not synchronised.
class GENAPI_DECL CPortWriteList : public IPortWriteList {
 public:
  CPortWriteList();
  ~CPortWriteList() override;
  CPortWriteList(const CPortWriteList&) = delete;
  CPortWriteList& operator=(const CPortWriteList&) = delete;

  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
  void Replay(IPort* pPort) override;
  /// A number of the program's choice.
  void SetCookie(const int64_t Value) override;
  int64_t GetCookie() override;

 private:
  struct Storage;
  Storage* m_pStorage;
};

}  // namespace GENAPI_NAMESPACE

#endif
