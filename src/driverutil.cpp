#include "driverutil.h"

#include "driverretry.h"
#include "logwords.h"
#include "mcuctrace.h"
#include "platform/driver.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

constexpr unsigned int kPieceSize = 1024;
constexpr char FpgaStatusDir[] = "/bin/cat /sys/class/fpga/fpga_conf";
constexpr int kStatusError = -1;
constexpr int kStatusDown = 0;

// Transfers a block in pieces and stops at the first negative result. The last piece's result, -1 for no
// piece.
template <class Transfer>
int inPieces(unsigned int length, Transfer transfer) {
  int result = -1;
  for (unsigned int done = 0; done < length;) {
    const unsigned int piece = length - done < kPieceSize ? length - done : kPieceSize;
    result = transfer(done, piece);
    if (result < 0) break;
    done += piece;
  }
  return result;
}

// Not destroyed at the end of the program: every thread uses it to the end.
Singleton<DriverUtil>& holder() {
  static auto& instance = *new Singleton<DriverUtil>;
  return instance;
}

}  // namespace

DriverUtil* DriverUtil::getInstance() {
  return holder().get([] { return new DriverUtil; });
}

void DriverUtil::deleteInstance() {
  holder().destroy();
}

bool DriverUtil::initialize() {
  LogSection section({"============================= Begin kespara file init ===========================",
                      "============================= Finish kespara file init ==========================="});
  if (Flash_Init() != 0) {
    PARLEND_TRACE(kError) << "kespara file fail";
    section.abandon();
    return false;
  }
  return true;
}

int DriverUtil::initUdp() {
  return FPGA_UDP_Init();
}

int DriverUtil::WriteFPGABusBlock(unsigned int address, const unsigned char* data, unsigned int length) {
  if (FpgaDownFlg.load(std::memory_order_relaxed)) return -1;
  if (withRetries([&] { return WriteFPGABlock(PLATFORM_FPGA_BUS, address, length, data); }) == 0) return 0;
  PARLEND_TRACE(kError) << ">>>>>>>>>>>>>>>>>>>>> FPGA Write Fail<<<<<<<<<<<<<<<<<<<";
  learnFpgaStatus();
  return -1;
}

int DriverUtil::ReadFPGABusBlock(unsigned int address, unsigned char* buffer, unsigned int length) {
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex_read);
  if (FpgaDownFlg.load(std::memory_order_relaxed)) return -1;
  const auto counted = static_cast<uint16_t>(length & 0xFFFF);
  if (withRetries([&] { return ReadFPGABlock(PLATFORM_FPGA_BUS, address, counted, buffer); }) == 0) return 0;
  PARLEND_TRACE(kError) << ">>>>>>>>>>>>>>>>>>>>> FPGA Read Fail<<<<<<<<<<<<<<<<<<<";
  learnFpgaStatus();
  return -1;
}

void DriverUtil::learnFpgaStatus() {
  switch (ReadFpgaStatus(FpgaStatusDir)) {
    case kStatusError:
      PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Err<<<<<<<<<<<<<<<<<<<";
      break;
    case kStatusDown:
      PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Down<<<<<<<<<<<<<<<<<<<";
      FpgaDownFlg.store(true, std::memory_order_relaxed);
      break;
    default:
      PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Up<<<<<<<<<<<<<<<<<<<";
      FpgaDownFlg.store(false, std::memory_order_relaxed);
  }
}

int DriverUtil::WriteFPGABusOneWord(unsigned int address, unsigned char value) {
  return WriteFPGABusBlock(address, &value, 1);
}

int DriverUtil::ReadFPGABusOneWord(unsigned int address, unsigned char* value) {
  return ReadFPGABusBlock(address, value, 1);
}

int DriverUtil::FPGAC5_WriteOneWord(unsigned char, unsigned char, unsigned int address, unsigned char value) {
  return WriteFPGABusOneWord(address, value);
}

int DriverUtil::FPGAC5_ReadOneWord(unsigned char, unsigned char, unsigned int address) {
  unsigned char value = 0;
  ReadFPGABusOneWord(address, &value);
  return value;
}

int DriverUtil::FPGAC5_WriteDataBlock(unsigned char, unsigned char, unsigned int address, unsigned int length,
                                      const unsigned char* data) {
  return inPieces(length, [&](unsigned int at, unsigned int piece) {
    return WriteFPGABusBlock(address + at, data + at, piece);
  });
}

int DriverUtil::FPGAC5_ReadDataBlock(unsigned char, unsigned char, unsigned int address, unsigned int length,
                                     unsigned char* buffer) {
  return inPieces(length, [&](unsigned int at, unsigned int piece) {
    return ReadFPGABusBlock(address + at, buffer + at, piece);
  });
}

}  // namespace ORVE_MCUC
