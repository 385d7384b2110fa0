// Single flags of the sending card. Each is a byte of its own: any thread, no lock.
#pragma once

#include "mcucdatablock.h"
#include "waitable.h"

namespace ORVE_MCUC {

struct DeviceState {
  RelaxedByte PbufMorSMode;      // 0 master, 1 slave
  RelaxedValue<bool> roleKnown;  // it was read, or a peer has set it
  RelaxedByte FpgaOnlineFlag;    // 1: the device has loaded the FPGA; set by the flag and status thread
  RelaxedValue<bool> FpgaParaLoadFinish;  // a restore has written the FPGA
  RelaxedByte factoryflag;
  WaitableByte RWFPGATestflag;  // 1: the report thread tests FPGA tables
  RelaxedByte LocalAddr;        // on the device's serial chain
  ByteImage<4> ScanRecvBuf;
  RelaxedByte ScanCardID;
  RelaxedByte sync_hwtime_flag;
  RelaxedByte _gCorroentHighSpeed;  // 1: correction data go to the cards with short pauses
};

}  // namespace ORVE_MCUC
