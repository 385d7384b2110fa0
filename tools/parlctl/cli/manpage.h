// Manual pages of the same description that the help is made of.
#pragma once

#include "commandline.h"

namespace parlctl {

// parlctl(1), or with a noun parlctl-NOUN(1), in roff.
std::string manPage(const Verb& root, const Verb& of);

}  // namespace parlctl
