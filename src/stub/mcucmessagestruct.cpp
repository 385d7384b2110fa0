#include "stub/mcucmessagestruct.h"

#include <algorithm>
#include <cstring>

#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kChecksumSeed = 0x5555;

uint64_t loadWord(const unsigned char* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// The bytes of a word as four 16-bit lanes, two bytes added up in each.
uint64_t pairSums(uint64_t word) {
  constexpr uint64_t kEvenBytes = 0x00FF00FF00FF00FF;
  return (word & kEvenBytes) + (word >> 8 & kEvenBytes);
}

uint16_t laneSum(uint64_t lanes) {
  return static_cast<uint16_t>(lanes + (lanes >> 16) + (lanes >> 32) + (lanes >> 48));
}

// Sum of bytes, modulo 65536. Two words at a time, because additions that do not wait for one another
// overlap; a lane takes 128 words before it could overflow into the next.
uint16_t byteSum(const unsigned char* bytes, std::size_t count) {
  constexpr std::size_t kStep = 2 * sizeof(uint64_t);
  constexpr std::size_t kStepsPerRound = 128;
  unsigned sum = 0;
  while (count >= kStep) {
    const std::size_t steps = std::min(count / kStep, kStepsPerRound);
    uint64_t first = 0;
    uint64_t second = 0;
    for (std::size_t i = 0; i < steps; ++i, bytes += kStep) {
      first += pairSums(loadWord(bytes));
      second += pairSums(loadWord(bytes + sizeof(uint64_t)));
    }
    sum += laneSum(first) + laneSum(second);
    count -= steps * kStep;
  }
  while (count-- > 0) sum += *bytes++;
  return static_cast<uint16_t>(sum);
}

std::span<const uint8_t> bytesOf(const unsigned char* frame, int length) {
  return {frame, static_cast<std::size_t>(length)};
}

int refuse(const unsigned char* frame, int length) {
  PARLEND_TRACE(kError) << "=== DecodeHeader ===Decode Header: Decode Failed! return. The data length = "
                        << length << "pData = " << static_cast<const void*>(frame);
  return -1;
}

}  // namespace

void logUnknownCode(std::string_view asked, uint8_t code) {
  PARLEND_TRACE(kError) << "=== " << asked << " ===the code " << code << " neither reads nor writes, return.";
}

std::optional<TransportHead> decodeTransportHead(std::span<const uint8_t> bytes) {
  ByteReader reader(bytes);
  // Braces read from left to right.
  const TransportHead decoded{{reader.le32(), reader.le32(), reader.le32(), reader.le32(), reader.le32()},
                              {reader.le16(), reader.le16(), reader.le32()}};
  if (!reader.ok()) return std::nullopt;
  return decoded;
}

void encodeTransportHead(const ipcHeaderInfo& head, std::span<uint8_t, kTransportHeadLength> room) {
  ByteWriter writer(room);
  for (const uint32_t word : {head.uiid, head.labelCount, head.size, head.result, head.detail})
    writer.le32(word);
  writer.le16(head.smallLabel);
  writer.le16(head.largeLabel);
  writer.le32(head.payloadLength);
}

MCUCMsg::MCUCMsg(uint16_t header, uint8_t ack, uint8_t labels, uint8_t source, uint8_t destination,
                 uint8_t deviceType, uint8_t port, uint16_t board, uint8_t code, uint32_t registerAddress)
    : m_usHeader(header),
      m_ucAck(ack),
      m_ucLabels(labels),
      m_ucSourceAddress(source),
      m_ucDestinationAddrerss(destination),
      m_ucDeviceType(deviceType),
      m_ucPortAddress(port),
      m_usBoardAddress(board),
      m_ucCode(code),
      m_uiRegisterUnitAddress(registerAddress) {}

int MCUCMsg::Encode(unsigned char*, unsigned int) {
  return kErrThread;
}

int MCUCMsg::Decode(unsigned char*, int&) {
  return kErrThread;
}

