#pragma once

#include <QByteArray>
#include <QIODevice>

namespace zentrik {

// A request body that can be read once and never rewound. Qt's HTTP layer sends a request
// again on a new connection when the server closes one before answering, by seeking its
// upload device back to the start; it cannot tell whether the server had already acted on
// the request. Refusing that seek turns the silent second send into an error, so a request
// a server may have received never reaches it twice.
class OneShotBody : public QIODevice
{
public:
    explicit OneShotBody(QByteArray body, QObject *parent = nullptr);

    [[nodiscard]] bool isSequential() const override { return false; }
    [[nodiscard]] qint64 size() const override { return m_body.size(); }
    bool seek(qint64 position) override;
    bool reset() override { return seek(0); }
    // Whether Qt asked to send the body again.
    [[nodiscard]] bool rewindRefused() const { return m_rewindRefused; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    QByteArray m_body;
    bool m_rewindRefused = false;
};

} // namespace zentrik
