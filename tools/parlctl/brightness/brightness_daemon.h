// What the brightness verbs ask of a daemon.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "brightnesspicture.h"
#include "brightnessplan.h"
#include "commandline.h"
#include "options.h"

namespace parlctl {

// The configuration file as the daemon has it now: mirror and flash, as long as it says it is.
peer::Bytes storedFile(peer::Peer& daemon);
// Sends a plan's bytes as the daemon takes them, and the control switch behind them.
void sendPlan(peer::Peer& daemon, const BrightnessPlan& plan, const peer::Bytes& file);

// One light sensor, asked through its card; nothing when it does not answer. Sensors the daemon would not ask
// are not asked here either.
std::optional<uint16_t> askSensor(peer::Peer& daemon, const ORVE_MCUC::SensorRecord& sensor);
struct SensorReading {
  ORVE_MCUC::SensorRecord sensor;
  std::optional<uint16_t> lux;
};
std::vector<SensorReading> askSensors(peer::Peer& daemon, const BrightnessPlan& plan);
// The average that the daemon would make of them.
std::optional<uint16_t> averageOf(const std::vector<SensorReading>& readings);

// The brightness that the first card of a port holds; nothing without an answer.
std::optional<uint8_t> cardBrightness(peer::Peer& daemon, unsigned port);

// The local time of the board, as ORVE_MCUC::secondsOf counts it: of the board beside, otherwise of this
// machine.
int64_t boardTime(const Options& options);

// A plan in a file: text, or the bytes of a configuration file. Throws peer::Error (Usage).
struct PlanFile {
  BrightnessPlan plan;
  peer::Bytes bytes;
};
PlanFile planFromFile(const std::string& path);

void addPlanVerbs(Verb& brightness, const Options& options);

}  // namespace parlctl
