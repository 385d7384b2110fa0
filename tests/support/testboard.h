// A simulated board in the test's own process: a directory of its own, which is removed at the end, and
// everything that somebody at the bench could do to the board. One at a time in a process.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ios>
#include <string>
#include <string_view>
#include <vector>

#include "board_control.h"
#include "board_power.h"
#include "board_time.h"

class TestBoard {
 public:
  using Bytes = std::vector<unsigned char>;
  using Fault = simboard::Fault;
  using FaultPlan = simboard::FaultPlan;
  using PowerCut = simboard::PowerCut;
  using Time = std::chrono::microseconds;
  static constexpr uint32_t kEveryCall = simboard::kEveryCall;

  TestBoard();
  ~TestBoard();
  TestBoard(const TestBoard&) = delete;
  TestBoard& operator=(const TestBoard&) = delete;

  // Power. A board.conf that cannot be used ends the process, as it does the daemon.

  /** Starts the board, which is switched on if it was not; board.conf gets these lines, or stays. */
  void start(const std::string& conf = "");
  /** Leaves the board switched on and without a daemon: from now on all calls fail. */
  void stop();
  /** The next daemon on a board that stayed on. */
  void startAgain();
  /** Switches the board off and on: the flash as it is, the FPGA empty; after a reboot in that the journal
   * goes on. */
  void powerOn();
  bool hasPower() const { return simboard::hasPower(); }

  // Faults. After an outage (a power cut, or "reboot -f") all calls fail until powerOn().

  void fault(Fault kind, const FaultPlan& plan) const { simboard::setFault(kind, plan); }
  void failNext(Fault kind, uint32_t calls) const { fault(kind, {calls}); }
  /** Only the n-th call from now fails, counted from 1. */
  void failCall(Fault kind, uint32_t n) const { fault(kind, {1, n - 1}); }
  void clearFaults() const;
  void cutPower(const PowerCut& cut) const { simboard::setPowerCut(cut); }

  /** Runs the scenario with the power cut at a flash write. True: the power went; the scenario ended there if
   * it was this thread's write. False: it has fewer writes. */
  bool cutPowerDuring(const PowerCut& cut, const std::function<void()>& scenario);
  /** Runs the scenario with its n-th call of a kind failing. False: it has fewer calls. */
  bool failCallDuring(Fault kind, uint32_t n, const std::function<void()>& scenario) const;

  // What is in it. Files by their place below the board directory.

  std::filesystem::path file(std::string_view relative) const { return directory_ / relative; }
  std::string text(std::string_view relative) const;
  Bytes bytes(std::string_view relative, uint32_t address, std::size_t count) const;
  void poke(std::string_view relative, uint32_t address, const Bytes& values) const;

  Bytes fpga(uint32_t address, std::size_t count) const { return bytes("hw/fpga.bin", address, count); }
  void setFpga(uint32_t address, const Bytes& values) const { poke("hw/fpga.bin", address, values); }
  Bytes flash(uint32_t address, std::size_t count) const { return bytes("hw/flash.bin", address, count); }
  void setFlash(uint32_t address, const Bytes& values) const { poke("hw/flash.bin", address, values); }

  /** Registers of a card; empty when it does not exist. */
  Bytes card(uint8_t type, uint8_t port, uint16_t board, uint32_t address, std::size_t count) const;
  void setCard(uint8_t type, uint8_t port, uint16_t board, uint32_t address, const Bytes& values) const;
  /** Reading of a sensor in the order of board.conf; 0xFFFFFFFF: it does not answer. */
  void setLux(std::size_t sensor, uint32_t lux) const { simboard::setSensorLux(sensor, lux); }

  /** The journal's lines without their stamps. */
  std::vector<std::string> journal() const {
    std::streamoff begin = 0;
    return journal(begin);
  }
  /** Those from a place on, which moves to their end. */
  std::vector<std::string> journal(std::streamoff& from) const;

  // Time. Without these calls pauses wait and the clock is the host's with an offset.

  /** From now on pauses do not wait: they move the board's time. One of at least `heldFrom` holds its thread
   * until advance() has moved time so far. */
  void takeTime(Time heldFrom = Time::max());
  void advance(Time by) const { simboard::moveTime(by); }
  /** Since takeTime(). */
  Time elapsed() const;
  /** Waits until so many threads are held in pauses, which is how far they come by themselves. */
  bool awaitHeld(unsigned threads) const;
  /** The board's wall clock, seconds since 1970. Setting it leaves no journal line. */
  int64_t clock() const;
  void setClock(int64_t seconds) const;

 private:
  std::filesystem::path directory_;
  std::array<char, 8> name_{"parlend"};
  std::array<char*, 2> arguments_{name_.data(), nullptr};
  bool started_ = false;
  int64_t timeTakenAt_ = 0;
};
