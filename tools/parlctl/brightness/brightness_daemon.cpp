#include "brightness_daemon.h"

#include <algorithm>
#include <ctime>
#include <thread>

#include "inputfile.h"
#include "maps/cardmap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace reg = ORVE_MCUC::reg;
namespace card = ORVE_MCUC::card;
namespace record = ORVE_MCUC::brightness;

constexpr std::size_t kPiece = 512;
constexpr peer::milliseconds kSensorPause{2};
constexpr int kSensorTries = 3;  // the daemon may ask the same card meanwhile

peer::Frame toCard(uint8_t type, unsigned port, unsigned board) {
  return {.deviceType = type, .port = static_cast<uint8_t>(port), .board = static_cast<uint16_t>(board)};
}

}  // namespace

Bytes storedFile(peer::Peer& daemon) {
  Bytes file = daemon.read(reg::kBrightness, record::kMirrorSize);
  if (!record::isMixedFile(file[record::kMode])) return file;
  const std::size_t length = std::min<std::size_t>(map::le16(file, record::kFileLength), record::kFileSize);
  for (std::size_t at = file.size(); at < length; at = file.size()) {
    const Bytes piece =
        daemon.read(reg::kBrightness + static_cast<uint32_t>(at), std::min(kPiece, length - at));
    file.insert(file.end(), piece.begin(), piece.end());
  }
  file.resize(std::max<std::size_t>(length, record::kGradual + 1));
  return file;
}

void sendPlan(peer::Peer& daemon, const BrightnessPlan& plan, const Bytes& file) {
  for (std::size_t at = 0; at < file.size(); at += kPiece) {
    const auto end = file.begin() + static_cast<std::ptrdiff_t>(std::min(at + kPiece, file.size()));
    daemon.write(reg::kBrightness + static_cast<uint32_t>(at),
                 Bytes(file.begin() + static_cast<std::ptrdiff_t>(at), end));
  }
  if (record::isMixedFile(plan.mode))
    daemon.write(reg::kBrightnessControl, {plan.control ? uint8_t{1} : uint8_t{0}});
}

std::optional<uint16_t> askSensor(peer::Peer& daemon, const map::SensorRecord& sensor) {
  if (!map::mayBeAsked(sensor)) return {};
  const map::SensorQuestion question = map::questionTo(sensor);
  const peer::Frame to = toCard(card::kMultiFunctionCard, sensor.PortAddr, sensor.BoardAddr);
  for (int attempt = 0; attempt < kSensorTries; ++attempt) {
    try {
      daemon.write(card::kSensor, {question.begin(), question.end()}, to);
      std::this_thread::sleep_for(kSensorPause);
      const Bytes bytes = daemon.read(card::kSensor, map::SensorAnswer{}.size(), to);
      map::SensorAnswer answer{};
      std::copy_n(bytes.begin(), answer.size(), answer.begin());
      if (const auto lux = map::luxOf(answer)) return lux;
    } catch (const Error& error) {
      if (error.failure() != Failure::Acknowledge && error.failure() != Failure::ShortReply) throw;
    }
  }
  return {};
}

std::vector<SensorReading> askSensors(peer::Peer& daemon, const BrightnessPlan& plan) {
  std::vector<SensorReading> readings;
  for (const auto& sensor : plan.sensors) readings.push_back({sensor, askSensor(daemon, sensor)});
  return readings;
}

std::optional<uint16_t> averageOf(const std::vector<SensorReading>& readings) {
  std::vector<uint16_t> values;
  for (const SensorReading& reading : readings)
    if (reading.lux) values.push_back(*reading.lux);
  return map::SortAndAverage(values);
}

std::optional<uint8_t> cardBrightness(peer::Peer& daemon, unsigned port) {
  try {
    return daemon.read(card::kBrightness, 1, toCard(card::kReceivingCard, port, 0)).at(0);
  } catch (const Error& error) {
    if (error.failure() != Failure::Acknowledge && error.failure() != Failure::ShortReply) throw;
    return {};
  }
}

int64_t boardTime(const Options& options) {
  const auto now = static_cast<std::time_t>(std::time(nullptr) +
                                            (options.besideBoard() ? options.board().clockOffset() : 0));
  std::tm local{};
  localtime_r(&now, &local);
  return map::secondsOf({.year = local.tm_year - 100,
                         .month = local.tm_mon + 1,
                         .day = local.tm_mday,
                         .hour = local.tm_hour,
                         .minute = local.tm_min,
                         .second = local.tm_sec});
}

PlanFile planFromFile(const std::string& path) {
  constexpr std::size_t kLargest = 1 << 20;
  const Bytes bytes = fileBytes(path, kLargest);
  const std::string text(bytes.begin(), bytes.end());
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first != std::string::npos && (text[first] == '{' || text[first] == '/')) {
    PlanFile result{planFromText(text), {}};
    result.bytes = compile(result.plan);
    return result;
  }
  if (bytes.empty() || std::string_view(modeName(bytes[0])) == "off" || bytes.size() > record::kFileSize)
    throw Error(Failure::Usage, path + " is neither the text of a plan nor a configuration file");
  return {decompile(bytes), bytes};
}

}  // namespace parlctl
