// The screen configuration: what was submitted, what it was calculated from, and the lock that orders all of
// it.
#pragma once

#include <cstdint>

#include "maps/cardgeometry.h"
#include "mcucdatablock.h"
#include "mcucmutex.h"

namespace ORVE_MCUC {

// Held over a whole calculation, save or restore, so that they come one after the other: on the work thread
// and on the flag and status thread, never on the receive thread, which answers everybody.
struct ConfigurationLock {
  CMutexThreadRecursive m_mutex;
};

// Owner: the screen handlers, under the configuration lock. The receive thread keeps the record that it
// stores, and reads what configured the screen.
struct ScreenState {
  RelaxedByte NormalBackupStatus;                  // 0: a peer has marked backup ports
  RelaxedByte LEDConfigStatus;                     // what configured the screen last
  RelaxedValue<uint32_t> CalculateParaHandlerCnt;  // submissions not yet calculated
  RelaxedValue<uint32_t> submissionsSeen;          // of them, at the tick before
  ByteImage<32> TmpCalcScreenPara;                 // the record as it was written last
  ByteImage<2> CfgScreenStatus;                    // kept under the system's name; nothing reads it

  // What was submitted is calculated, or replaced: what is submitted next has to rest as long.
  void forgetSubmissions() {
    CalculateParaHandlerCnt = 0;
    submissionsSeen = 0;
  }
};

// Owner: whoever measures, on any thread; no lock.
struct MeasuredCards {
  RelaxedValue<CardSize> ReceiveCardSize;  // 128 x 128 until measured; width and height change together
  RelaxedByte ShortCfgReadRvStatus;        // 1: measured for the submissions that wait to be calculated
};

}  // namespace ORVE_MCUC
