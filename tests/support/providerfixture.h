#pragma once

#include "model/apimanager.h"
#include "support/environment.h"
#include "support/fakeprovider.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>

namespace zentrik::test {

// An APIManager with every provider address at one server (a fake provider unless another is
// given), and its preferences and temporary files (where Together pictures are written) in
// scratch folders, so a test sees exactly the requests and files it caused. Addresses are set
// before the manager is made, since its clients read them then. Given an image model, it is
// selected, with keys for every image provider; text tests choose their model and keys with
// use(). (A key given for a run cannot be taken back, so none is given unasked.)
class ProviderFixture
{
public:
    explicit ProviderFixture(const QString &imageModel = {}, const QUrl &server = {})
        : m_imageModel(imageModel)
    {
        if (server.isEmpty()) {
            fake = std::make_unique<FakeProvider>();
        }
        m_environment.set("ZENTRIK_CONFIG_DIR", m_config.path());
        m_environment.set("TMPDIR", m_tmp.path());
        const QString base = (server.isEmpty() ? fake->baseUrl() : server).toString();
        for (const char *variable :
            { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_ANTHROPIC_BASE_URL", "ZENTRIK_OPENROUTER_BASE_URL",
                "ZENTRIK_TOGETHER_BASE_URL", "ZENTRIK_FAL_QUEUE_URL", "ZENTRIK_FAL_REST_URL" }) {
            m_environment.set(variable, base);
        }
        makeManager();
    }

    // Selects the text model and gives the user keys for this run.
    void use(const QString &model, const QString &openAIKey = QStringLiteral("sk-openai"),
        const QString &claudeKey = QStringLiteral("sk-ant"))
    {
        manager->setSelectedTextModel(model);
        manager->overrideUserKeys(openAIKey, claudeKey, QString());
    }

    // Points one provider variable elsewhere and makes the manager again.
    void redirect(const QByteArray &variable, const QString &address)
    {
        m_environment.set(variable, address);
        makeManager();
    }

    [[nodiscard]] QString tempPath() const { return m_tmp.path(); }

private:
    void makeManager()
    {
        manager = std::make_unique<APIManager>();
        if (!m_imageModel.isEmpty()) {
            manager->overrideUserKeys(QStringLiteral("sk-openai"), QString(), QStringLiteral("fal-key"));
            manager->overrideTogetherKey(QStringLiteral("together-key"));
            manager->setSelectedImageModel(m_imageModel);
        }
    }

    QString m_imageModel;
    QTemporaryDir m_config;
    QTemporaryDir m_tmp;
    ScopedEnvironment m_environment;

public:
    std::unique_ptr<FakeProvider> fake;
    std::unique_ptr<APIManager> manager;
};

} // namespace zentrik::test
