// The tables that the screen and colour calculations share, and the names of the fields in them. Bytes are
// touched by several threads, as those of the register images are; fields are 16 bits, little-endian.
#pragma once

#include <array>
#include <cstdint>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

using PortValues = std::array<RelaxedValue<uint16_t>, 10>;  // of ports 0..9

// Owner: the store. ParaTable and the MyTemp tables change under the configuration lock, on the work thread
// and the flag and status thread; ParaTable is loaded and saved under the image lock as well. The other
// values are single ones, under no lock; the receive thread writes the TempAdv ones, too.
struct WorkingTables {
  ByteImage<1024> ParaTable;          // the first kGlobalParaSize bytes are saved in flash
  ByteImage<1024> MyTempParaTable;    // fields 1, 2, 3: rows, columns, cards per port
  ByteImage<32> MyTempParaCharTable;  // byte 0 connection mode, byte 2 master/backup
  // Working values of the advanced configuration.
  PortValues TempAdvCfgPortRow{1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  PortValues TempAdvCfgPortCol{1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  PortValues TempAdvCfgPortX{};
  PortValues TempAdvCfgPortY{};
  std::array<RelaxedByte, 10> TempAdvPortCM{};
  // Kept under the system's names; nothing reads them.
  ByteImage<1024> AdvCfgParaTable;                             // advanced configuration, 10 bytes a port
  ByteImage<32> ParaCharTable;                                 // bytes 1..16: connection modes of ports 1..16
  std::array<RelaxedValue<uint32_t>, 2> RecvCardSize_befor{};  // pixels, read back after a factory reset
  RelaxedValue<uint32_t> factory_flag{};  // 1 while the first boot after a factory reset is restored
  RelaxedValue<uint32_t> read_CardSize_flag{};
  std::array<RelaxedByte, 7> Time_to_vsp{};
};
inline constinit WorkingTables workingTables;

inline constexpr auto& ParaTable = workingTables.ParaTable;
inline constexpr auto& AdvCfgParaTable = workingTables.AdvCfgParaTable;
inline constexpr auto& ParaCharTable = workingTables.ParaCharTable;
inline constexpr auto& MyTempParaTable = workingTables.MyTempParaTable;
inline constexpr auto& MyTempParaCharTable = workingTables.MyTempParaCharTable;
inline constexpr auto& TempAdvCfgPortRow = workingTables.TempAdvCfgPortRow;
inline constexpr auto& TempAdvCfgPortCol = workingTables.TempAdvCfgPortCol;
inline constexpr auto& TempAdvCfgPortX = workingTables.TempAdvCfgPortX;
inline constexpr auto& TempAdvCfgPortY = workingTables.TempAdvCfgPortY;
inline constexpr auto& TempAdvPortCM = workingTables.TempAdvPortCM;
inline constexpr auto& RecvCardSize_befor = workingTables.RecvCardSize_befor;
inline constexpr auto& factory_flag = workingTables.factory_flag;
inline constexpr auto& read_CardSize_flag = workingTables.read_CardSize_flag;
inline constexpr auto& Time_to_vsp = workingTables.Time_to_vsp;

inline constexpr std::size_t kGlobalParaSize = 512;

// Byte 2 of the character table: master/backup of the configuration being calculated.
inline constexpr std::size_t kTempRoleAt = 2;

// Screen parameters that are kept in flash.
namespace screenpara {
inline constexpr std::size_t kStored = 15;
inline constexpr uint8_t kConfigured = 0x55;   // byte 1: a configuration has set the screen
inline constexpr std::size_t kCardSizeAt = 6;  // width u16, height u16, in pixels
inline constexpr std::size_t kLayoutAt = 10;   // rows, columns, connection mode, cards per port u16
}  // namespace screenpara

// Offsets of the fields in ParaTable. The role lives in the store's member of that name; its slot here stays
// unused.
namespace para {
enum Field : std::size_t {
  PbufBrightness = 0x00,
  PbufGamma = 0x02,
  PbufRedBri = 0x04,
  PbufGreenBri = 0x06,
  PbufBlueBri = 0x08,
  PbufColorTemp = 0x0A,
  PbufHRes = 0x0C,
  PbufVRes = 0x0E,
  PbufInputRefrate = 0x10,
  PbufOffSetX = 0x12,
  PbufOffSetY = 0x14,
  PbufScreenWidth = 0x16,
  PbufScreenHeight = 0x18,
  PbufCalCfgRow = 0x1A,
  PbufCalCfgCol = 0x1C,
  PbufCalCfgNum = 0x1E,
  PbufCalCfgCM = 0x20,
  PbufMorSMode = 0x22,
  PbufHDRType = 0x24,
  PbufHLGClass = 0x26,
  PbufScrPeakLight = 0x28,
  PbufAmbientLight = 0x2A,
  PbufLowGrayEffect = 0x2C,
  PbufHigGrayEffect = 0x2E,
  PbufContrast = 0x30,
  PbufSaturation = 0x32,
  PbufHue = 0x34,
  PbufSendcardBitDepth = 0x36,
};

// Fields of port 1..16 in AdvCfgParaTable, and its connection mode in ParaCharTable.
constexpr std::size_t advanced(std::size_t port) {
  return 10 * (port - 1);
}
constexpr std::size_t PbufAdvCfgPortRow(std::size_t port) {
  return advanced(port) + 0;
}
constexpr std::size_t PbufAdvCfgPortCol(std::size_t port) {
  return advanced(port) + 2;
}
constexpr std::size_t PbufAdvCfgPortX(std::size_t port) {
  return advanced(port) + 4;
}
constexpr std::size_t PbufAdvCfgPortY(std::size_t port) {
  return advanced(port) + 6;
}
constexpr std::size_t PbufAdvCfgPortCM(std::size_t port) {
  return advanced(port) + 8;
}
constexpr std::size_t PbufAdvPortCM(std::size_t port) {
  return port;
}
static_assert(PbufAdvCfgPortCM(16) + 2 <= 1024 && PbufAdvPortCM(16) < 32);
}  // namespace para

}  // namespace ORVE_MCUC
