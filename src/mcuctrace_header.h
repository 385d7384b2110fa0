// The first line of a trace file: where its data ends. Not for several threads at once.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <charconv>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <optional>

namespace ORVE_MCUC {

// Runs accesses to a file's mapped page that may be gone: whoever empties a log, or a disk without room,
// turns the next access into SIGBUS. The handler then puts an empty page of memory in its place, so that the
// access ends, and the caller learns that it touched nothing. Any other SIGBUS goes where it went before.
class MappedPageGuard {
 public:
  // Once before the first touch.
  static void install() {
    static std::once_flag once;
    std::call_once(once, [] {
      struct sigaction action {};
      action.sa_handler = &onBusError;
      sigaction(SIGBUS, &action, &s_previous);
    });
  }

  // access() must touch no page of files but this one. False: the page was gone.
  template <class Access>
  static bool touch(void* page, std::size_t size, Access access) {
    s_size = size;
    s_page = page;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    access();
    std::atomic_signal_fence(std::memory_order_seq_cst);
    const bool touched = s_page != nullptr;
    s_page = nullptr;
    return touched;
  }

 private:
  // Asks for the thread and not for the address: emulators do not always tell the address of this signal.
  static void onBusError(int) {
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
    void* page = s_page;
    if (page != nullptr && mmap(page, s_size, PROT_READ | PROT_WRITE, flags, -1, 0) != MAP_FAILED) {
      s_page = nullptr;
    } else {
      sigaction(SIGBUS, &s_previous, nullptr);
      raise(SIGBUS);  // a signal that was sent is not repeated by an access
    }
  }

  // The page that this thread is touching.
  inline static thread_local constinit void* volatile s_page = nullptr;
  inline static thread_local constinit volatile std::size_t s_size = 0;
  inline static struct sigaction s_previous {};
};

// Held in a shared mapping, so that a line costs one write and not two.
class TraceFileHeader {
 public:
  static constexpr std::size_t kSize = 32;

  explicit TraceFileHeader(int file) : file_(file) {}
  ~TraceFileHeader() { unmap(); }
  TraceFileHeader(const TraceFileHeader&) = delete;
  TraceFileHeader& operator=(const TraceFileHeader&) = delete;

  // Nothing when the file has no header, or none that is a number.
  std::optional<std::size_t> read() {
    Text text{};
    if (!touch([&] { std::memcpy(text.data(), page_, kSize); }) && pread(file_, text.data(), kSize, 0) < 0)
      return {};
    std::size_t end = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), end);
    if (parsed.ec != std::errc()) return {};
    return end;
  }

  // False when there is no room for it.
  bool write(std::size_t end) {
    Text text;
    text.fill(' ');
    text.back() = '\n';
    std::to_chars(text.data(), text.data() + text.size() - 1, end);
    if (touch([&] { std::memcpy(page_, text.data(), kSize); })) return true;
    const bool written = pwrite(file_, text.data(), kSize, 0) == static_cast<ssize_t>(kSize);
    if (written) map();
    return written;
  }

 private:
  using Text = std::array<char, kSize>;

  template <class Access>
  bool touch(Access access) {
    if (page_ == nullptr) return false;
    if (MappedPageGuard::touch(page_, kSize, access)) return true;
    unmap();
    return false;
  }

  // The file must hold the header by now.
  void map() {
    MappedPageGuard::install();
    void* page = mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    page_ = page == MAP_FAILED ? nullptr : static_cast<char*>(page);
  }

  void unmap() {
    if (page_ != nullptr) munmap(page_, kSize);
    page_ = nullptr;
  }

  int file_;
  char* page_ = nullptr;
};

}  // namespace ORVE_MCUC
