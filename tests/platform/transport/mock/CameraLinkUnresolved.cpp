// A driver that stands on a library which is not there.
extern "C" int zynNobodyHasThis();

extern "C" __attribute__((visibility("default"))) int clpProbeDevice() {
  return zynNobodyHasThis();
}
