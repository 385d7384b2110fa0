// What tells the tasks for the four kinds of cards behind the ports apart.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "logwords.h"

namespace ORVE_MCUC {

// A write as it is carried out.
struct CardWrite {
  uint32_t address;
  bool fromLsd;
  std::vector<uint8_t> data;  // as many bytes as the request counts, zero where it has none
};

// Every request goes out in chunks; a task may look at a write on its way.
struct CardTask {
  uint8_t selector;             // the cards' device type
  uint16_t chunkSize;           // bytes
  int noAnswer;                 // acknowledge code and result of a read that a card did not answer
  bool outspoken = false;       // names the result of a read that failed, and an unknown code type
  bool showsData = false;       // names the first byte of each written chunk
  bool asksTheLink = false;     // verifies the port before a read
  int (*pause)(uint32_t next);  // microseconds after a written chunk, in front of the next address
  void (*beforeWrite)(const CardWrite& write) = [](const CardWrite&) {};
  void (*afterChunk)(const CardWrite& write, uint32_t address, std::span<const uint8_t> chunk) =
      [](const CardWrite&, uint32_t, std::span<const uint8_t>) {};
  void (*afterWrite)(uint32_t reached) = [](uint32_t) {};
  SectionWords section;  // only a write finishes it
  const char* name;
  const char* cards;
  const char* readDone;
  const char* readFailed;
};

extern const CardTask kReceivingCards;
extern const CardTask kMultiCards;
extern const CardTask kDistributionCards;
extern const CardTask kLaunchers3D;

}  // namespace ORVE_MCUC
