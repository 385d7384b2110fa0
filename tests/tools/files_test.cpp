// EDIDs and configuration files as people write and read them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "cabfileset.h"
#include "cabfiletext.h"
#include "calc/inputmode.h"
#include "calc/rvplayback.h"
#include "edidtext.h"
#include "mcucdatablock.h"
#include "peer/error.h"
#include "support/ediddecode.h"

namespace parlctl {
namespace {

using namespace ORVE_MCUC;
using peer::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;

template <class Call>
std::string complaintOf(Call call) {
  try {
    call();
  } catch (const peer::Error& error) {
    return error.what();
  }
  return "none";
}

TEST(Mode, IsReadAsPeopleWriteIt) {
  EXPECT_EQ(parseMode("1920x1080@60"), (InputMode{1920, 1080, 6000}));
  EXPECT_EQ(parseMode("1920x1080@59.94"), (InputMode{1920, 1080, 5994}));
  EXPECT_EQ(parseMode("8x4095@0.5"), (InputMode{8, 4095, 50}));
  for (const char* wrong : {"", "1920", "1920x1080", "1920x1080@", "1920x1080@60.", "1920x1080@60.123",
                            "1920x@60", "0x1080@60", "4096x1080@60", "1920x1080@0", "1920x1080@0.00",
                            "1920x1080@655.36", "1920x1080@-1", "1920x1080@6e1", "1920x1080@60.1x"}) {
    EXPECT_NE(complaintOf([&] { parseMode(wrong); }), "none") << wrong;
  }
}

// The daemon makes of the composed EDID what it would make of the mode itself.
TEST(ComposedEdid, AsksForTheModeAsFarAsItsClockCanSayIt) {
  std::mt19937 source(7);
  const auto random = [&source] { return static_cast<unsigned>(source()); };
  for (int n = 0; n < 400; ++n) {
    const InputMode mode{static_cast<uint16_t>(640 + random() % 2500),
                         static_cast<uint16_t>(400 + random() % 1500),
                         static_cast<uint16_t>(2000 + random() % 8000)};
    EdidBytes edid{};
    if (complaintOf([&] { edid = composeEdid(mode); }) != "none") continue;
    const auto expected = expectedTiming(edid);
    ASSERT_TRUE(expected) << modeText(mode);
    EXPECT_EQ(expected->mode.width, mode.width);
    EXPECT_GE(expected->mode.frame, mode.frame) << modeText(mode);
    EXPECT_LE(expected->mode.frame - mode.frame, 3)
        << modeText(mode) << ": a step of the clock is up to 0.03 Hz";
    EXPECT_TRUE(decodeEdid(edid).faults.empty());
  }
  EXPECT_TRUE(expectedTiming(composeEdid({1920, 1080, 6000}))->standard);
  EXPECT_FALSE(expectedTiming(composeEdid({1024, 600, 6000}))->standard);
  EXPECT_THAT(complaintOf([] { composeEdid({4095, 4095, 6000}); }), HasSubstr("4095 x 4095 at 60.00 Hz"));
}

TEST(ComposedEdid, IsConformant) {
  if (!edid_decode::isInstalled()) GTEST_SKIP() << "edid-decode is not installed";
  for (const InputMode& mode : {InputMode{1920, 1080, 6000}, {1024, 600, 5000}, {3840, 2160, 2997}}) {
    const EdidBytes edid = composeEdid(mode);
    const auto verdict = edid_decode::judge(std::span(edid).first<kEdidBlock>());
    EXPECT_TRUE(verdict.conformant) << verdict.text;
  }
}

TEST(DecodedEdid, SaysWhatIsInIt) {
  EdidBytes edid = composeEdid({1920, 1080, 6000});
  EXPECT_EQ(textOf(decodeEdid(edid)),
            "name    LED wall\n"
            "timing  1920 x 1080 at 60.00 Hz, clock 148.50 MHz\n"
            "        2200 x 1125 in all; sync 88 + 44 pixels, 4 + 5 lines behind the picture\n"
            "range   1 to 255 Hz, 1 to 255 kHz, at most 660 MHz\n"
            "sums    right");
  edid[0x4D] = 0x1B;  // an escape sequence does not reach the terminal
  edid[kEdidExtensionsAt] = 1;
  const auto decoded = decodeEdid(edid);
  EXPECT_EQ(decoded.name, "?ED wall");
  EXPECT_THAT(decoded.faults, ElementsAre(HasSubstr("base block")));
  edid[200] = 1;
  edid[0] = 1;
  EXPECT_THAT(decodeEdid(edid).faults,
              ElementsAre(HasSubstr("header"), HasSubstr("base"), HasSubstr("extension")));
  EXPECT_THAT(decodeEdid(std::span(edid).first(128)).faults.back(), HasSubstr("missing"));
  EXPECT_NE(complaintOf([&] { decodeEdid(std::span(edid).first(127)); }), "none");
}

TEST(CabFileText, CompilesAndDecompiles) {
  const std::string text =
      "0x02000001 = 80\n"
      "0x03000000 = 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n"
      "           + 10 11\n"
      "pause 65535\n"
      "0x04000000 =\n";
  const Bytes file = compileCabFile("# of a cabinet\n\n" + text);
  EXPECT_EQ(file.size(), 32U + 9 + 8 + 18 + 8);
  EXPECT_EQ(decompileCabFile(file), text);
  const auto plan = planOf(file);
  EXPECT_EQ(plan.items, 3U);
  EXPECT_EQ(plan.pausesMs, 3 * 15U + 65535);
  EXPECT_EQ(compileCabFile("").size(), 32U);
}

TEST(CabFileText, IsComplainedOfByLine) {
  const std::string many = "1 = " + std::string(std::size_t{2} * 4096, '0') + "\n";
  const struct {
    std::string text;
    const char* complaint;
  } cases[] = {{"1 = 00\nx", "line 2"},
               {"pause 5", "no register write"},
               {"+ 00", "no register write"},
               {"1 = 00\npause 5\npause 5", "one pause"},
               {"1 = 00\npause 65536", "line 2"},
               {"1 = 0", "line 1"},
               {"0x100000000 = 00", "line 1"},
               {"reserved = 00", "30 bytes"},
               {many + "+ 00", "4096"}};
  for (const auto& c : cases)
    EXPECT_THAT(complaintOf([&] { compileCabFile(c.text); }), HasSubstr(c.complaint));
  EXPECT_EQ(complaintOf([&] { compileCabFile(many); }), "none");
}

TEST(CabFileText, KeepsEveryByteOfAWholeFile) {
  std::mt19937 source(16);
  const auto random = [&source] { return static_cast<unsigned>(source()); };
  for (int n = 0; n < 60; ++n) {
    Bytes file(32);
    for (auto& byte : file) byte = static_cast<uint8_t>(n % 2 == 0 ? random() : 0);
    const auto items = static_cast<uint16_t>(random() % 5);
    putLe16(file, 0, items);
    for (unsigned i = 0; i < items; ++i) {
      const auto length = static_cast<uint16_t>(random() % 100 == 0 ? 4096 : random() % 70);
      Bytes item(8 + length);
      for (auto& byte : item) byte = static_cast<uint8_t>(random());
      putLe16(item, 6, length);
      file.insert(file.end(), item.begin(), item.end());
    }
    EXPECT_EQ(compileCabFile(decompileCabFile(file)), file);
    for (std::size_t cut = 0; cut < file.size(); cut += 7) {
      if (items == 0 && cut >= 32) continue;
      EXPECT_NE(complaintOf([&] { decompileCabFile(std::span(file).first(cut)); }), "none") << cut;
    }
  }
}

TEST(CabSet, LiesOneFileBehindTheOther) {
  const std::vector<CabFile> files{{"a", Bytes(1)}, {"b", Bytes(4096)}, {"c", Bytes(4097)}, {"empty", {}}};
  const auto places = placeCabFiles(files);
  std::vector<uint32_t> starts;
  for (const auto& place : places) starts.push_back(place.start);
  EXPECT_THAT(starts, ElementsAre(0x0F002000, 0x0F003000, 0x0F004000, 0x0F006000));
  const auto parsed = parseCabHeader(cabHeader(places));
  ASSERT_EQ(parsed.size(), 4U);
  EXPECT_EQ(parsed[2].start, 0x0F004000U);
  EXPECT_EQ(parsed[3].end, 0x0F800000U);
  EXPECT_TRUE(parseCabHeader(Bytes(544)).empty());
  EXPECT_EQ(findInIndex(cabIndex(files), 2)->name, "c");
  EXPECT_EQ(findInIndex(cabIndex(files), 2)->size, 4097U);
  EXPECT_FALSE(findInIndex(cabIndex(files), 4));
  EXPECT_FALSE(findInIndex("somebody else's", 0));
  EXPECT_LE(cabIndex({std::vector<CabFile>(16, {std::string(255, 'n'), {}})}).size(), 2048U);

  EXPECT_NE(complaintOf([] { placeCabFiles({}); }), "none");
  EXPECT_NE(complaintOf([] { placeCabFiles(std::vector<CabFile>(17)); }), "none");
  const std::vector<CabFile> most{{"", Bytes(0x800000 - 0x2000)}};
  EXPECT_EQ(placeCabFiles(most)[0].end, 0x0F800000U);
  const std::vector<CabFile> more{{"", Bytes(0x800000 - 0x2000 + 1)}};
  EXPECT_NE(complaintOf([&] { placeCabFiles(more); }), "none");
  EXPECT_EQ(durationText(2540), "2.5 s");
  EXPECT_EQ(durationText(65999), "1 min 5 s");
}

}  // namespace
}  // namespace parlctl
