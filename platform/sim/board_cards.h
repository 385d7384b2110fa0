// The cards behind the output ports: registers that are bytes, and light sensors.
#pragma once

#include <cstdint>
#include <span>

namespace simboard {

// A card request that the daemon puts into the FPGA's packet registers reaches the cards.
void cardPacketFromFpga(uint32_t address, std::span<const unsigned char> bytes);

// All cards as they were when they were plugged in.
void forgetCards();

}  // namespace simboard
