#include "mcucdatablock.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace ORVE_MCUC {
namespace {

constexpr std::array<uint8_t, 7> kBytes{0x01, 0x02, 0x83, 0x04, 0x05, 0x06, 0xF7};

TEST(ByteReader, ReadsFieldsInOrderAndStaysShortAfterTheFirstThatIsMissing) {
  ByteReader reader(kBytes);
  EXPECT_EQ(reader.u8(), 0x01);
  EXPECT_EQ(reader.le16(), 0x8302);
  EXPECT_EQ(reader.left(), 4U);
  EXPECT_EQ(reader.le32(), 0xF7060504U);
  EXPECT_TRUE(reader.ok());

  ByteReader shortReader(std::span<const uint8_t>(kBytes).first(5));
  shortReader.le16();
  EXPECT_EQ(shortReader.le32(), 0U);
  EXPECT_EQ(shortReader.u8(), 0) << "one byte was left, but it does not belong to this field";
  EXPECT_TRUE(shortReader.bytes(0).empty());
  EXPECT_FALSE(shortReader.ok());
}

TEST(ByteWriter, WritesFieldsInOrderAndLeavesOutWholeOnesThatDoNotFit) {
  std::array<uint8_t, 9> room{};
  room.fill(0xEE);
  ByteWriter writer(std::span<uint8_t>(room).first(8));
  writer.u8(0x01);
  writer.le16(0x8302);
  writer.bytes(std::span(kBytes).subspan(3, 2));
  EXPECT_TRUE(writer.ok());
  writer.le32(0xFFFFFFFF);
  writer.u8(0xFF);
  EXPECT_FALSE(writer.ok());
  EXPECT_EQ(writer.written(), 5U);
  EXPECT_EQ(room, (std::array<uint8_t, 9>{0x01, 0x02, 0x83, 0x04, 0x05, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST(Fields, AreReadAndWrittenOnlyWhereTheyLieWhollyInside) {
  std::array<uint8_t, 6> bytes{};
  EXPECT_TRUE(putLe32(bytes, 2, 0x84838281));
  EXPECT_TRUE(putLe16(bytes, 0, 0x9291));
  EXPECT_EQ(bytes, (std::array<uint8_t, 6>{0x91, 0x92, 0x81, 0x82, 0x83, 0x84}));
  EXPECT_EQ(le32(bytes, 2), 0x84838281U);
  EXPECT_EQ(le16(bytes, 4), 0x8483);
  for (const std::size_t beyond : {std::size_t{5}, std::size_t{6}, std::size_t{7}, SIZE_MAX, SIZE_MAX - 1}) {
    EXPECT_EQ(le16(bytes, beyond), 0) << beyond;
    EXPECT_EQ(le32(bytes, beyond), 0U) << beyond;
    EXPECT_FALSE(putLe16(bytes, beyond, 1)) << beyond;
    EXPECT_FALSE(putLe32(bytes, beyond, 1)) << beyond;
  }
  EXPECT_EQ(bytes[5], 0x84);
}

TEST(ByteImage, CopiesRangesInsideAndRefusesAllOthers) {
  ByteImage<16> image;
  std::vector<uint8_t> counted(16);
  std::iota(counted.begin(), counted.end(), uint8_t{0});
  ASSERT_TRUE(image.copyFrom(counted));
  image[3] = 0x33;
  std::array<uint8_t, 4> part{};
  ASSERT_TRUE(image.copyTo(part, 12));
  EXPECT_EQ(part, (std::array<uint8_t, 4>{12, 13, 14, 15}));
  ASSERT_TRUE(image.copyTo(part, 2));
  EXPECT_EQ(part, (std::array<uint8_t, 4>{2, 0x33, 4, 5}));

  for (const std::size_t beyond : {std::size_t{13}, std::size_t{17}, SIZE_MAX, SIZE_MAX - 3}) {
    EXPECT_FALSE(image.copyTo(part, beyond)) << beyond;
    EXPECT_FALSE(image.copyFrom(part, beyond)) << beyond;
  }
  EXPECT_TRUE(image.copyFrom({}, 16));
  EXPECT_EQ(image[15], 15);
}

}  // namespace
}  // namespace ORVE_MCUC
