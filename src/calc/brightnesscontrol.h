// Runs the brightness schedule on a device: reads flash, clock and sensors for it, and sends what it decides.
// The daemon gives it the board, the preview and the tests a board in virtual time.
//
// The receive, work and flag threads share it. One lock guards schedule and mirror; it is never held while
// the device is called.
#pragma once

#include <initializer_list>
#include <mutex>
#include <optional>
#include <span>

#include "calc/brightnessnotes.h"
#include "calc/brightnessschedule.h"

namespace ORVE_MCUC {

inline constexpr uint8_t kEveryPort = 255;

// What the control runs on.
class BrightnessDevice {
 public:
  virtual ~BrightnessDevice() = default;

  virtual LocalMoment now() = 0;
  // The stored configuration file. false: not read, the bytes are undefined.
  virtual bool readFile(std::size_t offset, std::span<uint8_t> bytes) = 0;
  virtual void writeFile(std::size_t offset, std::span<const uint8_t> bytes) = 0;
  // The serial time-out among the stored feature parameters, in seconds.
  virtual uint8_t storedSerialTimeout() = 0;
  // Brightness of all cards behind one port, or behind every port.
  virtual void sendBrightness(uint8_t port, uint8_t brightness, BrightnessReason reason) = 0;
  virtual void sendComponents(uint8_t port, const std::array<uint8_t, 4>& components) = 0;
  // All cards black (0xFF) or not (0x00).
  virtual void sendBlack(uint8_t value) = 0;
  // Asks a sensor; false when it cannot be read.
  virtual bool askSensor(const SensorRecord& sensor, SensorAnswer& answer) = 0;
  virtual void pause(int milliseconds) = 0;
  // A factory reset waits.
  virtual bool resetRequested() = 0;
  virtual void note(BrightnessNote note, std::initializer_list<int64_t> values) = 0;
};

class BrightnessControl {
 public:
  explicit BrightnessControl(BrightnessDevice& device) : device_(device) {}

  // Receive thread: bytes of the mirror; false when they do not lie inside of it, and before it is loaded.
  bool readMirror(std::size_t offset, std::span<uint8_t> bytes) const;

  // Work thread: a write to the file at its offset.
  void SetBrightnessAdjustTable(std::size_t offset, std::span<const uint8_t> data);
  void SaveBrightnessPara();
  // A time-out from the feature parameters, 1 to 255 seconds; a changed one is taken and the parameters are
  // saved.
  void takeSerialTimeout(uint8_t seconds);
  void heartbeat();

  // Flag thread, at the periods of the poll.
  void UpdataBrightnessPara();
  void SeiralComErrorProcess();
  void countSecond();
  void TimeToOver_Handler();
  void startAutomaticReading();
  void ProgrammableBrightnessAdjust();
  void AutoBrightnessAdjust();
  void MixBrightnessAdjust();

  // Whether the stored file has been read; until then there is no mode to run.
  bool loaded() const;

  // The state as it is now.
  BrightnessSchedule state() const;

 private:
  using File = std::array<uint8_t, brightness::kFileSize>;

  template <class Work>
  auto locked(Work work) {
    const std::lock_guard guard(lock_);
    return work(schedule_);
  }
  template <class Work>
  bool withFile(Work work);
  bool loadMirror();
  void initialise();

  bool storeMode(uint8_t mode);
  // False for a chunk that does not lie inside the file's area.
  bool storeChunk(std::size_t offset, std::span<const uint8_t> data);
  void write(std::size_t offset, std::span<const uint8_t> data);
  void writeMixed(std::size_t offset, std::span<const uint8_t> data);
  void takeFileLength(std::size_t offset, std::span<const uint8_t> data);
  void applyAndInitialise();

  void carryOut(const NodeOutcome& outcome);
  void applyPorts(const ProgrammableNode& node);
  void SmartAdjustGlobalBrightness(const BrightnessChange& change);
  bool overtaken(uint32_t plan) const;
  void noteArmed(const ArmedNode& armed);

  void runMixedNode();
  void runMixedReading();
  std::optional<uint8_t> percentOf(const BrightnessSchedule::MixedDecision& decision, const File& file);
  std::optional<uint16_t> ReadEnvironmentLux(const SensorRecord& sensor);
  std::optional<uint16_t> averageOf(const SensorList& sensors);
  std::optional<uint16_t> GetAverageLuxOneTime();
  std::optional<uint16_t> GetMixAdjAverageLux(const File& file);
  std::optional<BrightnessChange> automaticChange(std::optional<uint16_t> lux);
  std::optional<uint8_t> percentFor(const File& file, uint16_t lux);

  BrightnessDevice& device_;
  mutable std::mutex lock_;
  BrightnessSchedule schedule_;
  bool loaded_ = false;      // the mirror holds the stored file or what a peer wrote over it
  uint32_t storing_ = 0;     // odd while the file in flash changes; tells a reader that it did
  uint32_t plan_ = 0;        // counts the starts of a mode
  bool startIsDue_ = false;  // the mixed mode could not be started: its file was not to be read
};

// Gives work the stored file, under the lock and only if the file has not changed while it was read. False
// when it could not be read or is changing: whatever asked for it is still due then.
template <class Work>
bool BrightnessControl::withFile(Work work) {
  File file;
  const uint32_t before = locked([&](auto&) { return storing_; });
  if (before % 2 != 0) return false;
  if (!device_.readFile(0, file)) {
    device_.note(BrightnessNote::FileUnread, {});
    return false;
  }
  return locked([&](BrightnessSchedule& schedule) {
    if (storing_ != before) return false;
    work(schedule, static_cast<const File&>(file));
    return true;
  });
}

}  // namespace ORVE_MCUC
