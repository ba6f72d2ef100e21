#include <QtTest>

#include "fuzztarget.h"
#include "support/testregistry.h"

#include <stdexcept>
#include <string>

namespace {

struct PropertyFailure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

QDir corpusDir()
{
    return QDir(QStringLiteral(CORPUS_DIR));
}

QStringList corpusFiles(const QString &target)
{
    QDir dir = corpusDir();
    if (!dir.cd(target)) {
        return {};
    }
    return dir.entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

namespace zentrik::fuzz {

// Here a failed property fails the input being replayed instead of ending the program.
void propertyFailed(const char *file, int line, const char *condition, const char *what)
{
    throw PropertyFailure(std::string(file) + ':' + std::to_string(line) + ": " + what + " (" + condition + ')');
}

} // namespace zentrik::fuzz

class FuzzReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Inputs that end a stream or skip a name log a line each; they are expected here.
        QLoggingCategory::setFilterRules(QStringLiteral("zentrik.*=false"));
    }

    // A target without seeds would replay nothing and pass unnoticed; a corpus folder whose
    // name matches no target (a typo, a renamed target) would be skipped the same way.
    void corporaMatchTargets()
    {
        QStringList names;
        for (const auto &target : zentrik::fuzz::targets()) {
            names.append(QString::fromLatin1(target.name));
            QVERIFY2(!corpusFiles(names.last()).isEmpty(),
                qPrintable(QStringLiteral("no seed inputs for the target %1").arg(names.last())));
        }
        QVERIFY(names.size() >= 8);
        const QStringList folders = corpusDir().entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &folder : folders) {
            QVERIFY2(names.contains(folder), qPrintable(QStringLiteral("corpus/%1 has no target").arg(folder)));
        }
    }

    void replay_data()
    {
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("path");
        const auto &targets = zentrik::fuzz::targets();
        for (int i = 0; i < int(targets.size()); ++i) {
            const QString name = QString::fromLatin1(targets.at(size_t(i)).name);
            for (const QString &file : corpusFiles(name)) {
                QTest::newRow(qPrintable(name + QLatin1Char('/') + file))
                    << i << corpusDir().filePath(name + QLatin1Char('/') + file);
            }
        }
    }

    void replay()
    {
        QFETCH(int, target);
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        const QByteArray input = file.readAll();
        try {
            zentrik::fuzz::targets()
                .at(size_t(target))
                .entry(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size()));
        } catch (const PropertyFailure &failure) {
            QFAIL(failure.what());
        }
    }
};

ZENTRIK_TEST(FuzzReplay)
#include "tst_fuzzreplay.moc"
