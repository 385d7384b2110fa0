#include "process/basicpublicfunc.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "driverutil.h"
#include "envstore.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "proto/store/deviceaccess.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kModelIdAt = 2;
constexpr std::size_t kFirstWordAt = 7;
constexpr std::size_t kSecondWordAt = 10;
constexpr std::size_t kSerialNumberAt = 0x16;
constexpr std::size_t kSerialNumberSize = 8;
constexpr std::size_t kNetworkAt = 0x3D;  // reserved byte, then the MAC address
constexpr std::size_t kNetworkSize = 7;
constexpr std::size_t kAnyLength = 0;
constexpr int kSettlingMs = 10;  // of the boot environment
constexpr std::size_t kClockTextSize = 50;

using Page = std::array<uint8_t, flash::kBasicHardwareSize>;
using Bytes = std::span<const uint8_t>;

Singleton<BasicPublicFunc>& holder() {
  static Singleton<BasicPublicFunc> instance;
  return instance;
}

void put(Page& page, std::size_t at, Bytes bytes) {
  std::copy(bytes.begin(), bytes.end(), page.begin() + static_cast<std::ptrdiff_t>(at));
}

void putWord(Page& page, std::size_t at, Bytes data) {
  if (data.size() >= 2) put(page, at, data.first(2));
}
void putModelId(Page& page, Bytes data) {
  putWord(page, kModelIdAt, data);
}
void putFirstWord(Page& page, Bytes data) {
  putWord(page, kFirstWordAt, data);
}
void putSecondWord(Page& page, Bytes data) {
  putWord(page, kSecondWordAt, data);
}

// Of a whole page only the serial number is taken.
void putSerialNumber(Page& page, Bytes data) {
  const auto serial = data.subspan(kSerialNumberAt, kSerialNumberSize);
  put(page, kSerialNumberAt, serial);
  char text[2 * kSerialNumberSize + 1];
  std::snprintf(text, sizeof text, "%02x%02x%02x%02x%02x%02x%02x%02x", serial[0], serial[1], serial[2],
                serial[3], serial[4], serial[5], serial[6], serial[7]);
  const OpenStore store;
  if (!store) {
    PARLEND_TRACE(kError) << "=== WriteHwBasicInfomation ===open env failed";
  } else if (sysconf_setenv("device_sn", text) != 0) {
    PARLEND_TRACE(kError) << "=== WriteHwBasicInfomation ===set env device_sn failed";
  }
}

void noteNetworkAddressSet() {
  const OpenStore store;
  if (!store) {
    PARLEND_TRACE(kError) << "=== WriteHwBasicInfomation ===When set ethaddr_set flag, open env failed !";
  } else if (sysconf_setenv("ethaddr_set", "1") != 0) {
    PARLEND_TRACE(kError) << "=== WriteHwBasicInfomation ===Set ethaddr_set flag failed !";
  } else {
    PARLEND_TRACE(kInfo) << "Set ethaddr_set flag success. ";
  }
}

void putNetworkAddress(Page& page, Bytes data) {
  put(page, kNetworkAt, data);
  const auto mac = data.subspan<1, 6>();
  char command[80];
  std::snprintf(command, sizeof command, "/usr/kestrel/bin/fw_setenv ethaddr %02x:%02x:%02x:%02x:%02x:%02x",
                mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
  DriverUtil::getInstance()->runCommand(command);
  Delay(kSettlingMs);
  noteNetworkAddressSet();
}

// The writes that change the page.
struct PageRow {
  uint32_t hwRegister;
  std::size_t length;
  void (*put)(Page& page, Bytes data);
};
constexpr std::array kRows{
    PageRow{kModelIdAt, 2, &putModelId},
    PageRow{kFirstWordAt, 2, &putFirstWord},
    PageRow{kSecondWordAt, kAnyLength, &putSecondWord},
    PageRow{0, flash::kBasicHardwareSize, &putSerialNumber},
    PageRow{kNetworkAt, kNetworkSize, &putNetworkAddress},
};

constexpr SectionWords kWriting{
    .begin = "============================ Begin Write HWBasic Info ===========================",
    .finish = "===== ======================= Finish Write HWBasic Info ==========================="};

// The text of one half of the clock to its three fields.
void takeClockText(int (*tell)(char*), char separator, const char* failed, std::span<uint8_t, 3> fields) {
  char text[kClockTextSize] = {};
  if (const int ret = tell(text)) {
    PARLEND_TRACE(kError) << failed << ret;
    return;
  }
  text[kClockTextSize - 1] = '\0';
  takeBcdFields(text, separator, fields);
}

constexpr uint8_t byteOf(int field) {
  return static_cast<uint8_t>(field);
}

void logClock(const LocalMoment& time) {
  PARLEND_TRACE(kInfo) << "\tHard time year: " << time.year;
  PARLEND_TRACE(kInfo) << "\tHard time mon: " << time.month;
  PARLEND_TRACE(kInfo) << "\tHard time day: " << time.day;
  PARLEND_TRACE(kInfo) << "\tHard time hour: " << time.hour;
  PARLEND_TRACE(kInfo) << "\tHard time min: " << time.minute;
  PARLEND_TRACE(kInfo) << "\tHard time sec: " << time.second;
}

}  // namespace

BasicPublicFunc* BasicPublicFunc::getInstance() {
  return holder().get([] { return new BasicPublicFunc; });
}
void BasicPublicFunc::deleteInstance() {
  holder().destroy();
}

void BasicPublicFunc::SetHwBasicinfo(uint32_t hwRegister, std::span<const uint8_t> data) {
  LogSection section(kWriting);
  Page page{};
  const bool known = readFlash(flash::kBasicHardwarePage, page) == 0;
  for (const PageRow& row : kRows) {
    if (row.hwRegister == hwRegister && (row.length == kAnyLength || row.length == data.size()))
      row.put(page, data);
  }
  if (!known) {
    PARLEND_TRACE(kError)
        << "=== WriteHwBasicInfomation ===the basic hardware page cannot be read and is not written.";
    return;
  }
  writeFlash(flash::kBasicHardwarePage, page, "WriteHwBasicInfomation");
}

void BasicPublicFunc::GetHwTime(std::span<uint8_t, kClockBytes> out) {
  PARLEND_TRACE(kInfo) << "SM2W: Read year month day from  sysconf_get_date_ymd:";
  takeClockText(&sysconf_get_date_ymd, '-',
                "=== ReadFromFeatureInfo ===get date ymd error = ", out.first<3>());
  PARLEND_TRACE(kInfo) << "SM2W: Read hour min sec from  sysconf_get_date_hms:";
  takeClockText(&sysconf_get_date_hms, ':',
                "=== ReadFromFeatureInfo ===get date hms error = ", out.last<3>());
  if (tracePasses(kInfo)) logClock(momentOf(out));
}

void BasicPublicFunc::SetHwTime(std::span<const uint8_t, kClockBytes> bcd) {
  const LocalMoment time = momentOf(bcd);
  if (!isInCalendar(time)) {
    PARLEND_TRACE(kError) << "=== SetHwTime ===no such time: " << 2000 + time.year << "-" << time.month << "-"
                          << time.day << " " << time.hour << ":" << time.minute << ":" << time.second;
    return;
  }
  DriverUtil& driver = *DriverUtil::getInstance();
  driver.WriteDate(byteOf(time.year), byteOf(time.month), byteOf(time.day));
  driver.WriteTime(byteOf(time.hour), byteOf(time.minute), byteOf(time.second));
  driver.runCommand("hwclock -w --localtime");
}

}  // namespace ORVE_MCUC
