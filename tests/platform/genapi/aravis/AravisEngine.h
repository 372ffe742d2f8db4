/// libaravis' own GenICam engine over registers that a test provides, to compare the runtime with.
#ifndef ZYN_TESTS_GENAPI_ARAVISENGINE_H
#define ZYN_TESTS_GENAPI_ARAVISENGINE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct _ArvGc;
struct _ArvDevice;

namespace zyn::genapi::test {

/// Bytes of a device. Both functions return false for places that do not exist.
struct Registers {
  std::function<bool(std::uint64_t address, std::size_t length, void* to)> read;
  std::function<bool(std::uint64_t address, std::size_t length, const void* from)> write;
};

/// One description loaded by libaravis. For one thread.
class AravisEngine {
 public:
  /// Throws std::runtime_error when libaravis refuses the description.
  AravisEngine(std::string_view xml, Registers registers);
  ~AravisEngine();
  AravisEngine(const AravisEngine&) = delete;
  AravisEngine& operator=(const AravisEngine&) = delete;

  /// libaravis does not cache registers unless told to.
  void CacheRegisters(bool on);

  /// The engine itself; stays owned here.
  struct _ArvGc* Gc() const {
    return gc_;
  }

 private:
  struct _ArvDevice* device_ = nullptr;
  struct _ArvGc* gc_ = nullptr;
};

}  // namespace zyn::genapi::test

#endif
