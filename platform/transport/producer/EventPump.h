/// Waits for one kind of GenTL event on one module and hands each event to a handler.
#ifndef ZYN_TRANSPORT_EVENT_PUMP_H
#define ZYN_TRANSPORT_EVENT_PUMP_H

#include <condition_variable>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Background.h"
#include "ProducerLibrary.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// One event, in the shape that its type has (see EVENT_TYPE_LIST).
struct GenTLEvent {
  std::string id;            ///< the ID as text; "" when it is a number
  std::uint64_t number = 0;  ///< the ID as a number; of a text, its hexadecimal value
  std::vector<char> value;
};

class EventPump {
 public:
  using Handler = std::function<void(const GenTLEvent&)>;

  /// Registers the event and starts waiting. Null when the producer does not offer it. The handler runs on the
  /// pump's thread.
  /// module  the module's handle; kept until the waiting has ended
  static std::unique_ptr<EventPump> Start(const ProducerPtr& producer, const std::shared_ptr<void>& module,
                                          GenTL::EVENT_TYPE type, Handler handler);
  /// Ends the waiting; the handler does not run afterwards. Waits for a handler that is running, and two
  /// seconds at most for a producer that does not come back.
  ~EventPump();
  /// Asks the waiting to end, without waiting for that: several pumps then end in the time of one.
  void BeginEnd();
  EventPump(const EventPump&) = delete;
  EventPump& operator=(const EventPump&) = delete;

 private:
  struct State {
    // Constant after Start.
    ProducerPtr producer;
    std::shared_ptr<void> module;
    GenTL::EVENT_TYPE type = 0;
    GenTL::EVENT_HANDLE event = nullptr;
    Handler handler;

    Mutex mutex;
    std::condition_variable changed;
    bool isEnding ZYN_GUARDED_BY(mutex) = false;
    bool isHandling ZYN_GUARDED_BY(mutex) = false;
    std::thread::id thread ZYN_GUARDED_BY(mutex);
  };

  EventPump(std::shared_ptr<State> state, Background thread)
      : state_(std::move(state)), thread_(std::move(thread)) {}
  static void Run(State& state);
  static bool Handle(State& state, const GenTLEvent& event);
  void AwaitEnd();

  std::shared_ptr<State> state_;
  Background thread_;
};

}  // namespace zyn::transport

#endif
