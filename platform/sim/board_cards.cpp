#include "board_cards.h"

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "board_conf.h"
#include "board_fpga.h"
#include "board_journal.h"
#include "platform/driver.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr unsigned kPorts = 16;
constexpr uint8_t kAllPorts = 0xFF;
constexpr uint16_t kAllBoards = 0xFFFF;
constexpr uint8_t kFirstType = 1;
constexpr uint8_t kLastType = 4;
constexpr uint8_t kSensorType = 2;
constexpr uint32_t kBrightnessRegister = 0x02000001;
constexpr uint32_t kSizeRegister = 0x02000017;
constexpr uint32_t kSensorRegister = 0x06000000;
constexpr std::size_t kSensorRequestLength = 11;
constexpr std::size_t kSensorAnswerLength = 5;
constexpr uint32_t kNoAnswer = 0xFFFFFFFF;
// Registers of the FPGA that pass a whole request on to the cards.
constexpr uint32_t kPacketRegisters[] = {0x400, 0x300000};
constexpr std::size_t kPacketHead = 12;

using CardKey = std::tuple<uint8_t, uint8_t, uint16_t>;  // type, port, board
struct Card {
  std::unordered_map<uint32_t, uint8_t> registers;
  std::optional<uint8_t> askedSensor;
};

std::map<CardKey, Card> cards;
std::mutex cardsLock;

uint16_t checksum(const recvcard_mesg& request, std::span<const unsigned char> data) {
  unsigned sum = request.DeviceType + request.ProtAddr + (request.BoardAddr & 0xFFU) +
                 (request.BoardAddr >> 8) + request.code + request.PacketType + (request.length & 0xFFU) +
                 (request.length >> 8);
  for (int shift = 0; shift < 32; shift += 8) sum += request.RegisterAddr >> shift & 0xFFU;
  for (const unsigned char byte : data) sum += byte;
  return static_cast<uint16_t>(sum);
}

bool addressed(const recvcard_mesg& request, unsigned port) {
  return request.ProtAddr == kAllPorts || request.ProtAddr == port;
}

// The cards that a request addresses and that exist.
std::vector<CardKey> addressedCards(const recvcard_mesg& request) {
  std::vector<CardKey> found;
  if (request.DeviceType < kFirstType || request.DeviceType > kLastType) return found;
  const uint16_t linked = linkedPorts();
  for (unsigned port = 0; port < kPorts; ++port) {
    if (!addressed(request, port) || (linked >> port & 1) == 0) continue;
    for (uint16_t board = 0; board < conf().cardsPerPort; ++board) {
      if (request.BoardAddr == kAllBoards || request.BoardAddr == board) {
        found.emplace_back(request.DeviceType, static_cast<uint8_t>(port), board);
      }
    }
  }
  return found;
}

Card& cardAt(const CardKey& key) {
  const auto [entry, made] = cards.try_emplace(key);
  if (made) {
    auto& registers = entry->second.registers;
    const uint16_t size[] = {conf().cardWidth, conf().cardHeight};
    for (uint32_t i = 0; i < 4; ++i)
      registers[kSizeRegister + i] = static_cast<uint8_t>(size[i / 2] >> 8 * (i % 2));
    registers[kBrightnessRegister] = conf().cardBrightness;
  }
  return entry->second;
}

bool writeCards(const recvcard_mesg& request, std::span<const unsigned char> data) {
  if (checksum(request, data) != request.checksum) return false;
  const std::lock_guard guard(cardsLock);
  const auto keys = addressedCards(request);
  for (const auto& key : keys) {
    Card& card = cardAt(key);
    if (request.DeviceType == kSensorType && request.RegisterAddr == kSensorRegister &&
        data.size() == kSensorRequestLength) {
      card.askedSensor = data[0];
      continue;
    }
    for (uint32_t i = 0; i < data.size(); ++i) card.registers[request.RegisterAddr + i] = data[i];
  }
  return !keys.empty();
}

