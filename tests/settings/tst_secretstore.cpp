#include "settings/keyservice.h"
#include "settings/secretstore.h"
#include "support/childtest.h"
#include "support/hungsecretservice.h"
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
        QCOMPARE(store.allKeys(), QStringList { QStringLiteral("openAIKey") });
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
        QCOMPARE(prefixed.allKeys(), QStringList { QStringLiteral("test_openAIKey") });
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
        QCOMPARE(
            synced.lastQueryParameters().value(QStringLiteral("synchronizable")).toString(), QStringLiteral("any"));
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
        QCOMPARE(
            groupA.lastQueryParameters().value(QStringLiteral("accessGroup")).toString(), QStringLiteral("group.a"));
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
                    written[t][i]
                        = store.set(QStringLiteral("v%1").arg(i), QStringLiteral("thread%1_%2").arg(t).arg(i));
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

    // A Secret Service that owns its name and never answers: the child's cases check that
    // every operation, and every key service request, gives up at one deadline.
    void givesUpOnAHungService()
    {
        test::HungSecretService hung;
        QVERIFY2(hung.isReady(), qPrintable(hung.error()));
        const test::ChildRun run
            = test::runTestClassInChild(QStringLiteral("HungSecretServiceTest"), hung.environment());
        QVERIFY2(run.finished && run.exitCode == 0, run.output.constData());
        QVERIFY2(run.output.contains("PASS   : HungSecretServiceTest::destroyingTheServiceCancelsARead()"),
            run.output.constData());
    }

    // The key service against the working keyring: a write then a read in one queue, in order.
    void keyServiceWritesThenReads()
    {
        KeyService service;
        std::optional<KeyService::Outcome> written;
        std::optional<KeyService::Outcome> read;
        bool readAfterWrite = false;
        service.write(
            { { QStringLiteral("openAIKey"), QStringLiteral("sk-one") }, { QStringLiteral("claudeKey"), QString() } },
            this, [&](const KeyService::Outcome &outcome) { written = outcome; });
        service.read({ QStringLiteral("openAIKey"), QStringLiteral("claudeKey") }, this,
            [&](const KeyService::Outcome &outcome) {
                readAfterWrite = written.has_value();
                read = outcome;
            });
        QVERIFY(!written && !read); // never from inside the call
        QTRY_VERIFY(read.has_value());
        QVERIFY(readAfterWrite); // completions come in the order asked
        QVERIFY(written->succeeded());
        QVERIFY(read->succeeded());
        QCOMPARE(read->values, (QHash<QString, QString> { { QStringLiteral("openAIKey"), QStringLiteral("sk-one") } }));
    }

    // A screen closed before the answer arrives is not called back.
    void keyServiceSkipsAGoneContext()
    {
        KeyService service;
        bool called = false;
        auto context = std::make_unique<QObject>();
        service.read(
            { QStringLiteral("openAIKey") }, context.get(), [&](const KeyService::Outcome &) { called = true; });
        context.reset();
        bool after = false;
        service.read({ QStringLiteral("openAIKey") }, this, [&](const KeyService::Outcome &) { after = true; });
        QTRY_VERIFY(after);
        QVERIFY(!called);
    }

    // A write asked for just before the service goes away is still made.
    void keyServiceFinishesWritesWhenDestroyed()
    {
        {
            KeyService service;
            service.write({ { QStringLiteral("falAIKey"), QStringLiteral("fal-last") } }, nullptr, {});
        }
        QCOMPARE(SecretStore().get(QStringLiteral("falAIKey")), std::optional<QString>(QStringLiteral("fal-last")));
    }

    // Re-runs this executable with the session bus pointing at nothing: every call must
    // fail, with the no-service code, within the 2 s bound, and without a crash.
    void failsFastWithoutSecretService()
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/zentrik-bus"));
        const test::ChildRun run = test::runTestClassInChild(QStringLiteral("NoSecretServiceTest"), env);
        QVERIFY2(run.finished && run.exitCode == 0, run.output.constData());
        // The child must really have run its cases, not skipped them.
        QVERIFY2(run.output.contains("PASS   : NoSecretServiceTest::everyOperationFailsQuickly(allKeys)"),
            run.output.constData());
    }
};
ZENTRIK_TEST(SecretStoreTest)

namespace {

// Runs one store operation by its row number in the tables below; whether it succeeded.
bool runOperation(SecretStore &store, int operation)
{
    switch (operation) {
    case 0:
        return store.set(QStringLiteral("v"), QStringLiteral("k"));
    case 1:
        return store.get(QStringLiteral("k")).has_value();
    case 2:
        return store.getData(QStringLiteral("k"), true).has_value();
    case 3:
        return store.remove(QStringLiteral("k"));
    case 4:
        return store.clear();
    case 5:
        return !store.allKeys().isEmpty();
    default:
        return store.isAvailable();
    }
}

} // namespace

