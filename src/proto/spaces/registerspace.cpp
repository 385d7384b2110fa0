#include "proto/spaces/registerspace.h"

#include <cstdio>
#include <memory>
#include <new>

#include "logwords.h"
#include "mcucdatablock.h"
#include "outgoing.h"

namespace ORVE_MCUC {
namespace {

constexpr SectionWords queueing(const WorkKey& key) {
  return {.begin = "============================ Begin add ",
          .finish = "============================ Finish add ",
          .what = key.name,
          .rest = " message to list==========================="};
}

// A work item for a payload of that length, which is at payload. Nothing without memory, which the requester
// is not told.
std::unique_ptr<MCUProcessDataBlock> makeItem(const IMD_proto3rd& request, const WorkKey& key,
                                              std::size_t length, std::span<uint8_t>& payload) {
  std::unique_ptr<MCUProcessDataBlock> block(new (std::nothrow) MCUProcessDataBlock);
  char* room = block ? block->allocate(static_cast<int>(length)) : nullptr;
  if (room == nullptr) {
    PARLEND_TRACE(kError) << "=== MCUProcessDataBlock ===: new a pDataBlock, but it's NULL. return.";
    return nullptr;
  }
  payload = {reinterpret_cast<uint8_t*>(room), length};
  block->ipcHeader = request.ipcHeader;
  block->m_key = key.key;
  return block;
}

// 0 when the written data make a work item.
int checkData(IMD_proto3rd& request, const WorkKey& key) {
  const std::size_t size = request.proto.m_data.size();
  if (size == 0) {
    PARLEND_TRACE(kError) << "=== " << key.name << " ===invalid data, return.";
    return kBadAccess;
  }
  if (size <= kPenetrateDataMax) return kDone;
  PARLEND_TRACE(kError) << "=== " << key.name << " ===data length " << size
                        << " does not fit into a work item, return.";
  request.proto.m_ucAck = kAckRefused;
  return kRefused;
}

// Without its thread the queue keeps nothing, and the requester is told.
int queueItem(IMD_proto3rd& request, std::unique_ptr<MCUProcessDataBlock> block) {
  const int refused = queueWork(std::move(block));
  if (refused != kDone) request.proto.m_ucAck = kAckRefused;
  return refused;
}

// A section whose work did not succeed has no finish line.
int finish(LogSection& section, int result) {
  if (result != kDone) section.abandon();
  return result;
}

}  // namespace

const OffsetRow* RegisterSpace::find(uint32_t address) const {
  const uint32_t base = ~(map.width - 1);
  const uint32_t key = address & (traits.keyIsOffset ? reg::kOffsetMask : base);
  for (const auto& row : rows) {
    if (row.key == key) return &row;
  }
  return nullptr;
}

int RegisterSpace::Ssh_cmd(IMD_proto3rd& request) const {
  if (traits.entered != nullptr) traits.entered(*this, request);
  if (!traits.checks) return carryOut(request, nullptr);
  const OffsetRow* row = find(request.proto.m_uiRegisterUnitAddress);
  if (row == nullptr) {
    request.proto.m_ucAck = kAckRefused;
    PARLEND_TRACE(kError) << "=== " << map.owner << " ===invalid register access";
    return traits.unknownKey;
  }
  Fcheck_func check{row->access, row->limits};
  if (const int why = Ssh_checkFun(&check, &request)) {
    request.proto.m_ucAck = kAckRefused;
    if (traits.refused != nullptr) traits.refused(why);
    return why;
  }
  return carryOut(request, row);
}

int RegisterSpace::carryOut(IMD_proto3rd& request, const OffsetRow* row) const {
  if (traits.handle != nullptr && row != nullptr) return traits.handle(request, *row);
  switch (request.proto.m_ucCode) {
    case kCodeRead:
      return traits.read(request);
    case kCodeWrite:
      return traits.write(request);
    default:
      logUnknownCode(map.owner, request.proto.m_ucCode);
      return traits.unknownCode;
  }
}

int RegisterSpace::Ssh_print() const {
  for (const auto& row : rows) {
    std::printf("register base=0x%08X offset=0x%08X :%s\n", static_cast<unsigned>(map.base),
                static_cast<unsigned>(row.key), row.text);
  }
  return 0;
}

void logEntry(const RegisterSpace&, const IMD_proto3rd&) {
  PARLEND_TRACE(kInfo) << "SM2W Ssh_cmd";
}

void logEntryAndRows(const RegisterSpace& space, const IMD_proto3rd& request) {
  logEntry(space, request);
  if (!tracePasses(kInfo)) return;
  PARLEND_TRACE(kInfo) << "map size = " << space.rows.size() << " register = " << CTrace::hex
                       << request.proto.m_uiRegisterUnitAddress;
  for (const auto& row : space.rows) {
    PARLEND_TRACE(kInfo) << "first register addr = " << CTrace::hex << row.key
                         << " second addr = " << CTrace::hex << row.key;
  }
}

void replyWith(IMD_proto3rd& request, std::span<const uint8_t> bytes) {
  request.proto.m_data.assign(bytes.begin(), bytes.end());
}

int replyFromFlash(IMD_proto3rd& request, uint32_t flashAddress, FailureWords words) {
  auto& data = request.proto.m_data;
  data.assign(request.proto.m_usValidDataLength, 0);
  const int result = readFlash(flashAddress, data, words);
  if (result != 0) data.clear();
  return result;
}

int replyFromFpga(IMD_proto3rd& request, uint32_t fpgaRegister) {
  auto& data = request.proto.m_data;
  data.assign(request.proto.m_usValidDataLength, 0);
  const int result = readFpga(fpgaRegister, data);
  if (result != 0) data.clear();
  return result;
}

int queueWrite(IMD_proto3rd& request, const WorkKey& key,
               void (*beforeQueueing)(const IMD_proto3rd& request)) {
  LogSection section(queueing(key));
  const ThirdProtoMCUCMsg& proto = request.proto;
  PARLEND_TRACE(kInfo) << " Register: " << CTrace::hex << proto.m_uiRegisterUnitAddress
                       << " len: " << proto.m_usValidDataLength;
  if (const int refused = checkData(request, key)) return finish(section, refused);
  std::span<uint8_t> payload;
  auto block = makeItem(request, key, kPenetrateHeadLength + proto.m_data.size(), payload);
  if (!block) return finish(section, kRefused);
  ByteWriter writer(payload);
  writer.le32(proto.m_uiRegisterUnitAddress);
  writer.le16(proto.m_usValidDataLength);
  writer.bytes(proto.m_data);
  if (beforeQueueing != nullptr) beforeQueueing(request);
  return finish(section, queueItem(request, std::move(block)));
}

int queueBytes(IMD_proto3rd& request, const WorkKey& key, std::span<const uint8_t> payload) {
  std::span<uint8_t> room;
  auto block = makeItem(request, key, payload.size(), room);
  if (!block) return kRefused;
  std::copy(payload.begin(), payload.end(), room.begin());
  return queueItem(request, std::move(block));
}

int queuePayload(IMD_proto3rd& request, const WorkKey& key, std::span<const uint8_t> payload) {
  LogSection section(queueing(key));
  return finish(section, queueBytes(request, key, payload));
}

}  // namespace ORVE_MCUC
