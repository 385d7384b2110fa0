// Regular files of a directory. A name is looked up in the directory itself and never followed through a
// link, and what is no regular file is not touched. Directories are device paths; every function answers with
// 0 or the system's error number. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ORVE_MCUC {

struct FilePlace {
  std::string directory;
  std::string name;
};
// A path cut at its last slash; nothing where no name is left that could be a file's.
std::optional<FilePlace> placeOf(const char* path);

// Writes bytes at an offset and makes them durable. File and directories (mode 0775) are created when
// missing. What cannot be written as a whole does not lengthen the file.
int storeAt(const FilePlace& place, mode_t mode, uint32_t offset, std::span<const uint8_t> bytes);

// The whole of a file. EFBIG for one of more than most bytes, ENOENT for one that is not there.
int readWhole(const FilePlace& place, std::size_t most, std::vector<uint8_t>& bytes);

enum class FileKind : uint8_t { kMissing, kRegular, kOther };
int examine(const FilePlace& place, FileKind& kind);
// Removes a regular file; of anything else the error is EINVAL.
int removeRegular(const FilePlace& place);

// What the system says of an error number.
std::string errorText(int error);

}  // namespace ORVE_MCUC
