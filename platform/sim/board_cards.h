// The cards behind the output ports: registers that are bytes, and light sensors.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace simboard {

// A card request that the daemon puts into the FPGA's packet registers reaches the cards.
void cardPacketFromFpga(uint32_t address, std::span<const unsigned char> bytes);

// Registers of one card, past all calls; a card that does not exist has none.
std::vector<unsigned char> cardRegisters(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                                         std::size_t count);
void setCardRegisters(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                      std::span<const unsigned char> bytes);

// All cards as they were when they were plugged in.
void forgetCards();

}  // namespace simboard
