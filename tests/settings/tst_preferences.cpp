#include "settings/preferences.h"
#include "support/testregistry.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace zentrik;

class PreferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        qputenv("ZENTRIK_CONFIG_DIR", m_dir->path().toUtf8());
    }

    void cleanup() { qunsetenv("ZENTRIK_CONFIG_DIR"); }

    void configDirMovesEveryFile()
    {
        Preferences preferences;
        preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("gpt-4-turbo"));
        QVERIFY(preferences.fileName().startsWith(m_dir->path()));
        QVERIFY(QFile::exists(preferences.fileName()));
        QVERIFY(Preferences::dataDirectory().startsWith(m_dir->path()));
    }

    void absentKeysGiveFallbacks()
    {
        Preferences preferences;
        QVERIFY(!preferences.contains(QStringLiteral("isDarkMode")));
        QCOMPARE(preferences.string(QStringLiteral("missing"), QStringLiteral("fallback")), QStringLiteral("fallback"));
        QCOMPARE(preferences.boolean(QStringLiteral("missing"), true), true);
        QVERIFY(preferences.data(QStringLiteral("missing")).isEmpty());
    }

    // Values written by one instance are seen by a later one, as after a restart.
    void valuesSurviveANewInstance_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("plain") << QStringLiteral("gpt-4o-mini") << QByteArray("[]");
        QTest::newRow("non-ascii and separators") << QStringLiteral("PixArt-Σ / ünïcode = ; ,") << QByteArray("[{\"a\":\"ü\"}]");
        QTest::newRow("binary data") << QStringLiteral("x") << QByteArray("\x00\x01\x02\xff", 4);
    }

    void valuesSurviveANewInstance()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, data);
        {
            Preferences writer;
            writer.setString(QStringLiteral("text"), text);
            writer.setBoolean(QStringLiteral("isDarkMode"), true);
            writer.setData(QStringLiteral("voiceNotes"), data);
        }
        Preferences reader;
        QCOMPARE(reader.string(QStringLiteral("text")), text);
        QCOMPARE(reader.boolean(QStringLiteral("isDarkMode")), true);
        QCOMPARE(reader.data(QStringLiteral("voiceNotes")), data);
        reader.remove(QStringLiteral("text"));
        QVERIFY(!Preferences().contains(QStringLiteral("text")));
    }

    void twoLiveInstancesAgree()
    {
        Preferences first;
        Preferences second;
        first.setString(QStringLiteral("selectedImageModel"), QStringLiteral("DALL-E"));
        QCOMPARE(second.string(QStringLiteral("selectedImageModel")), QStringLiteral("DALL-E"));
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};
ZENTRIK_TEST(PreferencesTest)

#include "tst_preferences.moc"
