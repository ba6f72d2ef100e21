#include "app/licensegate.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;
using namespace std::chrono_literals;
using test::FakeProvider;
using test::ScriptedReply;

Q_DECLARE_METATYPE(ScriptedReply)

namespace {
const QString licenseAccount = QString::fromLatin1(LicenseGate::licenseAccount);
const QByteArray licensePath = QByteArrayLiteral("/v1/license/verify");
} // namespace

// The start-up licence check against a real HTTP server on loopback.
class LicenseGateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        SecretStore().remove(licenseAccount);
        qunsetenv(LicenseGate::urlVariable);
    }

    void noServicePassesAtOnce()
    {
        qputenv(LicenseGate::urlVariable, QByteArray());
        LicenseGate gate;
        QVERIFY(gate.serviceUrl().isEmpty());
        QSignalSpy states(&gate, &LicenseGate::stateChanged);
        gate.start();
        QCOMPARE(gate.state(), LicenseGate::State::Verified);
        QVERIFY(gate.isLicenseVerified());
        QVERIFY(!gate.showLicenseSetup());
        QCOMPARE(states.count(), 1);
        QVERIFY(gate.message().isEmpty());
    }

    void answers_data()
    {
        QTest::addColumn<ScriptedReply>("reply");
        QTest::addColumn<bool>("verified");
        QTest::addColumn<QString>("message");

        QTest::newRow("valid") << ScriptedReply::json(R"({"valid": true})") << true << QString();
        QTest::newRow("refused") << ScriptedReply::json(R"({"valid": false})") << false
                                 << "This license key is not valid. Check it and try again.";
        QTest::newRow("valid as a string") << ScriptedReply::json(R"({"valid": "true"})") << false
                                           << "This license key is not valid. Check it and try again.";
        QTest::newRow("valid but HTTP 403") << ScriptedReply::json(R"({"valid": true})", 403) << false
                                            << "The license could not be verified (HTTP 403). Please try again.";
        QTest::newRow("not JSON") << ScriptedReply::json("<html>hello</html>") << false
                                  << "The license service sent an answer that could not be read.";
        QTest::newRow("cut off") << ScriptedReply::truncated(R"({"valid": true, "padding": "xxxxxxxx"})", 10) << false
                                 << "The license service could not be reached: ";
    }

    void answers()
    {
        QFETCH(ScriptedReply, reply);
        QFETCH(bool, verified);
        QFETCH(QString, message);
        FakeProvider fake;
        fake.on("POST", licensePath, reply);
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + licensePath);

        LicenseGate gate;
        gate.submitKey(QStringLiteral("  ZK-1234-5678  "));
        QVERIFY(gate.isChecking());
        QCOMPARE(gate.message(), QStringLiteral("Checking license..."));
        QTRY_VERIFY_WITH_TIMEOUT(!gate.isChecking(), 10000);
        QCOMPARE(gate.isLicenseVerified(), verified);
        QCOMPARE(gate.showLicenseSetup(), !verified);
        if (verified) {
            QVERIFY(gate.message().isEmpty());
        } else {
            QVERIFY2(gate.message().startsWith(message), qPrintable(gate.message()));
        }

        QCOMPARE(fake.requestCount(), 1);
        const test::RecordedRequest request = fake.lastRequest();
        QCOMPARE(request.method, QByteArrayLiteral("POST"));
        QCOMPARE(request.header("Content-Type"), QByteArrayLiteral("application/json"));
        QCOMPARE(
            request.json().object(), QJsonObject({ { QStringLiteral("licenseKey"), QStringLiteral("ZK-1234-5678") } }));
    }

    void unreachableServiceSaysSo()
    {
        // A port nothing listens on: the connection is refused at once.
        std::unique_ptr<FakeProvider> fake = std::make_unique<FakeProvider>();
        const QUrl url = fake->baseUrl().resolved(QUrl(QString::fromLatin1(licensePath)));
        fake.reset();
        qputenv(LicenseGate::urlVariable, url.toString().toUtf8());
        LicenseGate gate;
        gate.submitKey(QStringLiteral("ZK-1"));
        QTRY_VERIFY_WITH_TIMEOUT(gate.showLicenseSetup(), 10000);
        QVERIFY2(gate.message().startsWith(QStringLiteral("The license service could not be reached: ")),
            qPrintable(gate.message()));
        QVERIFY(gate.message().size() > QStringLiteral("The license service could not be reached: ").size());
    }

    void badAddressIsRefusedWithoutARequest()
    {
        qputenv(LicenseGate::urlVariable, "not a url at all");
        LicenseGate gate;
        gate.submitKey(QStringLiteral("ZK-1"));
        QVERIFY(gate.showLicenseSetup());
        QCOMPARE(gate.message(), QStringLiteral("The license service address is not valid."));
    }

    void blankKeyIsNotSent()
    {
        FakeProvider fake;
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + licensePath);
        LicenseGate gate;
        gate.submitKey(QStringLiteral(" \n\t "));
        QVERIFY(gate.showLicenseSetup());
        QCOMPARE(gate.message(), QStringLiteral("Enter your license key to continue."));
        QCOMPARE(fake.requestCount(), 0);
    }

    void startWithoutAStoredKeyAsksForOne()
    {
        FakeProvider fake;
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + licensePath);
        SecretStore().remove(licenseAccount);
        LicenseGate gate;
        gate.start();
        // The stored key is looked for in the background.
        QVERIFY(gate.isChecking());
        QTRY_VERIFY(gate.showLicenseSetup());
        QVERIFY(gate.message().endsWith(QStringLiteral("Enter your license key to continue.")));
        QCOMPARE(fake.requestCount(), 0);
    }

    // The key typed once is kept in the secret store and checked at the next start.
    void submittedKeyIsStoredAndUsedAtTheNextStart()
    {
        if (!SecretStore().isAvailable()) {
            QSKIP("No Secret Service on this session bus; scripts/test provides one");
        }
        FakeProvider fake;
        fake.on("POST", licensePath, ScriptedReply::json(R"({"valid": true})"));
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + licensePath);
        {
            LicenseGate first;
            first.submitKey(QStringLiteral("ZK-STORED"));
            QTRY_VERIFY_WITH_TIMEOUT(first.isLicenseVerified(), 10000);
        }
        QCOMPARE(SecretStore().get(licenseAccount).value_or(QString()), QStringLiteral("ZK-STORED"));

        LicenseGate second;
        second.start();
        QVERIFY(second.isChecking());
        // A second start while the check runs sends nothing more.
        second.start();
        QTRY_VERIFY_WITH_TIMEOUT(second.isLicenseVerified(), 10000);
        QCOMPARE(fake.requestCount(), 2);
        QCOMPARE(fake.lastRequest().json().object().value(QStringLiteral("licenseKey")).toString(),
            QStringLiteral("ZK-STORED"));
    }

    // A stuck service leaves the screen on "Checking license..." and the window usable;
    // destroying the gate mid-request is safe.
    void gateCanGoAwayMidRequest()
    {
        FakeProvider fake;
        fake.on("POST", licensePath, ScriptedReply::noAnswer());
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + licensePath);
        auto gate = std::make_unique<LicenseGate>();
        gate->submitKey(QStringLiteral("ZK-1"));
        QTRY_COMPARE(fake.requestCount(), 1);
        QVERIFY(gate->isChecking());
        gate.reset();
        QTest::qWait(50); // what the aborted request still delivers reaches nobody, and nothing crashes
    }
};
ZENTRIK_TEST(LicenseGateTest)

#include "tst_licensegate.moc"
