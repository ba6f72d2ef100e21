#include "support/closingserver.h"

#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace zentrik::test {

namespace {

// The length of a whole request at the start of buffer, or -1 while it is incomplete.
qsizetype wholeRequestLength(const QByteArray &buffer)
{
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0) {
        return -1;
    }
    qsizetype bodyLength = 0;
    for (const QByteArray &line : buffer.left(headerEnd).split('\n')) {
        if (line.toLower().startsWith("content-length:")) {
            bodyLength = line.mid(15).trimmed().toLongLong();
        }
    }
    const qsizetype total = headerEnd + 4 + bodyLength;
    return buffer.size() >= total ? total : -1;
}

} // namespace

ClosingServer::ClosingServer(QObject *parent)
    : QObject(parent)
{
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            ++m_connections;
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            auto buffer = std::make_shared<QByteArray>();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer] {
                buffer->append(socket->readAll());
                const qsizetype length = wholeRequestLength(*buffer);
                if (length < 0) {
                    return;
                }
                m_requests.append(buffer->left(length));
                buffer->remove(0, length);
                if (m_answered < m_toAnswer) {
                    ++m_answered;
                    socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
                        + QByteArray::number(m_body.size()) + "\r\n\r\n" + m_body);
                    QTimer::singleShot(m_keepOpenMs, socket, [this, socket] {
                        socket->abort();
                        ++m_closed;
                    });
                    return;
                }
                socket->abort();
                ++m_closed;
            });
        }
    });
}

QUrl ClosingServer::baseUrl() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()));
}

void ClosingServer::answerFirst(int count, int keepOpenMs, const QByteArray &body)
{
    m_toAnswer = count;
    m_keepOpenMs = keepOpenMs;
    m_body = body;
}

} // namespace zentrik::test
