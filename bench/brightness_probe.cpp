// Prints on descriptor 3, in microseconds, what a tick of the periodic poll takes on average: without a
// brightness mode, then with the timetable, the automatic mode, a fixed and an ambient slot of a mixed plan,
// and the two modes that watch the heartbeat.
#include <algorithm>
#include <array>
#include <cstdio>

#include "calc/brightnesspreview.h"
#include "mcucdatablock.h"
#include "probe.h"
#include "process/proc_poll.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/store/data_common.h"

namespace {

using namespace ORVE_MCUC;
namespace at = ORVE_MCUC::brightness;

constexpr int kTicks = 99 * 100;  // 33 minutes of ticks

// One slot from midnight on, one sensor, a map of two points, a reading every five seconds.
BrightnessFile mixedFile(uint8_t mode, bool ambient) {
  BrightnessFile file{};
  const std::span<uint8_t> bytes = file;
  file[at::kMode] = mode;
  for (const auto& [field, value] : {std::pair<std::size_t, uint16_t>{at::kFileLength, 120},
                                     {at::kSensorBase, 32},
                                     {at::kTimeNodeBase, 64},
                                     {at::kLuxMapBase, 100},
                                     {at::kSensorValidBase, 110},
                                     {at::kReadInterval, 5}})
    putLe16(bytes, field, value);
  file[at::kControl] = file[at::kGlobalControl] = 1;
  file[at::kReadTimes] = 3;
  const uint8_t sensor[] = {1, 0, 0, 0, 0, 1};
  const uint8_t slot[] = {1, 0, 0, 0, ambient ? at::kAmbientSlot : uint8_t{0}, 0x7F, 80, 1};
  const uint8_t map[] = {2, 0, 0, 10, 0xE8, 0x03, 100};
  std::copy(std::begin(sensor), std::end(sensor), file.begin() + 32);
  std::copy(std::begin(slot), std::end(slot), file.begin() + 64);
  std::copy(std::begin(map), std::end(map), file.begin() + 100);
  return file;
}

BrightnessFile tableFile(uint8_t mode) {
  BrightnessFile file{};
  const std::array<uint8_t, 12> header{mode, 1, 0, 0, 0, 0xE8, 0x03, 0, 0, 220, 20, 4};
  std::copy(header.begin(), header.end(), file.begin());
  file[at::kNodePorts] = 0x0F;
  if (mode == at::kAutomatic) file[at::kAutomaticSensors + 4] = 1;
  return file;
}

double microsecondsOfTick(const BrightnessFile& file) {
  Addr_HardWareBrightnessAdjust::deleteInstance();
  Proc_Poll::deleteInstance();
  Addr_HardWareBrightnessAdjust::SetBrightnessAdjustTable(0x0A000000, std::span(file).first(at::kMirrorSize));
  Proc_Poll& poll = *Proc_Poll::getInstance();
  poll.AutoBrightnessadjust();
  const double start = bench::nowUs();
  for (int i = 0; i < kTicks; ++i) poll.AutoBrightnessadjust();
  return (bench::nowUs() - start) / kTicks;
}

}  // namespace

int main(int, char** argv) {
  bench::startBoard(argv);
  Data_Global::getInstance()->GigaPhyLinkSta = 0x000F;
  const BrightnessFile files[] = {{},
                                  tableFile(at::kProgrammable),
                                  tableFile(at::kAutomatic),
                                  mixedFile(at::kMixed, false),
                                  mixedFile(at::kMixed, true),
                                  mixedFile(at::kSerialBlack, false),
                                  mixedFile(at::kHardware, false)};
  for (const BrightnessFile& file : files) dprintf(bench::kResultFd, "%f\n", microsecondsOfTick(file));
  return 0;
}
