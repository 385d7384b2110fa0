#include "proto/registerspace.h"

#include <algorithm>
#include <memory>
#include <new>

#include "mcucdatablock.h"
#include "stub/stubutil.h"

namespace ORVE_MCUC {
namespace {

void banner(const char* begin, const char* keyName) {
  PARLEND_TRACE(kInfo) << "============================ " << begin << " add " << keyName
                       << " message to list===========================";
}

}  // namespace

void replyWith(IMD_proto3rd& request, std::span<const uint8_t> bytes) {
  request.proto.m_data.assign(bytes.begin(), bytes.end());
}

int queueWrite(IMD_proto3rd* request, int32_t key, const char* keyName) {
  banner("Begin", keyName);
  if (request == nullptr) {
    PARLEND_TRACE(kError) << "=== IMD_proto3rd ===:, msgIMD is invalid, return.";
    return kRefused;
  }
  const ThirdProtoMCUCMsg& proto = request->proto;
  PARLEND_TRACE(kInfo) << " Register: " << CTrace::hex << proto.m_uiRegisterUnitAddress
                       << " len: " << proto.m_usValidDataLength;
  if (proto.m_data.empty()) {
    PARLEND_TRACE(kError) << "=== " << keyName << " ===invalid data, return.";
    return kBadAccess;
  }
  if (proto.m_data.size() > kPenetrateDataMax) {
    PARLEND_TRACE(kError) << "=== " << keyName << " ===data length " << proto.m_data.size()
                          << " does not fit into a work item, return.";
    request->proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  std::unique_ptr<MCUProcessDataBlock> block(new (std::nothrow) MCUProcessDataBlock);
  const std::size_t length = kPenetrateHeadLength + proto.m_data.size();
  char* payload = block ? block->allocate(static_cast<int>(length)) : nullptr;
  if (payload == nullptr) {
    PARLEND_TRACE(kError) << "=== MCUProcessDataBlock ===: new a pDataBlock, but it's NULL. return.";
    request->proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  ByteWriter writer({reinterpret_cast<uint8_t*>(payload), length});
  writer.le32(proto.m_uiRegisterUnitAddress);
  writer.le16(proto.m_usValidDataLength);
  writer.bytes(proto.m_data);
  block->ipcHeader = request->ipcHeader;
  block->m_key = key;
  StubUtil::getInstance()->addMessageToList(block.release());
  banner("Finish", keyName);
  return kDone;
}

}  // namespace ORVE_MCUC
