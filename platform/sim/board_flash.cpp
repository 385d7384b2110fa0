#include "board_flash.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <optional>

#include "board_control.h"
#include "board_files.h"
#include "board_journal.h"
#include "board_power.h"
#include "platform/driver.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr std::size_t kFlashSize = std::size_t{32} << 20;
constexpr char kFlash[] = "hw/flash.bin";
constexpr char kFactory[] = "usr/orve/etc/sysconf/kespara_factory";
constexpr char kFactoryCopy[] = "usr/orve/etc/sysconf/kespara_factory_tmp";
// A factory-new board drives a screen of one card.
constexpr off_t kShortcutDefaultsAt = 0xC20030;
constexpr unsigned char kShortcutDefaults[] = {0, 1, 1, 1};

int flashFile = -1;
// Writes and their journal lines come in the same order.
std::mutex writeLock;

bool inFlash(uint32_t address, uint32_t length) {
  return address <= kFlashSize && length <= kFlashSize - address;
}

bool writeWhole(int file, uint32_t address, uint32_t length, const unsigned char* data) {
  return pwrite(file, data, length, static_cast<off_t>(address)) == static_cast<ssize_t>(length);
}

void journalWrite(const char* call, uint32_t address, uint32_t length, const unsigned char* data,
                  bool failed) {
  if (journalsWrites()) {
    JournalLine(call).address(address).number(length).bytes({data, length}).failedIf(failed);
  }
}

bool createFactoryImage() {
  if (access(path(kFactory).c_str(), F_OK) == 0) return true;
  const int file = openSized(path(kFactory), kFlashSize);
  if (file < 0) return false;
  const bool written = pwrite(file, kShortcutDefaults, sizeof kShortcutDefaults, kShortcutDefaultsAt) ==
                       static_cast<ssize_t>(sizeof kShortcutDefaults);
  close(file);
  return written;
}

bool takeFactoryCopy() {
  const int copy = open(path(kFactoryCopy).c_str(), O_RDONLY | O_CLOEXEC);
  if (copy < 0) return errno == ENOENT;
  const bool taken = copyContents(copy, flashFile) && syncFlash();
  close(copy);
  return taken && unlink(path(kFactoryCopy).c_str()) == 0;
}

}  // namespace

bool openFlash(bool switchedOn) {
  flashFile = openSized(path(kFlash), kFlashSize);
  return flashFile >= 0 && (!switchedOn || takeFactoryCopy()) && createFactoryImage();
}

void closeFlash() {
  const std::lock_guard guard(writeLock);
  if (flashFile >= 0) close(flashFile);
  flashFile = -1;
}

bool syncFlash() {
  return fdatasync(flashFile) == 0;
}

}  // namespace simboard

using namespace simboard;

int Flash_Init(void) {
  return 0;
}

int ReadDataFromFlashx(uint32_t address, uint32_t length, unsigned char* buffer) {
  const bool failed =
      takeFault(Fault::FlashRead, address, length) || !inFlash(address, length) ||
      pread(flashFile, buffer, length, static_cast<off_t>(address)) != static_cast<ssize_t>(length);
  if (journalsReads()) JournalLine("flash-read").address(address).number(length).failedIf(failed);
  return failed ? -1 : 0;
}

int WriteDataToFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  std::unique_lock guard(writeLock);
  const std::optional<uint32_t> done = hasPower() ? takePowerCut(length) : std::nullopt;
  const uint32_t written = done.value_or(length);
  const bool failed = (!done && takeFault(Fault::FlashWrite, address, length)) || !inFlash(address, length) ||
                      !writeWhole(flashFile, address, written, data) || written < length;
  journalWrite("flash-write", address, length, data, failed);
  if (!done) return failed ? -1 : 0;
  setPower(false);  // before the next write has its turn
  guard.unlock();
  powerGoes(Outage::Cut);
  return -1;
}

int WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  const std::lock_guard guard(writeLock);
  const int file = open(path(kFactoryCopy).c_str(), O_RDWR | O_CLOEXEC);
  const bool failed = takeFault(Fault::FactoryWrite, address, length) || file < 0 ||
                      !inFlash(address, length) || !writeWhole(file, address, length, data);
  if (file >= 0) close(file);
  journalWrite("factory-write", address, length, data, failed);
  return failed ? -1 : 0;
}
