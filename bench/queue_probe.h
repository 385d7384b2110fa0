// What the two queues of the comparison have in common: an item says when it was added, and how long its
// handler works.
#pragma once

namespace bench {

struct Item {
  double addedUs = 0;
  double workUs = 0;
  int followers = 0;  // items that the handler adds, each as long as this one is
};

inline constexpr double kHandlerUs = 300;

// Called by the thread of the queue.
void handle(const Item& item);

// A queue under measurement.
class Queue {
 public:
  virtual ~Queue() = default;
  virtual void add(const Item& item) = 0;
};

Queue& parlendQueue();
Queue& polledQueue();

}  // namespace bench
