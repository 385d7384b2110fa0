#include <stdexcept>

#include "modbus_peer.h"

namespace bench {

const bool kHaveModbus = false;

ModbusPeer::ModbusPeer(int /*port*/) {
  throw std::runtime_error("libmodbus is not installed");
}
ModbusPeer::~ModbusPeer() {}
void ModbusPeer::roundTrip() {}
double ModbusPeer::medianTrip(int /*count*/) {
  return 0;
}
int freePort() {
  return 0;
}

}  // namespace bench
