// A test of the daemon in its own process: requests in one line, and the work they leave carried out at once.
#pragma once

#include <algorithm>
#include <string>

#include "matchers.h"
#include "testdaemon.h"

class DaemonTest : public testing::Test {
 protected:
  using Bytes = peer::Bytes;
  using Fault = TestBoard::Fault;

  /** Starts on a board with these lines in its board.conf. */
  explicit DaemonTest(const std::string& conf = "") : daemon(conf) {}
  /** Starts with daemon.start(). */
  explicit DaemonTest(TestDaemon::Later later) : daemon(later) {}

  peer::Frame ask(const peer::Frame& frame) { return daemon.ask(frame); }
  peer::Frame read(uint32_t address, uint16_t length) { return daemon.read(address, length); }
  /** With the work that it queues. */
  peer::Frame write(uint32_t address, const Bytes& data) {
    peer::Frame reply = daemon.write(address, data);
    daemon.workOff();
    return reply;
  }
  Bytes flash(uint32_t address, std::size_t count) const { return daemon.board.flash(address, count); }
  Bytes fpga(uint32_t address, std::size_t count) const { return daemon.board.fpga(address, count); }
  testing::AssertionResult flashHolds(uint32_t address, const Bytes& bytes) const {
    const Bytes found = flash(address, bytes.size());
    if (found == bytes) return testing::AssertionSuccess();
    return testing::AssertionFailure() << peer::toHex(found);
  }
  /** Lines of the journal that hold the text. */
  std::size_t journaled(const std::string& text) const {
    const auto lines = daemon.board.journal();
    return static_cast<std::size_t>(std::ranges::count_if(
        lines, [&](const std::string& line) { return line.find(text) != std::string::npos; }));
  }

  TestDaemon daemon;
};
