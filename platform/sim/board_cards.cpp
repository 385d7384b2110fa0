#include "board_cards.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <tuple>
#include <unordered_map>

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
// What a sensor is asked with, behind its number on the card.
constexpr unsigned char kSensorQuestion[] = {0x00, 0x00, 0x00, 0x55, 0xAA, 0x01, 0x02, 0x80, 0xFF, 0x81};
constexpr std::size_t kSensorAnswerLength = 5;
constexpr uint32_t kMostLux = 0x7FFF * 2;
constexpr uint32_t kNoAnswer = 0xFFFFFFFF;
constexpr uint8_t kWrite = 1;
// Registers of the FPGA that pass a whole request on to the cards.
constexpr uint32_t kPacketRegisters[] = {0x400, 0x300000};
constexpr std::size_t kPacketHead = 12;

// The registers of a card: only pages that were written are kept.
class Registers {
 public:
  uint8_t read(uint32_t address) const {
    const auto page = pages_.find(address / kPage);
    return page == pages_.end() ? uint8_t{0} : page->second[address % kPage];
  }
  // False, with nothing written, when all cards together hold as much as they may: a peer that writes
  // everywhere does not fill the machine's memory.
  bool write(uint32_t address, std::span<const unsigned char> data) {
    if (pageCount + data.size() / kPage + 2 > kMostPages) return false;
    while (!data.empty()) {
      const auto count = std::min<std::size_t>(data.size(), kPage - address % kPage);
      const auto [page, made] = pages_.try_emplace(address / kPage);
      if (made) ++pageCount;
      std::memcpy(page->second.data() + address % kPage, data.data(), count);
      data = data.subspan(count);
      address += static_cast<uint32_t>(count);
    }
    return true;
  }
  ~Registers() { pageCount -= pages_.size(); }
  Registers() = default;
  Registers(const Registers&) = delete;
  Registers& operator=(const Registers&) = delete;

 private:
  static constexpr uint32_t kPage = 256;
  static constexpr std::size_t kMostPages = std::size_t{1} << 18;  // 64 MiB of registers
  static inline std::size_t pageCount = 0;
  std::unordered_map<uint32_t, std::array<uint8_t, kPage>> pages_;
};

using CardKey = std::tuple<uint8_t, uint8_t, uint16_t>;  // type, port, board
// Never destroyed: at exit the daemon's threads still ask cards.
std::map<CardKey, Registers>& cards() {
  static auto& instance = *new std::map<CardKey, Registers>;
  return instance;
}
// A request and its journal line are one step.
std::mutex cardsLock;

uint16_t checksum(const recvcard_mesg& request, std::span<const unsigned char> data) {
  unsigned sum = request.DeviceType + request.ProtAddr + (request.BoardAddr & 0xFFU) +
                 (request.BoardAddr >> 8) + request.code + request.PacketType + (request.length & 0xFFU) +
                 (request.length >> 8);
  for (int shift = 0; shift < 32; shift += 8) sum += request.RegisterAddr >> shift & 0xFFU;
  for (const unsigned char byte : data) sum += byte;
  return static_cast<uint16_t>(sum);
}

// Calls with the key of each card that a request addresses and that exists. Returns how many there are.
template <class Use>
unsigned forEachCard(const recvcard_mesg& request, Use use) {
  if (request.DeviceType < kFirstType || request.DeviceType > kLastType) return 0;
  const bool allBoards = request.BoardAddr == kAllBoards;
  const unsigned firstBoard = allBoards ? 0 : request.BoardAddr;
  const unsigned endBoard = std::min<unsigned>(conf().cardsPerPort, allBoards ? kAllBoards : firstBoard + 1);
  const unsigned linked = linkedPorts();
  unsigned count = 0;
  for (unsigned port = 0; port < kPorts; ++port) {
    const bool asked = request.ProtAddr == kAllPorts || request.ProtAddr == port;
    if (!asked || (linked >> port & 1) == 0) continue;
    for (unsigned board = firstBoard; board < endBoard; ++board, ++count)
      use(CardKey(request.DeviceType, static_cast<uint8_t>(port), static_cast<uint16_t>(board)));
  }
  return count;
}

// The registers of a card, which from the first look at it are those of a card just plugged in.
Registers& cardAt(const CardKey& key) {
  const auto [entry, made] = cards().try_emplace(key);
  if (made) {
    const uint16_t width = conf().cardWidth;
    const uint16_t height = conf().cardHeight;
    const unsigned char size[] = {static_cast<unsigned char>(width), static_cast<unsigned char>(width >> 8),
                                  static_cast<unsigned char>(height),
                                  static_cast<unsigned char>(height >> 8)};
    entry->second.write(kSizeRegister, size);
    entry->second.write(kBrightnessRegister, {&conf().cardBrightness, 1});
  }
  return entry->second;
}

