// The calls of platform/apipc.h, carried out by the one message service of this process.
#include "platform/apipc.h"

#include <chrono>
#include <memory>
#include <new>
#include <string>
#include <thread>

#include "apipc_loop.h"
#include "apipc_service.h"
#include "simboard.h"

namespace {

using simboard::MessageService;

constexpr std::chrono::milliseconds kPauseWithoutService{50};

// Never destroyed: at exit the daemon's threads are still inside. Set before they start.
std::unique_ptr<MessageService>& service() {
  static auto& instance = *new std::unique_ptr<MessageService>;
  return instance;
}

bool serving() {
  return service() && !service()->closed();
}

}  // namespace

void simboard::apipc_close_all_peers() {
  if (serving()) service()->close();
}

void simboard::apipc_time_moved() {
  if (serving()) service()->timeMoved();
}

unsigned char apcard_bit_self(void) {
  return simboard::cardBit();
}

int apipc_init(uint32_t task, int /*flags*/) {
  if (serving()) return -1;
  auto created = std::make_unique<MessageService>(simboard::path("run/apipc.sock"), task);
  if (!created->ready()) return -1;
  service() = std::move(created);
  return 0;
}

// A caller that calls again whenever this returns must not spin where there is nothing to wait for.
int apipc_loop_wait(void* context, apipc_recv_cb callback) {
  try {
    if (serving() && callback) return service()->wait(context, callback);
  } catch (const std::bad_alloc&) {  // all that was to be done is still due
  }
  std::this_thread::sleep_for(kPauseWithoutService);
  return -1;
}

int apipc_enq(apipc_msg_t* message) {
  if (!message || !service() || simboard::takeFault(simboard::Fault::MessageQueue)) return -1;
  return service()->enqueue(*message) ? 0 : -1;
}

int apipc_deq(apipc_msg_t* message) {
  if (!message || !service()) return -1;
  *message = service()->queue().pop();
  return *message ? 0 : -1;
}

void apipc_que_wait(int timeout_ms) {
  if (service()) return service()->queue().wait(timeout_ms);
  std::this_thread::sleep_for(std::chrono::milliseconds(timeout_ms));
}

// The queue itself wakes who waits for it.
void apipc_que_told(void) {}

void* apipc_que_attach(apipc_msg_t message) {
  return message ? message->contents() : nullptr;
}

void apipc_que_detach(apipc_msg_t message, void* /*contents*/) {
  if (message && service()) service()->release(message);
}

int apipc_send(uint32_t task, const void* buffer, unsigned int length) {
  if (!buffer || !service() || simboard::takeFault(simboard::Fault::MessageSend)) return -1;
  return service()->send(task, {static_cast<const unsigned char*>(buffer), length}) ? 0 : -1;
}

int apipc_connect_chk_task_by_taskid(uint32_t task) {
  return apipc_connection_number(task) == 0 ? -1 : 0;
}

uint64_t apipc_connection_number(uint32_t task) {
  return service() ? service()->connection(task) : 0;
}
