// From the message service to the register request: wait thread, receive thread, one frame.
#include <algorithm>

#include "hextext.h"
#include "logwords.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "outofmemory.h"
#include "proto/store/data_common.h"
#include "results.h"
#include "stub/mcuimdthread.h"
#include "stub/stubutil.h"

namespace ORVE_MCUC {
namespace {

constexpr int kPauseAfterErrorMs = 5;
constexpr int kWaitForMessageMs = 1000;
constexpr uint8_t kSourceOfTools = 0xFE;

// The service's callback, on the wait thread: it only queues.
int ipc_event_deal(__apsess_st*, void*, apipc_msg_t message, int) {
  PARLEND_TRACE(kInfo) << "Apipc ipc_event_deal begin...";
  if (message == nullptr) {
    PARLEND_TRACE(kError) << "=== ipc_event_deal ===Apipc, the data is null, return.";
    return kErrNoMessage;
  }
  const int queued = apipc_enq(&message);
  if (queued >= 0) {
    apipc_que_told();
    return queued;
  }
  PARLEND_TRACE(kError) << "=== ipc_event_deal ===Apipc, Data into queue invalid, return.";
  return kErrNoMessage;
}

// A factory reset is running, or done with its reboot pending: nothing is answered.
bool resetting() {
  const uint8_t state = Data_Global::getInstance()->RebootRF;
  return state == 1 || state == 2;
}

// A frame's text is left out when it would not fit into a send buffer, and cut where a line is cut anyway.
void logFrame(const unsigned char* frame, int length) {
  constexpr int kBytesInALine = static_cast<int>(CTrace::kLineSize) / 3;
  const int shown = length <= DATA_BLOCK_LENGTH / 3 ? std::min(length, kBytesInALine) : 0;
  const HexText<3 * kBytesInALine + 1> text({frame, static_cast<std::size_t>(shown)});
  PARLEND_TRACE(kInfo) << "Apipc: the new Packet's datalength = " << length << " the Data = " << text.c_str();
}

// A message with its contents, given back to the service on every way out.
class AttachedMessage {
 public:
  explicit AttachedMessage(apipc_msg_t message) : message_(message), contents_(apipc_que_attach(message)) {}
  ~AttachedMessage() { apipc_que_detach(message_, contents_); }
  AttachedMessage(const AttachedMessage&) = delete;
  AttachedMessage& operator=(const AttachedMessage&) = delete;
  const unsigned char* contents() const { return static_cast<const unsigned char*>(contents_); }

