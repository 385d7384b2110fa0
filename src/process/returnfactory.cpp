#include "process/returnfactory.h"

#include <array>
#include <memory>
#include <new>
#include <span>

#include "driverutil.h"
#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "maps/rvconfigmap.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "ReturnFactory";
constexpr uint8_t kWithNetwork = 1;  // types
constexpr uint8_t kKeepingFiles = 2;
constexpr int kSettlingMs = 5;
constexpr std::size_t kKeptHead = 4;  // bytes kept of the name file and of the configuration files

void shell(const char* command) {
  DriverUtil::getInstance()->runCommand(command);
}

// Zeroed room; empty without memory. What a failed read has left there is cleared.
class WorkBuffer {
 public:
  WorkBuffer(std::size_t size, const char* failed)
      : bytes_(new (std::nothrow) uint8_t[size]()), size_(bytes_ ? size : 0) {
    if (!bytes_) PARLEND_TRACE(kError) << failed;
  }
  explicit operator bool() const { return bytes_ != nullptr; }
  std::span<uint8_t> all() const { return {bytes_.get(), size_}; }
  std::span<uint8_t> first(std::size_t count) const { return all().first(std::min(count, size_)); }
  void load(uint32_t address, std::size_t count, FailureWords words) const {
    if (!bytes_) return;
    const auto part = first(count);
    if (readFlash(address, part, words) != 0) std::fill(part.begin(), part.end(), uint8_t{0});
  }

 private:
  std::unique_ptr<uint8_t[]> bytes_;
  std::size_t size_;
};

struct WorkBuffers {
  WorkBuffer scenes{0xB400, "=== malloc videod_scene_para err! "};
  WorkBuffer names{768, "=== malloc rename_buff err! "};
  WorkBuffer files{0x100000, "=== malloc rvFile_buff err! "};
  WorkBuffer brightness{4096, "=== malloc AutoLightPara err! "};
};

void setFactoryNetwork(Data_Global& store) {
  if (store.SetIPVersion() == 0) {
    PARLEND_TRACE(kInfo) << "Set IP successfully! ";
  } else {
    PARLEND_TRACE(kError) << "=== ReturnFactory ===Set IP failed! ";
  }
}

// What outlives the reset. Returns the DHCP setting.
uint8_t readKept(const WorkBuffers& kept) {
  uint8_t dhcp = 0;
  if (readFlash(flash::kDhcp, {&dhcp, 1}, kCaller) != 0) dhcp = 0;
  PARLEND_TRACE(kInfo) << "read DHCP Para!!" << dhcp;
  PARLEND_TRACE(kInfo) << "read videod_scene_para!!";
  kept.scenes.load(flash::kScenes, kept.scenes.all().size(), kCaller);
  kept.names.load(flash::kDeviceNameFile, kKeptHead,
                  {"DevNameFileAddr", "Read from flash failed when reading DevNameFile ! "});
  kept.files.load(flash::kConfigFiles, kKeptHead,
                  {"RVConfigFileAddr", "Read from flash failed when reading RvFile ! "});
  return dhcp;
}

void prepareCopy() {
  shell("cp /usr/orve/etc/sysconf/kespara_factory /usr/orve/etc/sysconf/kespara_factory_tmp");
  shell("rm -r /usr/kestrel/bin/vsp/bin/Configure/system.ini");
  shell("rm -r /root/.config/Orvelin/Quillor.ini");
}

CardSize measureCard(Data_Global& store) {
  CardSize card;
  if (store.GetRecvCardSize_EnvNew() == 0) card = store.ReceiveCardSize;
  PARLEND_TRACE(kInfo) << "=======ReturnFactory=======, read and write flash ScreenSize = CardSize ="
                       << card.width << " x " << card.height;
  PARLEND_TRACE(kInfo) << "============================= Wrtie buff_get[0] = " << card.width
                       << " buff_get[1]=" << card.height;
  return card;
}

uint8_t readScreenChangeCounter(Data_Global& store) {
  uint8_t counter = 0;
  if (readFlash(flash::kScreenChangeCounter, {&counter, 1}, kCaller) != 0) counter = 0;
  logScreenChangeCounter(counter);
  PARLEND_TRACE(kInfo) << "=======ReturnFactory======= After w flash ,read ScreenSize and CardSize :";
  std::array<uint32_t, 2> size{};
  store.Read_ScreenSize_FromFlash(size.data());
  store.Read_CardSize_FromFlash(size.data());
  shell("sync");
  Delay(kSettlingMs);
  return counter;
}

void resetCards() {
  struct Step {
    uint32_t address;
    uint8_t value;
  };
  constexpr Step kSteps[] = {{card::kBrightness, 0x99},
                             {card::kPictureSwitch2, 0},
                             {card::kPictureSwitch1, 1},
                             {card::kPictureSwitch1, 0},
                             {card::kBlackOut, 0}};
  constexpr CardPlace kAllCards{card::kReceivingCard, 0xFF, 0xFFFF};
  bool first = true;
  for (const auto& [address, value] : kSteps) {
    if (!first) Delay(kSettlingMs);
    first = false;
    writeCard(kAllCards, address, {&value, 1}, kCaller);
  }
}

// What the next boot starts from.
struct FactoryValues {
  CardSize card;
  uint8_t counter;
  uint8_t dhcp;
};

