// Requests to the cards behind the ports: they go out in chunks through the card access, and what a read
// finds goes into the reply.
#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "proto/cards/cardtasks.h"
#include "proto/store/deviceaccess.h"
#include "proto/tshl_ctl.h"
#include "results.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

// What a reply's frame has room for.
constexpr uint16_t kLongestRead = DATA_BLOCK_LENGTH - kFrameMinimum;
static_assert(kLongestRead == 65516);

// Calls with the address and the bytes of each chunk. The address that is reached.
template <class Use>
uint32_t inChunks(uint32_t address, std::span<uint8_t> data, std::size_t chunkSize, Use use) {
  while (!data.empty()) {
    const auto chunk = data.first(std::min(chunkSize, data.size()));
    use(address, chunk);
    address += static_cast<uint32_t>(chunk.size());
    data = data.subspan(chunk.size());
  }
  return address;
}

CardPlace placeOf(const CardTask& task, const ThirdProtoMCUCMsg& proto) {
  return {task.selector, proto.m_ucPortAddress, proto.m_usBoardAddress};
}

int answer(ThirdProtoMCUCMsg& proto, int code) {
  proto.m_ucAck = static_cast<uint8_t>(code);
  return code;
}

bool mayRead(const CardTask& task, uint8_t port) {
  if (!task.asksTheLink) return true;
  if (Tshl_ctl::PortLinkVerify(port) == 0) {
    PARLEND_TRACE(kError) << "=== Ssh_StartDistribute =========Ssh_StartDistribute====== The PortAddress "
                             "isn't link, return! ";
    return false;
  }
  PARLEND_TRACE(kInfo) << "The PortAddress = " << port << "is linked. ";
  return true;
}

// The first result of a chunk that is not 0; the chunks behind it are asked all the same.
int readChunks(const CardTask& task, ThirdProtoMCUCMsg& proto) {
  int result = 0;
  inChunks(proto.m_uiRegisterUnitAddress, proto.m_data, task.chunkSize,
           [&](uint32_t address, std::span<uint8_t> chunk) {
             const auto length = static_cast<uint16_t>(chunk.size());
             PARLEND_TRACE(kInfo) << "Read " << task.cards << ", the CodeType = " << proto.m_ucCode
                                  << ", PortAddr = " << proto.m_ucPortAddress << ", ReadLength = " << length
                                  << ", BoardAddr = " << proto.m_usBoardAddress
                                  << ", RegAddr = " << CTrace::hex << address;
             const int got = readCard(placeOf(task, proto), address, chunk);
             if (result == 0) result = got;
           });
  return result;
}

int read(const CardTask& task, ThirdProtoMCUCMsg& proto) {
  if (proto.m_usValidDataLength > kLongestRead) {
    PARLEND_TRACE(kError) << "=== " << task.name << " ===a read of " << proto.m_usValidDataLength
                          << " bytes does not fit into a reply, return! ";
    return answer(proto, kRefused);
  }
  if (!mayRead(task, proto.m_ucPortAddress)) return answer(proto, kRefused);
  proto.m_data.assign(proto.m_usValidDataLength, 0);
  const int result = readChunks(task, proto);
  if (result == 0) {
    PARLEND_TRACE(kInfo) << task.readDone;
    return answer(proto, kDone);
  }
  proto.m_data.clear();
  if (task.outspoken) {
    PARLEND_TRACE(kError) << task.readFailed << result;
  } else {
    PARLEND_TRACE(kError) << task.readFailed;
  }
  return answer(proto, result == DriverUtil::kNoLink ? kRefused : task.noAnswer);
}

void writeChunk(const CardTask& task, const ThirdProtoMCUCMsg& proto, uint32_t address,
                std::span<uint8_t> chunk) {
  const auto length = static_cast<uint16_t>(chunk.size());
  if (tracePasses(kInfo)) {
    TraceLine line(kInfo, sourceName(__FILE__), __LINE__);
    line.record() << "Write " << task.cards << ", the CodeType = " << proto.m_ucCode
                  << " PortAddr = " << proto.m_ucPortAddress << " WriteLength = " << length
                  << " BoardAddr = " << proto.m_usBoardAddress << " RegAddr = " << CTrace::hex << address;
    if (task.showsData) line.record() << " data[0]:" << chunk[0];
  }
  writeCard(placeOf(task, proto), address, chunk);
}

int write(const CardTask& task, const IMD_proto3rd& request) {
  const ThirdProtoMCUCMsg& proto = request.proto;
  CardWrite write{proto.m_uiRegisterUnitAddress, request.ipcHeader.uiid == taskOf(kServiceLsd), proto.m_data};
  write.data.resize(proto.m_usValidDataLength);
  task.beforeWrite(write);
  const uint32_t reached =
      inChunks(write.address, write.data, task.chunkSize, [&](uint32_t address, std::span<uint8_t> chunk) {
        writeChunk(task, proto, address, chunk);
        task.afterChunk(write, address, chunk);
        DelayMicroseconds(task.pause(address + static_cast<uint32_t>(chunk.size())));
      });
  task.afterWrite(reached);
  return kDone;
}

int run(const CardTask& task, IMD_proto3rd* request) {
  if (request == nullptr) return kRefused;
  ThirdProtoMCUCMsg& proto = request->proto;
  LogSection section(task.section);
  PARLEND_TRACE(kInfo) << task.name << ": Data length = " << proto.m_usValidDataLength
                       << ", Code Type = " << proto.m_ucCode << ", Port Addr = " << proto.m_ucPortAddress
                       << ", Board Addr = " << proto.m_usBoardAddress << ", Register Addr = " << CTrace::hex
                       << proto.m_uiRegisterUnitAddress;
  if (proto.m_ucCode == kCodeWrite) return write(task, *request);
  section.abandon();
  if (proto.m_ucCode == kCodeRead) return read(task, proto);
  if (task.outspoken)
    PARLEND_TRACE(kInfo) << "=============================Do nothing !!! ==============================";
  logUnknownCode(task.name, proto.m_ucCode);
  return kDone;
}

}  // namespace

int Tshl_ctl::Ssh_StartScanCard(IMD_proto3rd* msgIMD) {
  return run(kReceivingCards, msgIMD);
}
int Tshl_ctl::Ssh_StartMultiCard(IMD_proto3rd* msgIMD) {
  return run(kMultiCards, msgIMD);
}
int Tshl_ctl::Ssh_StartDistribute(IMD_proto3rd* msgIMD) {
  return run(kDistributionCards, msgIMD);
}
int Tshl_ctl::Ssh_Start3DLauncher(IMD_proto3rd* msgIMD) {
  return run(kLaunchers3D, msgIMD);
}

}  // namespace ORVE_MCUC
