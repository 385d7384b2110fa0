// A libmodbus server of holding registers for many clients, in the one-thread form that its own programs
// have.
#include <modbus/modbus.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void serve(modbus_t* context, modbus_mapping_t* registers, int listener) {
  fd_set watched;
  FD_ZERO(&watched);
  FD_SET(listener, &watched);
  int highest = listener;
  std::array<uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> query{};
  for (;;) {
    fd_set ready = watched;
    if (select(highest + 1, &ready, nullptr, nullptr, nullptr) < 0) return;
    for (int fd = 0; fd <= highest; ++fd) {
      if (!FD_ISSET(fd, &ready)) continue;
      if (fd == listener) {
        int peer = listener;
        const int accepted = modbus_tcp_accept(context, &peer);
        peer = listener;
        if (accepted < 0) continue;
        FD_SET(accepted, &watched);
        highest = std::max(highest, accepted);
        continue;
      }
      modbus_set_socket(context, fd);
      const int length = modbus_receive(context, query.data());
      if (length > 0) {
        modbus_reply(context, query.data(), length, registers);
      } else if (length < 0) {
        close(fd);
        FD_CLR(fd, &watched);
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: bench_modbus_server PORT\n", stderr);
    return 2;
  }
  modbus_t* context = modbus_new_tcp("127.0.0.1", static_cast<int>(std::strtol(argv[1], nullptr, 10)));
  modbus_mapping_t* registers = modbus_mapping_new(0, 0, 64, 0);
  const int listener = modbus_tcp_listen(context, 32);
  if (listener < 0) {
    std::perror("bench_modbus_server");
    return 1;
  }
  serve(context, registers, listener);
}
