// The board that the brightness control runs on: its clock, its flash and its cards.
#pragma once

#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {

class BrightnessBoard : public BrightnessDevice {
 public:
  LocalMoment now() override;
  bool readFile(std::size_t offset, std::span<uint8_t> bytes) override;
  void writeFile(std::size_t offset, std::span<const uint8_t> bytes) override;
  uint8_t storedSerialTimeout() override;
  void sendBrightness(uint8_t port, uint8_t brightness, BrightnessReason reason) override;
  void sendComponents(uint8_t port, const std::array<uint8_t, 4>& components) override;
  void sendBlack(uint8_t value) override;
  bool askSensor(const SensorRecord& sensor, SensorAnswer& answer) override;
  void pause(int milliseconds) override;
  bool resetRequested() override;
  void note(BrightnessNote note, std::initializer_list<int64_t> values) override;
};

}  // namespace ORVE_MCUC
