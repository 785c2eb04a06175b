// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorla::fuzz {

/// A message as a peer puts it on the wire: the header is always right, the body is any bytes.
struct WireMessage {
    enum class Type : std::uint8_t { call = 1, answer = 2, error = 3, signal = 4 };

    Type type = Type::call;
    std::string path = {};
    std::string interface = {};
    std::string member = {};
    std::string errorName = {};
    std::uint32_t replySerial = 0;
    std::string sender = {};
    /// Of the body, as the header has it.
    std::string signature = {};
    std::string body = {};
};

/// The other end of one connection to a bus, without a bus: it takes the connection, and says what
/// it is told to. It never waits.
class PlayedBus final {
public:
    PlayedBus();

    const std::string& address() const { return address_; }

    /// Takes in what has come. True if there was anything.
    bool receive();

    void send(const WireMessage& message);

    /// The serials of calls that nobody has answered yet, oldest first.
    std::vector<std::uint32_t> unanswered;
    /// The bodies of answers and errors, oldest first.
    std::vector<std::string> answers;

private:
    void takeGreeting();
    bool takeMessage();

    std::string address_;
    FileDescriptor listener_;
    FileDescriptor connection_;
    bool isGreeted_ = false;
    std::uint32_t lastSerial_ = 0;
    std::string arrived_;
};

} // namespace vorla::fuzz
