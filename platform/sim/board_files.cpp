#include "board_files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

namespace simboard {
namespace {

std::optional<off_t> sizeOf(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return std::nullopt;
  return status.st_size;
}

bool growTo(int file, off_t size) {
  const auto present = sizeOf(file);
  return present && (*present >= size || ftruncate(file, size) == 0);
}

bool copyRange(int from, int to, off_t at, off_t end) {
  std::array<unsigned char, 65536> piece;
  while (at < end) {
    const auto wanted = static_cast<std::size_t>(std::min<off_t>(end - at, piece.size()));
    const ssize_t got = pread(from, piece.data(), wanted, at);
    if (got <= 0 || pwrite(to, piece.data(), static_cast<std::size_t>(got), at) != got) return false;
    at += got;
  }
  return true;
}

}  // namespace

int openSized(const std::string& name, std::size_t size) {
  const int file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0 || growTo(file, static_cast<off_t>(size))) return file;
  close(file);
  return -1;
}

void* mapShared(int file, std::size_t size, void* before) {
  const int flags = before == nullptr ? MAP_SHARED : MAP_SHARED | MAP_FIXED;
  void* mapped = mmap(before, size, PROT_READ | PROT_WRITE, flags, file, 0);
  return mapped == MAP_FAILED ? nullptr : mapped;
}

bool clearFile(int file) {
  const auto size = sizeOf(file);
  if (!size) return false;
  if (*size == 0 || fallocate(file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, *size) == 0) return true;
  // A file system without holes in the middle of files.
  return ftruncate(file, 0) == 0 && ftruncate(file, *size) == 0;
}

bool copyContents(int from, int to) {
  const auto size = sizeOf(from);
  if (!size || !clearFile(to) || !growTo(to, *size)) return false;
  for (off_t at = 0; at < *size;) {
    const off_t data = lseek(from, at, SEEK_DATA);
    if (data < 0) return errno == ENXIO;  // nothing but a hole up to the end
    const off_t hole = lseek(from, data, SEEK_HOLE);
    if (hole < 0 || !copyRange(from, to, data, hole)) return false;
    at = hole;
  }
  return true;
}

}  // namespace simboard
