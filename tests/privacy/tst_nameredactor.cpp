#include "support/logcapture.h"

#include "privacy/nameredactorpii.h"
#include "reference/referenceredaction.h"

#include "support/testregistry.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace zentrik;

// NameRedactorPII on chosen name lists: the greeting and sign-off rules, the offsets that
// are not shifted, the matches that are skipped, and the lists that cannot be indexed.
class NameRedactorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redacts_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("skipped");

        const QStringList anna { QStringLiteral("Anna") };
        const auto row
            = [](const char *name, const QStringList &names, const char *text, const char *expected, int skipped = 0) {
                  QTest::newRow(name) << names << QString::fromUtf8(text) << QString::fromUtf8(expected) << skipped;
              };
        row("greeting", anna, "Hi Anna, can you help", "Hi [NAME], can you help");
        row("dear in lower case", anna, "Dear anna", "Dear [NAME]");
        row("my name is", anna, "My name is Anna", "My name is [NAME]");
        row("capital greeting", anna, "HELLO anna", "HELLO [NAME]");
        row("after a full stop and blanks", anna, "Thanks.\n\t Hey Anna", "Thanks.\n\t Hey [NAME]");
        row("full stop without a blank", anna, "Thanks.Hey Anna", "Thanks.Hey Anna");
        row("not at a sentence start", anna, "Oh hi Anna", "Oh hi Anna");
        row("single name needs both boundaries", anna, "Hi Annabelle", "Hi Annabelle");
        row("hey there", anna, "Hey there Anna", "Hey there [NAME]");
        row("have a day", anna, "Anna, have a great day", "Anna, have a great [NAME]");
        row("sign-off with no name group", anna, "Anna, thanks", "Anna, thanks", 1);
        row("best regards", anna, "anna best regards", "anna best regards", 1);
        row("empty list inserts at the next word", {}, "hi there", "hi [NAME]there");
        row("empty list sign-off", {}, "Bob, thanks", "Bob, thanks", 1);
        row("offsets are not shifted", { "Jo", "Annabelle" }, "Hi Jo. Hi Annabelle", "Hi [NAME].[NAME]elle");
        row("first name in list order wins", { "Ann", "Anna", "Zed" }, "Hi Annabelle", "Hi [NAME]abelle");
        row("inner names need no boundary", { "Zed", "Ann", "Yul" }, "Hi Annabelle", "Hi [NAME]abelle");
        row("last name needs the trailing boundary", { "Zed", "Ann" }, "Hi Annabelle", "Hi Annabelle");
        row("shrinking pushes a later range out", { "Christopher" }, "Hi Christopher. Hi Christopher",
            "Hi [NAME]. Hi Christopher", 1);
        row("a range that would split a character", { "Christopher", "Bo", "Zed" }, "Hi Christopher. Hi Boab😀xyz",
            "Hi [NAME]. Hi Boab😀xyz", 1);
        row("sharp s folds to ss", { "Zed", "Russ", "Yul" }, "Hi Ruß", "Hi [NAME]");
        row("Kelvin sign folds to k", { "Zed", "Kate", "Yul" }, "Hi \u212Aate", "Hi [NAME]");
        row("non-BMP text before a match", anna, "😀😀. hi anna", "😀😀. hi [NAME]");
        row("name that is not a plain word", { "A.na" }, "Hi Axna", "Hi [NAME]");
        row("list that does not compile", { "Anna", "Bo(b" }, "Hi Anna", "Hi Anna");
    }

    void redacts()
    {
        QFETCH(QStringList, names);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QFETCH(int, skipped);

        const NameRedactorPII redactor(QStringLiteral("[NAME]"), names);
        {
            const test::LogCapture log("zentrik.privacy");
            QCOMPARE(redactor.redact(text), expected);
            QCOMPARE(log.lines().size(), skipped);
        }
        const test::LogCapture log("zentrik.privacy");
        QCOMPARE(reference::redactNames(text, names, QStringLiteral("[NAME]")), expected);
        QCOMPARE(log.lines().size(), skipped);
    }

    void usesItsReplacement()
    {
        const NameRedactorPII redactor(QStringLiteral("<who>"), { QStringLiteral("Anna") });
        QCOMPARE(redactor.replaceWith(), QStringLiteral("<who>"));
        QCOMPARE(redactor.redact(QStringLiteral("Hi Anna")), QStringLiteral("Hi <who>"));
    }

    void loadsTheShippedNames()
    {
        const QStringList names = NameRedactorPII::loadWellKnownNames();
        QVERIFY2(names.size() > 2000, qPrintable(QString::number(names.size())));
        static const QRegularExpression plainWord(QStringLiteral("^[A-Za-z]+$"));
        QSet<QString> seen;
        for (const QString &name : names) {
            QVERIFY2(plainWord.match(name).hasMatch(), qPrintable(name));
            QVERIFY2(!seen.contains(name.toLower()), qPrintable(name));
            seen.insert(name.toLower());
        }
        QVERIFY(seen.contains(QStringLiteral("anna")));
        // A name before one that starts with it would cut the longer one short after a greeting.
        for (qsizetype i = 1; i < names.size(); ++i) {
            QVERIFY2(names.at(i).size() <= names.at(i - 1).size(), qPrintable(names.at(i)));
        }
    }

    void sharedInstanceIsMadeOnce()
    {
        const NameRedactorPII &shared = NameRedactorPII::shared();
        QCOMPARE(&NameRedactorPII::shared(), &shared);
        QCOMPARE(shared.replaceWith(), QStringLiteral("[NAME]"));
        QCOMPARE(shared.wellKnownNames(), NameRedactorPII::loadWellKnownNames());
    }
};

ZENTRIK_TEST(NameRedactorTest)
#include "tst_nameredactor.moc"