// Under cardsLock.
bool writeCards(const recvcard_mesg& request, std::span<const unsigned char> data) {
  if (request.code != kWrite || checksum(request, data) != request.checksum) return false;
  bool written = true;
  const unsigned count = forEachCard(
      request, [&](const CardKey& key) { written &= cardAt(key).write(request.RegisterAddr, data); });
  return written && count != 0;
}

// The place in board.conf of the sensor that a card's registers ask for; as many as there are when none is
// asked or it is not there.
std::size_t askedSensor(const CardKey& key, const Registers& card) {
  const auto& sensors = conf().sensors;
  for (std::size_t i = 0; i < std::size(kSensorQuestion); ++i) {
    if (card.read(kSensorRegister + 1 + static_cast<uint32_t>(i)) != kSensorQuestion[i])
      return sensors.size();
  }
  const uint8_t number = card.read(kSensorRegister);
  const auto found = std::find_if(sensors.begin(), sensors.end(), [&](const Sensor& sensor) {
    return CardKey(kSensorType, sensor.port, sensor.board) == key && sensor.number == number;
  });
  return static_cast<std::size_t>(found - sensors.begin());
}

// 0x01 0x02, then half the lux in 15 bits, high byte first, with the valid bit on top.
bool answerOfSensor(std::size_t index, std::span<unsigned char> answer) {
  const uint32_t lux = sensorLux(index);
  if (lux == kNoAnswer) return false;
  const uint32_t half = std::min(lux, kMostLux) / 2;
  const unsigned char bytes[kSensorAnswerLength] = {0x01, 0x02, static_cast<unsigned char>(0x80 | half >> 8),
                                                    static_cast<unsigned char>(half), 0};
  std::copy(std::begin(bytes), std::end(bytes), answer.begin());
  return true;
}

// Under cardsLock. Of several cards that are addressed the first one answers.
bool readCard(const recvcard_mesg& request, std::span<unsigned char> buffer) {
  if (request.code == kWrite || checksum(request, {}) != request.checksum) return false;
  std::optional<CardKey> first;
  forEachCard(request, [&](const CardKey& key) { first = first.value_or(key); });
  if (!first) return false;
  const Registers& card = cardAt(*first);
  if (request.DeviceType == kSensorType && request.RegisterAddr == kSensorRegister &&
      buffer.size() == kSensorAnswerLength) {
    const std::size_t sensor = askedSensor(*first, card);
    if (sensor != conf().sensors.size()) return answerOfSensor(sensor, buffer);
  }
  for (uint32_t i = 0; i < buffer.size(); ++i) buffer[i] = card.read(request.RegisterAddr + i);
  return true;
}

JournalLine& describe(JournalLine&& line, const recvcard_mesg& request) {
  return line.number(request.DeviceType)
      .number(request.ProtAddr)
      .number(request.BoardAddr)
      .address(request.RegisterAddr)
      .number(request.length);
}

recvcard_mesg oneCard(uint8_t type, uint8_t port, uint16_t board) {
  recvcard_mesg request{};
  request.DeviceType = type;
  request.ProtAddr = port;
  request.BoardAddr = board;
  return request;
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
  const std::lock_guard guard(cardsLock);
  writeCards(request, bytes.subspan(kPacketHead, request.length));
}

std::vector<unsigned char> cardRegisters(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                                         std::size_t count) {
  const std::lock_guard guard(cardsLock);
  std::vector<unsigned char> bytes;
  forEachCard(oneCard(type, port, board), [&](const CardKey& key) {
    for (uint32_t i = 0; i < count; ++i) bytes.push_back(cardAt(key).read(address + i));
  });
  return bytes;
}

void setCardRegisters(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                      std::span<const unsigned char> bytes) {
  const std::lock_guard guard(cardsLock);
  forEachCard(oneCard(type, port, board), [&](const CardKey& key) { cardAt(key).write(address, bytes); });
}

void forgetCards() {
  const std::lock_guard guard(cardsLock);
  cards().clear();
}

}  // namespace simboard

using namespace simboard;

int WriteFPGAToRecvCard(unsigned char, recvcard_mesg* request, unsigned char, unsigned char* data) {
  const std::span<const unsigned char> bytes(data, request->length);
  const std::lock_guard guard(cardsLock);
  const bool failed = takeFault(Fault::CardWrite) || !writeCards(*request, bytes);
  if (journalsWrites()) describe(JournalLine("card-write"), *request).bytes(bytes).failedIf(failed);
  return failed ? -1 : 0;
}

int ReadFPGAformRecvCard(unsigned char, recvcard_mesg* request, unsigned char, unsigned char* buffer) {
  const std::span<unsigned char> bytes(buffer, request->length);
  const std::lock_guard guard(cardsLock);
  const bool failed = takeFault(Fault::CardRead) || !readCard(*request, bytes);
  if (journalsReads()) {
    describe(JournalLine("card-read"), *request)
        .bytes(std::span<const unsigned char>(bytes).first(failed ? 0 : bytes.size()))
        .failedIf(failed);
  }
  return failed ? -1 : 0;
}
