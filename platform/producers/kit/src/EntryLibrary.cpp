// C functions: library.
#include "Answer.h"
#include "Guard.h"
#include "Library.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
extern "C" {

// The only two that do not ask for an initialised library first, each in its own way.
GC_ERROR GC_CALLTYPE GCInitLib() {
  try {
    Library::Initialise();
    return GC_ERR_SUCCESS;
  } catch (...) {
    return RememberCurrentException(__func__, true);
  }
}

GC_ERROR GC_CALLTYPE GCCloseLib() {
  return Guarded(__func__, [] { Library::CloseAll(); });
}

GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<Library> library(Library::Current());
    library->Info(iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

// Its own failures are not remembered: they would replace what the caller asks for. A library that could not be
// initialised answers too, or nobody would ever learn why.
GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* piErrorCode, char* sErrText, size_t* piSize) {
  try {
    if (!LastErrorIsOfInitialising()) RequireInitialized();
    RequirePointer(piErrorCode, "piErrorCode");
    AnswerText(LastErrorText(), sErrText, piSize);
    *piErrorCode = LastErrorCode();
    return GC_ERR_SUCCESS;
  } catch (const Error& error) {
    return error.Code();
  } catch (...) {
    return GC_ERR_ERROR;
  }
}

}  // extern "C"
}  // namespace GenTL
