// The board directory: configuration, lock, journal, paths, control page and clock.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "apipc_service.h"
#include "platform/board.h"
#include "simboard.h"

namespace fs = std::filesystem;

namespace simboard {
namespace {

constexpr char kRebootMark[] = "PARLEND_BOARD_REBOOTED";
struct Control {
  char magic[8];
  std::atomic<int64_t> clockOffset;
  std::atomic<uint32_t> faults[16];
};
std::string root;
Control* control = nullptr;
int journalFile = -1;
char** arguments = nullptr;
timespec started{};
std::map<std::string, std::string> values;

[[noreturn]] void stop(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  std::exit(2);
}

constexpr char kDefaults[] =
    "card_bit = 1\nfpga_autoload = yes\nfpga_status = up\ncopper_ports = 0-3\nfiber1_ports =\nfiber2_ports "
    "=\n"
    "fiber_module = 0x00\ncards_per_port = 16\ncard_width = 128\ncard_height = 128\ncard_brightness = 0xFF\n"
    "input = 0x10 dvi\ninput = 0x01 hdmi14\njournal = writes\n";

std::string trimmed(const std::string& text) {
  const auto from = text.find_first_not_of(" \t\r");
  return from == std::string::npos ? "" : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

void readConf() {
  static const std::set<std::string> known{
      "card_bit",        "fpga_autoload", "fpga_status",    "copper_ports", "fiber1_ports",
      "fiber2_ports",    "fiber_module",  "cards_per_port", "card_width",   "card_height",
      "card_brightness", "sensor",        "input",          "journal"};
  if (!fs::exists(path("board.conf"))) std::ofstream(path("board.conf")) << kDefaults;
  std::ifstream file(path("board.conf"));
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    line = trimmed(line.substr(0, line.find('#')));
    if (line.empty()) continue;
    const auto equals = line.find('=');
    const std::string key = trimmed(line.substr(0, equals));
    if (equals == std::string::npos || known.count(key) == 0) {
      stop("board.conf:" + std::to_string(number) + ": unknown key '" + key + "'");
    }
    values[key] = trimmed(line.substr(equals + 1));
  }
}

void* mapped(const char* name, size_t size) {
  const int file = open(path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0 || ftruncate(file, static_cast<off_t>(size)) != 0) stop("cannot open " + path(name));
  void* page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (page == MAP_FAILED) stop("cannot map " + path(name));
  return page;
}

}  // namespace

std::string path(std::string_view relative) {
  return root + "/" + std::string(relative);
}
const std::map<std::string, std::string>& conf() {
  return values;
}
unsigned char cardBit() {
  return static_cast<unsigned char>(
      std::strtoul(values.count("card_bit") ? values["card_bit"].c_str() : "1", nullptr, 0));
}

bool takeFault(Fault kind) {
  auto& counter = control->faults[static_cast<int>(kind)];
  for (uint32_t left = counter.load(); left != 0;) {
    if (left == 0xFFFFFFFF || counter.compare_exchange_weak(left, left - 1)) return true;
  }
  return false;
}

std::string hexBytes(const unsigned char* bytes, size_t count) {
  constexpr size_t kShown = 64;
  std::string text;
  for (size_t i = 0; i < count && i < kShown; ++i) {
    text += "0123456789abcdef"[bytes[i] >> 4];
    text += "0123456789abcdef"[bytes[i] & 15];
  }
  return count > kShown ? text + "+" + std::to_string(count - kShown) : text;
}

std::string hexWord(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(value));
  return text;
}

void journal(const std::string& line) {
  if (journalFile < 0) return;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const long long us = (now.tv_sec - started.tv_sec) * 1000000LL + (now.tv_nsec - started.tv_nsec) / 1000;
  char stamp[40];
  std::snprintf(stamp, sizeof stamp, "%lld.%06lld ", us / 1000000, us % 1000000);
  const std::string text = stamp + line + "\n";
  if (write(journalFile, text.data(), text.size()) < 0) return;
}

void reboot() {
  journal("reboot");
  apipc_close_all_peers();
  fs::remove(path("hw/powered"));
  if (fs::exists(path("usr/orve/etc/sysconf/kespara_factory_tmp"))) {
    fs::rename(path("usr/orve/etc/sysconf/kespara_factory_tmp"), path("hw/flash.bin"));
  }
  setenv(kRebootMark, "1", 1);
  execv("/proc/self/exe", arguments);
  stop("cannot start again");
}

}  // namespace simboard

using namespace simboard;

extern "C" void board_start(int, char** argv) {
  const char* named = std::getenv("PARLEND_BOARD");
  root = fs::absolute(named != nullptr ? named : "board").lexically_normal().string();
  arguments = argv;
  for (const char* directory : {"run", "hw", "etc/init.d", "log", "tmp", "root", "usr/orve/etc/sysconf",
                                "usr/orve/etc/lsd/cabCfg", "sys/class/fpga"}) {
    fs::create_directories(path(directory));
  }
  readConf();
  const int lock = open(path("run/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock < 0 || flock(lock, LOCK_EX | LOCK_NB) != 0) stop("another daemon runs on the board in " + root);
  control = static_cast<Control*>(mapped("hw/control.bin", 4096));
  std::memcpy(control->magic, "PLBOARD1", 8);
  clock_gettime(CLOCK_MONOTONIC, &started);
  const bool rebooted = std::getenv(kRebootMark) != nullptr;
  unsetenv(kRebootMark);
  if (values["journal"] != "off") {
    journalFile = open(path("hw/journal.log").c_str(),
                       O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | (rebooted ? 0 : O_TRUNC), 0600);
  }
  powerOn();
}

extern "C" int board_path(const char* devicePath, char* out, size_t size) {
  const std::string whole =
      path(fs::path("/").append(devicePath).lexically_normal().relative_path().string());
  if (whole.size() >= size) return -1;
  std::memcpy(out, whole.c_str(), whole.size() + 1);
  return 0;
}

extern "C" void board_clock(timespec* now) {
  clock_gettime(CLOCK_REALTIME, now);
  if (control != nullptr) now->tv_sec += static_cast<time_t>(control->clockOffset.load());
}

extern "C" int board_clock_set(time_t seconds) {
  control->clockOffset.store(seconds - time(nullptr));
  journal("clock-set " + std::to_string(seconds));
  return 0;
}
