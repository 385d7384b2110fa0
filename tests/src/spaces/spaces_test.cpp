// The tables of spaces and work keys against what the daemon does with them.
#include "proto/spaces/spaces.h"

#include <gmock/gmock.h>

#include <utility>

#include "maps/commands.h"
#include "maps/workkeys.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "proto/tshl_ctl.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

template <uint32_t base>
concept Served = requires {
  spaceAt(At<base>{});
};

/** The space that serves a row of the map; null: none does. */
template <std::size_t no>
const RegisterSpace* spaceOfRow() {
  constexpr uint32_t base = firstBase(kSpaces[no]);
  if constexpr (Served<base>) return &spaceAt(At<base>{});
  return nullptr;
}
const auto kServing = []<std::size_t... no>(std::index_sequence<no...>) {
  return std::array<const RegisterSpace*, sizeof...(no)>{spaceOfRow<no>()...};
}
(std::make_index_sequence<kSpaces.size()>{});

struct Answer {
  int result;
  uint8_t ack;
};

class SpacesTest : public testing::Test {
 protected:
  Answer route(uint32_t address, int32_t length, uint8_t code = kCodeRead,
               std::initializer_list<uint8_t> data = {}) {
    IMD_proto3rd request;
    request.proto.m_data.assign(data);
    request.proto.m_uiRegisterUnitAddress = address;
    request.proto.m_usValidDataLength = static_cast<uint16_t>(length);
    request.proto.m_ucCode = code;
    const int result = Tshl_ctl::getInstance()->Ssh_StartSendCard(&request);
    return {result, request.proto.m_ucAck};
  }

  /** Lengths just inside and outside of a row, and access types. */
  void checkLimits(uint32_t address, const OffsetRow& row) {
    SCOPED_TRACE(row.text);
    const auto& [least, most] = row.limits;
    for (const int32_t length : {least - 1, least, most, most + 1}) {
      if (length < 0 || length > 0xFFFF) continue;
      const Answer answer = route(address, length);
      const bool allowed = length >= least && length <= most;
      EXPECT_EQ(answer.result == kBadLength, !allowed) << length;
      if (!allowed) {
        EXPECT_EQ(answer.ack, kAckRefused) << length;
      }
    }
    const Answer strange = route(address, least, 2);
    EXPECT_EQ(strange.result, kBadAccess);
    EXPECT_EQ(strange.ack, kAckRefused);
    if (most < 0xFFFF) {
      EXPECT_EQ(route(address, most + 1, 2).result, kBadLength) << "the length is looked at first";
    }
  }

  TestDaemon daemon;
};

TEST_F(SpacesTest, EveryRowRefusesWhatItsLimitsExclude) {
  for (std::size_t no = 0; no < kSpaces.size(); ++no) {
    const SpaceRow& row = kSpaces[no];
    SCOPED_TRACE(row.title);
    if (kServing[no] == nullptr) {
      EXPECT_EQ(route(row.base, 1).ack, kAckRefused);
    } else if (!kServing[no]->traits.checks) {
      EXPECT_EQ(route(row.base, 1, 2).result, kDone);
    } else if (row.offset.name != nullptr) {
      checkLimits(kServing[no]->traits.keyIsOffset ? row.base + row.offset.key : row.base, row.offset);
    }
  }
  if (!Served<reg::kCommand>) return;
  for (const auto& row : kCommands) checkLimits(reg::kCommand + row.key, row);
}

TEST_F(SpacesTest, ARangeEndsWhereItsRowSays) {
  for (const auto& row : kSpaces) {
    SCOPED_TRACE(row.title);
    EXPECT_EQ(reg::routerKey(row.base + row.width - 1), row.base);
    // Behind it nobody is asked, unless another space begins there.
    const Answer behind = route(row.base + row.width, 1);
    const bool unknown = behind.result == kRefused && behind.ack == kAckDone;
    EXPECT_EQ(unknown, findSpace(reg::routerKey(row.base + row.width)) == nullptr);
  }
  // One space finds its rows by offset, and answers differently without one.
  EXPECT_EQ(route(0x18000100, 256).ack, kAckRefused);
  EXPECT_EQ(route(0x18000100, 256).result, kDone);
  EXPECT_EQ(route(0x18001000, 256).ack, kAckDone);
}

TEST_F(SpacesTest, APictureSettingNeedsTheBytesItsLengthPromises) {
  for (const uint32_t offset : {0x117U, 0x11AU, 0x129U, 0x12EU, 0xC0U}) {
    const Answer answer = route(reg::kHCInteraction + offset, 2, kCodeWrite, {1});
    EXPECT_EQ(answer.result, kRefused) << offset;
    EXPECT_EQ(answer.ack, kAckRefused) << offset;
  }
  EXPECT_EQ(daemon.workOff(), 0U);
}

TEST(CheckTest, ARowAllowsTheAccessOfItsMaskAndNoOther) {
  for (const int32_t mask : {0, kMayRead, kMayWrite, kReadWrite}) {
    for (const int code : {0, 1, 2, 255}) {
      IMD_proto3rd request;
      request.proto.m_usValidDataLength = 1;
      request.proto.m_ucCode = static_cast<uint8_t>(code);
      Fcheck_func check{mask, {1, 1}};
      const bool allowed = (code == 0 && (mask & 0x01) != 0) || (code == 1 && (mask & 0x10) != 0);
      EXPECT_EQ(Ssh_checkFun(&check, &request), allowed ? 0 : 7) << mask << ' ' << code;
    }
  }
}

TEST_F(SpacesTest, EveryKeyCallsTheHandlerThatItsRowNames) {
  setTraceLevel(3);
  for (int32_t key = -1; key <= SendCardMappingKey + 1; ++key) {
    if (key == SaveSendCardParaKey || key == ReloadSenderFPGAKey)
      continue;  // need no payload: they would run
    const std::size_t place = placeOf(enum_Process_Key_Table{key});
    // Without a payload, and with one that is shorter than any record.
    for (const int length : {0, 1}) {
      if (key == ReturnFactorySetKey && length == 1) continue;  // its whole record: the device would be reset
      MCUProcessDataBlock block;
      block.m_key = key;
      if (length > 0) block.setData("\x01", length);
      daemon.trace();
      Tprocess_ctl::getInstance()->onProcessDealwith(&block);
      const auto lines = daemon.trace();
      if (place == kWorkKeys.size()) {
        EXPECT_THAT(lines, IsEmpty()) << key;
        continue;
      }
      const std::string handler(kWorkKeys[place].handler);
      EXPECT_THAT(lines, Contains(AnyOf(HasSubstr(handler + " "),
                                        HasSubstr("=== onProcessDealwith ===: Invalid key!"))));
    }
  }
  EXPECT_EQ(Data_Global::getInstance()->RebootRF, 0) << "nothing here asks for a reset";
}

}  // namespace
}  // namespace ORVE_MCUC
