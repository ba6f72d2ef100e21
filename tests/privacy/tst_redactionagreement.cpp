#include "hostileredactiontexts.h"
#include "support/logcapture.h"

#include "privacy/casefold.h"
#include "privacy/nameredactorpii.h"
#include "privacy/patternpass.h"
#include "privacy/piimanager.h"
#include "reference/referenceredaction.h"

#include "support/testregistry.h"

#include <QRandomGenerator>
#include <QTest>

#include <unicode/unistr.h>

#include <functional>

using namespace zentrik;

namespace {

// Texts built to hit the corners of the name pass and the nine rules: greetings and
// sign-offs packed close together, names that are prefixes and suffixes of each other in
// any case, characters that fold onto letters, text outside the BMP before a match, digits
// of other scripts, and plain noise.
class TextGenerator
{
public:
    TextGenerator(quint32 seed, QStringList names)
        : m_random(seed)
        , m_names(std::move(names))
    { }

    QString denseGreetings()
    {
        return build(18,
            { { 5, [this] { return greeting(); } }, { 5, [this] { return name(); } },
                { 4, [this] { return separator(); } }, { 1, [this] { return word(); } } });
    }
    QString denseSignOffs()
    {
        return build(18,
            { { 5, [this] { return name(); } }, { 5, [this] { return signOff(); } },
                { 3, [this] { return separator(); } }, { 1, [this] { return word(); } } });
    }
    QString nonAscii()
    {
        return build(16,
            { { 3, [this] { return nonAsciiPiece(); } }, { 2, [this] { return greeting(); } },
                { 3, [this] { return name(); } }, { 2, [this] { return signOff(); } },
                { 2, [this] { return separator(); } }, { 2, [this] { return personalData(); } } });
    }
    QString mixed()
    {
        return build(24,
            { { 2, [this] { return greeting(); } }, { 2, [this] { return name(); } },
                { 2, [this] { return signOff(); } }, { 3, [this] { return separator(); } },
                { 3, [this] { return word(); } }, { 3, [this] { return personalData(); } },
                { 1, [this] { return nonAsciiPiece(); } } });
    }
    QString noise()
    {
        static const QString pool = QStringLiteral(
            "abcdehilmnorstyAHKS  ..,,@-()/:0123456789\n\t\u00df\u017f\u212a\ufb06\u0301\u200b\u00a0\u0663");
        QString text;
        const int length = int(m_random.bounded(1, 80));
        for (int i = 0; i < length; ++i) {
            if (m_random.bounded(40) == 0) {
                text += QString::fromUcs4(U"\U0001F600\U0001D7D9", 2).mid(qsizetype(m_random.bounded(2)) * 2, 2);
            } else {
                text += pool.at(m_random.bounded(int(pool.size())));
            }
        }
        return text;
    }

private:
    using Piece = std::pair<int, std::function<QString()>>;

    QString build(int maxPieces, const std::vector<Piece> &pieces)
    {
        int total = 0;
        for (const Piece &piece : pieces) {
            total += piece.first;
        }
        QString text;
        const int count = int(m_random.bounded(1, maxPieces + 1));
        for (int i = 0; i < count; ++i) {
            int pick = int(m_random.bounded(total));
            for (const Piece &piece : pieces) {
                if ((pick -= piece.first) < 0) {
                    text += piece.second();
                    break;
                }
            }
        }
        return text;
    }

    QString pick(const QStringList &list) { return list.at(m_random.bounded(int(list.size()))); }

    QString recase(QString text)
    {
        switch (m_random.bounded(5)) {
        case 0:
            return text.toLower();
        case 1:
            return text.toUpper();
        default:
            return text;
        }
    }

    // Spellings that fold to the same letters: sharp s, long s, Kelvin sign, ligatures.
    QString foldTrick(QString text)
    {
        if (m_random.bounded(4) != 0) {
            return text;
        }
        static const std::vector<std::pair<QString, QString>> tricks = {
            { QStringLiteral("ss"), QStringLiteral("\u00df") },
            { QStringLiteral("s"), QStringLiteral("\u017f") },
            { QStringLiteral("k"), QStringLiteral("\u212a") },
            { QStringLiteral("K"), QStringLiteral("\u212a") },
            { QStringLiteral("st"), QStringLiteral("\ufb06") },
            { QStringLiteral("ff"), QStringLiteral("\ufb00") },
            { QStringLiteral("fi"), QStringLiteral("\ufb01") },
            { QStringLiteral("ffi"), QStringLiteral("\ufb03") },
            { QStringLiteral("a"), QStringLiteral("a\u0301") },
            { QStringLiteral("n"), QStringLiteral("n\u200b") },
        };
        const auto &[from, to] = tricks.at(m_random.bounded(int(tricks.size())));
        const qsizetype at = text.indexOf(from, 0, Qt::CaseInsensitive);
        if (at >= 0) {
            text.replace(at, from.size(), to);
        }
        return text;
    }

