// The board's video inputs, colour library, network and status store.
#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <numeric>

#include "board_fixture.h"
#include "platform/colour.h"
#include "platform/input.h"
#include "platform/netinfo.h"
#include "platform/stinfo.h"

namespace {

using testing::ElementsAre;

using Edid = std::array<unsigned char, INPUT_EDID_SIZE>;

void expectValid(const Edid& edid) {
  EXPECT_THAT(std::vector(edid.begin(), edid.begin() + 8), ElementsAre(0, 255, 255, 255, 255, 255, 255, 0));
  for (const auto* block : {&edid[0], &edid[128]}) EXPECT_EQ(std::accumulate(block, block + 128, 0) % 256, 0);
}

TEST_F(BoardTest, TheInputsAreListedAsTheConfigurationHasThem) {
  start("input = 0x21 sdi3g\ninput = 2 dual-dvi\ninput = 0x10 vga\n");
  std::vector<int> found;
  for (int id = 0; (id = ll_find_input_next(id)) != 0;) found.push_back(id);
  EXPECT_THAT(found, ElementsAre(0x21, 2, 0x10));
  int type = -1;
  ll_input_cap cap;
  EXPECT_EQ(ll_get_input_info(2, &type, &cap), 0);
  EXPECT_EQ(type, 1);
  EXPECT_NE(ll_get_input_info(3, &type, &cap), 0);
  EXPECT_FALSE(ll_find_input_filter_all(3));
  EXPECT_EQ(ll_find_input_next(3), 0);
}

TEST_F(BoardTest, AnInputPresentsAValidEdidAndThenTheLoadedOne) {
  start();
  Edid edid;
  ASSERT_EQ(ll_input_get_edid(0x10, edid.data(), 256), 0);
  expectValid(edid);
  modify_edid_para para{};
  std::copy_n("ORVE DUAL_DVI", 14, para.bytes + 12);
  ASSERT_EQ(ModifyEDID_API.build(&para, edid.data()), 0);
  expectValid(edid);
  EXPECT_EQ(std::string(edid.begin() + 77, edid.begin() + 90), "ORVE DUAL_DVI");
  EXPECT_EQ(ll_input_set_edid(0x10, edid.data(), 256), 0);
  EXPECT_EQ(bytes("hw/edid-16.bin", 0, 256), Bytes(edid.begin(), edid.end()));
  Edid again{};
  EXPECT_EQ(ll_input_get_edid(0x10, again.data(), 256), 0);
  EXPECT_EQ(again, edid);
  EXPECT_NE(ll_input_get_edid(0x10, again.data(), 257), 0);
  EXPECT_NE(ll_input_set_edid(0x11, edid.data(), 256), 0);
  failNext(Fault::EdidRead, 1);
  EXPECT_NE(ll_input_get_edid(0x10, again.data(), 256), 0);
}

std::vector<int> entries(const std::vector<unsigned char>& table) {
  std::vector<int> values;
  for (std::size_t i = 0; i < table.size(); i += 2) values.push_back(table[i] | table[i + 1] << 8);
  return values;
}

TEST_F(BoardTest, CurvesRiseFromBlackToAsMuchAsTheBrightnessAllows) {
  start("journal = off\n");
  std::vector<unsigned char> table(COLOUR_TABLE_SIZE);
  constexpr uint16_t kMost = std::numeric_limits<uint16_t>::max();
  const auto expectCurve = [&table](int last) {
    const auto values = entries(table);
    EXPECT_EQ(values.front(), 0);
    EXPECT_EQ(values.back(), last);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
  };
  HDR10GammaCalculation(1000, 5, 100, 10, 0, 0, table.data());
  expectCurve(65535);
  EXPECT_NEAR(entries(table)[3079], 65535, 200) << "this signal is 1000 cd/m2";
  HDR10GammaCalculation(10000, 0, 20, 10, 0, 0, table.data());
  expectCurve(65535 / 5);
  HDR10GammaCalculation(0, kMost, 255, 10, 255, 255, table.data());
  expectCurve(65535);
  HLGGammaCalculation(0, table.data());
  expectCurve(65535);
  EXPECT_NEAR(entries(table)[2048], 65535 / 12.0, 10) << "half the signal is a twelfth of the light";
}

TEST_F(BoardTest, NeutralConversionsOnlyChangeTheCoding) {
  start();
  std::vector<unsigned char> coefficients(COLOUR_COEFFICIENTS_SIZE);
  PictureQualityCalculation(0, 50, 50, 0, 1, coefficients.data());
  EXPECT_THAT(entries(coefficients), ElementsAre(4096, 0, 0, 0, 4096, 0, 0, 0, 4096, 0, 0, 0, 0, 0, 0, 0));
  PictureQualityCalculation(4, 50, 50, 0, 1, coefficients.data());
  const auto toRgb = entries(coefficients);
  EXPECT_EQ(toRgb[0], 4769);  // 255 / 219
  EXPECT_EQ(toRgb[0], toRgb[6]);
  EXPECT_EQ(toRgb[9], 257);  // 16 / 255
  PictureQualityCalculation(99, 50, 50, 0, 1, coefficients.data());
  EXPECT_EQ(coefficients, Bytes(COLOUR_COEFFICIENTS_SIZE, 0));
}

TEST_F(BoardTest, WhatOnlyTheJournalRemembersIsThereWordForWord) {
  start();
  unsigned char table[COLOUR_TABLE_SIZE];
  unsigned char option = 7;
  EXPECT_EQ(netinfo_set_eth_mode(0), 0);
  failNext(Fault::NetCall, 1);
  EXPECT_NE(netinfo_set_curr_ip("192.168.0.10", "255.255.255.0", "192.168.0.1"), 0);
  EXPECT_EQ(st_info_op(1, 0x020001D8, 1, &option), 0);
  HDR10GammaCalculation(1000, 5, 200, 10, 3, 4, table);
  HLGGammaCalculation(2, table);
  PictureQualityCalculation(4, 50, 60, 0, -1, table);
  EXPECT_THAT(journal(), ElementsAre("net-mode 0", "net-addr 192.168.0.10 255.255.255.0 192.168.0.1 failed",
                                     "status-info 1 0x020001d8 1 7", "colour hdr10 1000 5 200 10 3 4",
                                     "colour hlg 2", "colour csc 4 50 60 0 -1"));
}

}  // namespace
