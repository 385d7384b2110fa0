// What is measured: each adds its rows to the table. They throw std::runtime_error when something does not
// start or does not answer.
#pragma once

#include "rounds.h"
#include "servers.h"
#include "table.h"

namespace bench {

void measureRoundTrip(const Programs& programs, const Effort& effort, Table& table);
void measureManyClients(const Programs& programs, const Effort& effort, Table& table);
void measureTraceLine(const Programs& programs, const Effort& effort, Table& table);
void measureWorkQueue(const Programs& programs, const Effort& effort, Table& table);
void measureSpawn(const Programs& programs, const Effort& effort, Table& table);
void measureFootprint(const Programs& programs, const Effort& effort, Table& table);
void measureMapping(const Programs& programs, const Effort& effort, Table& table);
void measureBrightness(const Programs& programs, const Effort& effort, Table& table);
void measurePicture(const Programs& programs, const Effort& effort, Table& table);
void measureInputs(const Programs& programs, const Effort& effort, Table& table);
void measureSender(const Programs& programs, const Effort& effort, Table& table);
void measureChecksum(const Programs& programs, const Effort& effort, Table& table);
void measureFlood(const Programs& programs, const Effort& effort, Table& table);

}  // namespace bench