    QString greeting()
    {
        static const QStringList greetings = { QStringLiteral("Hi "), QStringLiteral("hello "), QStringLiteral("Dear "),
            QStringLiteral("Hey "), QStringLiteral("hey there "), QStringLiteral("My name is "),
            QStringLiteral("my name "), QStringLiteral("Greetings "), QStringLiteral("Oh hi "), QStringLiteral("hi  "),
            QStringLiteral("hi"), QStringLiteral(". Hi "), QStringLiteral(".\n\nhello "), QStringLiteral(".\u00a0hey "),
            QStringLiteral(".\u2003Dear "), QStringLiteral("Hiya ") };
        return foldTrick(recase(pick(greetings)));
    }

    QString name()
    {
        if (m_names.isEmpty() || m_random.bounded(8) == 0) {
            return pick(
                { QStringLiteral("there"), QStringLiteral("x"), QStringLiteral("Everyone"), QStringLiteral("al") });
        }
        QString result = recase(pick(m_names));
        switch (m_random.bounded(6)) {
        case 0:
            result += pick({ QStringLiteral("a"), QStringLiteral("belle"), QStringLiteral("x"), QStringLiteral("n") });
            break;
        case 1:
            result = pick({ QStringLiteral("x"), QStringLiteral("Jo"), QStringLiteral("m") }) + result;
            break;
        case 2:
            result.chop(result.size() > 1 ? 1 : 0);
            break;
        default:
            break;
        }
        return foldTrick(result);
    }

    QString signOff()
    {
        static const QStringList signOffs = { QStringLiteral(", thanks"), QStringLiteral(" thx"),
            QStringLiteral(", thank you"), QStringLiteral(" regards"), QStringLiteral(", best"),
            QStringLiteral(" kindly"), QStringLiteral(", warm regards"), QStringLiteral(" all the best"),
            QStringLiteral(", happy coding"), QStringLiteral(" take care"), QStringLiteral(", have a nice weekend"),
            QStringLiteral(" have a great day"), QStringLiteral(", HAVE A GOOD NIGHT"), QStringLiteral(", have a  day"),
            QStringLiteral(" only"), QStringLiteral(",  thanks"), QStringLiteral(",thanks"),
            QStringLiteral(" really bestly"), QStringLiteral(" have a lovely day"),
            QStringLiteral(" Yours sincerely") };
        return foldTrick(recase(pick(signOffs)));
    }

    QString separator()
    {
        static const QStringList separators = { QStringLiteral(". "), QStringLiteral(".  "), QStringLiteral(".\n"),
            QStringLiteral(".\t"), QStringLiteral(" "), QStringLiteral(", "), QStringLiteral(","), QStringLiteral("\n"),
            QStringLiteral("."), QStringLiteral(".\u00a0"), QStringLiteral("! "), QStringLiteral("") };
        return pick(separators);
    }

    QString word()
    {
        static const QStringList words = { QStringLiteral("the "), QStringLiteral("only "), QStringLiteral("really "),
            QStringLiteral("family "), QStringLiteral("report "), QStringLiteral("compass "),
            QStringLiteral("passport "), QStringLiteral("users "), QStringLiteral("best "), QStringLiteral("regards "),
            QStringLiteral("have a ") };
        return pick(words);
    }

