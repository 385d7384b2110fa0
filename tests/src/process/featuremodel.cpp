#include "featuremodel.h"

#include <cstdio>

#include "peer/frame.h"

namespace {

using Bytes = FeatureModel::Bytes;

constexpr uint32_t kImageInFlash = 0xA3B100;

bool belongsToHardware(uint32_t at) {
  for (const uint32_t status :
       {0x1EU, 0x1FU, 0x9EU, 0x9FU, 0x120U, 0x121U, 0x126U, 0x127U, 0x1D7U, 0x1E0U, 0x1E1U}) {
    if (at == status) return true;
  }
  return at >= 0x1F2 && at <= 0x1FB;
}

std::string line(const char* what, uint32_t address, const Bytes& data) {
  char text[64];
  std::snprintf(text, sizeof text, "%s 0x%08x %u ", what, address, static_cast<unsigned>(data.size()));
  const Bytes shown(data.begin(),
                    data.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(data.size(), 64)));
  const std::string rest = data.size() > 64 ? '+' + std::to_string(data.size() - 64) : "";
  return text + peer::toHex(shown) + rest;
}

bool isTime(const std::array<int, 6>& t) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (t[1] < 1 || t[1] > 12 || t[3] > 23 || t[4] > 59 || t[5] > 59) return false;
  const int year = 2000 + t[0];
  const bool leap = year % 400 == 0 || (year % 100 != 0 && year % 4 == 0);
  return t[2] >= 1 && t[2] <= kDays[t[1] - 1] + (t[1] == 2 && leap ? 1 : 0);
}

}  // namespace

void FeatureModel::put(uint32_t at, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) image[at + static_cast<uint32_t>(i)] = static_cast<uint8_t>(value >> 8 * i);
}
void FeatureModel::putWord(uint32_t at, uint32_t value) {
  put(at, value, 2);
}

void FeatureModel::toFpga(uint32_t at, const Bytes& data) {
  journal.push_back(line("fpga-write", at, data));
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (!belongsToHardware(at + static_cast<uint32_t>(i))) fpga[at + i] = data[i];
  }
}
void FeatureModel::wordToFpga(uint32_t at, uint32_t value) {
  toFpga(at, {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)});
}

void FeatureModel::toFlash(uint32_t address, const Bytes& data) {
  journal.push_back(line("flash-write", address, data));
  for (const uint8_t byte : data) flash[address++] = byte;
}

void FeatureModel::push(uint32_t n, const Bytes& data) {
  char text[16];
  std::snprintf(text, sizeof text, "%x ", n);
  pushes.push_back(text + peer::toHex(data));
}

void FeatureModel::lookForZero(int point, uint32_t n, const std::string& text) {
  if (word(0x1EC) != 0 && word(0x1EE) != 0) return;
  char start[128];
  std::snprintf(start, sizeof start, "echo \"Point:%d ,use adddr:0x%x, wide:%u high:%u, description:", point,
                0x02000000 + n, word(0x1EC), word(0x1EE));
  shell(start + text + "\" >> /root/screen_zero.txt");
}

void FeatureModel::storeSize(uint32_t width, uint32_t height) {
  Bytes record(8);
  for (unsigned i = 0; i < 4; ++i) {
    record[i] = static_cast<uint8_t>(width >> 8 * i);
    record[4 + i] = static_cast<uint8_t>(height >> 8 * i);
  }
  toFlash(0xC20000, record);
  toFlash(0xD17000, {static_cast<uint8_t>(flash[0xD17000] + 1)});
}

void FeatureModel::axis(uint32_t n, int64_t offset, int number) {
  const uint32_t at = number == 1 ? 0x28 : 0x2A;
  const auto magnitude = static_cast<uint32_t>((offset < 0 ? -offset : offset) & 0xFFFF);
  wordToFpga(at, magnitude);
  if (offset <= 0) {
    putWord(at, magnitude);
    putWord(number == 1 ? 0x1EC : 0x1EE, (word(number == 1 ? 0x24 : 0x26) + magnitude) & 0xFFFF);
    lookForZero(number, n, number == 1 ? "Bypass mode tmp_x changed!!" : "Bypass mode tmp_y changed!!");
    screen[0] = screen[1] == 0x55 ? 1 : 3;
    screen[number == 1 ? 2 : 4] = static_cast<uint8_t>(magnitude);
    screen[number == 1 ? 3 : 5] = static_cast<uint8_t>(magnitude >> 8);
  }
  wordToFpga(number == 1 ? 0x91 : 0xAC, offset > 0 ? 0xFFFF : 0);
}