void fillCopy(const FactoryValues& values, const WorkBuffer& brightness) {
  constexpr std::array<uint8_t, 4> kOneCard{0, 1, 1, 1};  // mode, rows, columns, cards per port
  std::array<uint8_t, 8> size{};
  putLe32(size, 0, values.card.width);
  putLe32(size, 4, values.card.height);
  const auto counter = static_cast<uint8_t>(values.counter + 1);
  writeFactoryCopy(flash::kScreenSize, size, kCaller);
  logScreenChangeCounter(counter);
  writeFactoryCopy(flash::kScreenChangeCounter, {&counter, 1}, kCaller);
  writeFactoryCopy(flash::kCardSize, size, kCaller);
  writeFactoryCopy(flash::kShortcutForVsp, kOneCard, kCaller);
  writeFactoryCopy(flash::kShortcutLayout, std::span(kOneCard).last<3>(), kCaller);
  if (brightness) writeFactoryCopy(flash::kBrightnessFile, brightness.all(), kCaller);
  writeFactoryCopy(flash::kDhcp, {&values.dhcp, 1}, kCaller);
  PARLEND_TRACE(kInfo) << "============================= Finish return factory =============================";
}

void keepFiles(const WorkBuffers& kept) {
  PARLEND_TRACE(kInfo) << "====== write videod_scene_para!! =============";
  if (kept.scenes) writeFactoryCopy(flash::kScenes, kept.scenes.all(), kCaller);
  if (kept.names) writeFactoryCopy(flash::kDeviceNameFile, kept.names.first(kKeptHead), kCaller);
  if (kept.files) writeFactoryCopy(flash::kConfigFiles, kept.files.first(kKeptHead), kCaller);
  PARLEND_TRACE(kInfo)
      << "============================= Rname & FvFile Delate success! =============================";
}

void removeFiles() {
  DriverUtil& driver = *DriverUtil::getInstance();
  driver.RemoveRvFile(DriverUtil::kCabCfgIndex, DriverUtil::kByName);
  driver.RemoveOtherRvFile(0, rv::kFileNumbers);
}

void closeOutput() {
  constexpr uint8_t kClosed = 0;
  shell("sysconfig set boot_screen 0");
  shell("sync");
  PARLEND_TRACE(kInfo) << "-----Send FPGA 0x0000_01de << 0x00 FPGA Out Close----";
  writeFpga(fpga::kOutputEnable, {&kClosed, 1}, kCaller);
}

uint8_t checkedType(uint8_t type) {
  if (type <= kKeepingFiles) return type;
  PARLEND_TRACE(kError) << "=== ReturnFactory ===type " << type << " is unknown, type 0 is carried out.";
  return 0;
}

void carryOut(Data_Global& store, uint8_t type) {
  const WorkBuffers buffers;
  uint8_t dhcp = 0;
  if (type == kWithNetwork) {
    setFactoryNetwork(store);
  } else {
    dhcp = readKept(buffers);
  }
  prepareCopy();
  const CardSize card = measureCard(store);
  const uint8_t counter = readScreenChangeCounter(store);
  resetCards();
  fillCopy({card, counter, dhcp}, buffers.brightness);
  if (type == kKeepingFiles) {
    keepFiles(buffers);
  } else {
    removeFiles();
  }
  closeOutput();
  PARLEND_TRACE(kInfo) << "============================= Free Buffer: =======================";
}

// Whatever ends the reset, even a lack of memory: the reboot follows.
class RebootDue {
 public:
  explicit RebootDue(ResetState& state) : state_(state) {}
  ~RebootDue() { state_.RebootRF = ResetState::kRebootPending; }
  RebootDue(const RebootDue&) = delete;
  RebootDue& operator=(const RebootDue&) = delete;

 private:
  ResetState& state_;
};

void reboot() {
  constexpr int kLastMomentMs = 5000;
  PARLEND_TRACE(kInfo) << "Return to factory successfully! reboot in 5 seconds...";
  shell("fpga w s 0x1eb 0x0");
  Delay(kLastMomentMs);
  shell("reboot -f");
}

void runReset(Data_Global& store) {
  constexpr int kBeforeMs = 1000;
  constexpr int kBetweenMs = 500;
  Delay(kBeforeMs);
  store.RebootRF = ResetState::kRunning;
  PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>>>>>>>>>reboot begin>>>>>>>>>>>>>>>";
  Delay(kBetweenMs);
  ReturnFactory(store.ResetMode);
}

}  // namespace

int ReturnFactory(uint8_t type) {
  Data_Global& store = *Data_Global::getInstance();
  PARLEND_TRACE(kInfo) << "=============== Begin return factory, the type = " << type
                       << " ==============================";
  {
    const RebootDue due(store);
    CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
    carryOut(store, checkedType(type));
  }
  PARLEND_TRACE(kInfo) << "============================= Finish return factory :"
                       << static_cast<uint8_t>(store.RebootRF);
  return 0;
}

void Tprocess_ctl::RebootAfterRF() {
  Data_Global& store = *Data_Global::getInstance();
  if (store.RebootRF == ResetState::kRebootPending) {
    reboot();
  } else if (store.RebootRF == ResetState::kRequested) {
    runReset(store);
  }
}

}  // namespace ORVE_MCUC