// The child half of failsFastWithoutSecretService.
class NoSecretServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        QVERIFY(!runOperation(store, operation));
        QCOMPARE(store.lastResultCode(), int(secretNoService));
        QVERIFY2(timer.elapsed() < SecretStore::timeoutMs + 500, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!store.isAvailable());
    }
};
ZENTRIK_CHILD_TEST(NoSecretServiceTest)

// The child half of givesUpOnAHungService, on a bus where the Secret Service never answers.
class HungSecretServiceTest : public QObject
{
    Q_OBJECT

    static constexpr qint64 deadlineMs = SecretStore::timeoutMs;
    // Process scheduling on a loaded machine; far below a second deadline.
    static constexpr qint64 slackMs = 700;

private Q_SLOTS:
    // Each operation waits for its one deadline, not one per libsecret call (a set that
    // first removes the old item used to wait twice).
    void everyOperationGivesUpAtOneDeadline_data()
    {
        QTest::addColumn<int>("operation");
        QTest::newRow("set") << 0;
        QTest::newRow("get") << 1;
        QTest::newRow("getData reference") << 2;
        QTest::newRow("delete") << 3;
        QTest::newRow("clear") << 4;
        QTest::newRow("allKeys") << 5;
        QTest::newRow("isAvailable") << 6;
    }

    void everyOperationGivesUpAtOneDeadline()
    {
        QFETCH(int, operation);
        SecretStore store;
        QElapsedTimer timer;
        timer.start();
        const bool succeeded = runOperation(store, operation);
        const qint64 elapsed = timer.elapsed();
        QVERIFY(!succeeded);
        QCOMPARE(store.lastResultCode(), int(secretTimedOut));
        QVERIFY2(elapsed >= deadlineMs - 100 && elapsed < deadlineMs + slackMs, qPrintable(QString::number(elapsed)));
    }

    // Several calls under one deadline share it.
    void aSharedDeadlineCoversSeveralCalls()
    {
        SecretStore store;
        QElapsedTimer timer;
        timer.start();
        store.setDeadline(SecretStore::Clock::now() + std::chrono::milliseconds(deadlineMs));
        for (const char *account : { "openAIKey", "claudeKey", "falAIKey" }) {
            QVERIFY(!store.get(QString::fromLatin1(account)));
        }
        QVERIFY2(timer.elapsed() < deadlineMs + slackMs, qPrintable(QString::number(timer.elapsed())));
    }

    // The caller never waits; a request queued behind a hung one keeps its own deadline,
    // counted from when it was asked.
    void keyServiceRequestsKeepTheirOwnDeadline()
    {
        KeyService service;
        QElapsedTimer timer;
        timer.start();
        std::optional<KeyService::Outcome> read;
        std::optional<KeyService::Outcome> written;
        qint64 readAt = 0;
        qint64 writtenAt = 0;
        service.read({ QStringLiteral("openAIKey"), QStringLiteral("claudeKey"), QStringLiteral("falAIKey") }, this,
            [&](const KeyService::Outcome &outcome) {
                read = outcome;
                readAt = timer.elapsed();
            });
        service.write(
            { { QStringLiteral("openAIKey"), QStringLiteral("sk-x") } }, this, [&](const KeyService::Outcome &outcome) {
                written = outcome;
                writtenAt = timer.elapsed();
            });
        QVERIFY2(timer.elapsed() < 50, qPrintable(QString::number(timer.elapsed())));
        QTRY_VERIFY_WITH_TIMEOUT(written.has_value(), 10000);
        QVERIFY(read.has_value());
        QCOMPARE(read->code, int(secretTimedOut));
        QCOMPARE(written->code, int(secretTimedOut));
        QVERIFY2(readAt < deadlineMs + slackMs, qPrintable(QString::number(readAt)));
        QVERIFY2(writtenAt < deadlineMs + slackMs, qPrintable(QString::number(writtenAt)));
        QVERIFY(KeyService::describe(read->code).contains(QStringLiteral("Secret Service")));
    }

    // Closing the window while a read hangs does not wait for the deadline.
    void destroyingTheServiceCancelsARead()
    {
        auto service = std::make_unique<KeyService>();
        bool called = false;
        service->read({ QStringLiteral("openAIKey") }, this, [&](const KeyService::Outcome &) { called = true; });
        QTest::qWait(200); // the read has reached the service, which does not answer
        QElapsedTimer timer;
        timer.start();
        service.reset();
        QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
        QTest::qWait(50); // an answer already queued for this test object would be delivered now
        QVERIFY(!called);
    }
};
ZENTRIK_CHILD_TEST(HungSecretServiceTest)

#include "tst_secretstore.moc"
