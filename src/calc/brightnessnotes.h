// What the brightness control has to tell of its work; the values that each carries are named beside it.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

enum class BrightnessNote : uint8_t {
  BeginWrite,
  FinishWrite,
  FileLength,     // bytes
  WriteChunk,     // offset
  LastChunk,      // bytes of the file
  ChunkBeyond,    // offset, length
  FileUnread,     // in place of what it was needed for
  ControlSwitch,  // on or off
  Initialise,     // programmable mode or not
  FirstNode,
  LastNode,
  FirstNodeAgain,
  Armed,  // hour, minute
  TimeComing,
  TimeGone,  // node
  BlackEnds,
  HandBack,
  TakeOver,
  TakeOverAtStart,
  SensorSecond,  // seconds, interval
  AutomaticPeriod,
  SensorNotAsked,  // position, port, card, sensor
  SensorUnread,
  SensorInvalid,
  SensorRead,      // lux
  AutomaticCount,  // sensors
  AutomaticLux,    // lux
  MixedBase,       // offset
  MixedLux,        // lux
  MixedFailed,
  MixedOnce,
  LinearTable,  // maximum and minimum lux, lux of a step, byte 11, steps
  MapItems,     // points
  MapEnds,      // first, last, lux asked for
  MapNext,      // lux
  MapBetween,   // percent
  MapPassed,    // lux
};

}  // namespace ORVE_MCUC
