// Feature parameters: the image of the FPGA's basic parameter area, completed with what the device knows now.
#include "calc/bypass.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "process/basicpublicfunc.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kProbeMask = 0xFFF;
constexpr uint32_t kLastRefreshed = 492;  // reads that start behind it are answered from the image
constexpr std::size_t kOffsetBytes = 8;   // both signed offsets

constexpr SectionWords kReading{
    .begin = "==============ReadFromFeatureInfo: Begin Read Feature Info =============================",
    .finish = "=============SM2W=============== Finished read feature info ==========================="};

Data_Global& store() {
  return *Data_Global::getInstance();
}

void logRegister(const RegisterSpace& space, const IMD_proto3rd& request) {
  PARLEND_TRACE(kInfo) << "RegisterAddr = " << CTrace::hex
                       << (request.proto.m_uiRegisterUnitAddress & reg::kNarrowMask)
                       << " map size = " << space.rows.size();
}

bool insideImage(const IMD_proto3rd& request, const char* operation) {
  const std::size_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const std::size_t length =
      std::max<std::size_t>(request.proto.m_usValidDataLength, request.proto.m_data.size());
  if (fits(kFeatureSize, offset, length)) return true;
  PARLEND_TRACE(kError) << "=== " << operation << " ===Invalid addr+len, return! address = " << CTrace::hex
                        << offset << " len = " << length;
  return false;
}

// The registers that image and FPGA both hold. Reads that reach behind them ask the FPGA.
using Mirror = std::array<uint8_t, fpga::kMirrorEnd>;

bool asksFpga(uint32_t offset, uint32_t length) {
  return offset + length > fpga::kMirrorEnd && offset <= kLastRefreshed;
}

// Who asks the FPGA is told what it holds, also where the image knows what it is going to hold.
void answerAsFpga(uint32_t offset, std::span<uint8_t> answer, const Mirror& held) {
  changeImage(store(), store().SendParameterReg, [&](const FeatureImage& image) {
    for (std::size_t at = offset; at < held.size(); ++at) {
      if (image.isAhead(at)) answer[at - offset] = held[at];
    }
  });
}

// What lies below the fibers counts as linked, too.
void addFiberLinks() {
  const auto both = [](std::size_t byte) {
    return store().Fiber1BelowLinkStatus_buff[byte] | store().Fiber2BelowLinkStatus_buff[byte];
  };
  const int ports0To7 = both(0);
  const int ports8To15 = both(1);
  const int groups[] = {ports0To7 & 0x0F, ports0To7 >> 4, ports8To15 & 0x0F, ports8To15 >> 4};
  changeImage(store(), store().SendParameterReg, [&](FeatureImage& image) {
    for (std::size_t i = 0; i < fpga::kNetLinks.size(); ++i) {
      RelaxedByte& links = image[fpga::kNetLinks[i]];
      links = static_cast<uint8_t>(links | groups[i]);
    }
  });
}

// The first bytes tell peers nothing any more, and the clock tells them the time.
void completeImage() {
  BcdClock clock{};
  snapshot(store(), store().SendParameterReg, fpga::kClock, clock);
  BasicPublicFunc::getInstance()->GetHwTime(clock);
  changeImage(store(), store().SendParameterReg, [&](FeatureImage& image) {
    for (const unsigned at : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U, 13U, 14U}) image[at] = 0xFF;
    for (const unsigned at : {15U, 16U}) image[at] = 0;
    for (std::size_t i = 0; i < clock.size(); ++i) image[fpga::kClock + i] = clock[i];
  });
}

int answerProbe(IMD_proto3rd& request, LogSection& section) {
  constexpr std::array<uint8_t, 1> kAnswer{0};
  replyWith(request, kAnswer);
  PARLEND_TRACE(kInfo) << "Sending 0x0200_004B information to TOLM when reading feature information.";
  PARLEND_TRACE(kInfo) << "=========================== Finish Read Feature Info ============================";
  section.abandon();
  return kDone;
}

int ReadFromFeatureInfo(IMD_proto3rd& request) {
  LogSection section(kReading);
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  const uint32_t length = request.proto.m_usValidDataLength;
  if ((address & kProbeMask) == fpga::kProbe && length == 1) return answerProbe(request, section);
  const uint32_t offset = address & reg::kOffsetMask;
  const bool inside = insideImage(request, "ReadFromFeatureInfo");
  const bool asked = asksFpga(offset, length);
  Mirror held{};
  if (!inside || (asked && readThrough(store(), store().SendParameterReg, offset, offset,
                                       std::span(held).subspan(offset)) != 0)) {
    section.abandon();
    if (!inside) return kBeyondImage;
    PARLEND_TRACE(kError)
        << "=== ReadFromFeatureInfo ===Read from FPGA BasicPara failed when reading feature information! ";
    return kRefused;
  }
  addFiberLinks();
  store().DebugForScreenZero(10, address, "ReadFromFeatureInfo, Read FPGA para!!");
  completeImage();
  FeatureBytes room{};
  const auto bytes = std::span(room).first(length);
  snapshot(store(), store().SendParameterReg, offset, bytes);
  if (asked) answerAsFpga(offset, bytes, held);
  replyWith(request, bytes);
  return kDone;
}

struct Offset {
  uint16_t x = 0;
  uint16_t y = 0;
};

// The offset as it will be after a write at one of its two registers; none after one that is no whole field.
Offset offsetAfter(bool atX, std::span<const uint8_t> data) {
  static_assert(fpga::kScreenOffsetY == fpga::kScreenOffsetX + 2);
  std::array<uint8_t, 4> now{};
  snapshot(store(), store().SendParameterReg, fpga::kScreenOffsetX, now);
  if (atX && data.size() == 2) return {le16(data), le16(now, 2)};
  if (atX && data.size() == 4) return {le16(data), le16(data, 2)};
  if (!atX && data.size() == 2) return {le16(now), le16(data)};
  return {};
}

// In bypass mode LSD moves the picture: it is told what a tool asks for, with the opposite sign.
void tellLsdOfOffset(const IMD_proto3rd& request) {
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  const bool atX = address == reg::ofFeature(fpga::kScreenOffsetX);
  if (!atX && address != reg::ofFeature(fpga::kScreenOffsetY)) return;
  if (store().SendParameterReg[fpga::kOffsetMode] == kNoOffset) return;
  if (request.ipcHeader.uiid == taskOf(kServiceLsd)) return;
  const Offset offset = offsetAfter(atX, request.proto.m_data);
  PARLEND_TRACE(kInfo) << "========================== parlend bypass mode dvi offset to lsd X:" << offset.x
                       << " Y:" << offset.y;
  std::array<uint8_t, kOffsetBytes> bytes{};
  putLe32(bytes, 0, negated(offset.x));
  putLe32(bytes, 4, negated(offset.y));
  putBytes(store(), store().SendParameterReg, fpga::kSignedOffsetX, bytes);
  store().SendDatetoLSD(reg::ofFeature(fpga::kSignedOffsetX), bytes);
}

int WriteToFeatureInfo(IMD_proto3rd& request) {
  if (!insideImage(request, "WriteToFeatureInfo")) return kBeyondImage;
  return queueWrite(request, workKey<DoFeatureInfoKey>, &tellLsdOfOffset);
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kFeature>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kFeature>({.read = &ReadFromFeatureInfo,
                                                                        .write = &WriteToFeatureInfo,
                                                                        .unknownKey = kDone,
                                                                        .entered = &logRegister});
  return kSpace;
}

}  // namespace ORVE_MCUC
