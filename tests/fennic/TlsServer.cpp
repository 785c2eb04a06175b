// SPDX-License-Identifier: MIT
#include "fennic/TlsServer.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>

#include <memory>
#include <stdexcept>

namespace vorla {

namespace {

QByteArray contentOf(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QFile::ReadOnly)) {
        throw std::runtime_error("no file " + fileName.toStdString());
    }
    return file.readAll();
}

std::vector<std::string> linesOf(std::string_view head) {
    std::vector<std::string> lines;
    while (!head.empty()) {
        const std::size_t end = head.find("\r\n");
        lines.emplace_back(head.substr(0, end));
        head.remove_prefix(end == std::string_view::npos ? head.size() : end + 2);
    }
    return lines;
}

std::size_t bodyLengthOf(const std::vector<std::string>& headLines) {
    constexpr std::string_view name = "Content-Length: ";
    for (const std::string& line : headLines) {
        if (line.starts_with(name)) {
            return std::stoul(line.substr(name.size()));
        }
    }
    return 0;
}

} // namespace

TlsServer::TlsServer(const char* certificate) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    tls.setLocalCertificate(QSslCertificate(contentOf(certificateFile(certificate))));
    const QString keyFile = certificateFile(certificate).replace(".pem", ".key");
    tls.setPrivateKey(QSslKey(contentOf(keyFile), QSsl::Ec));
    setSslConfiguration(tls);
    connect(this, &QTcpServer::pendingConnectionAvailable, this, [this] {
        while (auto* socket = static_cast<QSslSocket*>(nextPendingConnection())) {
            welcome(*socket);
        }
    });
    if (!listen(QHostAddress::LocalHost)) {
        throw std::runtime_error("the test server cannot listen");
    }
}

void TlsServer::answerWith(std::vector<Answer> answers) {
    answers_ = std::move(answers);
}

int TlsServer::openConnections() const {
    int open = 0;
    for (const QSslSocket* socket : findChildren<QSslSocket*>()) {
        if (socket->state() == QAbstractSocket::ConnectedState) {
            ++open;
        }
    }
    return open;
}

void TlsServer::closeConnections() {
    for (QSslSocket* socket : findChildren<QSslSocket*>()) {
        socket->disconnectFromHost();
    }
}

QString TlsServer::host() const {
    return QString("localhost:%1").arg(serverPort());
}

void TlsServer::welcome(QSslSocket& socket) {
    const auto arrived = std::make_shared<std::string>();
    connect(&socket, &QSslSocket::readyRead, this, [this, &socket, arrived] {
        readFrom(socket, *arrived);
    });
    readFrom(socket, *arrived);
}

void TlsServer::readFrom(QSslSocket& socket, std::string& arrived) {
    arrived += socket.readAll().toStdString();
    const std::size_t headEnd = arrived.find("\r\n\r\n");
    if (headEnd == std::string::npos) {
        return;
    }
    Request request = {.headLines = linesOf(arrived.substr(0, headEnd)), .body = {}};
    request.body = arrived.substr(headEnd + 4);
    if (request.body.size() < bodyLengthOf(request.headLines)) {
        return;
    }
    arrived.clear();
    requests_.push_back(std::move(request));
    const std::size_t turn = std::min(requests_.size(), answers_.size());
    answers_.at(turn - 1)(socket);
}

QString certificateFile(const char* name) {
    return QString("%1/%2.pem").arg(VORLA_TEST_CERTIFICATES, name);
}

TlsServer::Answer raw(std::string bytes) {
    return [bytes = std::move(bytes)](QSslSocket& socket) {
        socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
        socket.disconnectFromHost();
    };
}

std::string answerText(int status, std::string_view body, std::string_view headers) {
    return "HTTP/1.1 " + std::to_string(status) + " Whatever\r\n" + std::string(headers) +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

void send(QSslSocket& socket, std::string_view bytes) {
    socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
    socket.flush();
}

void staySilent(QSslSocket&) {}

} // namespace vorla
