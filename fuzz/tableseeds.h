// Seeds that are made of the tables of maps/ and of the tests' plans, so that a new row has its own.
#pragma once

#include <string_view>
#include <vector>

#include "peer/frame.h"

namespace fuzz {

/** The seeds of a target by its name; none where no table says what it reads. */
std::vector<peer::Bytes> tableSeeds(std::string_view target);

}  // namespace fuzz
