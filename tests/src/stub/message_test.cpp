// The frame, its checksum and codec.
#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string_view>
#include <vector>

#include "stub/mcucmessagestruct.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes hex(std::string_view text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 3) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

const Bytes kRead = hex("55 AA 00 00 00 00 00 00 00 00 00 00 00 00 00 02 04 00 5B 55");
const Bytes kWrite = hex("55 AA 00 00 00 00 00 00 00 00 01 00 01 00 00 02 01 00 10 6A 55");

int decode(ThirdProtoMCUCMsg& message, const Bytes& frame) {
  return message.Decode(frame.data(), static_cast<int>(frame.size()));
}

Bytes encode(ThirdProtoMCUCMsg& message) {
  Bytes frame(DATA_BLOCK_LENGTH);
  frame.resize(static_cast<std::size_t>(message.Encode(frame.data(), static_cast<unsigned>(frame.size()))));
  return frame;
}

TEST(MessageTest, AReadIsDecodedAndAnsweredWithItsData) {
  ThirdProtoMCUCMsg message;
  ASSERT_EQ(decode(message, kRead), 0);
  EXPECT_EQ(message.m_usHeader, PROTOCOL_HEADER_TAG_RESPONSE);
  EXPECT_EQ(message.m_uiRegisterUnitAddress, 0x02000000U);
  EXPECT_EQ(message.m_usValidDataLength, 4);
  EXPECT_TRUE(message.m_data.empty());
  message.m_data = {1, 2, 3, 4};
  EXPECT_EQ(encode(message), hex("AA 55 00 00 00 00 00 00 00 00 00 00 00 00 00 02 04 00 01 02 03 04 65 55"));
}

TEST(MessageTest, AWriteCarriesItsDataAndItsReplyOnlyOnRequest) {
  ThirdProtoMCUCMsg message;
  ASSERT_EQ(decode(message, kWrite), 0);
  EXPECT_EQ(message.m_data, Bytes{0x10});
  EXPECT_EQ(encode(message), hex("AA 55 00 00 00 00 00 00 00 00 01 00 01 00 00 02 00 00 59 55"));
  message.m_ucReserved = kReplyCarriesData;
  EXPECT_EQ(encode(message), hex("AA 55 00 00 00 00 00 00 00 00 01 FF 01 00 00 02 01 00 10 69 56"));
}

TEST(MessageTest, FramesThatAreTooShortAreRefused) {
  ThirdProtoMCUCMsg message;
  EXPECT_EQ(decode(message, Bytes(kRead.begin(), kRead.end() - 1)), -1);
  EXPECT_EQ(message.Decode(nullptr, 20), -1);
  Bytes lying = kWrite;
  lying[16] = 2;  // one byte more than the frame carries
  EXPECT_EQ(decode(message, lying), -1);
  lying[10] = kCodeRead;  // a read wants bytes, it does not carry them
  EXPECT_EQ(decode(message, lying), 0);
}

TEST(MessageTest, AFrameThatDoesNotFitItsBufferIsNotEncoded) {
  ThirdProtoMCUCMsg message;
  Bytes buffer(64);
  message.m_data.resize(44);
  EXPECT_EQ(message.Encode(buffer.data(), 64), 64);
  message.m_data.resize(45);
  EXPECT_EQ(message.Encode(buffer.data(), 64), -1);
  Bytes largest(DATA_BLOCK_LENGTH);
  message.m_data.resize(65517);
  EXPECT_EQ(message.Encode(largest.data(), DATA_BLOCK_LENGTH), -1);
  message.m_data.resize(65536);
  EXPECT_EQ(message.Encode(largest.data(), DATA_BLOCK_LENGTH), -1);
  EXPECT_EQ(message.Encode(nullptr, 65536), -1);
}

TEST(ChecksumTest, IsTheSumOfTheBytesWhateverTheirNumberAndPlace) {
  std::mt19937 random(1);
  Bytes bytes(70000);
  for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
  std::fill(bytes.begin() + 3000, bytes.begin() + 9000, 0xFF);  // where a lane would overflow first
  for (const int count : {0, 1, 7, 8, 9, 1023, 1024, 1025, 1032, 6000, 65536}) {
    for (const int start : {0, 1, 2, 3000}) {
      const auto from = bytes.begin() + start;
      const unsigned sum = std::accumulate(from, from + count, 0x5555U);
      unsigned short computed = 0;
      MCUCMsg::CaculCheckout(bytes.data(), start, count, &computed);
      ASSERT_EQ(computed, static_cast<unsigned short>(sum)) << count << " bytes from " << start;
    }
  }
}

TEST(ChecksumTest, CoversEverythingBetweenTagAndChecksum) {
  EXPECT_TRUE(MCUCMsg::Checkout(kRead.data(), static_cast<int>(kRead.size())));
  for (std::size_t i = 0; i < kRead.size(); ++i) {
    Bytes damaged = kRead;
    damaged[i] ^= 0x40;
    EXPECT_EQ(MCUCMsg::Checkout(damaged.data(), static_cast<int>(damaged.size())), i < 2) << "byte " << i;
  }
  EXPECT_FALSE(MCUCMsg::Checkout(kRead.data(), 3));
}

TEST(WorkItemTest, HoldsUpTo65535Bytes) {
  MCUProcessDataBlock item;
  const Bytes bytes(65536, 7);
  const auto* data = reinterpret_cast<const char*>(bytes.data());
  EXPECT_TRUE(item.setData(data, 65535));
  EXPECT_EQ(item.getDataLen(), 65535);
  EXPECT_FALSE(item.setData(data, 65536));
  EXPECT_FALSE(item.setData(data, -1));
  EXPECT_EQ(item.getDataLen(), 65535);
  EXPECT_EQ(item.getData()[65534], 7);
}

}  // namespace
}  // namespace ORVE_MCUC
