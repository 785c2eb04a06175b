// SPDX-License-Identifier: MIT
#pragma once

#include "fennic/HttpAnswerReader.h"
#include "model/FennicOutcome.h"

#include <QByteArray>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vorla {

/// One task-fit check in flight: sends the request over HTTPS and reports what came back.
///
/// The request is written here, header by header, because the toolkit's own HTTP client adds
/// headers that tell the user's language. Nothing outlives the check: no cookies, cache,
/// credentials, open connection or TLS session. Certificates are always verified. Destroying a
/// check cancels it; nothing is reported then. Main thread only.
class FennicCheck final {
public:
    /// Called once, with nothing if the transfer failed. It must not destroy the check.
    using Completion = std::function<void(std::optional<FennicAnswer>)>;

    /// How long a check may go without a byte in either direction.
    static constexpr std::chrono::milliseconds defaultTimeoutInterval{30000};
    static constexpr int maximumRedirects = 5;

    struct Settings {
        QUrl url;
        QSslConfiguration tls;
        std::chrono::milliseconds timeoutInterval = defaultTimeoutInterval;
    };

    /// Starts at once.
    FennicCheck(Settings settings, QByteArray body, Completion completion);
    FennicCheck(const FennicCheck&) = delete;
    FennicCheck& operator=(const FennicCheck&) = delete;

    /// TLS as every check uses it, with one more certificate authority if a file is named.
    static QSslConfiguration tlsTrusting(const QString& certificateAuthorityFile);

private:
    void connectToServer();
    void listenTo(QSslSocket& socket);
    void sendRequest();
    HttpAnswerReader::State readAnswer();
    void connectionEnded();
    void act(HttpAnswerReader::State state);
    void answerCompleted();
    std::optional<QUrl> redirection() const;
    void finish(std::optional<FennicAnswer> answer);

    Settings settings_;
    QUrl url_;
    QByteArray body_;
    Completion completion_;
    int redirects_ = 0;
    bool isFinished_ = false;
    HttpAnswerReader reader_;
    std::unique_ptr<QSslSocket> socket_;
    /// Also what the socket's signals are bound to. The last member: once it is gone, a socket that
    /// goes down finds nobody listening.
    QTimer timeout_;
};

} // namespace vorla
