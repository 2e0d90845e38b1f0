// A small HTTP/1.1 server on 127.0.0.1 for the update and report tests: fixed
// answers per path, requests kept for the test to look at, optional TLS.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSslConfiguration>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QTcpServer;
class QTcpSocket;

namespace cad::test {

struct Answer {
    int status = 200;
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> headers;
    bool silent = false; // read the request, never answer
};

struct Request {
    QByteArray method;
    QByteArray path;
    QHash<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;
};

class TestServer : public QObject {
public:
    TestServer();
    ~TestServer() override;

    // Listens on 127.0.0.1 (port 0: one the system picks); with a configuration, TLS.
    bool listen(quint16 port = 0, const std::optional<QSslConfiguration>& tls = std::nullopt);
    void close();
    quint16 port() const;
    QString baseUrl() const; // "http://127.0.0.1:<port>" (https with TLS)

    void route(const QByteArray& path, Answer answer) { routes_.insert(path, std::move(answer)); }
    const QList<Request>& requests() const { return requests_; }

private:
    void accept();
    void readFrom(QTcpSocket* socket);

    std::unique_ptr<QTcpServer> server_;
    bool tls_ = false;
    QHash<QByteArray, Answer> routes_;
    QHash<QTcpSocket*, QByteArray> buffers_;
    QList<Request> requests_;
};

// A port on 127.0.0.1 that was just bound and closed again: connections to it are refused.
quint16 closedPort();

// Runs the event loop until condition holds or timeout passes; whether it held.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 10000);

// A server certificate for 127.0.0.1, made with the openssl command; the
// configuration to serve with, and the one a client needs to trust it.
struct TlsPair {
    QSslConfiguration server;
    QSslConfiguration client;
};
std::optional<TlsPair> makeTlsPair(const QString& folder);

// Installers: an AppImage's first bytes padded to size, and a Debian package built
// with dpkg-deb whose Maintainer field is maintainer.
QByteArray appImageBytes(int size = 4096);
QByteArray debPackage(const QString& folder, const QString& maintainer);

// Lower-case hexadecimal SHA-256.
QByteArray sha256Hex(const QByteArray& data);

} // namespace cad::test
