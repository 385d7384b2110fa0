#include "testdaemon.h"

#include <fcntl.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>

#include "driverutil.h"
#include "mcuctrace.h"
#include "messagedesk.h"
#include "peer/error.h"
#include "process/inputSource.h"
#include "process/proc_poll.h"
#include "process/rvconfigspace.h"
#include "process/screenpatternload.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/spaces/coloursettings.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"
#include "proto/tshl_ctl.h"
#include "stub/fpgareportthread.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"
#include "stub/stubutil.h"
#include "taskid.h"

namespace fs = std::filesystem;
using namespace ORVE_MCUC;

namespace {

using namespace std::chrono_literals;

constexpr uint32_t kServiceCode = 0x00FFFFFF;
constexpr auto kTick = 200ms;
constexpr int kMostTicks = 20;

template <class T>
void makeAnew(T& object) {
  std::destroy_at(&object);
  std::construct_at(&object);
}

/** What the next daemon must not find in memory. */
void forgetEverything() {
  StubUtil::deleteInstance();
  Data_Global::deleteInstance();
  Data_Preset::deleteInstance();
  Tprocess::deleteInstance();
  InputSource::deleteInstance();
  Proc_Poll::deleteInstance();
  Addr_HardWareBrightnessAdjust::deleteInstance();
  RvConfigSpace::deleteInstance();
  ColourSettings::deleteInstance();
  DriverUtil::deleteInstance();
  Tprocess_ctl::getInstance()->apipc_connect_status = false;
  Tprocess_ctl::getInstance()->OptToNetEnableOnce = false;
  makeAnew(workingTables);
  makeAnew(portTables);
  ScreenPatternGenState = 0;
}

/** The trace's file, which may lie in the directory of a board that is gone; empty if there is none. */
fs::path traceFile() {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd", ignored)) {
    const std::string target = fs::read_symlink(entry.path(), ignored);
    if (target.find("_info_") != target.npos && target.find("/log/") != target.npos) return entry.path();
  }
  return {};
}

/** The lines of a trace file, which is empty from then on. */
std::string takeTrace(const fs::path& path) {
  constexpr std::size_t kHeader = 32;
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  if (text.size() < kHeader) return "";
  file.clear();
  file.seekp(0);
  file << "32" << std::string(kHeader - 3, ' ') << '\n';
  return text.substr(kHeader, std::strtoul(text.c_str(), nullptr, 10) - kHeader);
}

/** "[stamp] Error:stub/stubutil : 78 text" as "Error text". */
std::string withoutPlace(const std::string& line) {
  constexpr std::string_view kStampEnd = " uuid=0x0] ";
  const std::size_t level = line.find(kStampEnd) + kStampEnd.size();
  const std::size_t source = line.find(':', level);
  const std::size_t number = line.find(" : ", source);
  const std::size_t text = line.find(' ', number + 3);
  if (!line.starts_with('[') || number == line.npos || text == line.npos) return line;
  return line.substr(level, source - level) + line.substr(text);
}

}  // namespace

TestDaemon::TestDaemon(const std::string& conf) {
  start(conf);
}

TestDaemon::~TestDaemon() {
  startLevel_ = kSilent;
  end();
}

void TestDaemon::prepare(const std::string& file, const std::string& text) const {
  const fs::path path = board.file(file);
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

void TestDaemon::start(const std::string& conf) {
  board.start(conf);
  board.takeTime();
  begin();
}

// In the order of main and of the threads' beginnings.
void TestDaemon::begin() {
  connect(kTool);
  DriverUtil::getInstance()->initialize();
  Tprocess_ctl::getInstance()->initialize();
  Tshl_ctl::getInstance()->initialize();
  StubUtil& owner = *StubUtil::getInstance();
  owner.prepare();
  owner.channel().open();
  if (owner.channel().CheckFPGAOnline() == 0) bringUp();
  owner.report().FPGAReport_init();
}

void TestDaemon::bringUp() {
  StubUtil::getInstance()->channel().bringUp();
}

void TestDaemon::end() {
  setTraceLevel(kSilent);
  forgetEverything();
  messagedesk::clear();
  reply_.reset();
  pushes_.clear();
  setTraceLevel(startLevel_);
}

void TestDaemon::restart() {
  end();
  board.startAgain();
  begin();
}

void TestDaemon::powerOn() {
  end();
  board.powerOn();
  begin();
}

std::optional<peer::Message> TestDaemon::exchange(const Bytes& frame, peer::Head head, uint32_t service) {
  head.taskId = taskOf(service);
  head.labelCount = ++number_;
  head.frameLength = static_cast<uint32_t>(frame.size());
  auto reply = arrive(head, frame);
  if (reply && reply->head.labelCount != number_) throw std::logic_error("a reply to another request");
  return reply;
}

std::optional<peer::Message> TestDaemon::arrive(const peer::Head& head, const Bytes& frame) {
  Bytes message = peer::encode(head);
  message.insert(message.end(), frame.begin(), frame.end());
  messagedesk::arrive(message);
  StubUtil::getInstance()->channel().takeMessage();
  sortSent();
  return std::exchange(reply_, {});
}

peer::Frame TestDaemon::ask(const peer::Frame& frame) {
  const auto reply = exchange(peer::encode(frame));
  if (!reply) throw peer::Error(peer::Failure::TimeOut, "the daemon does not reply");
  return peer::decode(reply->frame);
}

peer::Frame TestDaemon::write(uint32_t address, const Bytes& data) {
  return ask(
      {.code = peer::kWrite, .address = address, .length = static_cast<uint16_t>(data.size()), .data = data});
}

std::size_t TestDaemon::workOff() {
  return StubUtil::getInstance()->queue().workOff();
}

void TestDaemon::tick(unsigned count) {
  for (; count > 0; --count) {
    StubUtil::getInstance()->channel().tick();
    advance(kTick);
  }
}

void TestDaemon::settle() {
  for (int ticks = 0; ticks < kMostTicks; ++ticks) {
    const bool worked = workOff() > 0;
    const bool submitted = Data_Global::getInstance()->CalculateParaHandlerCnt != 0;
    tick();
    if (!worked && !submitted && ticks > 1) return;
  }
}

void TestDaemon::connect(uint32_t service) {
  messagedesk::connect(taskOf(service));
}

void TestDaemon::disconnect(uint32_t service) {
  messagedesk::disconnect(taskOf(service));
}

// A reply carries the number of its request, a notification none.
void TestDaemon::sortSent() {
  for (auto& [task, bytes] : messagedesk::takeSent()) {
    const peer::Head head = peer::decodeHead(bytes);
    Bytes frame(bytes.begin() + peer::kHeadSize, bytes.end());
    if (head.labelCount != 0) {
      reply_ = {head, std::move(frame)};
    } else {
      pushes_[task & kServiceCode].push_back(peer::decode(frame));
    }
  }
}

std::vector<peer::Frame> TestDaemon::pushes(uint32_t service) {
  sortSent();
  return std::exchange(pushes_[service], {});
}

std::vector<std::string> TestDaemon::trace(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(takeTrace(traceFile()));
  for (std::string line; std::getline(stream, line);)
    if (line.find(text) != line.npos) lines.push_back(withoutPlace(line));
  return lines;
}

void TestDaemon::traceStarts(int level) {
  startLevel_ = level;
  setTraceLevel(level);
}

bool TestDaemon::cutPowerAt(uint32_t n, const std::function<void()>& scenario,
                            TestBoard::PowerCut::Done done) {
  return board.cutPowerDuring({.atWrite = n, .done = done}, scenario);
}
