#include "regularfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <system_error>
#include <utility>

#include "platform/board.h"

namespace ORVE_MCUC {
namespace {

constexpr mode_t kDirectoryMode = 0775;

// A descriptor, or the error that there is none.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd), error_(fd < 0 ? errno : 0) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)), error_(other.error_) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  int error() const { return error_; }

 private:
  int fd_;
  int error_;
};

int resultOf(int call) {
  return call < 0 ? errno : 0;
}

// The open directory of a device path.
Descriptor directoryOf(const FilePlace& place) {
  std::array<char, PATH_MAX> path{};
  if (board_path(place.directory.c_str(), path.data(), path.size()) != 0) {
    errno = ENAMETOOLONG;
    return Descriptor(-1);
  }
  return Descriptor(::open(path.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Creates what is missing of a path, whatever the process's mask takes away from the mode.
int makeDirectories(const FilePlace& place) {
  std::array<char, PATH_MAX> room{};
  if (board_path(place.directory.c_str(), room.data(), room.size()) != 0) return ENAMETOOLONG;
  std::string path = room.data();
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    if (::mkdir(part.c_str(), kDirectoryMode) == 0) {
      if (::chmod(part.c_str(), kDirectoryMode) != 0) return errno;
    } else if (errno != EEXIST) {
      return errno;
    }
    if (end == std::string::npos) return 0;
  }
}

struct stat statusOf(const Descriptor& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) status = {};
  return status;
}

// Opens a name that is, or by O_CREAT becomes, a regular file. A pipe does not hold up the caller.
Descriptor openRegular(const Descriptor& directory, const FilePlace& place, int flags, mode_t mode) {
  Descriptor file(::openat(directory.get(), place.name.c_str(),
                           flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode));
  if (file.error() != 0 || S_ISREG(statusOf(file).st_mode)) return file;
  errno = EINVAL;
  return Descriptor(-1);
}

int writeAll(const Descriptor& file, off_t offset, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(file.get(), bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : ENOSPC;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    offset += written;
  }
  return 0;
}

// A file that has just come into being gets its mode, and its directory remembers it.
int settle(const Descriptor& directory, const Descriptor& file, mode_t mode) {
  if (::fchmod(file.get(), mode) != 0) return errno;
  return resultOf(::fsync(directory.get()));
}

int writeInto(const Descriptor& file, uint32_t offset, std::span<const uint8_t> bytes) {
  const off_t before = statusOf(file).st_size;
  const int failed = writeAll(file, static_cast<off_t>(offset), bytes);
  if (failed == 0) return resultOf(::fdatasync(file.get()));
  if (statusOf(file).st_size > before && ::ftruncate(file.get(), before) != 0) return errno;
  return failed;
}

int storeInto(const Descriptor& directory, const FilePlace& place, mode_t mode, uint32_t offset,
              std::span<const uint8_t> bytes) {
  const Descriptor created = openRegular(directory, place, O_WRONLY | O_CREAT | O_EXCL, mode);
  if (created.error() == 0) {
    const int failed = settle(directory, created, mode);
    return failed != 0 ? failed : writeInto(created, offset, bytes);
  }
  if (created.error() != EEXIST) return created.error();
  const Descriptor file = openRegular(directory, place, O_WRONLY, 0);
  return file.error() != 0 ? file.error() : writeInto(file, offset, bytes);
}

}  // namespace

std::optional<FilePlace> placeOf(const char* path) {
  const std::string text = path == nullptr ? "" : path;
  const std::size_t slash = text.rfind('/');
  if (slash == std::string::npos) return std::nullopt;
  FilePlace place{text.substr(0, slash + 1), text.substr(slash + 1)};
  if (place.name.empty() || place.name == "." || place.name == "..") return std::nullopt;
  return place;
}

int storeAt(const FilePlace& place, mode_t mode, uint32_t offset, std::span<const uint8_t> bytes) {
  const Descriptor there = directoryOf(place);
  if (there.error() == 0) return storeInto(there, place, mode, offset, bytes);
  if (there.error() != ENOENT) return there.error();
  if (const int failed = makeDirectories(place)) return failed;
  const Descriptor made = directoryOf(place);
  return made.error() != 0 ? made.error() : storeInto(made, place, mode, offset, bytes);
}

int readWhole(const FilePlace& place, std::size_t most, std::vector<uint8_t>& bytes) {
  const Descriptor directory = directoryOf(place);
  if (directory.error() != 0) return directory.error();
  const Descriptor file = openRegular(directory, place, O_RDONLY, 0);
  if (file.error() != 0) return file.error();
  const auto size = static_cast<uint64_t>(statusOf(file).st_size);
  if (size > most) return EFBIG;
  bytes.resize(static_cast<std::size_t>(size));
  for (std::size_t at = 0; at < bytes.size();) {
    const ssize_t got = ::pread(file.get(), bytes.data() + at, bytes.size() - at, static_cast<off_t>(at));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) bytes.resize(at);  // shorter by now
    at += static_cast<std::size_t>(got);
  }
  return 0;
}

int examine(const FilePlace& place, FileKind& kind) {
  kind = FileKind::kMissing;
  const Descriptor directory = directoryOf(place);
  struct stat status {};
  const int error =
      directory.error() != 0
          ? directory.error()
          : resultOf(::fstatat(directory.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW));
  if (error == ENOENT) return 0;
  if (error == 0) kind = S_ISREG(status.st_mode) ? FileKind::kRegular : FileKind::kOther;
  return error;
}

int removeRegular(const FilePlace& place) {
  FileKind kind{};
  if (const int failed = examine(place, kind)) return failed;
  if (kind != FileKind::kRegular) return kind == FileKind::kMissing ? ENOENT : EINVAL;
  const Descriptor directory = directoryOf(place);
  if (directory.error() != 0) return directory.error();
  return resultOf(::unlinkat(directory.get(), place.name.c_str(), 0));
}

std::string errorText(int error) {
  return std::generic_category().message(error);
}

}  // namespace ORVE_MCUC