void MCUCMsg::CaculCheckout(const unsigned char* buffer, int start, int count, unsigned short* out) {
  const uint16_t sum = count > 0 ? byteSum(buffer + start, static_cast<std::size_t>(count)) : uint16_t{0};
  *out = static_cast<uint16_t>(kChecksumSeed + sum);
}

bool MCUCMsg::Checkout(const unsigned char* frame, int length) {
  if (length < 4) return false;
  unsigned short computed = 0;
  CaculCheckout(frame, 2, length - 4, &computed);
  const uint16_t received = le16(bytesOf(frame, length), static_cast<std::size_t>(length) - 2);
  PARLEND_TRACE(kInfo) << "revise = " << computed << ", iDataLen = " << length << ", usCheckout=" << received;
  PARLEND_TRACE(kInfo) << "Finish Checkout the DataBlock.";
  return computed == received;
}

int MCUCMsg::DecodeHeader(const unsigned char* frame, int length) {
  if (frame == nullptr || length < kFrameMinimum) return refuse(frame, length);
  ByteReader reader(bytesOf(frame, length));
  m_usHeader = reader.le16();
  m_ucAck = reader.u8();
  m_ucLabels = reader.u8();
  m_ucSourceAddress = reader.u8();
  m_ucDestinationAddrerss = reader.u8();
  m_ucDeviceType = reader.u8();
  m_ucPortAddress = reader.u8();
  m_usBoardAddress = reader.le16();
  m_ucCode = reader.u8();
  m_ucReserved = reader.u8();
  m_uiRegisterUnitAddress = reader.le32();
  m_usValidDataLength = reader.le16();
  m_usCheckout = le16(bytesOf(frame, length), static_cast<std::size_t>(length) - 2);
  return 0;
}

int MCUCMsg::EncodeHeader(unsigned char* buffer, int size) {
  if (buffer == nullptr || size < kFrameHeadLength) {
    PARLEND_TRACE(kError) << "=== EncodeHeader ===pData = " << static_cast<const void*>(buffer);
    return -1;
  }
  TOLM_RENCWD(buffer, m_usHeader);
  ByteWriter writer(std::span(buffer, kFrameHeadLength).subspan(2));
  for (const uint8_t byte :
       {m_ucAck, m_ucLabels, m_ucSourceAddress, m_ucDestinationAddrerss, m_ucDeviceType, m_ucPortAddress})
    writer.u8(byte);
  writer.le16(m_usBoardAddress);
  writer.u8(m_ucCode);
  writer.u8(m_ucReserved);
  writer.le32(m_uiRegisterUnitAddress);
  writer.le16(m_usValidDataLength);
  return 0;
}

int ThirdProtoMCUCMsg::Decode(const unsigned char* frame, int length) {
  if (const int failed = DecodeHeader(frame, length)) return failed;
  if (m_ucCode == kCodeWrite) {
    if (length < kFrameMinimum + m_usValidDataLength) return refuse(frame, length);
    const auto data = bytesOf(frame, length).subspan(kFrameHeadLength, m_usValidDataLength);
    m_data.insert(m_data.end(), data.begin(), data.end());
  }
  PARLEND_TRACE(kInfo) << "Finish Decode the DataBlock.";
  return 0;
}

int ThirdProtoMCUCMsg::Encode(unsigned char* buffer, unsigned int size) {
  const bool carriesData = m_ucCode != kCodeWrite || m_ucReserved == kReplyCarriesData;
  const std::size_t dataLength = carriesData ? m_data.size() : 0;
  if (buffer != nullptr && dataLength + kFrameMinimum > std::min<std::size_t>(size, DATA_BLOCK_LENGTH))
    return -1;
  m_usValidDataLength = static_cast<uint16_t>(dataLength);
  if (const int failed = EncodeHeader(buffer, static_cast<int>(size))) return failed;
  std::copy_n(m_data.begin(), dataLength, buffer + kFrameHeadLength);
  const int total = kFrameHeadLength + static_cast<int>(dataLength);
  CaculCheckout(buffer, 2, total - 2, &m_usCheckout);
  TOLM_ENCWD(buffer + total, m_usCheckout);
  return total + 2;
}

}  // namespace ORVE_MCUC
