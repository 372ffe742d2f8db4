/// Where a producer is checked: its library, and one module of each kind, opened when a check asks for it.
#ifndef ZYN_PRODUCER_CHECK_BENCH_H
#define ZYN_PRODUCER_CHECK_BENCH_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "Check.h"
#include "Functions.h"

namespace zyn::producercheck {

/// One question of the form (type, buffer, size).
using Ask = std::function<GenTL::GC_ERROR(GenTL::INFO_DATATYPE*, void*, std::size_t*)>;

/// The answer to a question.
struct Answer {
  GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  std::vector<unsigned char> bytes;

  bool IsThere() const { return error == GenTL::GC_ERR_SUCCESS; }
  std::string Text() const;      ///< the bytes up to the first NUL
  std::uint64_t Number() const;  ///< the bytes as an integer of this machine
};

/// Asks for the size, then for the value.
Answer Get(const Ask& ask);

/// Not thread-safe, but the functions may be called from any thread. Modules stay open from one check to the next.
class Bench {
 public:
  /// device  see CheckOptions
  Bench(std::string file, std::string device);
  ~Bench();
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  const std::string& File() const { return file_; }
  /// The loaded library. Loaded on the first call.
  Functions& F();
  /// Takes the library out of memory; the next use loads it anew.
  void Unload();

  // Each opens what is missing, and throws CheckFailed when that fails, or NotApplicable when there is no camera
  // or no stream to open.
  void Library();
  GenTL::TL_HANDLE System();
  GenTL::IF_HANDLE Interface();
  GenTL::DEV_HANDLE Device();
  GenTL::PORT_HANDLE Remote();
  GenTL::DS_HANDLE Stream();

  // Each closes its module and what lies below. For a check that closes something itself, Forget* only forgets it.
  void EndStream();
  void EndDevice();
  void EndInterface();
  void EndSystem();
  void EndLibrary();
  void ForgetStream() { stream_ = nullptr; }
  void ForgetDevice();
  void ForgetInterface();
  void ForgetSystem();
  void ForgetLibrary();

  const std::string& InterfaceId();
  const std::string& DeviceId();
  const std::string& StreamId();

  /// The minor version of GenTL 1.x that the producer claims; 4 when it cannot tell, which version 1.5 brought.
  int Version();

  /// Fails unless the result is one of `allowed`. When every allowed code is newer than the producer, any error
  /// serves: older versions had no better one.
  void ExpectError(const std::string& call, GenTL::GC_ERROR result,
                   std::initializer_list<GenTL::GC_ERROR> allowed);
  /// Fails unless the call succeeded; the producer's own words become part of the sentence.
  void ExpectSuccess(const std::string& call, GenTL::GC_ERROR result);

 private:
  struct Found {
    std::string interfaceId;
    std::string deviceId;
  };

  void FindDevice();
  std::optional<Found> FindOn(const std::string& interfaceId);
  bool IsWanted(GenTL::IF_HANDLE interface, const std::string& deviceId);
  std::string LastWords();

  const std::string file_;
  const std::string wanted_;
  std::optional<Functions> functions_;
  bool isInitialised_ = false;
  bool isSearched_ = false;
  std::optional<Found> found_;
  std::string streamId_;
  std::optional<int> version_;
  GenTL::TL_HANDLE system_ = nullptr;
  GenTL::IF_HANDLE interface_ = nullptr;
  GenTL::DEV_HANDLE device_ = nullptr;
  GenTL::PORT_HANDLE remote_ = nullptr;
  GenTL::DS_HANDLE stream_ = nullptr;
};

}  // namespace zyn::producercheck

#endif
