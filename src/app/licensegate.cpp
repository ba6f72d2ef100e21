#include "app/licensegate.h"

#include "app/applogging.h"
#include "buildconfig.h"
#include "model/apimanager.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik {

namespace {
const QString licenseAccountName = QString::fromLatin1(LicenseGate::licenseAccount);
} // namespace

LicenseGate::LicenseGate(QObject *parent)
    : QObject(parent)
    , m_serviceUrl(configuredUrl())
{ }

LicenseGate::~LicenseGate() = default;

QUrl LicenseGate::configuredUrl()
{
    if (qEnvironmentVariableIsSet(urlVariable)) {
        return QUrl(qEnvironmentVariable(urlVariable));
    }
    return QUrl(QString::fromUtf8(build::licenseUrl));
}

void LicenseGate::setApiManager(APIManager *manager)
{
    if (m_apiManager == manager) {
        return;
    }
    m_apiManager = manager;
    Q_EMIT apiManagerChanged();
}

KeyService &LicenseGate::keyService()
{
    if (m_apiManager) {
        return m_apiManager->keyService();
    }
    if (!m_ownKeyService) {
        m_ownKeyService = std::make_unique<KeyService>();
    }
    return *m_ownKeyService;
}

void LicenseGate::start()
{
    if (m_state == State::Checking || m_state == State::Verified) {
        return;
    }
    if (m_serviceUrl.isEmpty()) {
        setState(State::Verified);
        return;
    }
    setMessage(tr("Checking license..."));
    setState(State::Checking);
    keyService().read(
        { licenseAccountName }, this, [this](const KeyService::Outcome &outcome) { onStoredKey(outcome); });
}

void LicenseGate::onStoredKey(const KeyService::Outcome &outcome)
{
    const QString stored = outcome.values.value(licenseAccountName).trimmed();
    if (!stored.isEmpty()) {
        verify(stored);
        return;
    }
    switch (outcome.code) {
    case secretSuccess:
        refuse(tr("Enter your license key to continue."));
        break;
    case secretNoService:
        refuse(tr("No secret service is running, so no license key is stored. Enter your license key to continue."));
        break;
    case secretTimedOut:
        refuse(tr("The Secret Service did not answer in time, so the stored license key could not be read. Enter your "
                  "license key to continue."));
        break;
    default:
        refuse(tr("The Secret Service did not give the stored license key. Enter your license key to continue."));
        break;
    }
}

void LicenseGate::submitKey(const QString &key)
{
    const QString trimmed = key.trimmed();
    if (trimmed.isEmpty()) {
        refuse(tr("Enter your license key to continue."));
        return;
    }
    if (m_state == State::Checking) {
        return;
    }
    // A key that cannot be stored is still checked: the window opens, and the key is asked
    // for again at the next start.
    keyService().write({ { licenseAccountName, trimmed } }, this, [](const KeyService::Outcome &outcome) {
        if (!outcome.succeeded()) {
            qCWarning(lcApp).noquote() << "The license key could not be stored:" << KeyService::describe(outcome.code);
        }
    });
    verify(trimmed);
}

void LicenseGate::verify(const QString &key)
{
    if (!m_serviceUrl.isValid() || m_serviceUrl.scheme().isEmpty()) {
        refuse(tr("The license service address is not valid."));
        return;
    }
    if (!m_http) {
        m_http = std::make_unique<HttpClient>();
    }
    HttpRequest request;
    request.method = QByteArrayLiteral("POST");
    request.url = m_serviceUrl;
    request.setHeader(QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json"));
    request.body = QJsonDocument(QJsonObject { { QStringLiteral("licenseKey"), key } }).toJson(QJsonDocument::Compact);
    request.timeout = requestTimeout;
    setMessage(tr("Checking license..."));
    setState(State::Checking);
    m_http->send(std::move(request), this, [this](const HttpResult &result) { onAnswer(result); });
}

void LicenseGate::onAnswer(const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        qCWarning(lcApp) << "License check failed:" << error->description;
        refuse(tr("The license service could not be reached: %1").arg(error->description));
        return;
    }
    const auto &response = std::get<HttpResponse>(result);
    if (!response.isSuccess()) {
        qCWarning(lcApp) << "License check failed with HTTP status" << response.status;
        refuse(tr("The license could not be verified (HTTP %1). Please try again.").arg(response.status));
        return;
    }
    QJsonParseError parseError {};
    const QJsonDocument answer = QJsonDocument::fromJson(response.body, &parseError);
    if (parseError.error != QJsonParseError::NoError || !answer.isObject()) {
        qCWarning(lcApp) << "License check: the answer is not a JSON object";
        refuse(tr("The license service sent an answer that could not be read."));
        return;
    }
    if (answer.object().value(QStringLiteral("valid")).toBool(false)) {
        setMessage({});
        setState(State::Verified);
        return;
    }
    refuse(tr("This license key is not valid. Check it and try again."));
}

void LicenseGate::refuse(const QString &message)
{
    setMessage(message);
    setState(State::NeedsKey);
}

void LicenseGate::setState(State state)
{
    if (m_state == state) {
        return;
    }
    m_state = state;
    Q_EMIT stateChanged();
}

void LicenseGate::setMessage(const QString &message)
{
    if (m_message == message) {
        return;
    }
    m_message = message;
    Q_EMIT messageChanged();
}

} // namespace zentrik
