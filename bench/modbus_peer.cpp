#include "modbus_peer.h"

#include <modbus/modbus.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <vector>

#include "packet.h"
#include "rounds.h"

namespace bench {

const bool kHaveModbus = true;

ModbusPeer::ModbusPeer(int port) : context_(modbus_new_tcp("127.0.0.1", port)) {
  const double start = nowUs();
  while (modbus_connect(context_) != 0) {
    if (nowUs() - start > 10e6) {
      modbus_free(context_);
      throw std::runtime_error("the libmodbus server does not listen");
    }
    usleep(1000);
  }
}

ModbusPeer::~ModbusPeer() {
  modbus_close(context_);
  modbus_free(context_);
}

void ModbusPeer::roundTrip() {
  constexpr int kRegisters = kReadBytes / 2;
  std::array<uint16_t, kRegisters> registers;
  if (modbus_read_registers(context_, 0, kRegisters, registers.data()) != kRegisters)
    throw std::runtime_error("libmodbus: no reply");
}

double ModbusPeer::medianTrip(int count) {
  std::vector<double> trips;
  trips.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const double start = nowUs();
    roundTrip();
    trips.push_back(nowUs() - start);
  }
  return median(trips);
}

int freePort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool bound = bind(fd, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                     getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  close(fd);
  if (!bound) throw std::runtime_error("no free port");
  return ntohs(address.sin_port);
}

}  // namespace bench
