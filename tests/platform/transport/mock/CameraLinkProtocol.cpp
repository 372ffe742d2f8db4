// A Camera Link protocol driver, as far as looking for drivers goes.
extern "C" __attribute__((visibility("default"))) int clpProbeDevice() {
  return 0;
}
