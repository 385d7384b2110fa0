// A wall in virtual time: the brightness control runs on it as it does on the board, a day in some
// milliseconds.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "calc/brightnesscontrol.h"
#include "calc/brightnesspoll.h"

namespace ORVE_MCUC {

using BrightnessFile = std::array<uint8_t, brightness::kFileSize>;

struct SentBrightness {
  int64_t at = 0;  // local seconds, as secondsOf counts them
  uint8_t port = kEveryPort;
  uint8_t value = 0;
  BrightnessReason reason = BrightnessReason::Timetable;
  bool black = false;  // the value is of the black-out, not a brightness
};

class VirtualWall : public BrightnessDevice {
 public:
  // The wall's clock starts at a local moment.
  VirtualWall(const BrightnessFile& file, int64_t localSeconds)
      : file_(file), milliseconds_(localSeconds * 1000) {}

  // Lux of a sensor at a local second; nothing when it does not answer. No function: no sensor answers.
  std::function<std::optional<uint16_t>(int64_t at, const SensorRecord& sensor)> light;
  // Seconds that the local clock is ahead of UTC, at a second of UTC. No function: none.
  std::function<int32_t(int64_t utc)> zone;

  // One tick of 200 ms and what it leads to.
  void tick();
  void runUntil(int64_t localSeconds);
  // Moves the clock without time passing.
  void setClock(int64_t localSeconds);
  int64_t localSeconds() const;

  BrightnessControl& control() { return control_; }
  const BrightnessFile& file() const { return file_; }
  std::vector<SentBrightness> sent;

  LocalMoment now() override;
  bool readFile(std::size_t offset, std::span<uint8_t> bytes) override;
  void writeFile(std::size_t offset, std::span<const uint8_t> bytes) override;
  uint8_t storedSerialTimeout() override { return serialTimeout; }
  void sendBrightness(uint8_t port, uint8_t brightness, BrightnessReason reason) override;
  void sendComponents(uint8_t, const std::array<uint8_t, 4>&) override {}
  void sendBlack(uint8_t value) override;
  bool askSensor(const SensorRecord& sensor, SensorAnswer& answer) override;
  void pause(int milliseconds) override { milliseconds_ += milliseconds; }
  bool resetRequested() override { return false; }
  void note(BrightnessNote, std::initializer_list<int64_t>) override {}

  uint8_t serialTimeout = 40;

 private:
  int32_t offset() const { return zone ? zone(milliseconds_ / 1000) : 0; }

  BrightnessFile file_;
  int64_t milliseconds_;  // UTC
  LocalMoment midnight_;
  int64_t midnightAt_ = -1;
  BrightnessControl control_{*this};
  BrightnessPoll poll_;
};

}  // namespace ORVE_MCUC
