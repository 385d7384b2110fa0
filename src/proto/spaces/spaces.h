// The register spaces that serve requests: a line each, defined in the space's own source file. A row of
// maps/spaces.h without a line here does not compile.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

const RegisterSpace& spaceAt(At<reg::kHwBasicInfo>);
const RegisterSpace& spaceAt(At<reg::kPluginCardInfo>);
const RegisterSpace& spaceAt(At<reg::kCommand>);
const RegisterSpace& spaceAt(At<reg::kFeature>);
const RegisterSpace& spaceAt(At<reg::kScreenInfoEcho>);
const RegisterSpace& spaceAt(At<reg::kHCInteraction>);
const RegisterSpace& spaceAt(At<reg::kBackupInfo>);
const RegisterSpace& spaceAt(At<reg::kIntelligentBrightness>);
const RegisterSpace& spaceAt(At<reg::kCabinetRotation>);
const RegisterSpace& spaceAt(At<reg::kShortcutConfigScreen>);
const RegisterSpace& spaceAt(At<reg::kScanBoardPosition>);
const RegisterSpace& spaceAt(At<reg::kFunCardPortNumber>);
const RegisterSpace& spaceAt(At<reg::kSoftwareTable>);
const RegisterSpace& spaceAt(At<reg::kEdid>);
const RegisterSpace& spaceAt(At<reg::kBrightness>);
const RegisterSpace& spaceAt(At<reg::kTestPrint>);
const RegisterSpace& spaceAt(At<reg::kRGBGamma>);
const RegisterSpace& spaceAt(At<reg::kScreenPatternGen>);
const RegisterSpace& spaceAt(At<reg::kRVConfigFile>);
const RegisterSpace& spaceAt(At<reg::kCardProgram>);

}  // namespace ORVE_MCUC
