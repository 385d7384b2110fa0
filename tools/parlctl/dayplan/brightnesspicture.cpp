// The run in virtual time, and its text. The drawings have a file of their own.
#include "brightnesspicture.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "peer/error.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;
using map::BrightnessReason;

constexpr int kDay = 24 * 60 * 60;
constexpr int kHour = 60 * 60;
constexpr int kMinute = 60;
constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};

map::BrightnessFile fileOf(const BrightnessPlan& plan) {
  map::BrightnessFile file{};
  const auto bytes = compile(plan);
  std::copy(bytes.begin(), bytes.end(), file.begin());
  return file;
}

std::string percentText(unsigned brightness) {
  char text[32];
  std::snprintf(text, sizeof text, "%3.0f %% (%3u)", brightness * 100.0 / 255, brightness);
  return text;
}

}  // namespace

const char* reasonName(BrightnessReason reason) {
  constexpr const char* kReasons[] = {"timetable", "sensor", "fallback", "re-send", "heartbeat"};
  return kReasons[static_cast<std::size_t>(reason)];
}

void takeControlSwitch(map::VirtualWall& wall) {
  constexpr uint8_t kOff = 0;
  const map::BrightnessFile& file = wall.file();
  if (record::isMixedFile(file[record::kMode]) && file[record::kControl] == kOff)
    wall.control().SetBrightnessAdjustTable(record::kControl, {&kOff, 1});
}

LightOfDay lightFrom(const std::string& argument) {
  if (!argument.empty() && argument.find_first_not_of("0123456789") == std::string::npos) {
    const auto lux = static_cast<uint16_t>(std::min(std::stoul(argument.substr(0, 6)), 0xFFFFUL));
    return [lux](int) { return lux; };
  }
  std::ifstream file(argument);
  if (!file) throw Error(Failure::Usage, "neither lux nor a file of them: " + argument);
  auto points = std::make_shared<std::vector<std::pair<int, int>>>();
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    line.erase(std::min(line.find('#'), line.size()));
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    int hour = 0;
    int minute = 0;
    int lux = 0;
    const bool read = std::sscanf(line.c_str(), "%2d:%2d %d", &hour, &minute, &lux) == 3;
    const int at = hour * kHour + minute * kMinute;
    if (!read || hour < 0 || hour > 24 || minute < 0 || minute > 59 || lux < 0 || lux > 0xFFFF ||
        (!points->empty() && at <= points->back().first))
      throw Error(Failure::Usage,
                  argument + ':' + std::to_string(number) + ": not \"HH:MM LUX\" with rising times");
    points->emplace_back(at, lux);
  }
  if (points->empty()) throw Error(Failure::Usage, argument + ": no light in it");
  return [points](int second) {
    const auto after = std::upper_bound(points->begin(), points->end(), std::pair{second, 0x10000});
    if (after == points->begin()) return static_cast<uint16_t>(points->front().second);
    if (after == points->end()) return static_cast<uint16_t>(points->back().second);
    const auto before = after - 1;
    const double part = double(second - before->first) / (after->first - before->first);
    return static_cast<uint16_t>(before->second + part * (after->second - before->second));
  };
}

BrightnessPicture::BrightnessPicture(const BrightnessPlan& plan, int64_t midnight, int days,
                                     const LightOfDay& light)
    : plan_(plan), midnight_(midnight), days_(days), lit_(static_cast<bool>(light)) {
  BrightnessPlan simulated = plan;
  if (!lit_) simulated.fallback.enabled = false;  // sensors are not failing, they are not known
  map::VirtualWall wall(fileOf(simulated), midnight - kDay);
  takeControlSwitch(wall);
  if (light)
    wall.light = [light](int64_t at, const map::SensorRecord&) { return light(static_cast<int>(at % kDay)); };
  run(wall);
}

// The state is looked at once a minute.
void BrightnessPicture::run(map::VirtualWall& wall) {
  const int64_t end = midnight_ + int64_t{days_} * kDay;
  std::size_t taken = 0;
  int32_t waitedFor = -1;
  for (int64_t at = midnight_ - kDay + kMinute; at <= end; at += kMinute) {
    wall.runUntil(at);
    for (; taken < wall.sent.size(); ++taken) take(wall.sent[taken]);
    const map::BrightnessSchedule state = wall.control().state();
    const bool ambient =
        state.AutoBrightnessAdjustEnable == map::kActive ||
        (state.MixBrightnessAdjustEnable == map::kActive && state.MixAutoBriAdjustEnable == map::kActive);
    const bool fixed =
        state.ProgrammableAdjustEnable == map::kActive || state.BriBroadcastEnable == map::kActive;
    const SlotKind kind = ambient ? SlotKind::Ambient : fixed ? SlotKind::Fixed : SlotKind::None;
    const int from = static_cast<int>(at - midnight_) - kMinute;
    if (from < 0) continue;
    if (spans_.empty() || spans_.back().kind != kind || waitedFor != state.RtcIndex) {
      const int nodes = std::max(1, static_cast<int>(state.ProgrammableAdjustPartNum));
      const bool cycles = state.INT_Once != 2;
      spans_.push_back({from, from, kind, cycles ? (state.RtcIndex + nodes - 1) % nodes : -1});
    }
    spans_.back().to = from + kMinute;
    waitedFor = state.RtcIndex;
  }
}

