// A test of the running daemon: one daemon, one peer, and requests in one line.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "daemon_process.h"
#include "matchers.h"
#include "peer/error.h"

class SystemTest : public testing::Test {
 protected:
  void start(const std::string& argument = "") {
    daemon.start(argument);
    client.emplace(daemon.connect());
    read(0xF0000000, 1);  // an answer: the start-up has come as far as serving requests
  }
  void SetUp() override { start(); }
  void TearDown() override { EXPECT_TRUE(daemon.alive()) << "the daemon died"; }

  peer::Frame ask(peer::Frame frame) { return client->exchange(std::move(frame)); }
  peer::Frame read(uint32_t address, uint16_t length) { return ask({.address = address, .length = length}); }
  peer::Frame write(uint32_t address, const peer::Bytes& data) {
    return ask({.code = peer::kWrite,
                .address = address,
                .length = static_cast<uint16_t>(data.size()),
                .data = data});
  }
  // Frames as they stand on the wire: what comes back for one.
  peer::Bytes wire(const std::string& hex) {
    client->send(peer::fromHex(hex), kRawNumber);
    const auto message = client->receive(kPatience);
    if (!message) return {};
    EXPECT_EQ(message->head.result, message->frame.at(2));
    return message->frame;
  }
  // Requests are answered in order: whether the answer to a good one is the next thing that arrives.
  testing::AssertionResult nothingCame() {
    client->send(peer::encode(peer::Frame{.label = 0xEE, .address = 0xF0000000, .length = 1}), 0xEEEEEEEE);
    const auto message = client->receive(kPatience);
    if (!message) return testing::AssertionFailure() << "the daemon is silent";
    if (message->head.labelCount == 0xEEEEEEEE) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "came: " << peer::toHex(message->frame);
  }
  // A queued write reaches the flash a little after its reply.
  testing::AssertionResult flashBecomes(uint32_t address, const peer::Bytes& bytes) {
    if (eventually([&] { return daemon.board().flash(address, bytes.size()) == bytes; }))
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << peer::toHex(daemon.board().flash(address, bytes.size()));
  }

  static constexpr uint32_t kRawNumber = 0x12345678;
  DaemonProcess daemon;
  std::optional<peer::Peer> client;
};
