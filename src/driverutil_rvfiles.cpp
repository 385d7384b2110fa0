// Configuration files of the receiving cards: stored, removed, played.
#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "calc/rvconfig.h"
#include "calc/rvplayback.h"
#include "driverutil.h"
#include "maps/cardmap.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "regularfile.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

constexpr mode_t kFileMode = 0664;
constexpr uint8_t kAllPorts = 0xFF;
constexpr uint16_t kAllBoards = 0xFFFF;
constexpr int64_t kLongestPlaybackUs = int64_t{10} * 60 * 1000000;
constexpr int kLongestSleepMs = 100;  // for so long nobody who wants a playback to end waits

FilePlace storedFile(unsigned int number) {
  return {DriverUtil::kCabCfgDirectory, rvStorageName(number).name.data()};
}

// The file that a number, or else a full path names.
std::optional<FilePlace> fileOf(const char* name, int index) {
  if (index >= 0 && index < rv::kFileNumbers) return storedFile(static_cast<unsigned int>(index));
  return placeOf(name);
}

void remove(const FilePlace& place, const char* word) {
  PARLEND_TRACE(kInfo) << "<<<<<<<<<<<<<<<<<<< " << word << " File: " << place.directory + place.name;
  if (const int failed = removeRegular(place)) {
    PARLEND_TRACE(kError) << "=== RemoveRvFile ===" << place.name
                          << " was not removed: " << errorText(failed);
  }
}

// One playback, which somebody may end.
class Playback {
 public:
  explicit Playback(bool (*mayGoOn)())
      : mayGoOn_(mayGoOn), until_(board_monotonic_us() + kLongestPlaybackUs) {}

  RvEnd play(std::span<const uint8_t> file) {
    return forEachRvItem(file, [this](const RvItem& item) {
      return playRvItem(
          item, [this](uint32_t at, std::span<const uint8_t> bytes) { return write(at, bytes); },
          [this](int milliseconds) { return pause(milliseconds); });
    });
  }
  // Why it was stopped; null when it was not.
  const char* stopped() const { return stopped_; }
  unsigned int writes() const { return writes_; }
  unsigned int failures() const { return failures_; }

 private:
  bool goesOn() {
    if (mayGoOn_ != nullptr && !mayGoOn_()) stopped_ = "a factory reset or the end of the daemon is due";
    if (board_monotonic_us() >= until_) stopped_ = "ten minutes have passed";
    return stopped_ == nullptr;
  }
  bool write(uint32_t at, std::span<const uint8_t> bytes) {
    if (!goesOn()) return false;
    ++writes_;
    const int result = DriverUtil::getInstance()->SendCardPara(
        at, kAllPorts, kAllBoards, static_cast<uint16_t>(bytes.size()), bytes.data(), card::kReceivingCard);
    if (result != 0) ++failures_;
    return true;
  }
  bool pause(int milliseconds) {
    for (; milliseconds > 0; milliseconds -= kLongestSleepMs) {
      if (!goesOn()) return false;
      Delay(std::min(milliseconds, kLongestSleepMs));
    }
    return true;
  }

  bool (*mayGoOn_)();
  const int64_t until_;
  const char* stopped_ = nullptr;
  unsigned int writes_ = 0;
  unsigned int failures_ = 0;
};

const char* wordsOf(RvEnd end, const Playback& playback) {
  switch (end) {
    case RvEnd::kDone:
      return nullptr;
    case RvEnd::kTooLong:
      return "an item is too long";
    case RvEnd::kCutShort:
      return "an item does not lie within the file";
    case RvEnd::kStopped:
      break;
  }
  return playback.stopped();
}

}  // namespace

int DriverUtil::WriteRvFileToFalsh(const char* name, int index, unsigned int offset,
                                   const unsigned char* data, unsigned short length) {
  const auto place = fileOf(name, index);
  const int failed = place ? storeAt(*place, kFileMode, offset, {data, length}) : EINVAL;
  if (failed == 0) return 0;
  PARLEND_TRACE(kError) << "File Fail " << errorText(failed) << ": " << length << " bytes at " << offset
                        << " of " << (place ? place->name : std::string("a path without a name"));
  return 1;
}

int DriverUtil::RemoveRvFile(const char* name, int index) {
  const auto place = fileOf(name, index);
  FileKind kind{};
  if (const int failed = place ? examine(*place, kind) : EINVAL) {
    PARLEND_TRACE(kError) << "get directory stat error " << errorText(failed);
    return kFailed;
  }
  if (kind == FileKind::kRegular) remove(*place, "Remove");
  return 0;
}

int DriverUtil::RemoveOtherRvFile(int first, int end) {
  for (int number = std::max(first, 0); number < std::min(end, rv::kFileNumbers); ++number) {
    const FilePlace place = storedFile(static_cast<unsigned int>(number));
    FileKind kind{};
    if (examine(place, kind) == 0 && kind == FileKind::kRegular) remove(place, "Delate");
  }
  return 0;
}

int DriverUtil::LoadRvCfgToRecvCard(unsigned int index, bool (*mayGoOn)()) {
  if (index >= static_cast<unsigned int>(rv::kFileNumbers)) return kFailed;
  std::vector<uint8_t> file;
  const int unread = readWhole(storedFile(index), rv::kMostFileBytes, file);
  if (unread == ENOENT) return 0;
  if (unread != 0) {
    PARLEND_TRACE(kError) << "=== LoadRvCfgToRecvCard ===file " << index
                          << " is not played: " << errorText(unread);
    return kFailed;
  }
  Playback playback(mayGoOn);
  const char* why = wordsOf(playback.play(file), playback);
  if (why != nullptr) {
    PARLEND_TRACE(kError) << "=== LoadRvCfgToRecvCard ===the playback of file " << index << " ends after "
                          << playback.writes() << " writes: " << why;
  }
  if (playback.failures() != 0) {
    PARLEND_TRACE(kError) << "=== LoadRvCfgToRecvCard ===" << playback.failures() << " of "
                          << playback.writes() << " card writes of file " << index << " failed";
  }
  return why == nullptr && playback.failures() == 0 ? 0 : kFailed;
}

}  // namespace ORVE_MCUC
