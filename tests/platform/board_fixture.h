// A simulated board of its own for each test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/board.h"
#include "simboard.h"
#include "testboard.h"

class BoardTest : public testing::Test, public TestBoard {};
