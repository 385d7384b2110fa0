// Which release this is.
#pragma once

namespace parlctl {

inline constexpr const char* kVersion = "parlctl " PARLEND_VERSION;

}  // namespace parlctl
