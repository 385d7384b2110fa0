#include "messagedesk.h"

#include <deque>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "apipc_service.h"
#include "board_journal.h"
#include "peer/frame.h"
#include "platform/apipc.h"
#include "simboard.h"

struct __apmsg_st {
  std::vector<uint8_t> bytes;
};

namespace {

constexpr uint32_t kServiceCode = 0x00FFFFFF;
constexpr uint32_t kServiceSend = 0x070400;  // what is sent there goes to the task that the head names

struct Desk {
  std::map<uint32_t, uint64_t> connections;  // task, and which of all connections it is
  uint64_t numbered = 0;
  std::deque<std::unique_ptr<__apmsg_st>> inbox;
  std::unique_ptr<__apmsg_st> taken;
  std::vector<messagedesk::Sent> sent;
  std::function<void()> wait;
};

Desk& desk() {
  static Desk instance;
  return instance;
}

void waits() {
  if (desk().wait) desk().wait();
}

}  // namespace

void messagedesk::connect(uint32_t task) {
  desk().connections[task] = ++desk().numbered;
}

void messagedesk::disconnect(uint32_t task) {
  desk().connections.erase(task);
}

void messagedesk::arrive(std::span<const uint8_t> message) {
  desk().inbox.push_back(std::make_unique<__apmsg_st>(__apmsg_st{{message.begin(), message.end()}}));
}

std::size_t messagedesk::waiting() {
  return desk().inbox.size();
}

void messagedesk::onWait(std::function<void()> then) {
  desk().wait = std::move(then);
}

std::vector<messagedesk::Sent> messagedesk::takeSent() {
  return std::exchange(desk().sent, {});
}

void messagedesk::clear() {
  desk().connections.clear();
  desk().inbox.clear();
  desk().sent.clear();
  desk().wait = nullptr;
}

void simboard::apipc_close_all_peers() {
  desk().connections.clear();
}

void simboard::apipc_time_moved() {}

unsigned char apcard_bit_self(void) {
  return simboard::cardBit();
}

int apipc_init(uint32_t /*task*/, int /*flags*/) {
  return 0;
}

int apipc_loop_wait(void* /*context*/, apipc_recv_cb /*callback*/) {
  waits();
  return -1;
}

int apipc_enq(apipc_msg_t* /*message*/) {
  return -1;
}

int apipc_deq(apipc_msg_t* message) {
  if (desk().inbox.empty()) return -1;
  desk().taken = std::move(desk().inbox.front());
  desk().inbox.pop_front();
  *message = desk().taken.get();
  return 0;
}

void apipc_que_wait(int /*timeout_ms*/) {
  waits();
}

void apipc_que_told(void) {}

void* apipc_que_attach(apipc_msg_t message) {
  return message->bytes.data();
}

void apipc_que_detach(apipc_msg_t /*message*/, void* /*contents*/) {
  desk().taken.reset();
}

int apipc_send(uint32_t task, const void* buffer, unsigned int length) {
  const std::span bytes(static_cast<const uint8_t*>(buffer), length);
  if (simboard::takeFault(simboard::Fault::MessageSend)) return -1;
  const uint32_t to = (task & kServiceCode) == kServiceSend ? peer::decodeHead(bytes).taskId : task;
  if (!desk().connections.contains(to)) return -1;
  try {
    if (simboard::journalsReads()) simboard::JournalLine("send").address(task);
    desk().sent.push_back({to, {bytes.begin(), bytes.end()}});
    return 0;
  } catch (const std::bad_alloc&) {
    return -1;  // a service does not throw
  }
}

int apipc_connect_chk_task_by_taskid(uint32_t task) {
  return apipc_connection_number(task) == 0 ? -1 : 0;
}

uint64_t apipc_connection_number(uint32_t task) {
  const auto found = desk().connections.find(task);
  return found == desk().connections.end() ? 0 : found->second;
}
