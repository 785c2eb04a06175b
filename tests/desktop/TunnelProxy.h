// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>

#include <stdexcept>
#include <vector>

namespace vorla {

/// A web proxy on the loopback that leads every tunnel to one port of the loopback, whatever host
/// was asked for: so a program finds a test's server under the name of the real one. Works while
/// its thread runs an event loop.
class TunnelProxy final : public QTcpServer {
public:
    explicit TunnelProxy(quint16 target) : target_(target) {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* client = nextPendingConnection()) {
                connect(client, &QTcpSocket::readyRead, this, [this, client] { greet(*client); });
            }
        });
        if (!listen(QHostAddress::LocalHost)) {
            throw std::runtime_error("the proxy cannot listen");
        }
    }

    /// As the environment variable for proxies has it.
    QString address() const { return QString("http://127.0.0.1:%1").arg(serverPort()); }

    /// The first lines of all tunnels asked for.
    const std::vector<QByteArray>& requests() const { return requests_; }

private:
    void greet(QTcpSocket& client) {
        // Clients send nothing more before they have been answered, and what they say is short.
        if (!client.peek(client.bytesAvailable()).endsWith("\r\n\r\n")) {
            return;
        }
        requests_.push_back(client.readLine().trimmed());
        client.readAll();
        disconnect(&client, &QTcpSocket::readyRead, this, nullptr);
        auto* server = new QTcpSocket(&client);
        connect(server, &QTcpSocket::connected, &client, [&client] {
            client.write("HTTP/1.1 200 Connected\r\n\r\n");
        });
        pass(client, *server);
        pass(*server, client);
        server->connectToHost(QHostAddress::LocalHost, target_);
    }

    static void pass(QTcpSocket& from, QTcpSocket& to) {
        connect(&from, &QTcpSocket::readyRead, &to, [&from, &to] { to.write(from.readAll()); });
        connect(&from, &QTcpSocket::disconnected, &to, &QTcpSocket::disconnectFromHost);
    }

    quint16 target_;
    std::vector<QByteArray> requests_;
};

} // namespace vorla
