// SPDX-License-Identifier: MIT
#pragma once

#include <QSslServer>
#include <QSslSocket>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// A web server on the loopback that records what it is sent and answers as it is told. Lives on
/// the test's own thread and works while that runs an event loop.
class TlsServer final : public QSslServer {
public:
    /// Called with every whole request.
    using Answer = std::function<void(QSslSocket&)>;

    struct Request {
        std::vector<std::string> headLines;
        std::string body;
    };

    /// `certificate` names a file in the folder of certificates, without its ending.
    explicit TlsServer(const char* certificate = "server");

    /// The answer to each request from here on; of several, one after the other, and the last for
    /// all that follow.
    void answerWith(std::vector<Answer> answers);

    const std::vector<Request>& requests() const { return requests_; }

    /// Connections that have not been closed by either side.
    int openConnections() const;

    /// Ends all connections, whatever has been said on them.
    void closeConnections();

    /// "localhost" and the port.
    QString host() const;

private:
    void welcome(QSslSocket& socket);
    void readFrom(QSslSocket& socket, std::string& arrived);

    std::vector<Answer> answers_;
    std::vector<Request> requests_;
};

QString certificateFile(const char* name);

/// Sends the bytes as they are and closes the connection in good order.
TlsServer::Answer raw(std::string bytes);

/// A complete answer with a length. `headers` are whole lines with their ends.
std::string answerText(int status, std::string_view body, std::string_view headers = "");

inline TlsServer::Answer answer(int status, std::string_view body, std::string_view headers = "") {
    return raw(answerText(status, body, headers));
}

/// Sends the bytes as they are, at once, and leaves the connection open.
void send(QSslSocket& socket, std::string_view bytes);

/// Receives everything and says nothing.
void staySilent(QSslSocket& socket);

/// What a good service says.
inline constexpr std::string_view goodBody =
    R"({"taskSize":"medium","taskSizeConfidence":0.9,"fitProbability":0.285,)"
    R"("recommendedAction":"plan_first","actionConfidence":1})";

} // namespace vorla
