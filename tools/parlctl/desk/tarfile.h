// A tape archive (POSIX ustar) of files that are made here.
#pragma once

#include <string>
#include <string_view>

namespace parlctl {

// One file with its head, padded to whole blocks. name: at most 99 characters; seconds: since 1970.
std::string tarEntry(const std::string& name, std::string_view content, int64_t seconds);
// What ends an archive.
std::string tarEnd();

}  // namespace parlctl
