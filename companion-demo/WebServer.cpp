// SPDX-License-Identifier: MIT
#include "WebServer.h"

#include <httplib.h>

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <thread>

namespace vorla {

namespace {

constexpr auto ownAddress = "127.0.0.1";

/// The page comes from nowhere but this program, and no other page may show or read it.
const httplib::Headers pageHeaders = {
    {"Content-Security-Policy",
     "default-src 'none'; style-src 'unsafe-inline'; img-src data:; frame-ancestors 'none'"},
    {"Cache-Control", "no-store"},
    {"X-Content-Type-Options", "nosniff"}};

} // namespace

int serve(const std::function<std::string()>& page) {
    sigset_t endings;
    sigemptyset(&endings);
    sigaddset(&endings, SIGTERM);
    sigaddset(&endings, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endings, nullptr);

    httplib::Server server;
    // Without the library's SO_REUSEPORT, which lets two programs get the same port.
    server.set_socket_options([](socket_t) {});
    // An idle visitor may hold up the end by no more than this.
    server.set_keep_alive_max_count(1);
    server.set_keep_alive_timeout(1);
    server.set_read_timeout(1);
    server.set_default_headers(pageHeaders);
    server.Get("/", [&page](const httplib::Request&, httplib::Response& response) {
        response.set_content(page(), "text/html; charset=utf-8");
    });
    const int port = server.bind_to_any_port(ownAddress);
    if (port < 0) {
        std::fputs("No port is free on 127.0.0.1.\n", stderr);
        return 1;
    }
    std::atomic<bool> hasEnded = false;
    const std::jthread serving([&server, &hasEnded] {
        server.listen_after_bind();
        hasEnded = true;
        // Should it have ended by itself, nobody else would ask the program to end.
        kill(getpid(), SIGTERM);
    });
    std::printf("Serving on http://%s:%d/ (Ctrl-C to stop)\n", ownAddress, port);
    std::fflush(stdout);
    int received = 0;
    sigwait(&endings, &received);
    // A server that has not quite started yet would not notice that it is being stopped.
    while (!server.is_running() && !hasEnded) {
        std::this_thread::yield();
    }
    const bool endedByItself = hasEnded;
    server.stop();
    if (endedByItself) {
        std::fputs("The server has stopped.\n", stderr);
        return 1;
    }
    return 0;
}

} // namespace vorla
