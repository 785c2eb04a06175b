// SPDX-License-Identifier: MIT
// A demonstration task-fit service on the loopback, with an invented judgement: the longer the
// description, the larger the task. Says "ready" once it can be asked, then prints the body of each
// request when it has been answered, so that everyone can see what is sent. Runs until it is
// killed.
#include <httplib.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

namespace vorla {

namespace {

struct Judgement {
    std::size_t longestBody;
    const char* size;
    double fitProbability;
    const char* action;
};

/// The state of the quota takes some 300 bytes of a body.
constexpr std::array<Judgement, 4> judgements = {{
    {320, "small", 0.93, "start_now"},
    {500, "medium", 0.74, "plan_first"},
    {1000, "large", 0.41, "split_first"},
    {static_cast<std::size_t>(-1), "huge", 0.08, "wait_for_reset"},
}};

std::string answerTo(const std::string& body) {
    const Judgement* judgement = judgements.begin();
    while (body.size() > judgement->longestBody) {
        ++judgement;
    }
    std::array<char, 256> answer = {};
    std::snprintf(
        answer.data(), answer.size(),
        R"({"taskSize":"%s","taskSizeConfidence":0.8,"fitProbability":%.2f,)"
        R"("recommendedAction":"%s","actionConfidence":0.7})",
        judgement->size, judgement->fitProbability, judgement->action);
    return answer.data();
}

void print(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

int serve() {
    httplib::SSLServer server(VORLA_DEMO_CERTIFICATE, VORLA_DEMO_KEY);
    // Without the library's SO_REUSEPORT, which lets two programs get the same port.
    server.set_socket_options([](socket_t) {});
    server.Post("/api/fennic", [](const httplib::Request& request, httplib::Response& response) {
        response.set_content(answerTo(request.body), "application/json");
    });
    server.set_logger(
        [](const httplib::Request& request, const httplib::Response&) { print(request.body); });
    if (!server.bind_to_port("127.0.0.1", VORLA_DEMO_PORT)) {
        std::fprintf(stderr, "Port %d is not free on 127.0.0.1.\n", VORLA_DEMO_PORT);
        return 1;
    }
    print("ready");
    return server.listen_after_bind() ? 0 : 1;
}

} // namespace

} // namespace vorla

int main() {
    return vorla::serve();
}
