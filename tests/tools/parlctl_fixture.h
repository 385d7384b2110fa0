// parlctl as a shell runs it, on a board of its own.
#pragma once

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "daemon_process.h"

struct Outcome {
  int status;
  std::string output;
};

class ParlctlFixture : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return (daemon.board().directory() / name).string(); }
  std::string file(const std::string& name, const std::string& content) const {
    daemon.prepare(name, content);
    return path(name);
  }
  std::string commandLine(const std::string& arguments) const {
    return "XDG_STATE_HOME=" + path("state") + " " + PARLCTL + " --board " +
           daemon.board().directory().string() + " " + arguments + " 2>&1";
  }
  Outcome run(const std::string& arguments) const {
    const std::string line = "</dev/null " + commandLine(arguments);
    FILE* pipe = popen(line.c_str(), "r");
    std::string output;
    std::array<char, 4096> piece{};
    while (const std::size_t got = fread(piece.data(), 1, piece.size(), pipe))
      output.append(piece.data(), got);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
  }

  DaemonProcess daemon;
};
