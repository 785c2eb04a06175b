// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorla {

inline std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    close(descriptor);
    return text;
}

/// The digits behind the host.
inline std::string portIn(const std::string& text) {
    constexpr std::string_view start = "http://127.0.0.1:";
    const auto position = text.find(start);
    if (position == std::string::npos) {
        ADD_FAILURE() << "no address: " << text;
        return "";
    }
    const std::string rest = text.substr(position + start.size());
    return rest.substr(0, rest.find('/'));
}

inline FileDescriptor connectTo(const std::string& port) {
    FileDescriptor connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    EXPECT_EQ(
        connect(connection.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
        0);
    return connection;
}

/// The whole answer to one request, up to the end of the connection.
inline std::string fetched(const std::string& port, const std::string& path) {
    const FileDescriptor connection = connectTo(port);
    const std::string request =
        "GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + port + "\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(
        write(connection.number(), request.data(), request.size()),
        static_cast<ssize_t>(request.size()));
    return readToEnd(dup(connection.number()));
}

} // namespace vorla
