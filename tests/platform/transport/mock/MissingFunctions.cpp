// A library that looks like a producer at first sight and lacks nearly everything.
extern "C" __attribute__((visibility("default"))) int GCInitLib() {
  return 0;
}
