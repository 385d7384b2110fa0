// The frame of the third protocol, its checksum and codec, the transport head in front of it, and the record
// in which one request, reply or notification travels through the daemon. Values only: any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace ORVE_MCUC {

inline constexpr uint16_t PROTOCOL_HEADER_TAG_REQUEST = 0x55AA;
inline constexpr uint16_t PROTOCOL_HEADER_TAG_RESPONSE = 0xAA55;
inline constexpr int TP_RECV_BUFFER_LENGTH = 65536;
inline constexpr int TP_SEND_BUFFER_LENGTH = 65536;
inline constexpr int GENERAL_RECV_BUFFER_LENGTH = 65536;
inline constexpr int DATA_BLOCK_LENGTH = 65536;

inline constexpr int kFrameHeadLength = 18;  // bytes in front of the data
inline constexpr int kFrameMinimum = 20;     // head and checksum
inline constexpr uint8_t kCodeRead = 0;
inline constexpr uint8_t kCodeWrite = 1;
// Error line of whoever was asked for anything else.
void logUnknownCode(std::string_view asked, uint8_t code);
inline constexpr uint8_t kReplyCarriesData = 0xFF;  // in m_ucReserved: a write's reply repeats its data

constexpr uint16_t TOLM_MAKEWD(uint8_t hi, uint8_t lo) {
  return static_cast<uint16_t>(hi << 8 | lo);
}
constexpr uint32_t TOLM_MAKEDW(uint8_t b3, uint8_t b2, uint8_t b1, uint8_t b0) {
  return static_cast<uint32_t>(b3) << 24 | static_cast<uint32_t>(b2) << 16 | static_cast<uint32_t>(b1) << 8 |
         b0;
}
constexpr void TOLM_ENCWD(unsigned char* p, uint16_t w) {
  p[0] = static_cast<unsigned char>(w);
  p[1] = static_cast<unsigned char>(w >> 8);
}
constexpr void TOLM_RENCWD(unsigned char* p, uint16_t w) {
  p[0] = static_cast<unsigned char>(w >> 8);
  p[1] = static_cast<unsigned char>(w);
}
constexpr void TOLM_ENCDW(unsigned char* p, uint32_t d) {
  TOLM_ENCWD(p, static_cast<uint16_t>(d));
  TOLM_ENCWD(p + 2, static_cast<uint16_t>(d >> 16));
}

// One frame. The base codec operations are not available: kErrThread.
class MCUCMsg {
 public:
  MCUCMsg() = default;
  MCUCMsg(uint16_t header, uint8_t ack, uint8_t labels, uint8_t source, uint8_t destination,
          uint8_t deviceType, uint8_t port, uint16_t board, uint8_t code, uint32_t registerAddress);
  MCUCMsg(const MCUCMsg&) = default;
  MCUCMsg& operator=(const MCUCMsg&) = default;
  virtual ~MCUCMsg() = default;

  virtual int Encode(unsigned char* buffer, unsigned int size);
  virtual int Decode(unsigned char* buffer, int& length);

  // Whether the last two of length bytes are the checksum of those from byte 2 on.
  static bool Checkout(const unsigned char* frame, int length);
  // 0x5555 plus the bytes start .. start + count - 1, kept to 16 bits.
  static void CaculCheckout(const unsigned char* buffer, int start, int count, unsigned short* out);

  // The 18 bytes in front of the data, and the checksum at the end of a decoded frame. 0, or -1 for no buffer
  // or fewer than 20 bytes.
  int DecodeHeader(const unsigned char* frame, int length);
  int EncodeHeader(unsigned char* buffer, int size);

  uint16_t m_usHeader = 0;
  uint8_t m_ucAck = 0;
  uint8_t m_ucLabels = 0;
  uint8_t m_ucSourceAddress = 0;
  uint8_t m_ucDestinationAddrerss = 0;
  uint8_t m_ucDeviceType = 0;
  uint8_t m_ucPortAddress = 0;
  uint16_t m_usBoardAddress = 0;
  uint8_t m_ucCode = 0;
  uint8_t m_ucReserved = 0;
  uint32_t m_uiRegisterUnitAddress = 0;
  uint16_t m_usValidDataLength = 0;
  std::vector<uint8_t> m_data;
  uint16_t m_usCheckout = 0;
};

class ThirdProtoMCUCMsg : public MCUCMsg {
 public:
  using MCUCMsg::MCUCMsg;

  // Writes the frame and sets length and checksum to what was written: a write's reply carries no data unless
  // m_ucReserved asks for it. The frame's length, or -1 when it does not fit.
  int Encode(unsigned char* buffer, unsigned int size) override;
  // Fills the fields, and m_data for a write. -1: shorter than 20 bytes, or than 20 and a write's data.
  int Decode(const unsigned char* frame, int length);
  using MCUCMsg::Decode;
};

inline constexpr int kTransportHeadLength = 28;
inline constexpr uint16_t kThirdProtocolLabel = 0x1C;

// The transport head in front of a frame. On the wire: its fields in this order, little-endian.
struct ipcHeaderInfo {
  uint32_t uiid = 0;  // the peer: requester of a request and its reply, target of a notification
  uint32_t labelCount = 0;
  uint32_t size = 0;
  uint32_t result = 0;  // in a reply: the acknowledge code
  uint32_t detail = 0;
  uint16_t smallLabel = 0;     // 0 or 1 register request, 3 data interrupt
  uint16_t largeLabel = 0;     // kThirdProtocolLabel for frames
  uint32_t payloadLength = 0;  // bytes of the frame
};
static_assert(sizeof(ipcHeaderInfo) == kTransportHeadLength);

// The transport head of a received message, as its two halves.
struct Fipc_msg_head {
  uint32_t ui_id;
  uint32_t lbl_cnt;
  uint32_t size;
  uint32_t result;
  uint32_t detail;
};
struct Fimd_label {
  uint16_t small;
  uint16_t large;
  uint32_t size;
};
static_assert(sizeof(Fipc_msg_head) == 20 && sizeof(Fimd_label) == 8);

struct TransportHead {
  Fipc_msg_head head;
  Fimd_label label;
};
// Nothing when there are fewer than 28 bytes.
std::optional<TransportHead> decodeTransportHead(std::span<const uint8_t> bytes);
void encodeTransportHead(const ipcHeaderInfo& head, std::span<uint8_t, kTransportHeadLength> room);

// One request, reply or notification.
struct IMD_proto3rd {
  ThirdProtoMCUCMsg proto;
  int32_t seqNum = 0;      // -1 in notifications
  uint32_t processID = 0;  // task that an unsolicited message is sent to
  ipcHeaderInfo ipcHeader;
};

}  // namespace ORVE_MCUC
