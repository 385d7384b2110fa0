#include "board_files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simboard {

int openSized(const std::string& name, std::size_t size) {
  const int file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) return -1;
  struct stat status {};
  const auto wanted = static_cast<off_t>(size);
  if (fstat(file, &status) == 0 && (status.st_size >= wanted || ftruncate(file, wanted) == 0)) return file;
  close(file);
  return -1;
}

void* mapFile(const std::string& name, std::size_t size) {
  const int file = openSized(name, size);
  if (file < 0) return nullptr;
  void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  return mapped == MAP_FAILED ? nullptr : mapped;
}

}  // namespace simboard
