// The commands of the command space, by their offset: a write of the register makes the card do something.
#pragma once

#include <array>
#include <cstdint>

#include "maps/spaces.h"

namespace ORVE_MCUC {

namespace command {
inline constexpr uint32_t kSort = 0x0000;
inline constexpr uint32_t kSave = 0x0001;
inline constexpr uint32_t kFactoryReset = 0x0002;
inline constexpr uint32_t kTestPoint = 0x0003;
inline constexpr uint32_t kReloadProgram = 0x0004;
inline constexpr uint32_t kChipErase = 0x0005;
inline constexpr uint32_t kMapping = 0x0018;
inline constexpr uint32_t kDebug = 0x0020;
inline constexpr uint32_t kReloadCards = 0x00FF;
}  // namespace command

inline constexpr std::array kCommands{
    OffsetRow{command::kSort, "sort", "Controller sort", {1, 512}},
    OffsetRow{command::kSave, "saveParasForSendCard", "save paras for sendcard", {1, 512}},
    OffsetRow{command::kFactoryReset, "ReturnFactorySet", "Return Factory Set", {1, 512}},
    OffsetRow{command::kTestPoint, "TestPointCommand", "Test Point Command", {1, 512}},
    OffsetRow{command::kReloadProgram, "ReloadSendCardProgram", "Reload Send Card Program", {1, 512}},
    OffsetRow{command::kChipErase, "ChipEraseCommand", "Chip Erase Command", {1, 512}},
    OffsetRow{command::kMapping, "MappingCommand", "Mapping conmmand for sender", {1, 512}},
    OffsetRow{command::kDebug, "DebugCommandForFPGA", "Debug command for FPGA", {1, 512}},
    OffsetRow{command::kReloadCards, "ReloadrecvCardProgram", "Reload recvCard Program", {1, 512}},
};
static_assert(ascends(kCommands, &OffsetRow::key));

}  // namespace ORVE_MCUC
