// Trace files: a header line with the offset where the data ends, then log lines. All of it is used under the
// global trace mutex.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "mcucmutex.h"
#include "mcuctrace_header.h"

namespace ORVE_MCUC {

// Serialises everything about the trace log. It lives as long as the process: threads may still write while
// the program ends.
CMutexThreadRecursive& traceMutex();

class CTraceFile {
 public:
  // Opens and empties the file; a shared one is opened for everyone and keeps its lines. maxSize: bytes, 0
  // for no limit. See isOpen().
  CTraceFile(const std::string& path, std::size_t maxSize, bool shared);
  ~CTraceFile();
  CTraceFile(const CTraceFile&) = delete;
  CTraceFile& operator=(const CTraceFile&) = delete;

  bool isOpen() const { return m_file >= 0; }
  const std::string& fileName() const { return m_pFileName; }
  // The file has reached its limit: its lines should go to the next one.
  bool maxReached() const { return m_bMaxReached; }
  void setMaxSize(std::size_t maxSize) { m_lMaxSize = maxSize; }

  // Appends a line and echoes it. A line that cannot be written as a whole is not there at all.
  void write(std::string_view line);

  std::unique_ptr<CTraceFile> m_pNext;
  int m_users = 1;

 private:
  void writeShared(std::string_view line);
  void append(std::size_t end, std::string_view line);
  std::size_t dataEnd();
  std::size_t readDataEnd() const;
  bool full(std::size_t end) const { return m_lMaxSize > 0 && end >= m_lMaxSize; }

  bool m_bMaxReached = false;
  bool m_bShared;
  std::string m_pFileName;
  int m_file;
  std::size_t m_lMaxSize;
  TraceFileHeader m_header;
  std::size_t m_end = 0;  // of the data, as it was read and by the lines written since
  std::chrono::steady_clock::time_point m_endRead{};
  std::chrono::steady_clock::time_point m_lineWritten{};
};

// All open trace files.
class CTraceFileMgr {
 public:
  // The file of that path, opened if it is not yet; nullptr when it cannot be opened. Closed as often as
  // opened.
  CTraceFile* open(const std::string& path, std::size_t maxSize, bool shared);
  // The handle is invalid afterwards.
  void close(const CTraceFile* file);
  void refresh(std::size_t maxSize);

 private:
  std::unique_ptr<CTraceFile> m_pHead;
};

// The same for the one manager of the process.
CTraceFile* _Open_Trace_Dev(const std::string& path, std::size_t maxSize, bool shared);
void _Close_Trace_Dev(const CTraceFile* file);
void _Write_Trace_Dev(CTraceFile* file, std::string_view line);
void _Refresh_Settings(std::size_t maxSize);

}  // namespace ORVE_MCUC
