// SPDX-License-Identifier: MIT
#include "fennic/FennicCheck.h"

#include "fennic/FennicEndpoint.h"

#include <QNetworkProxy>
#include <QNetworkProxyFactory>
#include <QSslCertificate>

#include <utility>

namespace vorla {

namespace {

constexpr char userAgent[] = "VorlaUsageFennic";
constexpr int defaultPort = 443;

constexpr int temporaryRedirect = 307;
constexpr int permanentRedirect = 308;

/// Keeps a large answer in the network until it is read, or not read, here.
constexpr qint64 readBufferBytes = 65536;

/// The first proxy of the system that lets a TLS connection through, or none.
QNetworkProxy systemProxyFor(const QUrl& url) {
    const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    for (QNetworkProxy proxy : proxies) {
        if (proxy.type() == QNetworkProxy::HttpCachingProxy) {
            proxy.setType(QNetworkProxy::HttpProxy);
        }
        if (proxy.type() == QNetworkProxy::NoProxy ||
            proxy.capabilities().testFlag(QNetworkProxy::TunnelingCapability)) {
            proxy.setRawHeader("User-Agent", userAgent);
            return proxy;
        }
    }
    return {QNetworkProxy::NoProxy};
}

QByteArray requestTarget(const QUrl& url) {
    QByteArray target = url.path(QUrl::FullyEncoded).toUtf8();
    if (target.isEmpty()) {
        target = "/";
    }
    if (url.hasQuery()) {
        target += "?" + url.query(QUrl::FullyEncoded).toUtf8();
    }
    return target;
}

QByteArray requestHead(const QUrl& url, qsizetype bodyBytes) {
    return "POST " + requestTarget(url) +
           " HTTP/1.1\r\nHost: " + url.authority(QUrl::FullyEncoded).toUtf8() +
           "\r\nUser-Agent: " + userAgent +
           "\r\nContent-Type: application/json\r\nAccept: application/json\r\nContent-Length: " +
           QByteArray::number(bodyBytes) + "\r\nConnection: close\r\n\r\n";
}

} // namespace

FennicCheck::FennicCheck(Settings settings, QByteArray body, Completion completion)
    : settings_(std::move(settings)), url_(settings_.url), body_(std::move(body)),
      completion_(std::move(completion)) {
    timeout_.setSingleShot(true);
    timeout_.setInterval(settings_.timeoutInterval);
    QObject::connect(&timeout_, &QTimer::timeout, &timeout_, [this] { finish(std::nullopt); });
    connectToServer();
}

QSslConfiguration FennicCheck::tlsTrusting(const QString& certificateAuthorityFile) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    tls.setProtocol(QSsl::TlsV1_2OrLater);
    tls.setAllowedNextProtocols({QSslConfiguration::NextProtocolHttp1_1});
    if (!certificateAuthorityFile.isEmpty()) {
        tls.addCaCertificates(certificateAuthorityFile);
    }
    return tls;
}

void FennicCheck::connectToServer() {
    if (isFinished_) {
        return;
    }
    reader_ = HttpAnswerReader();
    socket_ = std::make_unique<QSslSocket>();
    socket_->setSslConfiguration(settings_.tls);
    socket_->setProxy(systemProxyFor(url_));
    socket_->setReadBufferSize(readBufferBytes);
    listenTo(*socket_);
    timeout_.start();
    socket_->connectToHostEncrypted(
        url_.host(QUrl::FullyEncoded), static_cast<quint16>(url_.port(defaultPort)));
}

void FennicCheck::listenTo(QSslSocket& socket) {
    const auto progress = [this] { timeout_.start(); };
    QObject::connect(&socket, &QSslSocket::hostFound, &timeout_, progress);
    QObject::connect(&socket, &QSslSocket::connected, &timeout_, progress);
    QObject::connect(&socket, &QSslSocket::encryptedBytesWritten, &timeout_, progress);
    QObject::connect(&socket, &QSslSocket::encrypted, &timeout_, [this] { sendRequest(); });
    QObject::connect(&socket, &QSslSocket::readyRead, &timeout_, [this] { act(readAnswer()); });
    QObject::connect(&socket, &QSslSocket::errorOccurred, &timeout_, [this] { connectionEnded(); });
}

void FennicCheck::sendRequest() {
    timeout_.start();
    // In one piece: the second of two would wait until the first has been acknowledged.
    socket_->write(requestHead(url_, body_.size()) + body_);
}

HttpAnswerReader::State FennicCheck::readAnswer() {
    timeout_.start();
    const QByteArray bytes = socket_->readAll();
    return reader_.read({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

void FennicCheck::connectionEnded() {
    using State = HttpAnswerReader::State;
    // The answer counts even if the connection broke after it: its last bytes may still lie here.
    State state = socket_->isEncrypted() ? readAnswer() : State::incomplete;
    if (state == State::incomplete) {
        const bool isOrderly = socket_->error() == QAbstractSocket::RemoteHostClosedError;
        state = isOrderly ? reader_.readEnd() : State::truncated;
    }
    act(state);
}

void FennicCheck::act(HttpAnswerReader::State state) {
    switch (state) {
    case HttpAnswerReader::State::incomplete:
        break;
    case HttpAnswerReader::State::complete:
        answerCompleted();
        break;
    case HttpAnswerReader::State::notHttp:
        finish(FennicAnswer{.status = std::nullopt, .body = reader_.body()});
        break;
    case HttpAnswerReader::State::tooLarge:
    case HttpAnswerReader::State::truncated:
        finish(std::nullopt);
        break;
    }
}

void FennicCheck::answerCompleted() {
    const auto next = redirection();
    if (!next) {
        finish(FennicAnswer{.status = reader_.status(), .body = reader_.body()});
        return;
    }
    ++redirects_;
    url_ = *next;
    socket_->disconnect();
    // Not at once: this runs inside a signal of the socket that is about to be replaced.
    QMetaObject::invokeMethod(&timeout_, [this] { connectToServer(); }, Qt::QueuedConnection);
}

/// Where the answer sends the request, if it may go there. Everything else is an answer like
/// others: the task's text goes to the service's own host or nowhere.
std::optional<QUrl> FennicCheck::redirection() const {
    const bool keepsMethod =
        reader_.status() == temporaryRedirect || reader_.status() == permanentRedirect;
    const auto location = reader_.header("location");
    if (!keepsMethod || !location || redirects_ >= maximumRedirects) {
        return std::nullopt;
    }
    const auto target = QUrl::fromEncoded(
        QByteArray(location->data(), static_cast<qsizetype>(location->size())), QUrl::StrictMode);
    QUrl next = url_.resolved(target);
    // An empty or malformed target resolves to where the answer came from.
    if (!target.isValid() || !next.isValid() || !isSameOrigin(next, settings_.url)) {
        return std::nullopt;
    }
    return next;
}

void FennicCheck::finish(std::optional<FennicAnswer> answer) {
    isFinished_ = true;
    timeout_.stop();
    socket_->disconnect();
    completion_(std::move(answer));
}

} // namespace vorla