 private:
  apipc_msg_t message_;
  void* contents_;
};

}  // namespace

void McuIMDThread::ApipcMsg() {
  PARLEND_TRACE(kDebug) << "ApipcMsg process thread begin:";
  while (!m_apipc.exit.load()) {
    PARLEND_TRACE(kInfo) << "Apipc: begin wait message...";
    withinMemory("ApipcMsg", [this] { apipc_loop_wait(this, &ipc_event_deal); });
    PARLEND_TRACE(kInfo) << "Apipc: finish wait message.";
  }
  PARLEND_TRACE(kDebug) << "ApipcMsg process thread exit.";
}

void McuIMDThread::RecvMsg() {
  PARLEND_TRACE(kDebug) << "RecvMeg process thread begin:";
  while (!m_recv.exit.load()) {
    withinMemory("RecvMsg", [this] { ipc_event_deal_th(); });
    Delay(kPauseAfterErrorMs);
  }
  PARLEND_TRACE(kDebug) << "RecvMeg process thread exit.";
}

int McuIMDThread::ipc_event_deal_th() {
  PARLEND_TRACE(kInfo) << "Apipc ipc_event_deal_th begin...";
  while (!m_recv.exit.load(std::memory_order_relaxed)) {
    if (const int failed = takeMessage()) return failed;
  }
  return kErrNoMessage;
}

int McuIMDThread::takeMessage() {
  apipc_msg_t message = nullptr;
  if (apipc_deq(&message) < 0) {
    apipc_que_wait(kWaitForMessageMs);
    return 0;
  }
  if (resetting()) {
    PARLEND_TRACE(kError) << "....... Device Reset To Factory ing...... , return.";
    if (message != nullptr) apipc_que_detach(message, apipc_que_attach(message));
    return kErrNoMessage;
  }
  if (message == nullptr) {
    PARLEND_TRACE(kError) << "=== ipc_event_deal ===Recv, msg is invalid, return.";
    return kErrNoMessage;
  }
  const AttachedMessage attached(message);
  const unsigned char* contents = attached.contents();
  if (contents == nullptr) {
    PARLEND_TRACE(kError) << "=== ipc_event_deal ===Recv, boday is invalid, return.";
    return kErrNoMessage;
  }
  const auto decoded = decodeTransportHead({contents, kTransportHeadLength});
  if (!decoded) return kErrNoMessage;
  const auto& [head, label] = *decoded;
  PARLEND_TRACE(kInfo) << "Apipc, Get a new Packet: ihead_t uiid = " << CTrace::hex << head.ui_id
                       << " label count = " << head.lbl_cnt << " size = " << head.size
                       << " large label = " << label.large << " small label = " << label.small;
  if (label.large != kThirdProtocolLabel) return 0;
  if (label.size > DATA_BLOCK_LENGTH) {
    PARLEND_TRACE(kError) << "=== ipc_event_deal ===Recv, frame of " << label.size
                          << " bytes is too long, return.";
    return 0;
  }
  if (label.small <= 1) dealDataBlockNew(&head, &label, contents + kTransportHeadLength);
  if (label.small == 3) PARLEND_TRACE(kInfo) << "Apipc, data interrupt...";
  return 0;
}

int McuIMDThread::dealDataBlockNew(const Fipc_msg_head* head, const Fimd_label* label,
                                   const unsigned char* frame) {
  LogSection section({"============================= Begin Deal DataBlock ==============================",
                      "============================= Finish Deal DataBlock ============================="});
  if (frame == nullptr) {
    PARLEND_TRACE(kError) << "=== dealDataBlock ===Deal DataBlock: data block is null! return.";
    section.abandon();
    return kErrNoMessage;
  }
  const int length = static_cast<int>(label->size);
  if (tracePasses(kInfo)) logFrame(frame, length);
  IMD_proto3rd request;
  uint8_t ack = kAckDone;
  if (!MCUCMsg::Checkout(frame, length)) {
    PARLEND_TRACE(kError) << "=== dealDataBlock ===Deal DataBlock: Checkout Result is false! ";
    ack = kAckChecksum;
  }
  int failed = 0;
  if (!withinMemory("dealDataBlock", [&] { failed = request.proto.Decode(frame, length); }))
    ack = kAckRefused;
  if (failed != 0) {
    PARLEND_TRACE(kError) << "=== dealDataBlock ===Decode DataBlock Failed! Decode result = " << failed;
  } else {
    request.proto.m_ucAck = ack;
    request.ipcHeader = {head->ui_id,  head->lbl_cnt, head->size,   head->result,
                         head->detail, label->small,  label->large, 0};
    StubUtil::getInstance()->onDataRecvFromIMDNew(&request);
  }
  rememberPeer(head->ui_id);
  if (request.proto.m_ucCode == kCodeWrite) {
    PARLEND_TRACE(kInfo) << "\tmsg.m_ucCode = "
                         << "begin";
    PARLEND_TRACE(kInfo) << "\tmsg.m_ucCode = "
                         << "finish";
  }
  if (head->ui_id != m_vectorUIIDs.front() && request.proto.m_ucSourceAddress == kSourceOfTools) {
    PARLEND_TRACE(kInfo) << "\t********DevComLinkState == 1 *********";
  }
  return 0;
}

void McuIMDThread::rememberPeer(uint32_t uiid) {
  if (std::find(m_vectorUIIDs.begin(), m_vectorUIIDs.end(), uiid) != m_vectorUIIDs.end()) return;
  if (m_vectorUIIDs.size() >= kPeersRemembered) return;  // the list serves the log
  m_vectorUIIDs.push_back(uiid);
  PARLEND_TRACE(kInfo) << "recv new uiid = " << uiid << " size = " << static_cast<int>(m_vectorUIIDs.size());
}

}  // namespace ORVE_MCUC