void FeatureModel::leaveMode(uint32_t n, bool bypass) {
  image[0x1F8] = bypass ? 1 : 0;
  wordToFpga(0x91, 0);
  wordToFpga(0xAC, 0);
  toFpga(0x28, bypass ? Bytes(image.begin() + 0x28, image.begin() + 0x2C) : Bytes(4));
  putWord(0x1EC, word(0x1EC) - word(0x28));
  putWord(0x1EE, word(0x1EE) - word(0x2A));
  lookForZero(bypass ? 3 : 4, n,
              bypass ? "Bypass mode change to mode bypass!!" : "Bypass mode change to mode Normal!!");
  put(0x28, 0, 4);
  put(0x1F0, 0, 4);
  put(0x1F4, 0, 4);
  screen = {static_cast<uint8_t>(screen[1] == 0x55 ? 1 : 3), screen[1], 0, 0, 0, 0};
}

void FeatureModel::offsets(uint32_t n, const Bytes& data) {
  const bool active = image[0x1F8] != 0;
  if ((n == 0x28 || n == 0x2A) && active) {
    image[0x1F8] = 1;
    wordToFpga(0x91, 0);
    wordToFpga(0xAC, 0);
    put(0x1F0, 0U - word(0x28), 4);
    put(0x1F4, 0U - word(0x2A), 4);
  } else if (n == 0x1F0 && data.size() == 8 && active) {
    image[0x1F8] = 2;
    const auto signedAt = [&](uint32_t at) {
      return int64_t{static_cast<int32_t>(word(at) | word(at + 2) << 16)};
    };
    const int64_t x = signedAt(0x1F0);
    const int64_t y = signedAt(0x1F4);
    axis(n, x, 1);
    axis(n, y, 2);
  } else if (n == 0x1F8 && data.size() == 1 && (data[0] == 0xA5 || data[0] == 0)) {
    leaveMode(n, data[0] == 0xA5);
  }
}

void FeatureModel::clockTestRole(uint32_t n, const Bytes& data) {
  if (n >= 0x11 && n <= 0x16) {
    std::array<int, 6> time{};
    for (uint32_t i = 0; i < 6; ++i) time[i] = (image[0x11 + i] >> 4) * 10 + (image[0x11 + i] & 15);
    if (!isTime(time)) return;
    journal.insert(journal.end(), {"clock-set", "clock-set", "shell hwclock -w --localtime"});
  } else if (n == 0x9D && data.size() == 1) {
    const uint8_t slave = data[0] == 0xA5 ? 1 : 0;
    const uint8_t role = slave != 0 ? 0x80 : 0;
    toFlash(0xA60010, {slave});
    for (uint32_t i = 0; i < 4; ++i) {
      for (const uint32_t group : {0x18U, 0x98U, 0x100U, 0x104U}) {
        image[group + i] = role;
        toFpga(group + i, {role});
      }
    }
    toFlash(0xA3B118, Bytes(4, role));
    toFlash(0xA3B198, Bytes(4, role));
    toFlash(0xA3B200, Bytes(8, role));
    toFlash(0xA3B19D, {data[0]});
    toFlash(0xC95000, Bytes(4));
  }
}

void FeatureModel::size(uint32_t n, std::size_t length) {
  const std::size_t end = n + length;
  if (!((n < 0x1F0 && end > 0x1EB) || (n < 0x28 && end > 0x23) || (n < 0x2E && end > 0x2B))) return;
  uint32_t width = word(0x1EC);
  uint32_t height = word(0x1EE);
  if (width == 0 || height == 0) {
    width = word(0x2C);
    height = word(0x26);
    if (n == 0x2C) putWord(0x1EC, width);
    if (n == 0x26) putWord(0x1EE, height);
  } else if (image[0x1F8] != 0 && word(0x28) < width && word(0x2A) < height) {
    width -= word(0x28);
    height -= word(0x2A);
  }
  storeSize(width, height);
}

