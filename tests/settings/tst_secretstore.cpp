#include "settings/secretstore.h"
#include "support/testregistry.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

#include <array>
#include <atomic>

using namespace zentrik;

// Runs against the real Secret Service that scripts/test starts (an unlocked GNOME Keyring
// on a private bus). Every test begins from an empty store.
class SecretStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (qEnvironmentVariableIsSet("ZENTRIK_EXPECT_NO_SECRET_SERVICE")) {
            QSKIP("running as the no-service child");
        }
        SecretStore probe;
        if (!probe.isAvailable()) {
            QFAIL("no Secret Service on the session bus; run the suite through scripts/test");
        }
    }

    void init()
    {
        SecretStore store;
        store.setSynchronizable(true); // reach local and synchronisable items alike
        store.clear();
        QVERIFY(store.allKeys().isEmpty());
    }

    void setTwiceKeepsOneItemWithSecondValue()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("first"), QStringLiteral("openAIKey")));
        QVERIFY(store.set(QStringLiteral("second"), QStringLiteral("openAIKey")));
        QCOMPARE(store.lastResultCode(), int(secretSuccess));
        QCOMPARE(store.get(QStringLiteral("openAIKey")), std::optional<QString>(QStringLiteral("second")));
        QCOMPARE(store.allKeys(), QStringList{QStringLiteral("openAIKey")});
    }

    void getOfMissingKeyIsAbsentWithNonZeroCode()
    {
        SecretStore store;
        QVERIFY(!store.get(QStringLiteral("neverSet")).has_value());
        QCOMPARE(store.lastResultCode(), int(secretNotFound));
    }

    void roundTripsText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("key") << QStringLiteral("sk-test-1234567890");
        QTest::newRow("non-ascii") << QStringLiteral("päss wörd ✓ 🔑");
        QTest::newRow("empty") << QString();
    }

    void roundTripsText()
    {
        QFETCH(QString, text);
        SecretStore store;
        QVERIFY(store.set(text, QStringLiteral("claudeKey")));
        QCOMPARE(store.get(QStringLiteral("claudeKey")).value_or(QStringLiteral("<absent>")), text);
    }

    void bytesSurviveUnchanged()
    {
        SecretStore store;
        const QByteArray data("\x00\x01\xff binary", 10);
        QVERIFY(store.set(data, QStringLiteral("blob")));
        QCOMPARE(store.getData(QStringLiteral("blob")).value_or(QByteArray()), data);
    }

    void referenceIsTheItemsObjectPath()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("v"), QStringLiteral("falAIKey")));
        const auto reference = store.getData(QStringLiteral("falAIKey"), true);
        QVERIFY(reference.has_value());
        QVERIFY2(reference->startsWith("/org/freedesktop/secrets/collection/"), reference->constData());
        QVERIFY(!reference->contains("v\0"));
    }

    void prefixFormsAccountName()
    {
        SecretStore prefixed;
        prefixed.setKeyPrefix(QStringLiteral("test_"));
        QVERIFY(prefixed.set(QStringLiteral("secret"), QStringLiteral("openAIKey")));
        QCOMPARE(prefixed.allKeys(), QStringList{QStringLiteral("test_openAIKey")});
        QCOMPARE(prefixed.lastQueryParameters().value(QStringLiteral("class")).toString(),
                 QStringLiteral("genericPassword"));

        SecretStore plain;
        QVERIFY(!plain.get(QStringLiteral("openAIKey")).has_value());
        QCOMPARE(plain.get(QStringLiteral("test_openAIKey")), std::optional<QString>(QStringLiteral("secret")));
    }

    void synchronizableLookupsFindBothKinds()
    {
        SecretStore local;
        SecretStore synced;
        synced.setSynchronizable(true);
        QVERIFY(local.set(QStringLiteral("local value"), QStringLiteral("localKey")));
        QVERIFY(synced.set(QStringLiteral("synced value"), QStringLiteral("syncedKey")));

        QCOMPARE(synced.get(QStringLiteral("localKey")), std::optional<QString>(QStringLiteral("local value")));
        QCOMPARE(synced.get(QStringLiteral("syncedKey")), std::optional<QString>(QStringLiteral("synced value")));
        // A store that is not synchronisable sees only local items.
        QVERIFY(!local.get(QStringLiteral("syncedKey")).has_value());
        QCOMPARE(synced.lastQueryParameters().value(QStringLiteral("synchronizable")).toString(),
                 QStringLiteral("any"));
    }

    void accessGroupSeparatesItems()
    {
        SecretStore groupA;
        groupA.setAccessGroup(QStringLiteral("group.a"));
        SecretStore groupB;
        groupB.setAccessGroup(QStringLiteral("group.b"));
        QVERIFY(groupA.set(QStringLiteral("a"), QStringLiteral("shared")));
        QVERIFY(!groupB.get(QStringLiteral("shared")).has_value());
        QCOMPARE(groupA.get(QStringLiteral("shared")), std::optional<QString>(QStringLiteral("a")));
        QCOMPARE(groupA.lastQueryParameters().value(QStringLiteral("accessGroup")).toString(), QStringLiteral("group.a"));
    }

    void accessOptionIsStoredAndSecretNeverRecorded()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("do-not-keep-me"), QStringLiteral("k"),
                          SecretAccessOption::accessibleAfterFirstUnlockThisDeviceOnly));
        const QVariantMap query = store.lastQueryParameters();
        QCOMPARE(query.value(QStringLiteral("accessible")).toString(),
                 QStringLiteral("accessibleAfterFirstUnlockThisDeviceOnly"));
        for (const QVariant &value : query) {
            QVERIFY(!value.toString().contains(QStringLiteral("do-not-keep-me")));
        }
    }

    void deleteOfMissingKeyIsFalse()
    {
        SecretStore store;
        QVERIFY(!store.remove(QStringLiteral("missing")));
        QCOMPARE(store.lastResultCode(), int(secretNotFound));
        QVERIFY(store.set(QStringLiteral("x"), QStringLiteral("present")));
        QVERIFY(store.remove(QStringLiteral("present")));
        QVERIFY(!store.get(QStringLiteral("present")).has_value());
    }

    void clearEmptiesTheStore()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("1"), QStringLiteral("openAIKey")));
        QVERIFY(store.set(QStringLiteral("2"), QStringLiteral("claudeKey")));
        QVERIFY(store.set(QStringLiteral("3"), QStringLiteral("falAIKey")));
        QCOMPARE(store.allKeys().size(), 3);
        QVERIFY(store.clear());
        QVERIFY(store.allKeys().isEmpty());
    }

    void concurrentUseFromThreadsKeepsEveryItem()
    {
        SecretStore store;
        QList<QThread *> threads;
        // A write may give up at the 2 s bound on a slow machine (sanitizers, a loaded CI
        // runner); what must hold is that every write that reported success is there.
        std::array<std::array<std::atomic<bool>, 5>, 4> written {};
        for (int t = 0; t < 4; ++t) {
            threads.append(QThread::create([&store, &written, t] {
                for (int i = 0; i < 5; ++i) {
                    written[t][i] = store.set(QStringLiteral("v%1").arg(i), QStringLiteral("thread%1_%2").arg(t).arg(i));
                }
            }));
            threads.last()->start();
        }
        for (QThread *thread : threads) {
            QVERIFY(thread->wait(30000));
            delete thread;
        }
        const QStringList keys = store.allKeys();
        int successes = 0;
        for (int t = 0; t < 4; ++t) {
            for (int i = 0; i < 5; ++i) {
                if (written[t][i]) {
                    ++successes;
                    const QString key = QStringLiteral("thread%1_%2").arg(t).arg(i);
                    QVERIFY2(keys.contains(key), qPrintable(key));
                    QCOMPARE(store.get(key), std::optional<QString>(QStringLiteral("v%1").arg(i)));
                }
            }
        }
        QVERIFY(successes > 0);
        QCOMPARE(keys.size(), successes);
    }

    // Re-runs this executable with the session bus pointing at nothing: every call must
    // fail, with the no-service code, within the 2 s bound, and without a crash.
    void failsFastWithoutSecretService()
    {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/zentrik-bus"));
        env.insert(QStringLiteral("ZENTRIK_EXPECT_NO_SECRET_SERVICE"), QStringLiteral("1"));
        env.remove(QStringLiteral("DISPLAY")); // no X11 autolaunch of a bus
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("-class"), QStringLiteral("NoSecretServiceTest")});
        QVERIFY(child.waitForFinished(60000));
        QVERIFY2(child.exitStatus() == QProcess::NormalExit, "child crashed");
        const QByteArray output = child.readAllStandardOutput();
        QVERIFY2(child.exitCode() == 0, output.constData());
        // The child must really have run its cases, not skipped them.
        QVERIFY2(output.contains("PASS   : NoSecretServiceTest::everyOperationFailsQuickly(allKeys)"), output.constData());
    }
};
ZENTRIK_TEST(SecretStoreTest)

