/// Ctrl-C during a long verb.
#ifndef ZYNCAM_INTERRUPT_H
#define ZYNCAM_INTERRUPT_H

namespace zyncam {

/// Turns the first Ctrl-C into a wish to stop, so that the stream is stopped and the camera closed in order. One at
/// a time.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

 private:
  void (*previous_)(int);
};

/// Whether Ctrl-C was pressed.
bool IsInterrupted();

}  // namespace zyncam

#endif
