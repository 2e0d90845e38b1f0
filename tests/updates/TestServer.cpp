// The test HTTP server: one request per connection, answered from the route table
// (404 when the path has none), then closed.
#include "TestServer.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

namespace cad::test {

TestServer::TestServer() = default;
TestServer::~TestServer() { close(); }

bool TestServer::listen(quint16 port, const std::optional<QSslConfiguration>& tls) {
    close();
    tls_ = tls.has_value();
    if (tls) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(*tls);
        server_ = std::move(server);
    } else {
        server_ = std::make_unique<QTcpServer>();
    }
    // A TLS server queues a connection only once its handshake is done, and says so
    // with this signal rather than newConnection.
    connect(server_.get(), &QTcpServer::pendingConnectionAvailable, this, &TestServer::accept);
    return server_->listen(QHostAddress::LocalHost, port);
}

void TestServer::close() {
    if (!server_) return;
    server_->close();
    for (QTcpSocket* socket : buffers_.keys()) socket->abort();
    buffers_.clear();
    server_.reset();
}

quint16 TestServer::port() const { return server_ ? server_->serverPort() : 0; }

QString TestServer::baseUrl() const {
    return QStringLiteral("%1://127.0.0.1:%2").arg(tls_ ? "https" : "http").arg(port());
}

void TestServer::accept() {
    while (QTcpSocket* socket = server_->nextPendingConnection()) {
        socket->setParent(this);
        buffers_.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            buffers_.remove(socket);
            socket->deleteLater();
        });
        if (socket->bytesAvailable() > 0) readFrom(socket);
    }
}

void TestServer::readFrom(QTcpSocket* socket) {
    QByteArray& buffer = buffers_[socket];
    buffer += socket->readAll();
    const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
    if (headEnd < 0) return;
    Request request;
    const QList<QByteArray> lines = buffer.left(headEnd).split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    request.method = first.value(0);
    request.path = first.value(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon > 0)
            request.headers.insert(lines[i].left(colon).trimmed().toLower(),
                                   lines[i].mid(colon + 1).trimmed());
    }
    const qsizetype length = request.headers.value("content-length", "0").toLongLong();
    if (buffer.size() < headEnd + 4 + length) return;
    request.body = buffer.mid(headEnd + 4, length);
    buffer.clear();
    requests_.append(request);

    const Answer answer = routes_.value(request.path, Answer{404, "no such path", {}, false});
    if (answer.silent) return;
    QByteArray out = "HTTP/1.1 " + QByteArray::number(answer.status) + " Test\r\n";
    out += "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    out += "Connection: close\r\n";
    for (const auto& [name, value] : answer.headers) out += name + ": " + value + "\r\n";
    out += "\r\n" + answer.body;
    socket->write(out);
    socket->disconnectFromHost();
}

quint16 closedPort() {
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost, 0)) return 0;
    const quint16 port = server.serverPort();
    server.close();
    return port;
}

bool waitUntil(const std::function<bool()>& condition, int timeoutMs) {
    return QTest::qWaitFor(condition, timeoutMs);
}

std::optional<TlsPair> makeTlsPair(const QString& folder) {
    const QString key = QDir(folder).filePath(QStringLiteral("key.pem"));
    const QString certificate = QDir(folder).filePath(QStringLiteral("cert.pem"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                   "-nodes", "-keyout", key, "-out", certificate, "-days", "1", "-subj",
                   "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1"});
    if (!openssl.waitForFinished(30000) || openssl.exitCode() != 0) return std::nullopt;
    QFile keyFile(key), certificateFile(certificate);
    if (!keyFile.open(QIODevice::ReadOnly) || !certificateFile.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QSslCertificate cert(certificateFile.readAll(), QSsl::Pem);
    const QSslKey privateKey(keyFile.readAll(), QSsl::Ec, QSsl::Pem);
    if (cert.isNull() || privateKey.isNull()) return std::nullopt;

    TlsPair pair;
    pair.server = QSslConfiguration::defaultConfiguration();
    pair.server.setLocalCertificate(cert);
    pair.server.setPrivateKey(privateKey);
    pair.server.setPeerVerifyMode(QSslSocket::VerifyNone);
    pair.client = QSslConfiguration::defaultConfiguration();
    pair.client.setCaCertificates({cert});
    return pair;
}

QByteArray appImageBytes(int size) {
    QByteArray bytes("\x7f"
                     "ELF\x02\x01\x01\x00"
                     "AI\x02",
                     11);
    bytes.append(size - bytes.size(), '\0');
    return bytes;
}

QByteArray debPackage(const QString& folder, const QString& maintainer) {
    const QDir root(folder);
    root.mkpath(QStringLiteral("pkg/DEBIAN"));
    QFile control(root.filePath(QStringLiteral("pkg/DEBIAN/control")));
    if (!control.open(QIODevice::WriteOnly)) return {};
    control.write("Package: korvel-test\nVersion: 1.0\nArchitecture: all\nMaintainer: " +
                  maintainer.toUtf8() + "\nDescription: test package\n");
    control.close();
    const QString out = root.filePath(QStringLiteral("out.deb"));
    QProcess dpkg;
    dpkg.start(QStringLiteral("dpkg-deb"), {"--build", root.filePath(QStringLiteral("pkg")), out});
    if (!dpkg.waitForFinished(30000) || dpkg.exitCode() != 0) return {};
    QFile deb(out);
    return deb.open(QIODevice::ReadOnly) ? deb.readAll() : QByteArray();
}

QByteArray sha256Hex(const QByteArray& data) {
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex();
}

} // namespace cad::test
