// A queue whose thread looks every 200 us, handles one item with the lock held, and sleeps again.
#include <unistd.h>

#include <list>
#include <mutex>
#include <thread>

#include "queue_probe.h"

namespace bench {
namespace {

constexpr useconds_t kHalfPeriodUs = 100;

class PolledQueue : public Queue {
 public:
  PolledQueue() {
    std::thread([this] { poll(); }).detach();
  }
  void add(const Item& item) override {
    const std::lock_guard guard(lock_);
    items_.push_back(item);
  }

 private:
  [[noreturn]] void poll() {
    for (;;) {
      {
        const std::lock_guard guard(lock_);
        if (!items_.empty()) {
          handle(items_.front());
          items_.pop_front();
        }
        usleep(kHalfPeriodUs);
      }
      usleep(kHalfPeriodUs);
    }
  }

  std::recursive_mutex lock_;
  std::list<Item> items_;
};

}  // namespace

Queue& polledQueue() {
  static auto* queue = new PolledQueue;
  return *queue;
}

}  // namespace bench
