// Replies and notifications: the same steps, with words of their own.
#include "hextext.h"
#include "logwords.h"
#include "mcuctrace.h"
#include "results.h"
#include "stub/mcuimdthread.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

// A frame that goes out: its section, and the lines of its outcome.
struct FrameWords {
  SectionWords section;
  const char* failed;
  const char* sent;
  const char* longData;
  const char* shortData;
};

constexpr FrameWords kReply{
    {"=============================== Begin reply Message =============================",
     "=============================== Finish reply Message ============================"},
    "=== ReplyMsg ===ReplyMsg: reply message Failed! ret = ",
    "ReplyMsg: reply message successfully. ret = ",
    " ReplyMsg: the data = ",
    "ReplyMsg: length <200. the data = "};
constexpr FrameWords kNotification{
    {"================================ Begin Send Message =============================",
     "================================ Finish Send Message ============================"},
    "===  ===SendMsg: reply message Failed! ret = ",
    "SendMsg: reply message successfully. ret = ",
    "SendMsg: the data = ",
    "SendMsg: length <200. the data = "};

constexpr SectionWords kSending{
    "================================= Begin apipc send ==============================",
    "================================= Finish apipc send ============================="};

constexpr std::size_t kPieceLength = 200;
constexpr int kSendTextRoom = 131072;

void logSent(const FrameWords& words, const unsigned char* bytes, int total) {
  PARLEND_TRACE(kInfo) << words.sent << 0 << " datalength = " << total;
  const HexText<kSendTextRoom> text({bytes, static_cast<std::size_t>(total)});
  if (text.view().size() < kPieceLength) {
    PARLEND_TRACE(kInfo) << words.shortData << text.c_str();
    return;
  }
  for (std::string_view rest = text.view(); !rest.empty();) {
    const std::string_view piece = rest.substr(0, kPieceLength);
    PARLEND_TRACE(kInfo) << words.longData << piece;
    rest.remove_prefix(piece.size());
  }
}

int handOver(uint32_t task, std::span<const uint8_t> message) {
  LogSection section(kSending);
  return apipc_send(task, message.data(), static_cast<unsigned int>(message.size()));
}

int sendFrame(IMD_proto3rd& record, uint32_t task, const FrameWords& words) {
  LogSection section(words.section);
  // Only the bytes that are sent are ever written, so the buffer is not cleared.
  unsigned char buffer[kTransportHeadLength + DATA_BLOCK_LENGTH];
  const int length = record.proto.Encode(buffer + kTransportHeadLength, DATA_BLOCK_LENGTH);
  if (length < kFrameMinimum) {
    PARLEND_TRACE(kError) << "=== ReplyMsg ===ReplyMsg: Encode failed! return.";
    section.abandon();
    return kErrEncode;
  }
  record.ipcHeader.result = record.proto.m_ucAck;
  record.ipcHeader.payloadLength = static_cast<uint32_t>(length);
  encodeTransportHead(record.ipcHeader, std::span(buffer).first<kTransportHeadLength>());
  const int total = kTransportHeadLength + length;
  PARLEND_TRACE(kInfo) << "ReplyMsg: the ack = " << record.proto.m_ucAck;
  if (const int sent = handOver(task, std::span(buffer).first(static_cast<std::size_t>(total)))) {
    PARLEND_TRACE(kError) << words.failed << sent;
    section.abandon();
    return kErrSend;
  }
  if (tracePasses(kInfo)) logSent(words, buffer, total);
  return 0;
}

}  // namespace

int McuIMDThread::ReplyMsgNew(IMD_proto3rd* request) {
  return sendFrame(*request, taskOf(kServiceSend), kReply);
}

int McuIMDThread::SendMsgNew(IMD_proto3rd* message) {
  if (!m_ready.load(std::memory_order_acquire)) {
    PARLEND_TRACE(kInfo) << "SendMsg: the message channel is not there yet, nothing is sent.";
    return kErrSend;
  }
  return sendFrame(*message, message->processID, kNotification);
}

int McuIMDThread::SendMsg(IMD_proto3rd message) {
  return SendMsgNew(&message);
}

}  // namespace ORVE_MCUC
