#include "testboard.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

#include "board_cards.h"
#include "board_dir.h"
#include "platform/board.h"
#include "simboard.h"

namespace fs = std::filesystem;

namespace {

constexpr auto kPatience = std::chrono::seconds(10);

struct Interrupted {};  // a scenario's thread was in the call in which the power went

/** In memory where there is such a place: boards come and go with every test. */
fs::path newDirectory() {
  std::string name = (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path().string());
  name += "/boardXXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  return name;
}

class OpenFile {
 public:
  OpenFile(const fs::path& path, int flags) : descriptor_(open(path.c_str(), flags | O_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), path);
  }
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

void demand(bool done, const char* what) {
  if (!done) throw std::runtime_error(what);
}

}  // namespace

TestBoard::TestBoard() : directory_(newDirectory()) {
  setenv("PARLEND_BOARD", directory_.c_str(), 1);
  simboard::onOutage([](simboard::Outage) {});
}

TestBoard::~TestBoard() {
  simboard::useRealTime();
  stop();
  simboard::onOutage({});
  std::error_code ignored;
  fs::remove_all(directory_, ignored);
}

void TestBoard::start(const std::string& conf) {
  if (!conf.empty()) std::ofstream(file("board.conf")) << conf;
  startAgain();
}

void TestBoard::stop() {
  if (started_) simboard::stop();
  started_ = false;
}

void TestBoard::startAgain() {
  stop();
  board_start(1, arguments_.data());
  started_ = true;
}

void TestBoard::powerOn() {
  simboard::forgetPowered();
  startAgain();
}

void TestBoard::clearFaults() const {
  for (int kind = 0; kind <= static_cast<int>(Fault::MessageQueue); ++kind) {
    simboard::setFault(static_cast<Fault>(kind), {0});
  }
  simboard::setPowerCut({});
}

bool TestBoard::cutPowerDuring(const PowerCut& cut, const std::function<void()>& scenario) {
  simboard::onOutage([thread = std::this_thread::get_id()](simboard::Outage) {
    if (std::this_thread::get_id() == thread) throw Interrupted{};
  });
  cutPower(cut);
  try {
    scenario();
  } catch (const Interrupted&) {
  }
  simboard::onOutage([](simboard::Outage) {});
  simboard::setPowerCut({});
  return !hasPower();
}

bool TestBoard::failCallDuring(Fault kind, uint32_t n, const std::function<void()>& scenario) const {
  failCall(kind, n);
  scenario();
  const bool failed = simboard::faultLeft(kind).calls == 0;
  fault(kind, {0});
  return failed;
}

std::string TestBoard::text(std::string_view relative) const {
  std::ifstream stream(file(relative));
  return {std::istreambuf_iterator<char>(stream), {}};
}

TestBoard::Bytes TestBoard::bytes(std::string_view relative, uint32_t address, std::size_t count) const {
  Bytes found(count);
  const OpenFile from(file(relative), O_RDONLY);
  demand(pread(from.get(), found.data(), count, static_cast<off_t>(address)) >= 0,
         "cannot read a board's file");
  return found;
}

void TestBoard::poke(std::string_view relative, uint32_t address, const Bytes& values) const {
  const OpenFile to(file(relative), O_WRONLY);
  demand(pwrite(to.get(), values.data(), values.size(), static_cast<off_t>(address)) ==
             static_cast<ssize_t>(values.size()),
         "cannot write a board's file");
}

TestBoard::Bytes TestBoard::card(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                                 std::size_t count) const {
  return simboard::cardRegisters(type, port, board, address, count);
}

void TestBoard::setCard(uint8_t type, uint8_t port, uint16_t board, uint32_t address,
                        const Bytes& values) const {
  simboard::setCardRegisters(type, port, board, address, values);
}

std::vector<std::string> TestBoard::journal(std::streamoff& from) const {
  std::vector<std::string> lines;
  std::ifstream stream(file("hw/journal.log"));
  stream.seekg(from);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line.substr(line.find(' ') + 1));
    from += static_cast<std::streamoff>(line.size() + 1);
  }
  return lines;
}

void TestBoard::takeTime(Time heldFrom) {
  simboard::useTestTime(heldFrom);
  timeTakenAt_ = board_monotonic_us();
}

TestBoard::Time TestBoard::elapsed() const {
  return Time(board_monotonic_us() - timeTakenAt_);
}

bool TestBoard::awaitHeld(unsigned threads) const {
  return simboard::awaitHeldPauses(threads, kPatience);
}

int64_t TestBoard::clock() const {
  timespec now{};
  board_clock(&now);
  return now.tv_sec;
}

void TestBoard::setClock(int64_t seconds) const {
  simboard::setClockOffset(simboard::clockOffset() + seconds - clock());
}
