// The daemon's trace log. A line is composed on the stack of the thread that writes it, and only if its level
// passes:
//
//   PARLEND_TRACE(kInfo) << "register = " << CTrace::hex << address;
//
// writes "[01/02/2024 10:20:30.456 pid=812 uuid=0x0] Info:stub/stubutil : 78 register = 0x02000001" to the
// current file under /log and to standard output. Everything here may be called from any thread.
#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "mcuctrace_stamp.h"

namespace ORVE_MCUC {

// Levels of a line. A line of any other level is never written.
enum Level : int { kError = 0, kWarning = 1, kDebug = 2, kInfo = 3 };

// The process level says which lines pass: 0 Error and Warning, 1 all, 2 all but Info, 3 all, 4 (until it is
// set) none.
void setTraceLevel(int processLevel);
int traceLevel();

// One bit for each level that passes.
inline constinit std::atomic<unsigned> g_passingLevels{0};

inline bool tracePasses(int level) {
  const unsigned passing = g_passingLevels.load(std::memory_order_relaxed);
  return level >= kError && level <= kInfo && (passing >> level & 1U) != 0;
}

class CTraceFile;

// The log itself: stamps lines, chooses the file they go to, and begins a new one when the day changes or the
// file is full. Lines are dropped silently while no file can be opened.
class CTrace {
 public:
  class CLogRecorder;
  enum Ordix { hex = 0, decimal = 1 };

  // Bytes kept free in front of a text for the stamp and the level name, and the most that a line can have.
  static constexpr std::size_t kStampRoom = 96;
  static constexpr std::size_t kLineSize = 1024;
  using LineBuffer = std::array<char, kStampRoom + kLineSize>;

  // The process's log. Its first call opens the first file.
  static CTrace* instance();

  // module: with one, a line names its level. privateInfo: name of the file instead of one that is made from
  // the process and the date, or nullptr. shared: several processes write this file. Both texts must outlive
  // the log.
  explicit CTrace(const char* module, const char* privateInfo = nullptr, bool shared = false);
  virtual ~CTrace();
  CTrace(const CTrace&) = delete;
  CTrace& operator=(const CTrace&) = delete;

  // Writes one line if its level passes. nullptr writes nothing.
  void trace_string(int level, const char* text);
  // The same for length characters that stand at kStampRoom in the buffer: nothing is copied.
  void write(int level, LineBuffer& line, std::size_t length);

  // Closes the given file, which may be none while there is none, and opens the next one.
  void load(CTraceFile* handle);
  // Gives every open file the size limit.
  void read_config();

  // Device path of the directory of all trace files.
  static const char* get_trace_dir();
  // Base name of the program, "trace" when it cannot be learnt.
  static const std::string& get_process_name();

 private:
  std::string nextPath(time_t second);
  // True when that second lies in another day than the current file: its files are counted from 0.
  bool turnToDay(time_t second);
  void turnPage();

  const char* m_lpszModule;
  const char* m_lpszPrivateInfo;
  bool m_bShared;
  CTraceFile* m_hTrace = nullptr;
  int m_iCurrCount = 0;
  int m_iCurrInfoDay = 0;
  int m_iCurrInfoMonth = 0;
  bool m_nextFileDue = false;
  pid_t m_processid;
  TraceStamp m_stamp;
};

// Appends values as text to a buffer that belongs to the caller. The last 64 bytes are never filled: what
// does not fit before them is cut, and the text always ends in a zero.
class CTrace::CLogRecorder {
 public:
  CLogRecorder(char* buffer, std::size_t size);
  virtual ~CLogRecorder() = default;
  CLogRecorder(const CLogRecorder&) = delete;
  CLogRecorder& operator=(const CLogRecorder&) = delete;

  void reset();
  void advance(const char* text);
  void advance(std::string_view text);

  // A set flag makes the next integer hexadecimal: int and everything shorter without "0x" (negative ones as
  // 32-bit two's complement), unsigned int as "0x" and eight digits, longer ones as "0x" and their digits.
  void set_hex_flag(uint8_t flag) { m_bHex = flag; }
  uint8_t get_hex_flag() const { return m_bHex; }

  CLogRecorder& operator<<(int value);
  CLogRecorder& operator<<(unsigned int value);
  CLogRecorder& operator<<(long value);
  CLogRecorder& operator<<(unsigned long value);
  CLogRecorder& operator<<(long long value);
  CLogRecorder& operator<<(unsigned long long value);
  CLogRecorder& operator<<(char value) { return *this << static_cast<int>(value); }
  CLogRecorder& operator<<(signed char value) { return *this << static_cast<int>(value); }
  CLogRecorder& operator<<(unsigned char value) { return *this << static_cast<int>(value); }
  CLogRecorder& operator<<(short value) { return *this << static_cast<int>(value); }
  CLogRecorder& operator<<(unsigned short value) { return *this << static_cast<int>(value); }
  CLogRecorder& operator<<(float value) { return *this << static_cast<double>(value); }
  CLogRecorder& operator<<(double value);
  CLogRecorder& operator<<(const char* text);
  CLogRecorder& operator<<(std::string_view text);
  CLogRecorder& operator<<(const void* address);
  CLogRecorder& operator<<(Ordix base);

  operator char*() { return m_lpszBuf; }
  std::size_t length() const { return m_dwPos; }

 private:
  struct HexForm {
    std::string_view prefix;
    std::size_t minimumDigits;
  };
  template <class Integer>
  CLogRecorder& append(Integer value, HexForm form);
  template <class Unsigned>
  void appendHex(Unsigned value, std::size_t minimumDigits);

  char* m_lpszBuf;
  std::size_t m_dwSize;
  std::size_t m_dwPos = 0;
  uint8_t m_bHex = 0;
};

// One line under composition; written when it goes out of scope.
class TraceLine {
 public:
  TraceLine(int level, std::string_view source, int line);
  ~TraceLine();
  TraceLine(const TraceLine&) = delete;
  TraceLine& operator=(const TraceLine&) = delete;

  CTrace::CLogRecorder& record() { return m_recorder; }

 private:
  int m_level;
  CTrace::LineBuffer m_line;
  CTrace::CLogRecorder m_recorder;
};

// Makes a composed line a statement without a value. Binds weaker than <<, so that the whole line belongs to
// it.
struct TraceStatement {
  void operator&(const CTrace::CLogRecorder&) const {}
};

// A source file's name as it stands in a line: without its ending.
consteval std::string_view sourceName(std::string_view file) {
  return file.substr(0, file.rfind('.'));
}

}  // namespace ORVE_MCUC

// NOLINTBEGIN(bugprone-macro-parentheses): parentheses would keep << from the recorder
#define PARLEND_TRACE(level)            \
  !::ORVE_MCUC::tracePasses(level)      \
      ? static_cast<void>(0)            \
      : ::ORVE_MCUC::TraceStatement() & \
            ::ORVE_MCUC::TraceLine((level), ::ORVE_MCUC::sourceName(__FILE__), __LINE__).record()
// NOLINTEND(bugprone-macro-parentheses)
