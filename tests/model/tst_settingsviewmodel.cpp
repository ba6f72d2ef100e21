#include "model/apimanager.h"
#include "model/providerrouting.h"
#include "model/settingsviewmodel.h"
#include "support/testregistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace zentrik;

// APIManager construction and the settings round trip, against the real keyring that
// scripts/test starts and a preferences file in a temporary directory.
class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        qputenv("ZENTRIK_CONFIG_DIR", m_dir->path().toUtf8());
        SecretStore store;
        store.clear();
    }

    void cleanup()
    {
        SecretStore().clear();
        qunsetenv("ZENTRIK_CONFIG_DIR");
    }

    void freshManagerUsesDefaults()
    {
        APIManager manager;
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
        QCOMPARE(manager.selectedImageModel(), QStringLiteral("fal-ai/flux-pro"));
        QVERIFY(manager.openAIKey().isEmpty());
        QVERIFY(manager.claudeKey().isEmpty());
        QVERIFY(manager.falAIKey().isEmpty());
        QCOMPARE(manager.textModels().size(), 12);
        QCOMPARE(manager.imageModels().size(), 9);
        QVERIFY(manager.hasChatClient());
        QCOMPARE(manager.openRouterChatUrl().path(), QStringLiteral("/api/v1/chat/completions"));
        QCOMPARE(manager.openRouterModelsUrl().path(), QStringLiteral("/api/v1/models"));
        QCOMPARE(manager.preflightMessage().value_or(QString()),
                 QStringLiteral("OpenAI API key is missing. Please add it in Settings."));
    }

    void settingsRoundTrip()
    {
        APIManager manager;
        QSignalSpy textChanged(&manager, &APIManager::selectedTextModelChanged);
        {
            SettingsViewModel settings(&manager);
            QCOMPARE(settings.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
            settings.setOpenAIKey(QStringLiteral("sk-openai"));
            settings.setClaudeKey(QStringLiteral("sk-claude"));
            settings.setFalAIKey(QStringLiteral("fal-key"));
            settings.setSelectedTextModel(QStringLiteral("claude-3-haiku-20240307"));
            settings.setSelectedImageModel(QStringLiteral("DALL-E"));
            // Nothing is written before Save.
            QCOMPARE(manager.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
            QVERIFY(!SettingsViewModel().openAIKey().size());
            QSignalSpy notice(&settings, &SettingsViewModel::showingSaveConfirmationChanged);
            QVERIFY(settings.save());
            QCOMPARE(notice.count(), 1);
            QVERIFY(settings.showingSaveConfirmation());
            settings.dismissSaveConfirmation();
            QVERIFY(!settings.showingSaveConfirmation());
        }
        // The shared manager uses the new choice for the very next request.
        QCOMPARE(textChanged.count(), 1);
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(manager.claudeKey(), QStringLiteral("sk-claude"));
        QVERIFY(!manager.preflightMessage().has_value());
        QCOMPARE(routeTextModel(manager.selectedTextModel()), std::optional(TextProvider::anthropic));

        // Reopening the screen shows what was saved, and so does a new manager (a restart).
        SettingsViewModel reopened;
        QCOMPARE(reopened.openAIKey(), QStringLiteral("sk-openai"));
        QCOMPARE(reopened.claudeKey(), QStringLiteral("sk-claude"));
        QCOMPARE(reopened.falAIKey(), QStringLiteral("fal-key"));
        QCOMPARE(reopened.selectedImageModel(), QStringLiteral("DALL-E"));
        APIManager restarted;
        QCOMPARE(restarted.selectedTextModel(), QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(restarted.selectedImageModel(), QStringLiteral("DALL-E"));
        QCOMPARE(restarted.falAIKey(), QStringLiteral("fal-key"));
    }

    void emptyKeyFieldDeletesStoredKey()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("old"), QStringLiteral("openAIKey")));
        APIManager manager;
        QCOMPARE(manager.openAIKey(), QStringLiteral("old"));
        SettingsViewModel settings(&manager);
        settings.setOpenAIKey(QString());
        QVERIFY(settings.save());
        QVERIFY(!store.get(QStringLiteral("openAIKey")).has_value());
        QVERIFY(manager.openAIKey().isEmpty());
        QVERIFY(!store.allKeys().contains(QStringLiteral("claudeKey")));
    }

    void storedSelectionOutsideCatalogueIsKept()
    {
        {
            Preferences preferences;
            preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("retired-model"));
            preferences.setString(QStringLiteral("selectedImageModel"), QStringLiteral("fal-ai/retired"));
        }
        APIManager manager;
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("retired-model"));
        QCOMPARE(manager.selectedImageModel(), QStringLiteral("fal-ai/retired"));
        QVERIFY(!routeTextModel(manager.selectedTextModel()).has_value());
        QCOMPARE(manager.preflightMessage().value_or(QString()),
                 QStringLiteral("Invalid model selected. Please choose a valid model in Settings."));
        SettingsViewModel settings(&manager);
        QCOMPARE(settings.selectedTextModel(), QStringLiteral("retired-model"));
    }

    void howItWorksToggleFlipsChevron()
    {
        SettingsViewModel settings;
        QSignalSpy spy(&settings, &SettingsViewModel::showHowItWorksChanged);
        QCOMPARE(settings.howItWorksSymbol(), QStringLiteral("chevron.down"));
        settings.toggleHowItWorks();
        QVERIFY(settings.showHowItWorks());
        QCOMPARE(settings.howItWorksSymbol(), QStringLiteral("chevron.up"));
        settings.setShowHowItWorks(true); // unchanged: no signal
        QCOMPARE(spy.count(), 1);
        QVERIFY(settings.secretStoreAvailable());
        QCOMPARE(settings.textModels().size(), 12);
        QCOMPARE(settings.imageModels().at(7).toMap().value(QStringLiteral("name")).toString().toUtf8(),
                 QByteArray("PixArt-\xCE\xA3"));
    }

    void invalidOpenRouterAddressLeavesNoChatClient()
    {
        qputenv("ZENTRIK_OPENROUTER_BASE_URL", "::not a url::");
        QTest::ignoreMessage(QtInfoMsg, "Error: Invalid OpenRouter URLs");
        APIManager manager;
        qunsetenv("ZENTRIK_OPENROUTER_BASE_URL");
        QVERIFY(!manager.hasChatClient());
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};
ZENTRIK_TEST(SettingsViewModelTest)

#include "tst_settingsviewmodel.moc"
