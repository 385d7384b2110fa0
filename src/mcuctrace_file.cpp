#include "mcuctrace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/lineecho.h"

namespace ORVE_MCUC {
namespace {

using Guard = CMutexGuardT<CMutexThreadRecursive>;

// The end of the data is tested before a line is added, so it can lie past the limit by one line.
constexpr std::size_t kLongestLine = 1024;
// Lines come in bursts, and reading the header costs as much as writing one. Within a burst, whose lines
// follow one another faster than anybody could change the file in between, it is read once; of a long one now
// and then.
constexpr std::chrono::microseconds kGapInBurst{2};
constexpr std::chrono::milliseconds kHeaderTrusted{1};

const platform::LineEcho& echo() {
  static const platform::LineEcho output;
  return output;
}

CTraceFileMgr& manager() {
  static auto& files = *new CTraceFileMgr;
  return files;
}

// A lock on the whole file between processes.
class FileLock {
 public:
  explicit FileLock(int file) : file_(file) {
    while (set(F_WRLCK) != 0 && (errno == EINTR || errno == EAGAIN)) {
    }
  }
  ~FileLock() { set(F_UNLCK); }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int set(short type) const {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return fcntl(file_, F_SETLKW, &lock);
  }

  int file_;
};

int openFile(const std::string& path, bool shared) {
  const int emptied = shared ? 0 : O_TRUNC;
  return open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | emptied, 0666);
}

}  // namespace

CMutexThreadRecursive& traceMutex() {
  static auto& mutex = *new CMutexThreadRecursive;
  return mutex;
}

CTraceFile::CTraceFile(const std::string& path, std::size_t maxSize, bool shared)
    : m_bShared(shared),
      m_pFileName(path),
      m_file(openFile(path, shared)),
      m_lMaxSize(maxSize),
      m_header(m_file) {
  echo();  // looks at standard output before the first line is written
  if (m_file < 0) return;
  if (!shared) {
    m_header.write(TraceFileHeader::kSize);
    return;
  }
  fchmod(m_file, 0666);
  const FileLock lock(m_file);
  if (lseek(m_file, 0, SEEK_END) == 0) m_header.write(TraceFileHeader::kSize);
}

CTraceFile::~CTraceFile() {
  if (m_file >= 0) ::close(m_file);
}

void CTraceFile::write(std::string_view line) {
  if (m_bShared) return writeShared(line);
  const std::size_t end = dataEnd();
  m_bMaxReached = full(end);
  // A file that cannot be cut is only longer than its header says.
  if (m_bMaxReached) (void)!ftruncate(m_file, static_cast<off_t>(end));
  append(end, line);
  echo().write(line);
}

void CTraceFile::writeShared(std::string_view line) {
  const FileLock lock(m_file);
  std::size_t end = readDataEnd();
  if (full(end) && ftruncate(m_file, static_cast<off_t>(end)) == 0) end = TraceFileHeader::kSize;
  append(end, line);
}

void CTraceFile::append(std::size_t end, std::string_view line) {
  const ssize_t written = pwrite(m_file, line.data(), line.size(), static_cast<off_t>(end));
  const bool whole = written == static_cast<ssize_t>(line.size()) && m_header.write(end + line.size());
  m_end = whole ? end + line.size() : end;
  m_lineWritten = std::chrono::steady_clock::now();
}

std::size_t CTraceFile::dataEnd() {
  const auto now = std::chrono::steady_clock::now();
  if (now - m_lineWritten >= kGapInBurst || now - m_endRead >= kHeaderTrusted) {
    m_end = readDataEnd();
    m_endRead = now;
  }
  return m_end;
}

// Others may have emptied the file, or written nonsense into its header: then it begins anew.
std::size_t CTraceFile::readDataEnd() const {
  const std::size_t end = m_header.read().value_or(0);
  const std::size_t last = m_lMaxSize > 0 ? m_lMaxSize + kLongestLine : end;
  return end < TraceFileHeader::kSize ? TraceFileHeader::kSize : std::min(end, last);
}

CTraceFile* CTraceFileMgr::open(const std::string& path, std::size_t maxSize, bool shared) {
  const Guard guard(traceMutex());
  for (CTraceFile* file = m_pHead.get(); file != nullptr; file = file->m_pNext.get()) {
    if (file->fileName() != path) continue;
    ++file->m_users;
    return file;
  }
  auto file = std::make_unique<CTraceFile>(path, maxSize, shared);
  if (!file->isOpen()) return nullptr;
  file->m_pNext = std::exchange(m_pHead, nullptr);
  m_pHead = std::move(file);
  return m_pHead.get();
}

void CTraceFileMgr::close(const CTraceFile* file) {
  const Guard guard(traceMutex());
  auto* link = &m_pHead;
  while (*link != nullptr && link->get() != file) link = &(*link)->m_pNext;
  if (*link != nullptr && --(*link)->m_users == 0) *link = std::move((*link)->m_pNext);
}

void CTraceFileMgr::refresh(std::size_t maxSize) {
  const Guard guard(traceMutex());
  for (CTraceFile* file = m_pHead.get(); file != nullptr; file = file->m_pNext.get())
    file->setMaxSize(maxSize);
}

CTraceFile* _Open_Trace_Dev(const std::string& path, std::size_t maxSize, bool shared) {
  return manager().open(path, maxSize, shared);
}

void _Close_Trace_Dev(const CTraceFile* file) {
  manager().close(file);
}

void _Write_Trace_Dev(CTraceFile* file, std::string_view line) {
  file->write(line);
}

void _Refresh_Settings(std::size_t maxSize) {
  manager().refresh(maxSize);
}

}  // namespace ORVE_MCUC
