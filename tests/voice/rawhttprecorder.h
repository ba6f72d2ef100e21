#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

// A loopback HTTP server that keeps each request exactly as it arrived on the wire and
// answers every one with the same JSON. The shared fake provider cannot do this for
// multipart bodies: its HTTP library takes them apart into fields before anyone sees them.
// Runs on the test's own event loop.
class RawHttpRecorder
{
public:
    struct Request
    {
        QByteArray head; // request line and headers
        QByteArray body;
    };

    explicit RawHttpRecorder(QByteArray replyBody)
        : m_replyBody(std::move(replyBody))
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                auto *buffer = new QByteArray;
                QObject::connect(socket, &QObject::destroyed, [buffer] { delete buffer; });
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
                    buffer->append(socket->readAll());
                    receive(socket, *buffer);
                });
            }
        });
    }

    [[nodiscard]] QUrl baseUrl() const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()));
    }
    [[nodiscard]] const QList<Request> &requests() const { return m_requests; }

private:
    void receive(QTcpSocket *socket, const QByteArray &buffer)
    {
        const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
        if (headEnd < 0) {
            return;
        }
        const QByteArray head = buffer.left(headEnd);
        qsizetype length = 0;
        for (const QByteArray &line : head.split('\n')) {
            const QByteArray trimmed = line.trimmed();
            if (trimmed.toLower().startsWith("content-length:")) {
                length = trimmed.mid(qsizetype(sizeof("content-length:") - 1)).trimmed().toLongLong();
            }
        }
        if (buffer.size() < headEnd + 4 + length) {
            return;
        }
        m_requests.append({ head, buffer.mid(headEnd + 4, length) });
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\nContent-Length: "
            + QByteArray::number(m_replyBody.size()) + "\r\n\r\n" + m_replyBody);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QByteArray m_replyBody;
    QList<Request> m_requests;
};
