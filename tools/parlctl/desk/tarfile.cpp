#include "tarfile.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace parlctl {

namespace {

constexpr std::size_t kBlock = 512;

struct Field {
  std::size_t at;
  std::size_t size;
};
constexpr Field kName{0, 100};
constexpr Field kMode{100, 8};
constexpr Field kOwner{108, 8};
constexpr Field kGroup{116, 8};
constexpr Field kSize{124, 12};
constexpr Field kTime{136, 12};
constexpr Field kChecksum{148, 8};
constexpr Field kType{156, 1};
constexpr Field kMagic{257, 8};

void putOctal(std::string& head, Field field, uint64_t value) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%0*llo", static_cast<int>(field.size) - 1,
                static_cast<unsigned long long>(value));
  head.replace(field.at, field.size - 1, text.data(), field.size - 1);
}

}  // namespace

std::string tarEntry(const std::string& name, std::string_view content, int64_t seconds) {
  std::string head(kBlock, '\0');
  head.replace(kName.at, name.size(), name);
  putOctal(head, kMode, 0644);
  putOctal(head, kOwner, 0);
  putOctal(head, kGroup, 0);
  putOctal(head, kSize, content.size());
  putOctal(head, kTime, static_cast<uint64_t>(seconds));
  head[kType.at] = '0';
  head.replace(kMagic.at, kMagic.size,
               std::string("ustar\0"
                           "00",
                           8));
  head.replace(kChecksum.at, kChecksum.size, kChecksum.size, ' ');  // as blanks it is counted itself
  unsigned sum = 0;
  for (const char byte : head) sum += static_cast<uint8_t>(byte);
  putOctal(head, {kChecksum.at, 7}, sum);
  head[kChecksum.at + 6] = '\0';
  std::string entry = head;
  entry += content;
  entry.resize((entry.size() + kBlock - 1) / kBlock * kBlock, '\0');
  return entry;
}

std::string tarEnd() {
  return std::string(2 * kBlock, '\0');
}

}  // namespace parlctl
