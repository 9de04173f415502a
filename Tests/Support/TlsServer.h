#pragma once

// A web server on this machine's own address, on the test's thread. It keeps what it was asked, head by head,
// and lets the test write whatever it likes as an answer.

#include <QHostAddress>
#include <QSslServer>
#include <QSslSocket>
#include <QTimer>

#include <functional>

namespace Quillbrook {

class TlsServer
{
public:
    /// Gets the connection and the path that was asked for.
    using Answer = std::function<void(QSslSocket &connection, const QByteArray &path)>;

    explicit TlsServer(const QSslConfiguration &tls)
    {
        m_server.setSslConfiguration(tls);
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QSslServer::pendingConnectionAvailable, &m_server, [this] {
            while (auto *connection = qobject_cast<QSslSocket *>(m_server.nextPendingConnection()))
                serve(connection);
        });
    }

    [[nodiscard]] QUrl url(const QString &path, const QString &host = QStringLiteral("127.0.0.1")) const
    {
        return QUrl(QStringLiteral("https://%1:%2%3").arg(host).arg(m_server.serverPort()).arg(path));
    }

    /// A whole answer, after which the connection ends.
    static void write(QSslSocket &connection, const QByteArray &status, const QByteArray &body,
        const QByteArray &headers = {})
    {
        connection.write("HTTP/1.1 " + status + "\r\n" + headers
            + "Content-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        connection.disconnectFromHost();
    }

    Answer answer;
    /// The heads of what was asked, without the empty line at their end.
    QList<QByteArray> heads;
    /// Connections that the other side has ended.
    int ended = 0;

private:
    void serve(QSslSocket *connection)
    {
        QObject::connect(connection, &QSslSocket::disconnected, &m_server, [this] { ++ended; });
        const auto read = [this, connection, head = QByteArray()]() mutable {
            head += connection->readAll();
            const auto end = head.indexOf("\r\n\r\n");
            if (end < 0)
                return;
            heads.append(head.first(end));
            head.clear();
            answer(*connection, heads.last().split(' ').value(1));
        };
        QObject::connect(connection, &QSslSocket::readyRead, &m_server, read);
        if (connection->bytesAvailable() > 0)
            Q_EMIT connection->readyRead();
    }

    QSslServer m_server;
};

} // namespace Quillbrook