void FeatureModel::write(uint32_t n, const Bytes& data) {
  std::copy(data.begin(), data.end(), image.begin() + n);
  lookForZero(0, n, "Read software para!!");
  if (n == 0x74 && image[0x1F8] != 0 && !(flash[0x202A] == 0 && flash[0x2400] == 0x28)) {
    image[0x74] = 0;
    return;
  }
  if (n == 0x4A || n == 0x74) push(n, {data[0]});
  if (n != 0x3F && n < 0x1F0) toFpga(n, data);
  if (n == 0x21 && data.size() == 1)
    shell("sysconfig set boot_screen " + std::to_string(data[0] < 36 ? 0 : data[0] - 35));
  if (n == 0x9C) push(n, data);
  offsets(n, data);
  if (image[0x3F] != 0 && image[0x3F] != serialTimeout) {
    serialTimeout = image[0x3F];
    journal.push_back("brightness");
  }
  clockTestRole(n, data);
  if ((n & 0xFF) == 0x24) {
    put(0x1EC, 0, 4);
    toFpga(0x1EC, Bytes(4));
  }
  size(n, data.size());
  if (n == 0x1D8) {
    char text[64];
    std::snprintf(text, sizeof text, "status-info 1 0x020001d8 1 %u", unsigned{data[0]});
    journal.push_back(text);
  }
  if (n == 0x1DA || n == 0x1D8) toFlash(kImageInFlash + n, {data[0]});
  toFlash(kImageInFlash, Bytes(image.begin(), image.end()));
  if (n == 0x1F8 && data.size() == 1 && (data[0] == 0xA5 || data[0] == 0)) {
    toFpga(0x28, Bytes(image.begin() + 0x28, image.begin() + 0x2C));
    toFpga(0x1EC, Bytes(image.begin() + 0x1EC, image.begin() + 0x1F0));
    storeSize(word(0x1EC), word(0x1EE));
  }
  if (n == 0xD4) shell("sync");
}

FeatureModel::Bytes FeatureModel::read(uint32_t n, uint32_t length, const Bytes& clock) {
  if (n + length > 496 && n < 493) std::copy(fpga.begin() + n, fpga.begin() + 496, image.begin() + n);
  const int first = below[0] | below[2];
  const int second = below[1] | below[3];
  image[31] = static_cast<uint8_t>(image[31] | (first & 15));
  image[159] = static_cast<uint8_t>(image[159] | first >> 4);
  image[294] = static_cast<uint8_t>(image[294] | (second & 15));
  image[295] = static_cast<uint8_t>(image[295] | second >> 4);
  lookForZero(10, n, "ReadFromFeatureInfo, Read FPGA para!!");
  for (unsigned at = 1; at <= 14; ++at) {
    if (at != 11 && at != 12) image[at] = 0xFF;
  }
  image[15] = image[16] = 0;
  std::copy(clock.begin(), clock.end(), image.begin() + 17);
  return {image.begin() + n, image.begin() + n + length};
}

void FeatureModel::askLsd(uint32_t n, const Bytes& data) {
  if ((n != 0x28 && n != 0x2A) || image[0x1F8] == 0) return;
  const auto at = [&](std::size_t i) { return data[i] | static_cast<uint32_t>(data[i + 1]) << 8; };
  uint32_t x = 0;
  uint32_t y = 0;
  if (n == 0x28 && data.size() == 2) {
    x = at(0);
    y = word(0x2A);
  } else if (n == 0x28 && data.size() == 4) {
    x = at(0);
    y = at(2);
  } else if (n == 0x2A && data.size() == 2) {
    x = word(0x28);
    y = at(0);
  }
  put(0x1F0, 0U - x, 4);
  put(0x1F4, 0U - y, 4);
  push(0x1F0, Bytes(image.begin() + 0x1F0, image.begin() + 0x1F8));
}