    QString personalData()
    {
        static const QStringList data = { QStringLiteral("anna.b+x@mail.example.com"), QStringLiteral("x@y"),
            QStringLiteral("a@b@c.de"), QStringLiteral("@"), QStringLiteral("(555) 123-4567"),
            QStringLiteral("5551234567"), QStringLiteral("4111111111111111"), QStringLiteral("4111 1111 1111 1111"),
            QStringLiteral("4111-1111-1111-1111"), QStringLiteral("123-45-6789"), QStringLiteral("90210"),
            QStringLiteral("90210-1234"), QStringLiteral("192.168.1.10"), QStringLiteral("999.999.999.999"),
            QStringLiteral("\u0663\u0664\u0665\u0666\u0667"), QStringLiteral("\uff11\uff12\uff13\uff14\uff15"),
            QString::fromUcs4(U"\U0001D7D9\U0001D7DA\U0001D7DB\U0001D7DC\U0001D7DD", 5), QStringLiteral("user"),
            QStringLiteral("username: bob"), QStringLiteral("login: bob"), QStringLiteral("pass"),
            QStringLiteral("secret: hunter2"), QStringLiteral("creds: a / b"), QStringLiteral("login info"),
            QStringLiteral("user name"), QStringLiteral("12 34") };
        QString piece = pick(data);
        if (m_random.bounded(3) == 0) {
            piece += QString::number(m_random.bounded(100000));
        }
        return piece;
    }

    QString nonAsciiPiece()
    {
        static const QStringList pieces = { QStringLiteral("\u00e9"), QString::fromUcs4(U"\U0001F600", 1),
            QString::fromUcs4(U"\U0001D7D8", 1), QStringLiteral("\u041f\u0440\u0438\u0432\u0435\u0442 "),
            QStringLiteral("\u0301"), QStringLiteral("\u200b"), QStringLiteral("\u00ad"),
            QStringLiteral("\u4e2d\u6587"), QStringLiteral("\u00df"), QStringLiteral("\ufb03"),
            QStringLiteral("\u0130"), QStringLiteral("\u0131"), QStringLiteral("\u212a"), QStringLiteral("\u017f"),
            QString::fromUcs4(U"\U0001F469\u200D\U0001F4BB", 3) };
        return pick(pieces);
    }

    QRandomGenerator m_random;
    QStringList m_names;
};

// Names chosen to be prefixes, suffixes and fold-alikes of each other.
QStringList trickyNames()
{
    return { QStringLiteral("Annabelle"), QStringLiteral("Anna"), QStringLiteral("Ann"), QStringLiteral("Jo"),
        QStringLiteral("Joann"), QStringLiteral("Kate"), QStringLiteral("Kristof"), QStringLiteral("Russ"),
        QStringLiteral("Jess"), QStringLiteral("Stan"), QStringLiteral("Effie"), QStringLiteral("Fiona"),
        QStringLiteral("Bob"), QStringLiteral("Al"), QStringLiteral("Eve"), QStringLiteral("Ed"),
        QStringLiteral("Christopher"), QStringLiteral("Mark"), QStringLiteral("Ty"), QStringLiteral("anna"),
        QStringLiteral("Sky"), QStringLiteral("Ann") };
}

QString describe(const QString &text)
{
    QString shown;
    for (const QChar c : text) {
        shown += (c.unicode() < 0x20 || c.unicode() > 0x7e)
            ? QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'))
            : QString(c);
    }
    return shown;
}

// Compares the matches of both name passes and the text after each.
bool namesAgree(const NameRedactorPII &redactor, const QString &text, QString *named)
{
    const QString replacement = QStringLiteral("[NAME]");
    QString current = text;
    for (NamePass pass : { NamePass::Greeting, NamePass::SignOff }) {
        const NameMatches matches = redactor.matches(pass, current);
        const NameMatches expected = reference::nameMatches(pass, current, redactor.wellKnownNames());
        if (matches != expected) {
            qWarning().noquote() << (pass == NamePass::Greeting ? "greeting" : "sign-off") << "matches differ for"
                                 << describe(current) << "got" << matches << "expected" << expected;
            return false;
        }
        current = reference::applyNameMatches(current, expected, replacement);
    }
    *named = redactor.redact(text);
    if (*named != current) {
        qWarning().noquote() << "names differ for" << describe(text) << "got" << describe(*named) << "expected"
                             << describe(current);
        return false;
    }
    return true;
}

// Compares the nine rules. Recompiling them is most of the reference's cost on short
// texts, so the tests hand it several generated texts joined into one.
bool rulesAgree(const QString &text)
{
    static const std::vector<PatternPass> passes(redactionRules.begin(), redactionRules.end());
    QString patterned = text;
    for (const PatternPass &pass : passes) {
        patterned = pass.apply(patterned);
    }
    const QString expected = reference::redactPatterns(text);
    if (patterned != expected) {
        qWarning().noquote() << "rules differ for" << describe(text) << "got" << describe(patterned) << "expected"
                             << describe(expected);
        return false;
    }
    return true;
}

} // namespace

