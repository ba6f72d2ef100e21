#include "net/tlstrust.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace zentrik {

void TlsTrust::setCaFile(const QString &path)
{
    if (path == m_caFile) {
        return;
    }
    m_caFile = path;
    m_problem.clear();
#if QT_CONFIG(ssl)
    m_configuration.reset();
#endif
}

#if QT_CONFIG(ssl)
std::variant<QList<QSslCertificate>, QString> TlsTrust::readCaFile(const QString &path)
{
    const auto tr = [](const char *text) { return QCoreApplication::translate("TlsTrust", text); };
    QFile file(path);
    if (QFileInfo(path).isDir()) {
        return tr("The CA file %1 is a folder, not a PEM file.").arg(path);
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return tr("The CA file %1 cannot be read: %2").arg(path, file.errorString());
    }
    if (file.size() > maxCaFileSize) {
        return tr("The CA file %1 is larger than %2 MB.").arg(path).arg(maxCaFileSize / (qint64(1024) * 1024));
    }
    const QByteArray pem = file.read(maxCaFileSize + 1);
    if (file.error() != QFileDevice::NoError) {
        return tr("The CA file %1 cannot be read: %2").arg(path, file.errorString());
    }
    QList<QSslCertificate> certificates = QSslCertificate::fromData(pem, QSsl::Pem);
    certificates.removeIf([](const QSslCertificate &certificate) { return certificate.isNull(); });
    if (certificates.isEmpty()) {
        return tr("The CA file %1 holds no PEM certificate.").arg(path);
    }
    return certificates;
}

QSslConfiguration TlsTrust::configuration()
{
    if (m_configuration) {
        return *m_configuration;
    }
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    if (!m_caFile.isEmpty()) {
        auto read = readCaFile(m_caFile);
        if (auto *certificates = std::get_if<QList<QSslCertificate>>(&read)) {
            // Named in full: adding to the default list would stop Qt from loading the
            // system's authorities when it needs them.
            configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + *certificates);
        } else {
            m_problem = std::get<QString>(read);
        }
    }
    m_configuration = configuration;
    return configuration;
}
#endif

} // namespace zentrik
