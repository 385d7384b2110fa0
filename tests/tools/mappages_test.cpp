// The pages that are printed from the maps, and the client's words for the same addresses.
#include "mappages/mappages.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "registernames.h"

namespace {

std::string page(const std::string& name) {
  std::ifstream file(std::string(PARLEND_SOURCE_DIR) + "/docs/" + name);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(MapPagesTest, ThePagesInDocsAreThoseOfTheTables) {
  EXPECT_EQ(page("registers.md"), mappages::registersPage())
      << "parlend_mappages registers > docs/registers.md";
  EXPECT_EQ(page("flash.md"), mappages::flashPage()) << "parlend_mappages flash > docs/flash.md";
}

TEST(RegisterNamesTest, AnAddressHasTheNameOfItsRegisterElseOfItsSpace) {
  const std::pair<uint32_t, std::string> kNames[] = {
      {0x02000000, "feature"},
      {0x02000021, "power-on time"},
      {0x02000022, "feature + 0x22"},
      {0x0E123456, "RGB gamma + 0x123456"},
      {0x05060010, "software table, upper part + 0x10"},
      {0x020001F4, "links below fiber 2, ports 0-7"},
      {0x00020000, ""},
      {0x14000000, "daemon loaded"},
  };
  for (const auto& [address, name] : kNames) EXPECT_EQ(parlctl::registerName(address), name);
}

TEST(RegisterNamesTest, AccessesAreJudgedByTheMap) {
  EXPECT_FALSE(parlctl::spaceOf(0x02250000));
  EXPECT_EQ(parlctl::spaceOf(0x02281234), std::nullopt);
  EXPECT_EQ(parlctl::spaceOf(0x02811234)->longest, 1500U);
  EXPECT_EQ(parlctl::spaceOf(0xF1000000)->longest, 2048U);
  EXPECT_EQ(parlctl::spaceOf(0x01000000)->longest, 512U);
  EXPECT_FALSE(parlctl::spaceOf(0x01000000)->readable);
  EXPECT_FALSE(parlctl::spaceOf(0x18000000)->writable);
  EXPECT_EQ(parlctl::readEffect(0x0500FFFF, 1), "pushes 0xC8 to VSP");
  EXPECT_EQ(parlctl::readEffect(0x0500FFFF, 2), "");
  EXPECT_NE(parlctl::readEffect(0x030001EF, 300), "");
}

}  // namespace
