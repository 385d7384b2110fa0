// Writes to the configuration file, starting and saving.
#include "calc/brightnesscontrol.h"

#include <algorithm>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

namespace record = brightness;
using Note = BrightnessNote;

constexpr std::size_t kModePageBytes = record::kModePages * record::kPageSize;
constexpr std::size_t kLengthEnd = record::kFileLength + 2;
constexpr uint8_t kLeastTimeout = 2;
constexpr uint8_t kMostTimeout = 0x77;

}  // namespace

bool BrightnessControl::readMirror(std::size_t offset, std::span<uint8_t> bytes) const {
  const std::lock_guard guard(lock_);
  const auto& mirror = schedule_.ProgrammableTimeTableArray;
  if (!loaded_ || !fits(mirror.size(), offset, bytes.size())) return false;
  std::copy_n(mirror.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(), bytes.begin());
  return true;
}

BrightnessSchedule BrightnessControl::state() const {
  const std::lock_guard guard(lock_);
  return schedule_;
}

// Nothing that a peer has written since is overwritten.
bool BrightnessControl::loadMirror() {
  if (locked([&](auto&) { return loaded_; })) return true;
  std::array<uint8_t, record::kMirrorSize> stored{};
  if (!device_.readFile(0, stored)) {
    device_.note(Note::FileUnread, {});
    return false;
  }
  locked([&](BrightnessSchedule& schedule) {
    if (!loaded_) schedule.ProgrammableTimeTableArray = stored;
    loaded_ = true;
  });
  return true;
}

void BrightnessControl::initialise() {
  const bool programmable =
      locked([](BrightnessSchedule& schedule) { return schedule.ProgrammableAdjustEnable == kActive; });
  device_.note(Note::Initialise, {programmable});
  NodeOutcome outcome;
  const LocalMoment now = device_.now();
  const auto start = [&](BrightnessSchedule& schedule, const auto& file) {
    outcome = schedule.BrightnessAdjustInit(file, now);
    ++plan_;
  };
  const bool needsFile = locked([&](BrightnessSchedule& schedule) {
    if (schedule.MixBrightnessAdjustEnable == kActive) return true;
    start(schedule, std::span<const uint8_t>{});
    return false;
  });
  if (needsFile && !withFile(start)) {
    locked([&](auto&) { startIsDue_ = true; });
    return;
  }
  if (outcome.searched) {
    device_.note(Note::FirstNode, {});
    device_.note(Note::LastNode, {});
  }
  carryOut(outcome);
}

void BrightnessControl::applyAndInitialise() {
  locked([](BrightnessSchedule& schedule) { schedule.BriAdjustModeProcess(); });
  initialise();
}

void BrightnessControl::UpdataBrightnessPara() {
  const uint8_t timeout = device_.storedSerialTimeout();
  locked([&](BrightnessSchedule& schedule) {
    if (timeout >= kLeastTimeout && timeout <= kMostTimeout)
      schedule.UartDiscOvertime = timeout;
    else
      schedule.TIM2_PeriodCnt = schedule.UartDiscOvertime + 1U;
  });
  if (!loadMirror()) return;
  const bool nodes = locked([](BrightnessSchedule& schedule) {
    schedule.startMode();
    return schedule.runsNodes();
  });
  if (nodes) initialise();
}

void BrightnessControl::SetBrightnessAdjustTable(std::size_t offset, std::span<const uint8_t> data) {
  device_.note(Note::BeginWrite, {});
  const bool modeWrite = offset == record::kMode && data.size() == 1;
  // Without the stored file nobody knows which mode the write is for.
  if (!data.empty() && loadMirror() && (!modeWrite || storeMode(data[0]))) write(offset, data);
  device_.note(Note::FinishWrite, {});
}

void BrightnessControl::write(std::size_t offset, std::span<const uint8_t> data) {
  const uint8_t mode = locked([&](BrightnessSchedule& schedule) {
    auto& mirror = schedule.ProgrammableTimeTableArray;
    if (fits(mirror.size(), offset, data.size()))
      std::copy(data.begin(), data.end(), mirror.begin() + static_cast<std::ptrdiff_t>(offset));
    return schedule.mode();
  });
  if (record::isMixedFile(mode)) {
    writeMixed(offset, data);
  } else if (mode == record::kProgrammable || mode == record::kAutomatic) {
    locked([&](BrightnessSchedule& schedule) {
      mode == record::kProgrammable ? schedule.startProgrammable() : schedule.startAutomatic();
    });
    initialise();
  } else {
    takeFileLength(offset, data);
    storeChunk(offset, data);
    locked([&](BrightnessSchedule& schedule) {
      schedule.stopAll();
      ++plan_;
    });
  }
}

