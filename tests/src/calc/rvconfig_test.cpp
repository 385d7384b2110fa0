// Headers and bodies of configuration files, with every kind of damage.
#include "calc/rvconfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "calc/rvplayback.h"

namespace ORVE_MCUC {
namespace {

std::vector<uint8_t> header(uint8_t enable, const std::vector<uint32_t>& offsets) {
  std::vector<uint8_t> bytes(rv::kHeadBytes + rv::kEntryBytes * offsets.size(), 0xEE);
  bytes[0] = enable;
  bytes[1] = static_cast<uint8_t>(offsets.size());
  for (std::size_t i = 0; i < offsets.size(); ++i) putLe32(bytes, 36 + 32 * i, offsets[i]);
  return bytes;
}

_RvFileHeadPara_t taken(const std::vector<uint32_t>& offsets) {
  const auto bytes = header(1, offsets);
  EXPECT_EQ(checkRvHeader(bytes), RvHeaderFault::kNone);
  _RvFileHeadPara_t head;
  takeRvHeader(bytes, head);
  sortRvRanges(head);
  return head;
}

TEST(RvHeader, RangesAreSortedAndEachEndsWhereTheNextBegins) {
  const auto head = taken({0x3000, 0x2000});
  const struct {
    uint32_t at;
    int file;  // -1: none
  } cases[] = {{0x0F000004, -1}, {0x0F001FFF, -1}, {0x0F002000, 1}, {0x0F002FFF, 1},
               {0x0F003000, 0},  {0x0F7FFFFF, 0},  {0x0F800000, -1}};
  for (const auto& c : cases) {
    const auto range = rvRangeOf(head, c.at);
    EXPECT_EQ(range ? int{head.FileIndex[*range]} : -1, c.file) << std::hex << c.at;
  }
  EXPECT_FALSE(rvRangeOf(_RvFileHeadPara_t{}, 0x0F002000)) << "no header yet";
  EXPECT_FALSE(rvRangeOf(taken({}), 0x0F002000)) << "a header of no files";
}

TEST(RvHeader, EqualOffsetsLeaveAllButTheLastEmpty) {
  const auto head = taken({0x5000, 0x5000, 0x2000, 0x5000});
  const auto range = rvRangeOf(head, 0x0F005000);
  ASSERT_TRUE(range);
  EXPECT_EQ(head.FileIndex[*range], 3);
}

// Against the plain reading: the largest start that is not above, of equal ones the last announced.
TEST(RvHeader, OfAnyOrderFindsTheFileThatAnyoneWouldFind) {
  std::mt19937 random(3);
  for (int n = 0; n < 300; ++n) {
    std::vector<uint32_t> offsets(random() % 17);
    for (auto& offset : offsets) offset = static_cast<uint32_t>(random() % (n % 2 == 0 ? 0x800000 : 8));
    const auto head = taken(offsets);
    for (int probe = 0; probe < 40; ++probe) {
      const uint32_t at = static_cast<uint32_t>(random() % (n % 2 == 0 ? 0x800000 : 9));
      int expected = -1;
      for (std::size_t i = 0; i < offsets.size(); ++i) {
        const bool better = expected < 0 || offsets[i] >= offsets[static_cast<std::size_t>(expected)];
        if (offsets[i] <= at && better) expected = static_cast<int>(i);
      }
      const auto range = rvRangeOf(head, 0x0F000000 + at);
      ASSERT_EQ(range ? int{head.FileIndex[*range]} : -1, expected);
    }
  }
}

TEST(RvHeader, OfAPeerIsCheckedBeforeItIsBelieved) {
  const std::vector<uint32_t> sixteen(16, 0x7FFFFF);
  EXPECT_EQ(checkRvHeader(header(1, sixteen)), RvHeaderFault::kNone);
  EXPECT_EQ(checkRvHeader(header(1, std::vector<uint32_t>(17))), RvHeaderFault::kTooManyFiles);
  EXPECT_EQ(checkRvHeader(header(1, {0x800000})), RvHeaderFault::kOffsetBeyond);
  EXPECT_EQ(checkRvHeader(header(1, {0xFFFFFFFF, 0})), RvHeaderFault::kOffsetBeyond);
  const auto two = header(1, {1, 2});
  for (std::size_t size = 0; size < two.size(); ++size) {
    EXPECT_EQ(checkRvHeader(std::span(two).first(size)), RvHeaderFault::kTooShort) << size;
  }
  EXPECT_STREQ(rvStorageName(31).name.data(), "RvCfgFile_31.rcfgx");
}

struct Item {
  uint32_t at;
  uint16_t pause;
  uint16_t length;
};
std::vector<uint8_t> file(const std::vector<Item>& items) {
  std::vector<uint8_t> bytes(rv::kFileHeadBytes);
  putLe16(bytes, 0, static_cast<uint16_t>(items.size()));
  for (const Item& item : items) {
    std::array<uint8_t, rv::kItemHeadBytes> head{};
    ByteWriter to(head);
    to.le32(item.at);
    to.le16(item.pause);
    to.le16(item.length);
    bytes.insert(bytes.end(), head.begin(), head.end());
    for (unsigned i = 0; i < item.length; ++i) bytes.push_back(static_cast<uint8_t>(i));
  }
  return bytes;
}

// What playing does, in words: "200:512 p10 400:76 p15".
std::string played(const std::vector<uint8_t>& bytes, RvEnd end) {
  std::string text;
  const auto append = [&text](const std::string& word) {
    text += (text.empty() ? "" : " ") + word;
    return true;
  };
  const RvEnd reached = forEachRvItem(bytes, [&append](const RvItem& item) {
    return playRvItem(
        item,
        [&append](uint32_t at, std::span<const uint8_t> data) {
          std::array<char, 32> word{};
          std::snprintf(word.data(), word.size(), "%X:%zu", at, data.size());
          return append(word.data());
        },
        [&append](int ms) { return append("p" + std::to_string(ms)); });
  });
  EXPECT_EQ(reached, end);
  return text;
}

TEST(RvPlayback, CutsItemsIntoBlocksAndPauses) {
  const struct {
    Item item;
    const char* expected;
  } cases[] = {{{0x10, 0, 0}, "10:0 p15"},
               {{0x10, 7, 1}, "10:1 p15 p7"},
               {{0x10, 0, 512}, "10:512 p15"},
               {{0x10, 0, 513}, "10:512 p10 210:1 p15"},
               {{0x10, 0, 1024}, "10:512 p10 210:512 p10 p15"},
               {{0x10, 65535, 1100}, "10:512 p10 210:512 p10 410:76 p15 p65535"}};
  for (const auto& c : cases) EXPECT_EQ(played(file({c.item}), RvEnd::kDone), c.expected);
  const auto plan = planOf(file({{0, 3, 1100}, {0, 0, 1}}));
  EXPECT_EQ(plan.writes, 4U);
  EXPECT_EQ(plan.pausesMs, 20U + 15 + 3 + 15);
  EXPECT_EQ(plan.bytes, 32U + 8 + 1100 + 8 + 1);
  EXPECT_EQ(planOf(file({{0, 0, 4096}})).writes, 8U);
}

TEST(RvPlayback, EndsAtAnItemThatIsTooLongOrNotThere) {
  EXPECT_EQ(played(file({{1, 0, 2}, {2, 0, 4097}, {3, 0, 1}}), RvEnd::kTooLong), "1:2 p15");
  const auto whole = file({{1, 0, 2}, {2, 0, 3}});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    const auto end = size < 2 ? RvEnd::kDone : RvEnd::kCutShort;  // without a count there are no items
    EXPECT_EQ(played(cut, end), size < 42 ? "" : "1:2 p15") << size;
  }
  auto more = whole;
  putLe16(more, 0, 3);
  EXPECT_EQ(played(more, RvEnd::kCutShort), "1:2 p15 2:3 p15");
}

TEST(RvPlayback, StopsAtOnceWhereItIsTold) {
  const auto bytes = file({{1, 9, 1100}, {2, 9, 1}});
  const unsigned steps = 8 + 3 - 1;  // calls of write and pause
  for (unsigned allowed = 0; allowed <= steps; ++allowed) {
    unsigned calls = 0;
    const auto step = [&](auto&&...) { return ++calls <= allowed; };
    const auto end = forEachRvItem(bytes, [&](const RvItem& item) { return playRvItem(item, step, step); });
    EXPECT_EQ(end, allowed < steps ? RvEnd::kStopped : RvEnd::kDone) << allowed;
    EXPECT_EQ(calls, std::min(allowed + 1, steps));
  }
}

TEST(RvPlayback, OfRandomBytesStaysWithinThem) {
  std::mt19937 random(64);
  for (int n = 0; n < 2000; ++n) {
    std::vector<uint8_t> bytes(random() % 300);
    for (auto& byte : bytes) byte = static_cast<uint8_t>(random() % 8 == 0 ? random() : 0);
    std::size_t used = 0;
    forEachRvItem(bytes, [&](const RvItem& item) {
      used += 8 + item.data.size();
      if (!item.data.empty()) {
        EXPECT_GE(item.data.data(), bytes.data());
        EXPECT_LE(item.data.data() + item.data.size(), bytes.data() + bytes.size());
      }
      return true;
    });
    EXPECT_LE(used, bytes.size());
  }
}

}  // namespace
}  // namespace ORVE_MCUC
