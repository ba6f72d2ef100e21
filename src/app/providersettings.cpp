#include "app/providersettings.h"

#include "model/apimanager.h"

#include <QVariantMap>

namespace zentrik {

ProviderSettings::ProviderSettings(QObject *parent)
    : QObject(parent)
{ }

void ProviderSettings::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    if (!m_apiManager.isNull()) {
        m_apiManager->customProviders().disconnect(this);
    }
    m_apiManager = apiManager;
    if (apiManager != nullptr) {
        connect(&apiManager->customProviders(), &CustomProviders::changed, this, &ProviderSettings::providersChanged);
    }
    Q_EMIT apiManagerChanged();
    Q_EMIT providersChanged();
}

QVariantList ProviderSettings::providers() const
{
    QVariantList list;
    if (m_apiManager.isNull()) {
        return list;
    }
    for (const CustomProvider &provider : m_apiManager->customProviders().list()) {
        QVariantList models;
        for (const QString &model : provider.models()) {
            models.append(
                QVariantMap { { QStringLiteral("id"), provider.modelId(model) }, { QStringLiteral("name"), model } });
        }
        list.append(QVariantMap { { QStringLiteral("name"), provider.name },
            { QStringLiteral("baseUrl"), provider.baseUrl.toString() }, { QStringLiteral("hasKey"), provider.hasKey },
            { QStringLiteral("models"), models }, { QStringLiteral("modelCount"), models.size() } });
    }
    return list;
}

LocalServerDetector *ProviderSettings::localServers() const
{
    return m_apiManager.isNull() ? nullptr : m_apiManager->localServers();
}

void ProviderSettings::setMessage(const QString &message, bool isError)
{
    if (m_message == message && m_messageIsError == isError) {
        return;
    }
    m_message = message;
    m_messageIsError = isError;
    Q_EMIT messageChanged();
}

void ProviderSettings::report(const QString &error, const QString &success)
{
    setMessage(error.isEmpty() ? success : error, !error.isEmpty());
    Q_EMIT finished(error.isEmpty());
}

void ProviderSettings::begin()
{
    if (m_busy++ == 0) {
        Q_EMIT busyChanged();
    }
}

void ProviderSettings::end()
{
    if (--m_busy == 0) {
        Q_EMIT busyChanged();
    }
}

void ProviderSettings::addProvider(const QString &name, const QString &baseUrl, const QString &key)
{
    if (m_apiManager.isNull()) {
        return;
    }
    begin();
    const QString trimmedName = name.trimmed();
    m_apiManager->customProviders().add(
        trimmedName, baseUrl, key.trimmed(), this, [this, trimmedName](const QString &error) {
            end();
            if (!error.isEmpty()) {
                report(error, {});
                return;
            }
            listModelsAfterAdding(trimmedName);
        });
}

void ProviderSettings::listModelsAfterAdding(const QString &name)
{
    begin();
    m_apiManager->customProviders().refreshModels(
        name, this, [this, name](const std::variant<QStringList, QString> &outcome) {
            end();
            if (const auto *error = std::get_if<QString>(&outcome)) {
                report({},
                    tr("Added %1, but its models could not be listed: %2 Type a model's id to use it.")
                        .arg(name, *error));
                return;
            }
            const auto &models = std::get<QStringList>(outcome);
            report({},
                models.isEmpty() ? tr("Added %1. It lists no models; type a model's id to use it.").arg(name)
                                 : tr("Added %1 with %n model(s).", nullptr, int(models.size())).arg(name));
        });
}

void ProviderSettings::removeProvider(const QString &name)
{
    if (!m_apiManager.isNull()) {
        report(m_apiManager->customProviders().remove(name), tr("Removed %1.").arg(name));
    }
}

void ProviderSettings::refreshModels(const QString &name)
{
    if (m_apiManager.isNull()) {
        return;
    }
    begin();
    m_apiManager->customProviders().refreshModels(
        name, this, [this, name](const std::variant<QStringList, QString> &outcome) {
            end();
            const auto *error = std::get_if<QString>(&outcome);
            const int count = error != nullptr ? 0 : int(std::get<QStringList>(outcome).size());
            report(error != nullptr ? *error : QString(), tr("%1 offers %n model(s).", nullptr, count).arg(name));
        });
}

void ProviderSettings::addModel(const QString &name, const QString &model)
{
    if (!m_apiManager.isNull()) {
        report(m_apiManager->customProviders().addModel(name, model.trimmed()),
            tr("Added the model %1 to %2.").arg(model.trimmed(), name));
    }
}

void ProviderSettings::removeModel(const QString &name, const QString &model)
{
    if (!m_apiManager.isNull()) {
        report(m_apiManager->customProviders().removeModel(name, model),
            tr("Removed the model %1 from %2.").arg(model, name));
    }
}

void ProviderSettings::detectLocalServers()
{
    if (!m_apiManager.isNull()) {
        m_apiManager->localServers()->detect();
    }
}

void ProviderSettings::useLocalServer(const QString &baseUrl)
{
    if (m_apiManager.isNull()) {
        return;
    }
    begin();
    m_apiManager->localServers()->use(baseUrl, this, [this, baseUrl](const QString &error) {
        end();
        report(error, tr("Added the model server at %1.").arg(baseUrl));
    });
}

} // namespace zentrik
