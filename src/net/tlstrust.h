#pragma once

#include <QList>
#include <QString>
#include <QtNetwork/qtnetworkglobal.h>

#include <optional>
#include <variant>

#if QT_CONFIG(ssl)
#include <QSslCertificate>
#include <QSslConfiguration>
#endif

namespace zentrik {

// What a TLS peer is checked against: the system's certificate authorities, plus those of
// an extra PEM file when the user names one (a company gateway that inspects TLS signs with
// its own). Peers are always verified; an extra file only adds trust. The file is read on
// the first secure request, not when the setting is made, so starting up reads nothing.
class TlsTrust
{
public:
    // The largest CA file read; a bundle of every public authority is a few hundred KB.
    static constexpr qint64 maxCaFileSize = qint64(8) * 1024 * 1024;

    void setCaFile(const QString &path);
    [[nodiscard]] QString caFile() const { return m_caFile; }

#if QT_CONFIG(ssl)
    // The configuration for a secure request.
    [[nodiscard]] QSslConfiguration configuration();
    // The certificates of a PEM file, or one line saying why there are none.
    [[nodiscard]] static std::variant<QList<QSslCertificate>, QString> readCaFile(const QString &path);
#endif
    // Why the extra CA file is not in use (unreadable, no certificate in it); empty when it
    // is, or when there is none. Known once a secure request has been made.
    [[nodiscard]] QString problem() const
    {
        return m_problem;
    }

private:
    QString m_caFile;
    QString m_problem;
#if QT_CONFIG(ssl)
    std::optional<QSslConfiguration> m_configuration;
#endif
};

} // namespace zentrik
