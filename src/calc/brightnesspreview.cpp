#include "calc/brightnesspreview.h"

#include <algorithm>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

constexpr int64_t kTickMs = 200;
constexpr int64_t kDay = int64_t{24} * 60 * 60;

}  // namespace

void VirtualWall::tick() {
  poll_.tick(control_);
  milliseconds_ += kTickMs;
}

void VirtualWall::runUntil(int64_t localSeconds) {
  while (this->localSeconds() < localSeconds) tick();
}

void VirtualWall::setClock(int64_t localSeconds) {
  milliseconds_ = (localSeconds - offset()) * 1000;
}

int64_t VirtualWall::localSeconds() const {
  return milliseconds_ / 1000 + offset();
}

LocalMoment VirtualWall::now() {
  const int64_t at = localSeconds();
  if (midnightAt_ < 0 || at < midnightAt_ || at >= midnightAt_ + kDay) {
    midnight_ = momentOf(at / kDay * kDay);
    midnightAt_ = at / kDay * kDay;
  }
  LocalMoment moment = midnight_;
  const int rest = static_cast<int>(at - midnightAt_);
  moment.hour = rest / 3600;
  moment.minute = rest / 60 % 60;
  moment.second = rest % 60;
  moment.utcOffset = offset();
  return moment;
}

bool VirtualWall::readFile(std::size_t offset, std::span<uint8_t> bytes) {
  if (!fits(file_.size(), offset, bytes.size())) return false;
  std::copy_n(file_.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(), bytes.begin());
  return true;
}

void VirtualWall::writeFile(std::size_t offset, std::span<const uint8_t> bytes) {
  if (!fits(file_.size(), offset, bytes.size())) return;
  std::copy(bytes.begin(), bytes.end(), file_.begin() + static_cast<std::ptrdiff_t>(offset));
}

void VirtualWall::sendBrightness(uint8_t port, uint8_t brightness, BrightnessReason reason) {
  sent.push_back({.at = localSeconds(), .port = port, .value = brightness, .reason = reason});
}

void VirtualWall::sendBlack(uint8_t value) {
  sent.push_back(
      {.at = localSeconds(), .value = value, .reason = BrightnessReason::Heartbeat, .black = true});
}

bool VirtualWall::askSensor(const SensorRecord& sensor, SensorAnswer& answer) {
  const auto lux = light ? light(localSeconds(), sensor) : std::nullopt;
  if (!lux) return false;
  const auto half = static_cast<uint16_t>(*lux / 2);
  answer = {0x01, 0x02, static_cast<uint8_t>(0x80 | half >> 8), static_cast<uint8_t>(half), 0};
  return true;
}

}  // namespace ORVE_MCUC
