#pragma once

#include "model/apimanager.h"
#include "net/httpclient.h"
#include "settings/keyservice.h"

#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QString>
#include <QUrl>
#include <QtQmlIntegration>

#include <memory>

namespace zentrik {

// The start-up licence check. Without a licence service (none configured at build time)
// the window opens at once. Otherwise the stored licence key (secret store account
// "licenseKey") is posted to the service as {"licenseKey": KEY}; the answer
// {"valid": true} opens the window, anything else shows the licence entry screen with a
// one-line reason. The check runs when the QML object is complete, or on start(). The key
// is read and stored through the shared APIManager's key service (its own one when it has
// no manager), so a Secret Service that does not answer holds up nothing but the check.
class LicenseGate : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(State state READ state NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool isLicenseVerified READ isLicenseVerified NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool showLicenseSetup READ showLicenseSetup NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY stateChanged FINAL)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged FINAL)
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)

public:
    enum class State { Idle, Checking, Verified, NeedsKey };
    Q_ENUM(State)

    static constexpr const char *licenseAccount = "licenseKey";
    // Overrides the build-time address at run time (tests point it at a local server);
    // set but empty means no licence service.
    static constexpr const char *urlVariable = "ZENTRIK_LICENSE_URL";
    static constexpr std::chrono::milliseconds requestTimeout { 15000 };

    explicit LicenseGate(QObject *parent = nullptr);
    ~LicenseGate() override;

    // The licence service: $ZENTRIK_LICENSE_URL when set, otherwise the build's address.
    [[nodiscard]] static QUrl configuredUrl();
    [[nodiscard]] QUrl serviceUrl() const { return m_serviceUrl; }
    void setServiceUrl(const QUrl &url) { m_serviceUrl = url; }

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *manager);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] bool isLicenseVerified() const { return m_state == State::Verified; }
    [[nodiscard]] bool showLicenseSetup() const { return m_state == State::NeedsKey; }
    [[nodiscard]] bool isChecking() const { return m_state == State::Checking; }
    [[nodiscard]] QString message() const { return m_message; }

    // Verifies the stored key (or passes at once without a service).
    Q_INVOKABLE void start();
    // Stores the key the user typed and verifies it.
    Q_INVOKABLE void submitKey(const QString &key);

    void classBegin() override { }
    void componentComplete() override { start(); }

Q_SIGNALS:
    void stateChanged();
    void messageChanged();
    void apiManagerChanged();

private:
    [[nodiscard]] KeyService &keyService();
    void onStoredKey(const KeyService::Outcome &outcome);
    void verify(const QString &key);
    void onAnswer(const HttpResult &result);
    void setState(State state);
    void setMessage(const QString &message);
    void refuse(const QString &message);

    QUrl m_serviceUrl;
    State m_state = State::Idle;
    QString m_message;
    QPointer<APIManager> m_apiManager;
    std::unique_ptr<KeyService> m_ownKeyService;
    std::unique_ptr<HttpClient> m_http;
};

} // namespace zentrik
