#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QUrl>

namespace zentrik::test {

// A loopback server that reads each request whole (headers and a Content-Length body) and
// then closes the connection without a byte of answer: the server that took the request
// and went away. Runs on the thread that made it. It counts what arrived, so a test can
// tell whether the client sent the same request again.
class ClosingServer : public QObject
{
    Q_OBJECT

public:
    explicit ClosingServer(QObject *parent = nullptr);

    [[nodiscard]] QUrl baseUrl() const;
    [[nodiscard]] int connectionCount() const { return m_connections; }
    // Connections the server has closed.
    [[nodiscard]] int closedCount() const { return m_closed; }
    // Requests read to their last byte before the connection was closed.
    [[nodiscard]] const QList<QByteArray> &requests() const { return m_requests; }

    // The first `count` requests get `body` as a whole JSON answer on a connection kept open
    // for `keepOpenMs` before the server closes it, as servers do with idle connections.
    void answerFirst(int count, int keepOpenMs, const QByteArray &body = "{}");

private:
    QTcpServer m_server;
    int m_connections = 0;
    int m_closed = 0;
    QList<QByteArray> m_requests;
    int m_answered = 0;
    int m_toAnswer = 0;
    int m_keepOpenMs = 0;
    QByteArray m_body;
};

} // namespace zentrik::test
