// The parts of the simulated board as its power switch and its wiring see them.
#ifndef PLATFORM_SIM_BOARD_PARTS_H
#define PLATFORM_SIM_BOARD_PARTS_H

#include <cstddef>
#include <cstdint>

#include "platform/driver.h"

namespace simboard {

constexpr uint32_t kFpgaBytes = 256U << 20;
constexpr uint32_t kFlashBytes = 32U << 20;
constexpr char kFactoryImage[] = "usr/orve/etc/sysconf/kespara_factory";
constexpr char kFactoryCopy[] = "usr/orve/etc/sysconf/kespara_factory_tmp";

/** True when length bytes from address on lie in size bytes. */
constexpr bool within(uint32_t address, uint32_t length, uint32_t size) {
  return address <= size && length <= size - address;
}

/** Opens a file of the board directory at the given size, sparse where it is new; ends the process otherwise.
 */
int openSized(const char* relative, size_t size);
/** The same, mapped shared. */
void* mapSized(const char* relative, size_t size);

void controlStart();
void controlStop();
/** Reading of the sensor at this place of board.conf; 0xFFFFFFFF: it does not answer. */
uint32_t sensorLux(size_t index);

void fpgaStart();
void fpgaStop();
/** Clears the bus and shows the status registers that board.conf asks for. */
void fpgaPowerOn();
/** The ports that are linked just now, over copper or either fiber path: bit p for port p. */
uint16_t linkedPorts();

void flashStart();
void flashStop();
/** A factory copy takes the place of the flash's contents. */
void flashPowerOn();

/** Forgets what was written to the cards. */
void cardsStop();
/** Carries out a write request as a card gets it; false: no card took it. Journals it. */
bool cardWrite(const recvcard_mesg& request, unsigned char port, const unsigned char* data);

}  // namespace simboard

#endif
