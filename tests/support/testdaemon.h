// The whole daemon in the test's own process and without threads of its own: the test calls what they would.
// Each has a board and a store of its own; pauses do not wait and the clock is the board's, so that a day
// passes at once. One at a time in a process.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "peer/frame.h"
#include "peer/peer.h"
#include "testboard.h"

class TestDaemon {
 public:
  using Time = TestBoard::Time;
  using Bytes = peer::Bytes;
  static constexpr uint32_t kTool = 0x0A7000;  // who asks where nobody else is named; always connected

  /** Switches a board on that has these lines in its board.conf, and starts the daemon on it. */
  explicit TestDaemon(const std::string& conf = "");
  /** The board is not switched on before start(): its directory can be prepared. */
  struct Later {};
  explicit TestDaemon(Later) {}
  ~TestDaemon();
  TestDaemon(const TestDaemon&) = delete;
  TestDaemon& operator=(const TestDaemon&) = delete;

  TestBoard board;

  /** Writes a file of the board directory, such as board.conf or etc/sysconf.env. */
  void prepare(const std::string& file, const std::string& text) const;
  void start(const std::string& conf = "");
  /** What the flag and status thread does once the FPGA is loaded; part of a start if it is by then. */
  void bringUp();

  // The program begins anew, with nothing in its memory: on a board that stayed on, or that was switched off
  // and on, whether the test did that or an outage. Peers have to connect again. Faults that are set meet the
  // start.

  void restart();
  void powerOn();

  // Requests, answered at once; work that they queue waits. Nothing comes back for a message that is not
  // answered.

  /** The head gets the service's task, a number of its own and the frame's length. */
  std::optional<peer::Message> exchange(const Bytes& frame, peer::Head head = {}, uint32_t service = kTool);
  /** A head as it stands. A reply without a number is among the notifications. */
  std::optional<peer::Message> arrive(const peer::Head& head, const Bytes& frame);
  /** Throws peer::Error (TimeOut) without a reply. */
  peer::Frame ask(const peer::Frame& frame);
  peer::Frame read(uint32_t address, uint16_t length) { return ask({.address = address, .length = length}); }
  peer::Frame write(uint32_t address, const Bytes& data);

  // The other threads. What they do takes board time only where the daemon pauses.

  /** Carries out all queued work; how many items it were. */
  std::size_t workOff();
  /** Ticks of the flag and status thread, 200 ms apart. */
  void tick(unsigned count = 1);
  /** Work and ticks until what was submitted is calculated and pushed. */
  void settle();
  /** Time goes by without a tick. */
  void advance(Time by) { board.advance(by); }

  // Peers by their service codes. What is sent to one that is not connected is a failed send.

  void connect(uint32_t service = peer::kLsd);
  void disconnect(uint32_t service = peer::kLsd);
  /** Notifications to a service since the last call for it, in order. */
  std::vector<peer::Frame> pushes(uint32_t service = peer::kLsd);

  /** Trace lines that hold the text, as "Error text", since the last call. setTraceLevel says which are
   * written; with each start none, unless traceStarts() says so. */
  std::vector<std::string> trace(const std::string& text = "");
  /** The level from now on, and that of each later start from its beginning. */
  void traceStarts(int level);

  // Everything that can go wrong in a scenario, one place after the other:
  //   for (uint32_t n = 1; daemon.cutPowerAt(n, scenario); ++n) { daemon.powerOn(); ... }

  /** The power goes at the scenario's n-th flash write. False: it has fewer writes, and ran through. */
  bool cutPowerAt(uint32_t n, const std::function<void()>& scenario,
                  TestBoard::PowerCut::Done done = TestBoard::PowerCut::Nothing);
  /** The scenario's n-th call of a kind fails. False: it has fewer calls. */
  bool failAt(TestBoard::Fault kind, uint32_t n, const std::function<void()>& scenario) {
    return board.failCallDuring(kind, n, scenario);
  }

 private:
  static constexpr int kSilent = 4;

  void begin();
  void end();
  void sortSent();

  std::optional<peer::Message> reply_;
  std::map<uint32_t, std::vector<peer::Frame>> pushes_;  // by service
  uint32_t number_ = 0;
  int startLevel_ = kSilent;
};
