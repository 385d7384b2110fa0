// Registers of the cards behind the output ports.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <numeric>

#include "driverutil.h"
#include "maps/cardgeometry.h"
#include "mcuctrace.h"
#include "platform/driver.h"

namespace ORVE_MCUC {
namespace {

constexpr uint8_t kRead = 0;
constexpr uint8_t kWrite = 1;
constexpr uint16_t kAllBoards = 0xFFFF;
constexpr std::size_t kSummedHead = offsetof(recvcard_mesg, data);
static_assert(sizeof(recvcard_mesg) == 18 && kSummedHead == 12);
static_assert(std::endian::native == std::endian::little, "the record goes out as it lies in memory");

// A request with its checksum, which takes the data of a write as well.
recvcard_mesg cardRequest(uint8_t code, uint32_t address, unsigned int port, uint16_t board, uint16_t length,
                          uint8_t type, std::span<const uint8_t> data) {
  recvcard_mesg request{};
  request.DeviceType = type;
  request.ProtAddr = static_cast<uint8_t>(port);
  request.BoardAddr = board;
  request.code = code;
  request.RegisterAddr = address;
  request.length = length;
  const auto bytes = std::bit_cast<std::array<uint8_t, sizeof request>>(request);
  const auto head = std::span(bytes).first<kSummedHead>();
  request.checksum = static_cast<uint16_t>(
      std::accumulate(data.begin(), data.end(), std::accumulate(head.begin(), head.end(), 0U)));
  return request;
}

std::atomic<const PortLinks*> portLinks{nullptr};

bool isLinked(unsigned int port) {
  const PortLinks* links = portLinks.load(std::memory_order_acquire);
  if (links == nullptr) return false;
  PARLEND_TRACE(kInfo) << "CardLink State :" << CTrace::hex << links->GigaPhyLinkSta
                       << " fiber1link_buff: " << links->Fiber1BelowLinkStatus_buff.le16(0)
                       << " fiber2link_buff: " << links->Fiber2BelowLinkStatus_buff.le16(0);
  return port < kOutputPorts && (links->linkedPorts() >> port & 1) != 0;
}

}  // namespace

void DriverUtil::useLinks(const PortLinks* links) {
  portLinks.store(links, std::memory_order_release);
}

int DriverUtil::ReadCardPara(unsigned int RegStartAddr, unsigned short PortAddr, unsigned short BoardAddr,
                             unsigned short Num, unsigned char* ParaPtr, unsigned char DevType) {
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex_read);
  PARLEND_TRACE(kInfo) << "ReadCardPara: Address = " << CTrace::hex << RegStartAddr << " Port = " << PortAddr
                       << " Board = " << BoardAddr << " length =" << Num;
  if (BoardAddr == kAllBoards) {
    std::fill_n(ParaPtr, Num, uint8_t{0});
    PARLEND_TRACE(kInfo) << "================== BroadCast Read RecvCard para!!! Exit!!! ==================";
    return 0;
  }
  if (!isLinked(PortAddr)) {
    PARLEND_TRACE(kInfo) << "CardLink State Not link ! Port :" << PortAddr;
    return kNoLink;
  }
  recvcard_mesg request = cardRequest(kRead, RegStartAddr, PortAddr, BoardAddr, Num, DevType, {});
  return ReadFPGAformRecvCard(PLATFORM_FPGA_BUS, &request, request.ProtAddr, ParaPtr);
}

int DriverUtil::ReadCardPara(unsigned int RegStartAddr, unsigned short PortAddr, unsigned short Num,
                             unsigned char* ParaPtr, unsigned char DevType) {
  PARLEND_TRACE(kInfo) << "ReadCardPara addr=" << CTrace::hex << RegStartAddr << " num=" << Num;
  return ReadCardPara(RegStartAddr, PortAddr, 0, Num, ParaPtr, DevType);
}

int DriverUtil::SendCardPara(unsigned int RegStartAddr, unsigned char PortAddr, unsigned short BoardAddr,
                             unsigned short Num, const unsigned char* ParaPtr, unsigned char DevType) {
  PARLEND_TRACE(kInfo) << "SendCardPara: Address = " << CTrace::hex << RegStartAddr << " Port = " << PortAddr
                       << " Board = " << BoardAddr << " length =" << Num
                       << " data[0]:" << (Num != 0 ? int{ParaPtr[0]} : 0);
  recvcard_mesg request =
      cardRequest(kWrite, RegStartAddr, PortAddr, BoardAddr, Num, DevType, {ParaPtr, Num});
  // The library reads the data that it takes by a plain pointer.
  return WriteFPGAToRecvCard(PLATFORM_FPGA_BUS, &request, PortAddr, const_cast<unsigned char*>(ParaPtr));
}

}  // namespace ORVE_MCUC
