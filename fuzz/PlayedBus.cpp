// SPDX-License-Identifier: MIT
#include "PlayedBus.h"

#include "Require.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace vorla::fuzz {

namespace {

constexpr std::size_t fixedHeaderBytes = 16;
constexpr std::string_view endOfGreeting = "BEGIN\r\n";

/// Numbers in the order of this machine, which the first byte of a message names.
constexpr char byteOrder = 'l';

void align(std::string& bytes, std::size_t size) {
    bytes.resize((bytes.size() + size - 1) / size * size);
}

void appendNumber(std::string& bytes, std::uint32_t number) {
    align(bytes, sizeof number);
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

std::uint32_t numberAt(std::string_view bytes, std::size_t place) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

/// The code of a header field and the type of its value.
void appendField(std::string& fields, char code, char type) {
    align(fields, 8);
    fields += {code, '\x01', type, '\0'};
}

void appendText(std::string& fields, char code, char type, const std::string& text) {
    if (text.empty()) {
        return;
    }
    appendField(fields, code, type);
    if (type == 'g') {
        fields += static_cast<char>(text.size());
    } else {
        appendNumber(fields, static_cast<std::uint32_t>(text.size()));
    }
    fields += text;
    fields += '\0';
}

std::string fieldsOf(const WireMessage& message) {
    std::string fields;
    appendText(fields, '\x01', 'o', message.path);
    appendText(fields, '\x02', 's', message.interface);
    appendText(fields, '\x03', 's', message.member);
    appendText(fields, '\x04', 's', message.errorName);
    if (message.replySerial != 0) {
        appendField(fields, '\x05', 'u');
        appendNumber(fields, message.replySerial);
    }
    appendText(fields, '\x07', 's', message.sender);
    appendText(fields, '\x08', 'g', message.signature);
    return fields;
}

std::string encoded(const WireMessage& message, std::uint32_t serial) {
    const std::string fields = fieldsOf(message);
    std::string bytes = {byteOrder, static_cast<char>(message.type), '\0', '\x01'};
    appendNumber(bytes, static_cast<std::uint32_t>(message.body.size()));
    appendNumber(bytes, serial);
    appendNumber(bytes, static_cast<std::uint32_t>(fields.size()));
    bytes += fields;
    align(bytes, 8);
    return bytes + message.body;
}

} // namespace

PlayedBus::PlayedBus() : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    // A name that the system makes up, and that is gone with the socket.
    sockaddr_un place = {.sun_family = AF_UNIX, .sun_path = {}};
    socklen_t length = sizeof place.sun_family;
    auto* const any = reinterpret_cast<sockaddr*>(&place);
    require(bind(listener_.number(), any, length) == 0, "a socket gets a name");
    length = sizeof place;
    require(getsockname(listener_.number(), any, &length) == 0, "a socket has a name");
    require(listen(listener_.number(), 1) == 0, "a socket listens");
    const std::size_t nameBytes = length - sizeof place.sun_family;
    const std::string name(static_cast<const char*>(place.sun_path), nameBytes);
    address_ = "unix:abstract=" + name.substr(1);
}

bool PlayedBus::receive() {
    if (!connection_.isOpen()) {
        connection_ = FileDescriptor(
            accept4(listener_.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    }
    std::array<char, 65536> buffer = {};
    const auto count = recv(connection_.number(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    arrived_.append(buffer.data(), static_cast<std::size_t>(count));
    if (!isGreeted_) {
        takeGreeting();
    }
    while (isGreeted_ && takeMessage()) {}
    return true;
}

void PlayedBus::takeGreeting() {
    const auto end = arrived_.find(endOfGreeting);
    if (end == std::string::npos) {
        return;
    }
    arrived_.erase(0, end + endOfGreeting.size());
    isGreeted_ = true;
    constexpr std::string_view welcome =
        "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";
    const auto sent = ::send(connection_.number(), welcome.data(), welcome.size(), MSG_NOSIGNAL);
    require(sent == static_cast<ssize_t>(welcome.size()), "a greeting is sent");
}

bool PlayedBus::takeMessage() {
    constexpr char expectsNoAnswer = '\x01';
    if (arrived_.size() < fixedHeaderBytes) {
        return false;
    }
    const std::size_t headerBytes = (fixedHeaderBytes + numberAt(arrived_, 12) + 7) / 8 * 8;
    const std::size_t bodyBytes = numberAt(arrived_, 4);
    if (arrived_.size() < headerBytes + bodyBytes) {
        return false;
    }
    const auto type = static_cast<WireMessage::Type>(arrived_[1]);
    if (type == WireMessage::Type::call && (arrived_[2] & expectsNoAnswer) == 0) {
        unanswered.push_back(numberAt(arrived_, 8));
    } else if (type == WireMessage::Type::answer || type == WireMessage::Type::error) {
        answers.push_back(arrived_.substr(headerBytes, bodyBytes));
    }
    arrived_.erase(0, headerBytes + bodyBytes);
    return true;
}

void PlayedBus::send(const WireMessage& message) {
    const std::string bytes = encoded(message, ++lastSerial_);
    const auto sent = ::send(connection_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    require(sent == static_cast<ssize_t>(bytes.size()), "a message is sent");
}

} // namespace vorla::fuzz
