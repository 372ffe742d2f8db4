/// A library that loads, and has none of the functions of a producer.
extern "C" __attribute__((visibility("default"))) int ZynNoProducer() {
  return 1;
}
