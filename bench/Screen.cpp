// SPDX-License-Identifier: MIT
#include "Screen.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace vorla::bench {

namespace {

constexpr std::chrono::milliseconds patience{30000};

} // namespace

Screen::Screen() {
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    std::array<std::string, 6> words = {"Xvfb", "-displayfd", "3", "-screen", "0", "1280x1024x24"};
    std::array<char*, 7> arguments = {};
    for (std::size_t index = 0; index < words.size(); ++index) {
        arguments[index] = words[index].data();
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 3);
    const int error = posix_spawnp(&server_, "Xvfb", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char byte = 0;
    while (error == 0 && read(ends[0], &byte, 1) == 1 && byte != '\n') {
        display_ += byte;
    }
    close(ends[0]);
    connection_ = xcb_connect(display_.c_str(), nullptr);
    if (error != 0 || xcb_connection_has_error(connection_) != 0) {
        throw std::runtime_error("Xvfb does not start.");
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_);
}

Screen::~Screen() {
    xcb_disconnect(connection_);
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
}

Nanoseconds Screen::waitForWindow() {
    const Event event = waitFor(XCB_MAP_NOTIFY);
    const Nanoseconds now = wallTime();
    window_ = reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window;
    return now;
}

void Screen::closeWindow() {
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window_;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(
        connection_, 0, window_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    waitFor(XCB_UNMAP_NOTIFY);
}

Screen::Event Screen::waitFor(std::uint8_t type) {
    constexpr std::uint8_t withoutSource = 0x7F;
    xcb_flush(connection_);
    for (;;) {
        Event event(xcb_poll_for_event(connection_), &std::free);
        if (event != nullptr && (event->response_type & withoutSource) == type) {
            return event;
        }
        if (event == nullptr) {
            pollfd readable = {xcb_get_file_descriptor(connection_), POLLIN, 0};
            if (poll(&readable, 1, static_cast<int>(patience.count())) != 1 ||
                xcb_connection_has_error(connection_) != 0) {
                throw std::runtime_error("The screen does not show what was waited for.");
            }
        }
    }
}

xcb_atom_t Screen::atom(const std::string& name) const {
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free);
    if (reply == nullptr) {
        throw std::runtime_error("The screen knows no " + name + ".");
    }
    return reply->atom;
}

} // namespace vorla::bench