// The fast path against the straightforward chain it replaces.
class RedactionAgreementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void generatedTexts_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("count");

        // 10,640 texts in all.
        const QStringList shipped = NameRedactorPII::loadWellKnownNames();
        QStringList sample;
        for (qsizetype i = 0; i < shipped.size(); i += 97) {
            sample.append(shipped.at(i));
        }
        QTest::newRow("tricky names") << trickyNames() << 1U << 6000;
        QTest::newRow("sample of the shipped names") << sample << 2U << 3000;
        QTest::newRow("one name") << QStringList { QStringLiteral("Anna") } << 3U << 600;
        QTest::newRow("two names") << QStringList { QStringLiteral("Jo"), QStringLiteral("Annabelle") } << 4U << 600;
        QTest::newRow("no names") << QStringList {} << 5U << 200;
        QTest::newRow("names that are no plain words")
            << QStringList { QStringLiteral("A.na"), QStringLiteral("J(o)") } << 6U << 200;
        QTest::newRow("shipped names") << shipped << 7U << 40;
    }

    void generatedTexts()
    {
        QFETCH(QStringList, names);
        QFETCH(quint32, seed);
        QFETCH(int, count);

        const test::LogCapture quiet("zentrik.privacy");
        const NameRedactorPII redactor(QStringLiteral("[NAME]"), names);
        TextGenerator generator(seed, names);
        const std::vector<std::function<QString()>> kinds = { [&] { return generator.denseGreetings(); },
            [&] { return generator.denseSignOffs(); }, [&] { return generator.nonAscii(); },
            [&] { return generator.mixed(); }, [&] { return generator.noise(); } };
        static const QStringList joints
            = { QString(), QStringLiteral(" "), QStringLiteral("\n"), QStringLiteral(". ") };
        QString batch;
        for (int i = 0; i < count; ++i) {
            const QString text = kinds.at(size_t(i) % kinds.size())();
            QString named;
            QVERIFY2(namesAgree(redactor, text, &named), qPrintable(describe(text)));
            batch += joints.at(i % joints.size()) + named;
            if (i % 8 == 7 || i == count - 1) {
                QVERIFY(rulesAgree(batch));
                batch.clear();
            }
        }
    }

    // The shapes that once made a pass take time growing with the square of the length, at a
    // size the reference still finishes quickly.
    void hostileTexts_data() { test::addHostileRedactionRows(); }

    void hostileTexts()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, unit);
        QFETCH(QString, suffix);
        const test::LogCapture quiet("zentrik.privacy");
        const QString text = test::hostileText(prefix, unit, suffix, 3000);
        QString named;
        QVERIFY(namesAgree(NameRedactorPII::shared(), text, &named));
        QVERIFY(rulesAgree(named));
    }

    void fullRedactionMatchesReference()
    {
        const test::LogCapture quiet("zentrik.privacy");
        TextGenerator generator(8, NameRedactorPII::shared().wellKnownNames());
        for (int i = 0; i < 30; ++i) {
            const QString text = generator.mixed();
            QCOMPARE(PIIManager::redact(text), reference::redact(text, NameRedactorPII::shared().wellKnownNames()));
        }
    }

    // The fold table must know every character whose case folding is plain letters.
    void foldTableIsComplete()
    {
        for (UChar32 c = 0; c <= 0x10ffff; ++c) {
            if (c >= 0xd800 && c <= 0xdfff) {
                continue;
            }
            icu::UnicodeString folded(c);
            folded.foldCase();
            std::string expected;
            for (int32_t i = 0; i < folded.length(); ++i) {
                const char16_t unit = folded.charAt(i);
                if (unit < u'a' || unit > u'z') {
                    expected.clear();
                    break;
                }
                expected.push_back(char(unit));
            }
            std::string got;
            const bool folds = casefold::appendAsciiFold(c, got);
            if (folds != !expected.empty() || got != expected) {
                QFAIL(qPrintable(QStringLiteral("U+%1").arg(c, 4, 16, QLatin1Char('0'))));
            }
        }
    }
};

ZENTRIK_TEST(RedactionAgreementTest)
#include "tst_redactionagreement.moc"
