#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QtQmlIntegration>

namespace zentrik {

class APIManager;
class LocalServerDetector;

// The custom providers part of the settings screen: the list, adding (with an optional key
// and a first look at the models), removing, refreshing and typing models, and the model
// servers found on this computer with one action each to use them. Each action takes effect
// at once (no Save needed); `message` says how the last one went.
class ProviderSettings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The settings screen hands out its providers")
    Q_PROPERTY(QVariantList providers READ providers NOTIFY providersChanged FINAL)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged FINAL)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged FINAL)
    Q_PROPERTY(bool messageIsError READ messageIsError NOTIFY messageChanged FINAL)
    Q_PROPERTY(zentrik::LocalServerDetector *localServers READ localServers NOTIFY apiManagerChanged FINAL)

public:
    explicit ProviderSettings(QObject *parent = nullptr);

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);

    // Each entry: name, baseUrl, hasKey, models (a list of {id, name}: the id to select and
    // the model's own id), modelCount.
    [[nodiscard]] QVariantList providers() const;
    [[nodiscard]] bool busy() const { return m_busy > 0; }
    [[nodiscard]] QString message() const { return m_message; }
    [[nodiscard]] bool messageIsError() const { return m_messageIsError; }
    [[nodiscard]] LocalServerDetector *localServers() const;

    // Adds the provider and then lists its models; a server that lists none is still added,
    // and the message says to type a model's id.
    Q_INVOKABLE void addProvider(const QString &name, const QString &baseUrl, const QString &key);
    Q_INVOKABLE void removeProvider(const QString &name);
    Q_INVOKABLE void refreshModels(const QString &name);
    Q_INVOKABLE void addModel(const QString &name, const QString &model);
    Q_INVOKABLE void removeModel(const QString &name, const QString &model);
    // Probes the usual local ports again.
    Q_INVOKABLE void detectLocalServers();
    // Adds the model server found at baseUrl ("A model server is running on this computer:
    // use it").
    Q_INVOKABLE void useLocalServer(const QString &baseUrl);

Q_SIGNALS:
    void apiManagerChanged();
    void providersChanged();
    void busyChanged();
    void messageChanged();
    // After every action, with whether it worked.
    void finished(bool succeeded);

private:
    void setMessage(const QString &message, bool isError);
    void report(const QString &error, const QString &success);
    void begin();
    void end();
    void listModelsAfterAdding(const QString &name);

    QPointer<APIManager> m_apiManager;
    int m_busy = 0;
    QString m_message;
    bool m_messageIsError = false;
};

} // namespace zentrik