// 0x01 0x02, then half the lux in 15 bits, high byte first, with the valid bit on top.
bool answerOfSensor(const CardKey& key, uint8_t number, std::span<unsigned char> answer) {
  const auto& sensors = conf().sensors;
  for (std::size_t i = 0; i < sensors.size(); ++i) {
    const Sensor& sensor = sensors[i];
    if (sensor.port != std::get<1>(key) || sensor.board != std::get<2>(key) || sensor.number != number)
      continue;
    const uint32_t lux = sensorLux(i);
    if (lux == kNoAnswer) return false;
    const unsigned char bytes[kSensorAnswerLength] = {
        0x01, 0x02, static_cast<unsigned char>(0x80 | (lux / 2 >> 8 & 0x7F)),
        static_cast<unsigned char>(lux / 2), 0};
    std::memcpy(answer.data(), bytes, sizeof bytes);
    return true;
  }
  return false;
}

bool readCard(const recvcard_mesg& request, std::span<unsigned char> buffer) {
  if (checksum(request, {}) != request.checksum) return false;
  const std::lock_guard guard(cardsLock);
  const auto keys = addressedCards(request);
  if (keys.empty()) return false;
  Card& card = cardAt(keys.front());
  if (request.DeviceType == kSensorType && request.RegisterAddr == kSensorRegister &&
      buffer.size() == kSensorAnswerLength) {
    const auto number = std::exchange(card.askedSensor, std::nullopt);
    return number && answerOfSensor(keys.front(), *number, buffer);
  }
  for (uint32_t i = 0; i < buffer.size(); ++i) {
    const auto value = card.registers.find(request.RegisterAddr + i);
    buffer[i] = value == card.registers.end() ? 0 : value->second;
  }
  return true;
}

JournalLine& describe(JournalLine&& line, const recvcard_mesg& request) {
  return line.number(request.DeviceType)
      .number(request.ProtAddr)
      .number(request.BoardAddr)
      .address(request.RegisterAddr)
      .number(request.length);
}

uint16_t le16(const unsigned char* at) {
  return static_cast<uint16_t>(at[0] | at[1] << 8);
}

}  // namespace

void cardPacketFromFpga(uint32_t address, std::span<const unsigned char> bytes) {
  if (address != kPacketRegisters[0] && address != kPacketRegisters[1]) return;
  if (bytes.size() < kPacketHead + 2) return;
  recvcard_mesg request{};
  request.DeviceType = bytes[0];
  request.ProtAddr = bytes[1];
  request.BoardAddr = le16(&bytes[2]);
  request.code = bytes[4];
  request.PacketType = bytes[5];
  request.RegisterAddr = le16(&bytes[6]) | static_cast<uint32_t>(le16(&bytes[8])) << 16;
  request.length = le16(&bytes[10]);
  if (bytes.size() != kPacketHead + request.length + 2U) return;
  request.checksum = le16(&bytes[bytes.size() - 2]);
  writeCards(request, bytes.subspan(kPacketHead, request.length));
}

void forgetCards() {
  const std::lock_guard guard(cardsLock);
  cards.clear();
}

}  // namespace simboard

using namespace simboard;

int WriteFPGAToRecvCard(unsigned char, recvcard_mesg* request, unsigned char, unsigned char* data) {
  const std::span<const unsigned char> bytes(data, request->length);
  const bool failed = takeFault(Fault::CardWrite) || !writeCards(*request, bytes);
  if (journalsWrites()) describe(JournalLine("card-write"), *request).bytes(bytes).failedIf(failed);
  return failed ? -1 : 0;
}

int ReadFPGAformRecvCard(unsigned char, recvcard_mesg* request, unsigned char, unsigned char* buffer) {
  const std::span<unsigned char> bytes(buffer, request->length);
  const bool failed = takeFault(Fault::CardRead) || !readCard(*request, bytes);
  if (journalsReads()) {
    describe(JournalLine("card-read"), *request)
        .bytes(std::span<const unsigned char>(bytes).first(failed ? 0 : bytes.size()))
        .failedIf(failed);
  }
  return failed ? -1 : 0;
}
