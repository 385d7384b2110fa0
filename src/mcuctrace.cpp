#include "mcuctrace.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "mcuctrace_file.h"
#include "platform/board.h"

namespace ORVE_MCUC {
namespace {

using Guard = CMutexGuardT<CMutexThreadRecursive>;

constexpr std::size_t kMaxFileSize = 0x1400000;
constexpr int kFilesPerDay = 10;
constexpr std::array<std::string_view, 4> g_logLevelEntry{"Error", "Warning", "Debug", "Info"};

constexpr unsigned kAllLevels = 0b1111;
constexpr std::array<unsigned, 5> kPassingLevels{0b0011, kAllLevels, 0b0111, kAllLevels, 0};

constinit std::atomic<int> g_traceLevel{4};

timespec boardNow() {
  timespec now{};
  board_clock(&now);
  return now;
}

// The base name of the first word of the command line.
std::string readProcessName() {
  std::array<char, 257> words{};
  const int file = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
  if (file < 0) return "trace";
  const ssize_t count = read(file, words.data(), words.size() - 1);
  close(file);
  if (count <= 0) return "trace";
  const std::string_view program(words.data());
  return std::string(program.substr(program.rfind('/') + 1));
}

std::string twoDigits(int number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string fourDigits(int64_t number) {
  const std::string digits = std::to_string(number);
  return std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
}

// Where a device path lies; empty when it is too long.
std::string onBoard(const std::string& devicePath) {
  std::array<char, 4096> path{};
  return board_path(devicePath.c_str(), path.data(), path.size()) == 0 ? path.data() : "";
}

}  // namespace

void setTraceLevel(int processLevel) {
  const bool known = processLevel >= 0 && processLevel < static_cast<int>(kPassingLevels.size());
  g_traceLevel.store(processLevel, std::memory_order_relaxed);
  g_passingLevels.store(known ? kPassingLevels[static_cast<std::size_t>(processLevel)] : kAllLevels,
                        std::memory_order_relaxed);
}

int traceLevel() {
  return g_traceLevel.load(std::memory_order_relaxed);
}

CTrace* CTrace::instance() {
  // Never destroyed: threads may still write while the program ends.
  static auto* trace = new CTrace("Log");
  return trace;
}

CTrace::CTrace(const char* module, const char* privateInfo, bool shared)
    : m_lpszModule(module),
      m_lpszPrivateInfo(privateInfo),
      m_bShared(shared),
      m_processid(getpid()),
      m_stamp(m_processid) {
  load(nullptr);
}

CTrace::~CTrace() {
  _Close_Trace_Dev(m_hTrace);
}

void CTrace::trace_string(int level, const char* text) {
  if (!tracePasses(level) || text == nullptr) return;
  LineBuffer line;
  const std::size_t length = strnlen(text, kLineSize);
  std::memcpy(line.data() + kStampRoom, text, length);
  write(level, line, length);
}

void CTrace::write(int level, LineBuffer& line, std::size_t length) {
  if (!tracePasses(level)) return;
  const Guard guard(traceMutex());
  if (m_hTrace == nullptr && m_nextFileDue) turnPage();
  if (m_hTrace == nullptr) return;
  const timespec now = boardNow();
  const std::string_view stamp = m_stamp.at(now);
  char* start = line.data() + kStampRoom;
  if (m_lpszModule != nullptr) {
    const std::string_view name = g_logLevelEntry[static_cast<std::size_t>(level)];
    *--start = ':';
    start -= name.size();
    std::memcpy(start, name.data(), name.size());
  }
  start -= stamp.size();
  std::memcpy(start, stamp.data(), stamp.size());
  char* end = line.data() + kStampRoom + std::min(length, kLineSize);
  if (end < start + kLineSize) *end++ = '\n';
  const auto whole = static_cast<std::size_t>(end - start);
  _Write_Trace_Dev(m_hTrace, {start, std::min(whole, kLineSize)});
  m_nextFileDue = turnToDay(now.tv_sec) || m_hTrace->maxReached() || m_nextFileDue;
  if (m_nextFileDue) turnPage();
}

// A line is written while an exception passes and where memory has run out: the page is then turned with a
// later line.
void CTrace::turnPage() {
  try {
    load(m_hTrace);
    m_nextFileDue = false;
  } catch (const std::bad_alloc&) {
  }
}

bool CTrace::turnToDay(time_t second) {
  const tm& local = m_stamp.local(second);
  if (local.tm_mday == m_iCurrInfoDay && local.tm_mon + 1 == m_iCurrInfoMonth) return false;
  m_iCurrInfoDay = local.tm_mday;
  m_iCurrInfoMonth = local.tm_mon + 1;
  m_iCurrCount = 0;
  return true;
}

void CTrace::load(CTraceFile* handle) {
  const Guard guard(traceMutex());
  if (handle == nullptr && m_hTrace != nullptr) return;
  board_shell((std::string("mkdir -p ") + get_trace_dir()).c_str());
  const time_t second = boardNow().tv_sec;
  turnToDay(second);
  const bool current = handle == m_hTrace;
  const std::string path = current ? onBoard(nextPath(second)) : "";
  if (handle != nullptr) _Close_Trace_Dev(handle);
  if (current) {
    m_hTrace = nullptr;
    if (!path.empty()) m_hTrace = _Open_Trace_Dev(path, kMaxFileSize, m_bShared);
    m_iCurrCount = (m_iCurrCount + 1) % kFilesPerDay;
  }
  read_config();
}

std::string CTrace::nextPath(time_t second) {
  const std::string directory = std::string(get_trace_dir()) + '/';
  const std::string process = std::to_string(m_processid);
  if (m_lpszPrivateInfo != nullptr) return directory + m_lpszPrivateInfo + (m_bShared ? "" : '.' + process);
  const tm& local = m_stamp.local(second);
  const std::string date =
      twoDigits(local.tm_mon + 1) + twoDigits(local.tm_mday) + fourDigits(int64_t{local.tm_year} + 1900);
  return directory + get_process_name() + "_info_" + date + '_' + std::to_string(m_iCurrCount) + '.' +
         process + ".log";
}

void CTrace::read_config() {
  _Refresh_Settings(kMaxFileSize);
}

const char* CTrace::get_trace_dir() {
  return "/log";
}

const std::string& CTrace::get_process_name() {
  static const auto& name = *new std::string(readProcessName());
  return name;
}

}  // namespace ORVE_MCUC
