// The peer's codec against frames worked out by hand, and the board's files.
#include "peer/peer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "peer/board.h"
#include "peer/error.h"

using peer::Bytes;
using peer::Failure;
using peer::Frame;
using peer::fromHex;

namespace {

template <class Call>
Failure failureOf(Call call) {
  try {
    call();
  } catch (const peer::Error& error) {
    EXPECT_STRNE(error.what(), "");
    return error.failure();
  }
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

TEST(FrameTest, RequestsAreTheBytesThatTheDaemonExpects) {
  EXPECT_EQ(peer::encode(Frame{.address = 0x02000000, .length = 4}),
            fromHex("55 AA 00 00 00 00 00 00 00 00 00 00 00 00 00 02 04 00 5B 55"));
  EXPECT_EQ(peer::encode(Frame{.code = peer::kWrite, .address = 0x02000001, .length = 1, .data = {0x10}}),
            fromHex("55 AA 00 00 00 00 00 00 00 00 01 00 01 00 00 02 01 00 10 6A 55"));
  EXPECT_EQ(peer::encode(Frame{.label = 0x11, .deviceType = 1, .port = 3, .board = 0x0201}),
            fromHex("55 AA 00 11 00 00 01 03 01 02 00 00 00 00 00 00 00 00 6D 55"));
}

TEST(FrameTest, RepliesAreReadAndBrokenOnesNamed) {
  const Bytes bytes = fromHex("AA 55 04 07 00 00 00 00 00 00 00 00 00 00 00 02 04 00 01 02 03 04 70 55");
  const Frame frame = peer::decode(bytes);
  EXPECT_EQ(frame.ack, 4);
  EXPECT_EQ(frame.label, 7);
  EXPECT_EQ(frame.address, 0x02000000U);
  EXPECT_EQ(frame.data, (Bytes{1, 2, 3, 4}));
  for (std::size_t size = 0; size < bytes.size(); ++size)
    EXPECT_EQ(failureOf([&] { peer::decode(std::span(bytes).first(size)); }), Failure::ShortReply) << size;
  Bytes wrong = bytes;
  wrong[16] = 3;
  wrong[22] = 0x6F;  // the checksum fits, the length does not
  EXPECT_EQ(failureOf([&] { peer::decode(wrong); }), Failure::ShortReply);
  EXPECT_EQ(failureOf([] { peer::decodeHead(Bytes(27)); }), Failure::ShortReply);
}

TEST(HexTest, TextIsTakenWholeOrRefused) {
  EXPECT_EQ(fromHex("0a FF"), (Bytes{0x0A, 0xFF}));
  EXPECT_EQ(peer::toHex(Bytes{0x0A, 0xFF}), "0aff");
  for (const char* text : {"0", "0g", "0x12", "1 2 3", "-1"})
    EXPECT_EQ(failureOf([&] { fromHex(text); }), Failure::Usage) << text;
}

TEST(PeerTest, NobodyThereAndImpossiblePathsAreToldApart) {
  const auto connectTo = [](const std::string& path) { peer::Peer(path, 1, peer::milliseconds(10)); };
  EXPECT_EQ(failureOf([&] { connectTo("/nonexistent/apipc.sock"); }), Failure::NoDaemon);
  EXPECT_EQ(failureOf([&] { connectTo(std::string(200, 'x')); }), Failure::Usage);
}

class BoardTest : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(board.directory() / "hw");
    for (const char* file : {"hw/fpga.bin", "hw/flash.bin", "hw/control.bin"})
      std::ofstream(board.directory() / file, std::ios::trunc).flush();
  }
  void TearDown() override { std::filesystem::remove_all(board.directory()); }
  peer::Board board{std::filesystem::temp_directory_path() / ("peer-board-" + std::to_string(getpid()))};
};

TEST_F(BoardTest, ALinkShowsInEveryRegisterThatShowsIt) {
  board.setFpga(0x126, {0xF0});
  board.setLink(9, peer::Medium::Copper, true);
  board.setLink(9, peer::Medium::Fiber1, true);
  board.setLink(3, peer::Medium::Fiber2, true);
  EXPECT_EQ(board.fpga(0x126, 1), Bytes{0xF2});
  EXPECT_EQ(board.fpga(0xF05100, 4), (Bytes{0, 0, 2, 0}));
  EXPECT_EQ(board.fpga(0x1F2, 4), (Bytes{0, 2, 8, 0}));
  EXPECT_EQ(board.fpga(0xF04000, 4), (Bytes{0, 2, 8, 0}));
  board.setLink(9, peer::Medium::Copper, false);
  EXPECT_FALSE(board.link(9, peer::Medium::Copper));
  EXPECT_TRUE(board.link(9, peer::Medium::Fiber1));
  EXPECT_EQ(board.fpga(0x126, 1), Bytes{0xF0});
}

TEST_F(BoardTest, TheControlPageIsWhereTheBoardLooksForIt) {
  board.setClockOffset(-2);
  board.setFault(peer::faultIndex("message-queue").value(), 0x01020304);
  board.setSensor(31, 7);
  std::ifstream file(board.directory() / "hw/control.bin", std::ios::binary);
  const Bytes page{std::istreambuf_iterator<char>(file), {}};
  ASSERT_EQ(page.size(), 384U);
  EXPECT_EQ(Bytes(page.begin() + 8, page.begin() + 16), fromHex("FEFFFFFFFFFFFFFF"));
  EXPECT_EQ(Bytes(page.begin() + 76, page.begin() + 80), fromHex("04030201"));
  EXPECT_EQ(page[380], 7);
  EXPECT_EQ(board.clockOffset(), -2);
}

TEST_F(BoardTest, WhatLiesOutsideIsRefused) {
  EXPECT_EQ(failureOf([&] { board.fpga(0x0FFFFFFF, 2); }), Failure::Usage);
  EXPECT_EQ(failureOf([&] { board.setFlash(0x02000000, {1}); }), Failure::Usage);
  EXPECT_EQ(failureOf([&] { board.setLink(16, peer::Medium::Copper, true); }), Failure::Usage);
  EXPECT_EQ(failureOf([&] { board.fault(16); }), Failure::Usage);
  std::filesystem::remove(board.directory() / "hw/fpga.bin");
  EXPECT_EQ(failureOf([&] { board.fpga(0, 1); }), Failure::Board);
}

}  // namespace
