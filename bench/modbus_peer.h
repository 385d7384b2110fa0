// A libmodbus client of bench_modbus_server.
#pragma once

struct _modbus;

namespace bench {

// Whether libmodbus was there when this was built; without it every call throws.
extern const bool kHaveModbus;

class ModbusPeer {
 public:
  // Connects to the port of the loopback address, trying for up to 10 s. Throws std::runtime_error.
  explicit ModbusPeer(int port);
  ~ModbusPeer();
  ModbusPeer(const ModbusPeer&) = delete;
  ModbusPeer& operator=(const ModbusPeer&) = delete;

  // Reads 16 bytes in 8 registers.
  void roundTrip();
  double medianTrip(int count);

 private:
  _modbus* context_ = nullptr;
};

// A port of the loopback address that nobody listens at.
int freePort();

}  // namespace bench
