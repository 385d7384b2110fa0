// The packets that carry a brightness to the cards through FPGA registers: a card request with its data and
// the 16-bit sum of all bytes before it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>

#include "maps/cardmap.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

inline constexpr std::size_t kPacketHead = 12;

template <std::size_t count>
constexpr std::array<uint8_t, kPacketHead + count + 2> packetToAllCards(
    uint8_t port, uint32_t address, const std::array<uint8_t, count>& data) {
  std::array<uint8_t, kPacketHead + count + 2> packet{};
  ByteWriter writer(packet);
  writer.u8(card::kReceivingCard);
  writer.u8(port);
  writer.le16(0xFFFF);  // every card
  writer.u8(1);         // write
  writer.u8(0);
  writer.le32(address);
  writer.le16(static_cast<uint16_t>(count));
  writer.bytes(data);
  writer.le16(
      static_cast<uint16_t>(std::accumulate(packet.begin(), packet.begin() + kPacketHead + count, 0U)));
  return packet;
}

constexpr auto brightnessPacket(uint8_t port, uint8_t brightness) {
  return packetToAllCards<1>(port, card::kBrightness, {brightness});
}
constexpr auto componentPacket(uint8_t port, const std::array<uint8_t, 4>& components) {
  return packetToAllCards<4>(port, card::kComponents, components);
}
static_assert(brightnessPacket(3, 0x80).size() == 15 && componentPacket(3, {}).size() == 18);
static_assert(brightnessPacket(2, 0x10)[13] == 0x16 && brightnessPacket(2, 0x10)[14] == 0x02);

}  // namespace ORVE_MCUC
