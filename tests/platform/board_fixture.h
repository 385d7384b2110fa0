// A simulated board of its own for each test, looked at from outside as another process would.
#ifndef TESTS_PLATFORM_BOARD_FIXTURE_H
#define TESTS_PLATFORM_BOARD_FIXTURE_H

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/board.h"
#include "simboard.h"

class BoardTest : public testing::Test {
 protected:
  using Bytes = std::vector<unsigned char>;
  static constexpr uint32_t kEveryCall = 0xFFFFFFFF;

  BoardTest() {
    std::string name = testing::TempDir() + "boardXXXXXX";
    directory_ = mkdtemp(name.data());
    setenv("PARLEND_BOARD", directory_.c_str(), 1);
  }
  ~BoardTest() override {
    if (started_) simboard::stop();
    std::filesystem::remove_all(directory_);
  }

  /** Starts the board; board.conf gets these lines, or the defaults. */
  void start(const std::string& conf = "") {
    if (!conf.empty()) std::ofstream(file("board.conf")) << conf;
    startAgain();
  }
  /** The next daemon on the same board. */
  void startAgain() {
    if (started_) simboard::stop();
    board_start(2, arguments_.data());
    started_ = true;
  }
  /** Switches the board off and on, in a process of its own: the program that is started again only lists the
   * tests. */
  void reboot() {
    EXPECT_EXIT(board_shell("reboot -f"), startedAgain, "");
    startAgain();
  }

  std::filesystem::path file(std::string_view relative) const { return directory_ / relative; }

  std::string text(std::string_view relative) const {
    std::ifstream stream(file(relative));
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  Bytes bytes(std::string_view relative, uint32_t address, size_t count) const {
    Bytes found(count);
    std::ifstream stream(file(relative), std::ios::binary);
    stream.seekg(address);
    stream.read(reinterpret_cast<char*>(found.data()), static_cast<std::streamsize>(count));
    return found;
  }
  Bytes fpga(uint32_t address, size_t count) const { return bytes("hw/fpga.bin", address, count); }
  Bytes flash(uint32_t address, size_t count) const { return bytes("hw/flash.bin", address, count); }

  void poke(std::string_view relative, uint32_t address, const Bytes& values) const {
    std::fstream stream(file(relative), std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(address);
    stream.write(reinterpret_cast<const char*>(values.data()), static_cast<std::streamsize>(values.size()));
  }

  /** Lets the next calls of a kind fail. */
  void failNext(simboard::Fault kind, uint32_t calls) const {
    Bytes counter;
    for (int shift = 0; shift < 32; shift += 8) counter.push_back(static_cast<unsigned char>(calls >> shift));
    poke("hw/control.bin", 16 + 4 * static_cast<uint32_t>(kind), counter);
  }

  /** The journal's lines without their stamps. */
  std::vector<std::string> journal() const {
    std::vector<std::string> lines;
    std::ifstream stream(file("hw/journal.log"));
    for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(line.find(' ') + 1));
    return lines;
  }

 private:
  static bool startedAgain(int status) {
#ifdef __arm__
    // Under user emulation the host's kernel cannot start the program again, which ends with status 2.
    if (testing::ExitedWithCode(2)(status)) return true;
#endif
    return testing::ExitedWithCode(0)(status);
  }

  std::filesystem::path directory_;
  std::array<char, 8> name_{"parlend"};
  std::string onlyList_{"--gtest_list_tests"};
  std::array<char*, 3> arguments_{name_.data(), onlyList_.data(), nullptr};
  bool started_ = false;
};

#endif
