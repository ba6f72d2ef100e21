#include "privacy/piialertviewmodel.h"

#include "support/testregistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace zentrik;

class PiiAlertViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void messageWithEmailOpensTheDialog()
    {
        PiiAlertViewModel model;
        QStringList order;
        connect(&model, &PiiAlertViewModel::originalMessageChanged, this, [&] { order << QStringLiteral("original"); });
        connect(&model, &PiiAlertViewModel::redactedMessageChanged, this, [&] { order << QStringLiteral("redacted"); });
        connect(&model, &PiiAlertViewModel::showAlertChanged, this, [&] { order << QStringLiteral("show"); });
        QSignalSpy shown(&model, &PiiAlertViewModel::showAlertChanged);

        const QString message = QStringLiteral("Reply to jane@example.com please");
        QCOMPARE(model.checkForPII(message), true);
        QCOMPARE(model.originalMessage(), message);
        QCOMPARE(model.redactedMessage(), QStringLiteral("Reply to [EMAIL_ADDRESS] please"));
        QCOMPARE(model.showAlert(), true);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(
            order, (QStringList { QStringLiteral("original"), QStringLiteral("redacted"), QStringLiteral("show") }));
    }

    void closingKeepsTheMessages()
    {
        PiiAlertViewModel model;
        QVERIFY(model.checkForPII(QStringLiteral("SSN 123-45-6789")));
        QSignalSpy shown(&model, &PiiAlertViewModel::showAlertChanged);
        QSignalSpy original(&model, &PiiAlertViewModel::originalMessageChanged);

        model.setShowAlert(false);
        model.setShowAlert(false);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(model.originalMessage(), QStringLiteral("SSN 123-45-6789"));
        QCOMPARE(model.redactedMessage(), QStringLiteral("SSN [SSN]"));

        // A clean message leaves the last values alone; the next positive check replaces them.
        QVERIFY(!model.checkForPII(QStringLiteral("all clear")));
        QCOMPARE(model.originalMessage(), QStringLiteral("SSN 123-45-6789"));
        QVERIFY(model.checkForPII(QStringLiteral("Zip 90210")));
        QCOMPARE(model.originalMessage(), QStringLiteral("Zip 90210"));
        QCOMPARE(model.redactedMessage(), QStringLiteral("Zip [ZIP_CODE]"));
        QCOMPARE(model.showAlert(), true);
        QCOMPARE(original.count(), 1);
        QCOMPARE(shown.count(), 2);
    }
};

ZENTRIK_TEST(PiiAlertViewModelTest)
#include "tst_piialertviewmodel.moc"
