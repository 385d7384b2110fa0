// The pattern of every register space, written once. A space is a class
//
//   class Addr_X : public RegisterSpace<Addr_X> {
//     static std::array<Fshl_cmd, n> cmd_tblOffset;                the rows, the last one empty
//     static constexpr char kName[] = "Addr_X";                    names the space in its log lines
//     static constexpr uint32_t kBase = reg::kX;                   first base address
//     static int ReadFromX(IMD_proto3rd*); ...                     its operations
//     static void prepare();                                       if it has something of its own to set up
//   };
//
// and its differences are constants that hide those of this base. Everything here runs on the receive thread;
// getInstance may be called from any thread.
#pragma once

#include <cstdio>
#include <span>

#include "maps/registermap.h"
#include "maps/workkeys.h"
#include "mcuctrace.h"
#include "proto/spaces/fshl_cmd.h"
#include "results.h"
#include "singleton.h"

namespace ORVE_MCUC {

// Sets a request's data to the bytes that its reply carries.
void replyWith(IMD_proto3rd& request, std::span<const uint8_t> bytes);

// Wraps a write into a work item and queues it: the reply says done, the handler of key does the work later.
// 0; kRefused for no request, more data than an item holds or no memory; kBadAccess for a write without data.
int queueWrite(IMD_proto3rd* request, int32_t key, const char* keyName);
// Queues a payload as it stands, with the request's transport head: kDone, or kRefused without memory.
int queuePayload(IMD_proto3rd& request, int32_t key, const char* keyName, std::span<const uint8_t> payload);

// Reads for a read, writes for a write: the common body of the handling operations.
template <class Read, class Write>
int readOrWrite(IMD_proto3rd* request, Read read, Write write, int otherCode = kFailed) {
  if (request == nullptr) return kRefused;
  switch (request->proto.m_ucCode) {
    case kCodeRead:
      return read(request);
    case kCodeWrite:
      return write(request);
    default:
      return otherCode;
  }
}

template <class Space>
class RegisterSpace {
 public:
  static Space* getInstance() {
    return holder().get([] {
      initMap();
      return new Space;
    });
  }
  static void deleteInstance() { holder().destroy(); }

  static int initMap() {
    mapRows(Space::cmd_tblOffset.data(), rowMap());
    if constexpr (requires { Space::prepare(); }) Space::prepare();
    return 0;
  }

  // The router's way in: finds the row of the address, checks the access and calls the row's operation.
  static int Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* /*tbl*/, int /*validDataBegin*/) {
    if constexpr (Space::kLogsEntry) PARLEND_TRACE(kInfo) << "SM2W Ssh_cmd";
    if constexpr (Space::kLogsMap) logMap(msgIMD->proto.m_uiRegisterUnitAddress);
    if (rowMap().empty()) initMap();
    const auto hit = rowMap().find(msgIMD->proto.m_uiRegisterUnitAddress & Space::kKeyMask);
    if (hit == rowMap().end()) {
      msgIMD->proto.m_ucAck = kAckRefused;
      PARLEND_TRACE(kError) << "=== " << Space::kName << " ===invalid register access";
      return Space::kUnknownKeyResult;
    }
    Fshl_cmd* row = hit->second.cmd;
    if (row == nullptr || row->called_fun == nullptr || row->check_fun == nullptr) return kFailed;
    Fcheck_func check{row->cmdType, row->cmdLen};
    if (const int why = row->check_fun(&check, msgIMD)) {
      msgIMD->proto.m_ucAck = kAckRefused;
      return why;
    }
    return row->called_fun(msgIMD, row, 0);
  }

  // Prints the offset table.
  static int Ssh_print(IMD_proto3rd*) {
    for (const auto& row : Space::cmd_tblOffset) {
      if (row.cmd_str == nullptr) break;
      std::printf("register base=0x%08X offset=0x%08X :%s\n", static_cast<unsigned>(Space::kBase),
                  static_cast<unsigned>(row.RegisterAddr), row.cmd_exp);
    }
    return 0;
  }

  static constexpr uint32_t kKeyMask = reg::kNarrowMask;
  static constexpr int kUnknownKeyResult = kFailed;
  static constexpr bool kLogsEntry = false;
  static constexpr bool kLogsMap = false;

 private:
  // Function-local, so that a space may be asked for before main whatever was initialised first.
  static MAP_INT_Fshl_cmd& rowMap() {
    static MAP_INT_Fshl_cmd map;
    return map;
  }
  static Singleton<Space>& holder() {
    static Singleton<Space> m_pInstance;
    return m_pInstance;
  }
  static void logMap(uint32_t address) {
    if (!tracePasses(kInfo)) return;
    PARLEND_TRACE(kInfo) << "map size = " << rowMap().size() << " register = " << CTrace::hex << address;
    for (const auto& [key, entry] : rowMap()) {
      PARLEND_TRACE(kInfo) << "first register addr = " << CTrace::hex << key
                           << " second addr = " << CTrace::hex << entry.cmd->RegisterAddr;
    }
  }
};

}  // namespace ORVE_MCUC
