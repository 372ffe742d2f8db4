/// Commands.
#ifndef GENAPI_ICOMMAND_H
#define GENAPI_ICOMMAND_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// Something the device does when told to.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICommand : virtual public IValue {
  virtual void Execute(bool Verify = true) = 0;
  virtual void operator()() = 0;
  /// Whether the last execution ended. Reads the device while it has not.
  virtual bool IsDone(bool Verify = true) = 0;
};

/// A reference to a command.
template <class T, class I = T>
class CCommandRefT : public CValueRefT<T, I> {
 public:
  void Execute(bool Verify = true) override { this->Ref()->Execute(Verify); }
  void operator()() override { this->Ref()->Execute(); }
  bool IsDone(bool Verify = true) override { return this->Ref()->IsDone(Verify); }
};

typedef CCommandRefT<ICommand> CCommandRef;

}  // namespace GENAPI_NAMESPACE

#endif
