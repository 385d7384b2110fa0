#include <fcntl.h>
#include <limits.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "driverutil.h"
#include "mcuctrace.h"
#include "platform/board.h"
#include "platform/lineecho.h"

namespace ORVE_MCUC {
namespace {

constexpr char kFpgaStatusFile[] = "/sys/class/fpga/fpga_conf";
constexpr int kStatusError = -1;
constexpr int kStatusNoSource = 255;
constexpr int kClockFailed = 0xFF;
constexpr unsigned long kClockConfigRequest = 0xC10065A0;
constexpr std::size_t kClockRequestSize = 256;
constexpr std::size_t kCommandResultSize = 64;

bool fileExists(const char* devicePath) {
  char path[PATH_MAX];
  return board_path(devicePath, path, sizeof path) == 0 && access(path, F_OK) == 0;
}

// The clock chip's request: chip register, then the frequency; the rest is zero.
std::array<unsigned char, kClockRequestSize> clockRequest(unsigned char channel, unsigned int frequency) {
  std::array<unsigned char, kClockRequestSize> request{};
  request[0] = channel == 0 ? 0 : 1;
  putLe32(request, 4, frequency);
  return request;
}

}  // namespace

int DriverUtil::runCommand(const char* command) {
  return board_shell(command);
}

int DriverUtil::ReadFpgaStatus(const char* command) {
  if (!fileExists(kFpgaStatusFile)) {
    PARLEND_TRACE(kError) << "=== file: " << command << " not found !!!!!!!!!!!=========";
    return kStatusNoSource;
  }
  PARLEND_TRACE(kInfo) << "=== file: " << command << " ok !!!!!!!!!!!=========";
  char output[kCommandResultSize] = {};
  if (run_command_return_string(command, output) != 0) return kStatusError;
  int status = kStatusError;
  // Output that is no number leaves the status an error.
  const char* digits = output + std::strspn(output, " \t");
  std::from_chars(digits, output + std::strlen(output), status);
  PARLEND_TRACE(kInfo) << "=== ====== Read Fpga Status para = " << status << "  =========";
  return status;
}

int DriverUtil::run_command_return_string(const char* command, char* result) {
  if (command == nullptr) {
    PARLEND_TRACE(kInfo) << "cmd is null, exit.";
    return -1;
  }
  if (result == nullptr) {
    PARLEND_TRACE(kInfo) << "result is null, exit.";
    return -1;
  }
  char line[kCommandResultSize] = {};
  const int read = board_shell_line(command, line, sizeof line);
  if (read < 0) {
    PARLEND_TRACE(kInfo) << "popen error. cmd:" << command;
    return -1;
  }
  if (read == 0) return 0;
  chomp(line);
  if (line[0] == '\0') return -1;
  std::memcpy(result, line, sizeof line);
  return 0;
}

void DriverUtil::chomp(char* text) {
  for (const char end : {'\n', '\r'}) {
    if (char* found = std::strrchr(text, end)) *found = '\0';
  }
}

int DriverUtil::SetClock(unsigned char channel, unsigned int frequency) {
  char path[PATH_MAX];
  const int device = board_path("/dev/i2cdev9", path, sizeof path) == 0 ? open(path, O_RDWR | O_CLOEXEC) : -1;
  if (device < 0) {
    platform::LineEcho().write("fail to open!!!\n");
    return kClockFailed;
  }
  auto request = clockRequest(channel, frequency);
  const int sent = ioctl(device, kClockConfigRequest, request.data());
  close(device);
  if (sent < 0) {
    platform::LineEcho().write("fail to ioctl config!!!\n");
    return kClockFailed;
  }
  return 0;
}

}  // namespace ORVE_MCUC
