// The smart configuration being calculated, as the working tables hold it.
#pragma once

#include "calc/mapping.h"
#include "proto/store/paratables.h"

namespace ORVE_MCUC {

inline SmartScreen screenIn(const ByteImage<1024>& table, const ByteImage<32>& chars) {
  SmartScreen screen;
  screen.rows = table.le16(2);
  screen.columns = table.le16(4);
  screen.cardsPerPort = table.le16(6);
  screen.mode = chars[0];
  return screen;
}

inline void putScreen(ByteImage<1024>& table, ByteImage<32>& chars, const SmartScreen& screen) {
  table.putLe16(2, screen.rows);
  table.putLe16(4, screen.columns);
  table.putLe16(6, screen.cardsPerPort);
  chars[0] = screen.mode;
}

}  // namespace ORVE_MCUC