// What was sent the day before stands at the beginning.
void BrightnessPicture::take(const map::SentBrightness& sent) {
  if (sent.black) return;
  SentStep step = steps_.empty() ? SentStep{} : steps_.back();
  step.at = std::max(0, static_cast<int>(sent.at - midnight_));
  step.reason = sent.reason;
  step.whole = sent.port == map::kEveryPort;
  for (unsigned port = 0; port < step.ports.size(); ++port)
    if (step.whole || sent.port == port) step.ports[port] = sent.value;
  if (!steps_.empty() && steps_.back().at == step.at && (!step.whole || step.at == 0))
    steps_.back() = step;
  else
    steps_.push_back(step);
}

std::optional<uint8_t> BrightnessPicture::brightnessAt(int second, unsigned port) const {
  const auto after = std::upper_bound(steps_.begin(), steps_.end(), second,
                                      [](int at, const SentStep& step) { return at < step.at; });
  return after == steps_.begin() ? std::nullopt : std::optional((after - 1)->ports[port]);
}

bool BrightnessPicture::portsDiffer() const {
  return std::any_of(steps_.begin(), steps_.end(), [](const SentStep& step) {
    return std::adjacent_find(step.ports.begin(), step.ports.end(), std::not_equal_to<>()) !=
           step.ports.end();
  });
}

std::pair<double, double> BrightnessPicture::lightRange() const {
  if (plan_.mode == record::kAutomatic)
    return std::minmax(plan_.table.minBrightness * 100.0 / 255, plan_.table.maxBrightness * 100.0 / 255);
  double low = 100;
  double high = 0;
  for (const auto& point : plan_.map) {
    low = std::min(low, std::min(100.0, double(point.percent)));
    high = std::max(high, std::min(100.0, double(point.percent)));
  }
  return {std::min(low, high), high};
}

std::string BrightnessPicture::title() const {
  const map::LocalMoment day = map::momentOf(midnight_);
  char date[40];
  std::snprintf(date, sizeof date, "%s %04d-%02d-%02d", kWeekdays[day.weekday - 1], day.year + 2000,
                day.month, day.day);
  return std::string("Brightness, ") + modeName(plan_.mode) + " plan, " + (days_ == 1 ? "" : "7 days from ") +
         date;
}

std::string BrightnessPicture::secondText(int second) const {
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", second / kHour % 24, second / kMinute % 60, second % 60);
  return text;
}

namespace {

// Stepwise changes and repetitions in one line: the last step of a run that goes on within two seconds.
std::vector<SentStep> decisions(const std::vector<SentStep>& steps, int from, int to) {
  std::vector<SentStep> list;
  for (const SentStep& step : steps) {
    if (step.at < from || step.at >= to || step.reason == BrightnessReason::Resend) continue;
    const bool goesOn = !list.empty() && list.back().reason == step.reason && step.at - list.back().at <= 2;
    if (goesOn)
      list.back() = step;
    else if (list.empty() || list.back().ports != step.ports || list.back().reason != step.reason)
      list.push_back(step);
  }
  return list;
}

}  // namespace

std::string BrightnessPicture::dayText(int day) const {
  std::string text;
  for (const SentStep& step : decisions(steps_, day * kDay, (day + 1) * kDay)) {
    text += "\n  " + secondText(step.at) + "  ";
    if (portsDiffer())
      for (unsigned port = 0; port < step.ports.size(); ++port)
        text += (port == 0 ? "ports " : ", ") + std::to_string(port) + ':' + percentText(step.ports[port]);
    else
      text += percentText(step.ports[0]);
    text += std::string("  ") + reasonName(step.reason);
  }
  return text;
}

// An hour a line: a bar of what it has in its middle.
std::string BrightnessPicture::hoursText(int day) const {
  constexpr int kBar = 50;
  std::string text;
  for (int hour = 0; hour < 24; ++hour) {
    const int second = day * kDay + hour * kHour + kHour / 2 + kMinute;
    const auto span =
        std::find_if(spans_.begin(), spans_.end(), [&](const SlotSpan& s) { return second < s.to; });
    const bool light = span != spans_.end() && span->kind == SlotKind::Ambient && !lit_;
    const auto brightness = brightnessAt(second);
    char line[32];
    std::snprintf(line, sizeof line, "\n  %02d h |", hour);
    text += line;
    if (light) {
      const auto [low, high] = lightRange();
      const auto from = static_cast<std::size_t>(low * kBar / 100);
      const auto to = static_cast<std::size_t>(high * kBar / 100);
      text += std::string(from, '#') + std::string(to - from, '~') + std::string(kBar - to, ' ');
      std::snprintf(line, sizeof line, "| %.0f-%.0f %% by light", low, high);
    } else {
      const auto bar = static_cast<std::size_t>(brightness.value_or(0) * kBar / 255);
      text += std::string(bar, '#') + std::string(kBar - bar, ' ');
      std::snprintf(line, sizeof line, "| %.0f %%", brightness.value_or(0) * 100.0 / 255);
    }
    text += line;
  }
  return text;
}

std::string BrightnessPicture::text() const {
  std::string text = title();
  for (int day = 0; day < days_; ++day) {
    if (days_ > 1)
      text += std::string("\n") + kWeekdays[map::momentOf(midnight_ + int64_t{day} * kDay).weekday - 1];
    const std::string changes = dayText(day);
    text += changes.empty() ? "\n  nothing is sent" : changes;
    if (days_ == 1) text += hoursText(day);
  }
  return text;
}

}  // namespace parlctl
