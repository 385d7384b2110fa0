#include "edidjudge.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace parlctl {

namespace {

// A file of its own that is gone with its object.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::span<const uint8_t> bytes) : descriptor_(mkstemp(name_.data())) {
    if (descriptor_ < 0) return;
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    whole_ = written == static_cast<ssize_t>(bytes.size());
  }
  ~TemporaryFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    ::unlink(name_.data());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool isWhole() const { return whole_; }
  const char* name() const { return name_.data(); }

 private:
  std::array<char, 32> name_{"/tmp/parlctl-edid-XXXXXX"};
  int descriptor_;
  bool whole_ = false;
};

}  // namespace

std::optional<EdidOpinion> edidOpinion(std::span<const uint8_t> edid) {
  const TemporaryFile file(edid);
  if (!file.isWhole()) return std::nullopt;
  const std::string command =
      "edid-decode --check --skip-hex-dump " + std::string(file.name()) + " 2>/dev/null";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
  if (!pipe) return std::nullopt;
  std::optional<EdidOpinion> opinion(std::in_place);
  std::string& text = opinion->text;
  std::array<char, 4096> part{};
  while (const std::size_t n = std::fread(part.data(), 1, part.size(), pipe.get()))
    text.append(part.data(), n);
  if (text.find("EDID conformity:") == text.npos) return std::nullopt;
  opinion->conformant = text.find("EDID conformity: PASS") != text.npos;
  return opinion;
}

}  // namespace parlctl