// The mode byte goes to flash with the pages around it.
bool BrightnessControl::storeMode(uint8_t mode) {
  std::array<uint8_t, kModePageBytes> stored{};
  if (!device_.readFile(0, stored)) {
    device_.note(Note::FileUnread, {});
    return false;
  }
  stored[record::kMode] = mode;
  locked([&](auto&) { ++storing_; });
  for (std::size_t at = 0; at < stored.size(); at += record::kPageSize)
    device_.writeFile(at, std::span(stored).subspan(at, record::kPageSize));
  locked([&](auto&) { ++storing_; });
  return true;
}

bool BrightnessControl::storeChunk(std::size_t offset, std::span<const uint8_t> data) {
  if (!fits(record::kFileSize, offset, data.size())) {
    device_.note(Note::ChunkBeyond, {static_cast<int64_t>(offset), static_cast<int64_t>(data.size())});
    return false;
  }
  locked([&](auto&) { ++storing_; });
  device_.writeFile(offset, data);
  locked([&](auto&) { ++storing_; });
  return true;
}

void BrightnessControl::takeFileLength(std::size_t offset, std::span<const uint8_t> data) {
  if (offset != 0 || data.size() < kLengthEnd) return;
  const uint16_t length = le16(data, record::kFileLength);
  const bool mixed = locked([&](BrightnessSchedule& schedule) {
    schedule.ConfigFileLength = length;
    return record::isMixedFile(schedule.mode());
  });
  if (mixed) device_.note(Note::FileLength, {length});
}

void BrightnessControl::writeMixed(std::size_t offset, std::span<const uint8_t> data) {
  if (offset == record::kControl && data.size() == 1) {
    const bool on = data[0] != 0;
    if (!locked([&](BrightnessSchedule& schedule) { return schedule.switchControl(on); })) return;
    initialise();
    device_.note(Note::ControlSwitch, {on});
    return;
  }
  if (offset == record::kMode && data.size() == 1) {
    applyAndInitialise();
    return;
  }
  takeFileLength(offset, data);
  device_.note(Note::WriteChunk, {static_cast<int64_t>(offset)});
  if (!storeChunk(offset, data)) return;
  const std::size_t length = locked([](BrightnessSchedule& schedule) { return schedule.ConfigFileLength; });
  if (offset + data.size() != length) return;
  device_.note(Note::LastChunk, {static_cast<int64_t>(length)});
  applyAndInitialise();
}

// The parts are composed before the first is written, so that a failed read leaves the flash as it is.
void BrightnessControl::SaveBrightnessPara() {
  File file;
  if (!loadMirror()) return;
  if (!device_.readFile(0, file)) {
    device_.note(Note::FileUnread, {});
    return;
  }
  locked([&](BrightnessSchedule& schedule) {
    std::copy(schedule.ProgrammableTimeTableArray.begin(), schedule.ProgrammableTimeTableArray.end(),
              file.begin());
    ++storing_;
  });
  const std::span<const uint8_t> bytes = file;
  device_.writeFile(0, bytes.subspan(0, record::kPageSize));
  device_.writeFile(record::kPageSize, bytes.subspan(record::kPageSize, record::kPageSize));
  device_.writeFile(record::kMirrorSize, bytes.subspan(record::kMirrorSize));
  locked([&](auto&) { ++storing_; });
}

void BrightnessControl::takeSerialTimeout(uint8_t seconds) {
  const bool changed = locked([&](BrightnessSchedule& schedule) {
    if (seconds == 0 || seconds == schedule.UartDiscOvertime) return false;
    schedule.UartDiscOvertime = seconds;
    return true;
  });
  if (changed) SaveBrightnessPara();
}

void BrightnessControl::heartbeat() {
  locked([](BrightnessSchedule& schedule) { schedule.DevComLinkState = kActive; });
}

}  // namespace ORVE_MCUC
