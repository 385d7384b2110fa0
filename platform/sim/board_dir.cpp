#include "board_dir.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "apipc_service.h"
#include "board_cards.h"
#include "board_conf.h"
#include "board_control.h"
#include "board_error.h"
#include "board_flash.h"
#include "board_fpga.h"
#include "board_journal.h"
#include "board_power.h"
#include "platform/board.h"
#include "simboard.h"

namespace fs = std::filesystem;

namespace simboard {
namespace {

constexpr char kRebootMark[] = "PARLEND_BOARD_REBOOTED";
constexpr char kPowered[] = "hw/powered";  // there while the board is switched on
constexpr char kFlagFile[] = "etc/init.d/flag_fpgaload";
constexpr char kFpgaStatusFile[] = "sys/class/fpga/fpga_conf";
constexpr const char* kDirectories[] = {"run", "hw", "etc/init.d", "usr/orve/etc/sysconf", "sys/class/fpga"};
// Only the daemon's own files lie there: what is in their place is its business, not the board's.
constexpr const char* kDaemonDirectories[] = {"log", "tmp", "root", "usr/orve/etc/lsd/cabCfg"};

char** arguments = nullptr;
int lockFile = -1;

struct Here {
  std::string root;
  BoardConf conf;
};
// Never destroyed: at exit the daemon's threads still look at it.
Here& here() {
  static auto& instance = *new Here;
  return instance;
}

[[noreturn]] void refuse(const std::string& why) {
  errorLine(why);
  std::exit(2);
}

void readConf() {
  const std::string name = path("board.conf");
  std::error_code failed;
  if (fs::symlink_status(name, failed).type() == fs::file_type::not_found)
    std::ofstream(name) << kDefaultConf;
  const std::ifstream file(name);
  if (!fs::is_regular_file(name, failed) || !file) refuse("cannot read " + name);
  std::stringstream text;
  text << file.rdbuf();
  std::string error;
  here().conf = {};
  if (!parseConf(text.str(), here().conf, error)) refuse(error);
}

// One daemon a board: the lock is held until the process ends or runs another program.
void takeBoard() {
  lockFile = open(path("run/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lockFile < 0) refuse("cannot open " + path("run/lock") + ": " + std::strerror(errno));
  if (flock(lockFile, LOCK_EX | LOCK_NB) == 0) return;
  if (errno == EWOULDBLOCK) refuse("another daemon already runs on the board " + here().root);
  refuse("cannot lock " + path("run/lock") + ": " + std::strerror(errno));
}

// The FPGA is loaded on its own, or somebody else says when; one that lost its power is not loaded.
void showFpgaState(bool rebooted) {
  std::error_code absent;
  if (rebooted) fs::remove(path(kFlagFile), absent);
  if (here().conf.fpgaAutoload) std::ofstream(path(kFlagFile)).flush();
  std::ofstream(path(kFpgaStatusFile)) << (here().conf.fpgaUp ? "1\n" : "0\n");
}

// A board that was switched off, or never on, counts as on when all of it has come up.
void powerUp(bool rebooted) {
  std::error_code failed;
  const bool switchedOn = !fs::exists(path(kPowered), failed) || !fs::exists(path("hw/fpga.bin"), failed);
  if (!openControl() || !openFlash(switchedOn) || !openFpga(switchedOn))
    refuse("cannot open the files in " + path("hw"));
  if (!switchedOn) return;
  showFpgaState(rebooted);
  std::ofstream(path(kPowered)).flush();
}

}  // namespace

std::string path(std::string_view relative) {
  return here().root + '/' + std::string(relative);
}

std::string devicePath(std::string_view devicePath) {
  return path((fs::path("/") / fs::path(devicePath)).lexically_normal().relative_path().string());
}

const BoardConf& conf() {
  return here().conf;
}
unsigned char cardBit() {
  return here().conf.cardBit;
}

void forgetPowered() {
  unlink(path(kPowered).c_str());
}

void markReboot() {
  setenv("PARLEND_BOARD", here().root.c_str(), 1);
  setenv(kRebootMark, "1", 1);
}

void startProgramAgain() {
  // By its own path where that can be learnt, so that the process keeps its name.
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  if (!unknown) execv(program.c_str(), arguments);
  execv("/proc/self/exe", arguments);
  refuse(std::string("the program cannot be started again: ") + std::strerror(errno));
}

void stop() {
  setPower(false);
  apipc_close_all_peers();
  closeJournal();
  closeFpga();
  closeFlash();
  forgetCards();
  close(lockFile);
  lockFile = -1;
}

}  // namespace simboard

using namespace simboard;

void board_start(int, char** argv) {
  const char* named = std::getenv("PARLEND_BOARD");
  const fs::path directory = named != nullptr && *named != '\0' ? named : "board";
  std::error_code failed;
  here().root = fs::absolute(directory, failed).lexically_normal().string();
  if (failed) refuse("cannot find the board " + directory.string() + ": " + failed.message());
  arguments = argv;
  for (const char* part : kDirectories) {
    fs::create_directories(path(part), failed);
    if (failed) refuse("cannot create " + path(part) + ": " + failed.message());
  }
  for (const char* part : kDaemonDirectories) fs::create_directories(path(part), failed);
  takeBoard();
  readConf();
  const bool rebooted = std::getenv(kRebootMark) != nullptr;
  unsetenv(kRebootMark);
  if (!openJournal(here().conf.journal, rebooted)) refuse("cannot write " + path("hw/journal.log"));
  powerUp(rebooted);
  setPower(true);
}

int board_path(const char* device_path, char* out, size_t size) {
  const std::string whole = devicePath(device_path);
  if (whole.size() >= size) return -1;
  std::memcpy(out, whole.c_str(), whole.size() + 1);
  return 0;
}
