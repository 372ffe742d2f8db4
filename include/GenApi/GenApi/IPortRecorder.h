/// Recording and replaying writes.
#ifndef GENAPI_IPORTRECORDER_H
#define GENAPI_IPORTRECORDER_H

#include "IPort.h"

namespace GENAPI_NAMESPACE {

/// A list of recorded writes.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortWriteList {
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
  /// Writes everything recorded to the port, in order.
  virtual void Replay(IPort * pPort) = 0;
  virtual void SetCookie(const int64_t Value) = 0;
  virtual int64_t GetCookie() = 0;
  virtual ~IPortWriteList() {}
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortReplay : virtual public IPort {
  /// Replays a list into this port; Invalidate then forgets everything cached behind it.
  virtual void Replay(IPortWriteList * pPortRecorder, bool Invalidate = true) = 0;
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortRecorder : virtual public IPortReplay {
  virtual void StartRecording(IPortWriteList * pPortRecorder) = 0;
  virtual void StopRecording() = 0;
};

/// A reference to a port that records.
template <class T, class I = T>
class CPortRecorderRefT : public CPortRefT<T, I> {
 public:
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override {
    this->Ref()->Replay(pPortRecorder, Invalidate);
  }
  void StartRecording(IPortWriteList* pPortRecorder) override { this->Ref()->StartRecording(pPortRecorder); }
  void StopRecording() override { this->Ref()->StopRecording(); }
};

typedef CPortRecorderRefT<IPortRecorder> CPortRecorderRef;

}  // namespace GENAPI_NAMESPACE

#endif
