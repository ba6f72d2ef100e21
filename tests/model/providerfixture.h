#pragma once

#include <QTemporaryDir>

#include <memory>

#include "model/apimanager.h"
#include "support/fakeprovider.h"

// An APIManager whose provider addresses all point at one fake provider, with its
// preferences in a scratch directory. Environment variables are set before the manager is
// made (the chat client's addresses are fixed at construction) and removed afterwards.
class ProviderFixture
{
public:
    ProviderFixture()
        : fake(std::make_unique<zentrik::test::FakeProvider>())
    {
        qputenv("ZENTRIK_CONFIG_DIR", m_config.path().toUtf8());
        const QByteArray base = fake->baseUrl().toString().toUtf8();
        for (const char *variable : addressVariables) {
            qputenv(variable, base);
        }
        manager = std::make_unique<zentrik::APIManager>();
    }

    ~ProviderFixture()
    {
        manager.reset();
        fake.reset();
        for (const char *variable : addressVariables) {
            qunsetenv(variable);
        }
        qunsetenv("ZENTRIK_CONFIG_DIR");
    }

    ProviderFixture(const ProviderFixture &) = delete;
    ProviderFixture &operator=(const ProviderFixture &) = delete;

    // Selects the model and gives the user keys for this run.
    void use(const QString &model, const QString &openAIKey = QStringLiteral("sk-openai"),
        const QString &claudeKey = QStringLiteral("sk-ant"))
    {
        manager->setSelectedTextModel(model);
        manager->overrideUserKeys(openAIKey, claudeKey, {});
    }

    static constexpr const char *addressVariables[]
        = { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_ANTHROPIC_BASE_URL", "ZENTRIK_OPENROUTER_BASE_URL" };

private:
    QTemporaryDir m_config;

public:
    std::unique_ptr<zentrik::test::FakeProvider> fake;
    std::unique_ptr<zentrik::APIManager> manager;
};
