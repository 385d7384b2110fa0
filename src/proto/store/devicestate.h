// Single flags of the sending card. Each is a byte of its own: any thread, no lock.
#pragma once

#include "mcucdatablock.h"
#include "proto/store/loadstate.h"
#include "waitable.h"

namespace ORVE_MCUC {

struct DeviceState {
  RelaxedByte PbufMorSMode;         // 0 master, 1 slave
  LoadState roleLoad;               // of the byte before
  WaitableByte RWFPGATestflag;      // 1: the report thread tests FPGA tables
  RelaxedByte _gCorroentHighSpeed;  // 1: correction data go to the cards with short pauses
  // Kept under the system's names; nothing reads them.
  RelaxedValue<bool> FpgaParaLoadFinish;  // a restore has written the FPGA
  RelaxedByte LocalAddr;                  // on the device's serial chain
  RelaxedByte factoryflag;
  ByteImage<4> ScanRecvBuf;
  RelaxedByte ScanCardID;
  RelaxedByte sync_hwtime_flag;
};

}  // namespace ORVE_MCUC
