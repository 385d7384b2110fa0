#include "proto/spaces/registerspace.h"

#include <algorithm>
#include <memory>
#include <new>

#include "mcucdatablock.h"
#include "outgoing.h"

namespace ORVE_MCUC {
namespace {

void banner(const char* begin, const char* keyName) {
  PARLEND_TRACE(kInfo) << "============================ " << begin << " add " << keyName
                       << " message to list===========================";
}

// A work item for a payload of that length, which is at payload. Nothing without memory, which the requester
// is not told.
std::unique_ptr<MCUProcessDataBlock> makeItem(const IMD_proto3rd& request, int32_t key, std::size_t length,
                                              std::span<uint8_t>& payload) {
  std::unique_ptr<MCUProcessDataBlock> block(new (std::nothrow) MCUProcessDataBlock);
  char* room = block ? block->allocate(static_cast<int>(length)) : nullptr;
  if (room == nullptr) {
    PARLEND_TRACE(kError) << "=== MCUProcessDataBlock ===: new a pDataBlock, but it's NULL. return.";
    return nullptr;
  }
  payload = {reinterpret_cast<uint8_t*>(room), length};
  block->ipcHeader = request.ipcHeader;
  block->m_key = key;
  return block;
}

// Without its thread the queue keeps nothing, and the requester is told.
int queueItem(IMD_proto3rd& request, const char* keyName, std::unique_ptr<MCUProcessDataBlock> block) {
  if (const int refused = queueWork(std::move(block))) {
    request.proto.m_ucAck = kAckRefused;
    return refused;
  }
  banner("Finish", keyName);
  return kDone;
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
  std::span<uint8_t> payload;
  auto block = makeItem(*request, key, kPenetrateHeadLength + proto.m_data.size(), payload);
  if (!block) return kRefused;
  ByteWriter writer(payload);
  writer.le32(proto.m_uiRegisterUnitAddress);
  writer.le16(proto.m_usValidDataLength);
  writer.bytes(proto.m_data);
  return queueItem(*request, keyName, std::move(block));
}

int queuePayload(IMD_proto3rd& request, int32_t key, const char* keyName, std::span<const uint8_t> payload) {
  banner("Begin", keyName);
  std::span<uint8_t> room;
  auto block = makeItem(request, key, payload.size(), room);
  if (!block) return kRefused;
  std::copy(payload.begin(), payload.end(), room.begin());
  return queueItem(request, keyName, std::move(block));
}

}  // namespace ORVE_MCUC
