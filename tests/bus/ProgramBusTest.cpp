// SPDX-License-Identifier: MIT
// The program itself on a bus that breaks its word, and among peers that do.
#include "bus/ProgramFixture.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

namespace {

/// Takes connections as a bus does, says one thing to each, whatever it is asked, and hangs up.
class FaithlessBus final {
public:
    FaithlessBus(ManualLoop& loop, const std::string& path, std::string answer)
        : answer_(std::move(answer)), address_("unix:path=" + path) {
        sockaddr_un place = {.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(static_cast<char*>(place.sun_path), sizeof place.sun_path - 1);
        if (bind(socket_.number(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
            listen(socket_.number(), 1) != 0) {
            throw std::system_error(errno, std::generic_category(), path);
        }
        watch_ = loop.whenReadable(socket_.number(), [this] { receiveVisitor(); });
    }

    const std::string& address() const { return address_; }

    int visitors = 0;

private:
    void receiveVisitor() {
        const FileDescriptor visitor(accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
        ++visitors;
        send(visitor.number(), answer_.data(), answer_.size(), MSG_NOSIGNAL);
    }

    std::string answer_;
    std::string address_;
    FileDescriptor socket_{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::unique_ptr<MainLoop::Source> watch_;
};

class ProgramBusTest : public ProgramTest {};

} // namespace

TEST_F(ProgramBusTest, saysThatThereIsNoSessionBusIfItHangsUp) {
    const std::string accepted = "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";
    const Texts answers = {"",       "nonsense\r\n",        "REJECTED EXTERNAL\r\n",
                           accepted, accepted + "nonsense", std::string(100'000, '\0')};
    for (const auto& answer : answers) {
        const auto path = (folder() / "bus").string();
        {
            const FaithlessBus bus(loop(), path, answer);
            expectEnd(
                start({}, {"DBUS_SESSION_BUS_ADDRESS=" + bus.address()}), 1,
                "VorlaUsageMenuBar: There is no session bus.\n");
            EXPECT_EQ(bus.visitors, 1);
        }
        std::filesystem::remove(path);
    }
}

} // namespace vorla