// The child half of failsFastWithoutSecretService.
class NoSecretServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!qEnvironmentVariableIsSet("ZENTRIK_EXPECT_NO_SECRET_SERVICE")) {
            QSKIP("only run as the child of SecretStoreTest::failsFastWithoutSecretService");
        }
    }

    void everyOperationFailsQuickly_data()
    {
        QTest::addColumn<int>("operation");
        QTest::newRow("set") << 0;
        QTest::newRow("get") << 1;
        QTest::newRow("getData reference") << 2;
        QTest::newRow("delete") << 3;
        QTest::newRow("clear") << 4;
        QTest::newRow("allKeys") << 5;
    }

    void everyOperationFailsQuickly()
    {
        QFETCH(int, operation);
        SecretStore store;
        QElapsedTimer timer;
        timer.start();
        bool succeeded = true;
        switch (operation) {
        case 0: succeeded = store.set(QStringLiteral("v"), QStringLiteral("k")); break;
        case 1: succeeded = store.get(QStringLiteral("k")).has_value(); break;
        case 2: succeeded = store.getData(QStringLiteral("k"), true).has_value(); break;
        case 3: succeeded = store.remove(QStringLiteral("k")); break;
        case 4: succeeded = store.clear(); break;
        case 5: succeeded = !store.allKeys().isEmpty(); break;
        }
        QVERIFY(!succeeded);
        QCOMPARE(store.lastResultCode(), int(secretNoService));
        QVERIFY2(timer.elapsed() < SecretStore::timeoutMs + 500, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!store.isAvailable());
    }
};
ZENTRIK_TEST(NoSecretServiceTest)

#include "tst_secretstore.moc"
