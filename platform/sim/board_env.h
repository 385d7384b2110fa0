// The environment store as the board's own shell tools reach it.
#ifndef PLATFORM_SIM_BOARD_ENV_H
#define PLATFORM_SIM_BOARD_ENV_H

#include <string>

namespace simboard {

/** Stores a value; false: the key or value has no place in a line of the store, or it cannot be written. */
bool storeEnv(const std::string& key, const std::string& value);

}  // namespace simboard

#endif
