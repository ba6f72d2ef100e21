#include "support/testregistry.h"
#include "tools/assistantfamily.h"

#include <QtTest>

#include <QSet>

using namespace zentrik;

namespace {

const FormAssistant *anyAssistant(const QString &title)
{
    const AssistantFamily *family = AssistantFamily::containing(title);
    return family == nullptr ? nullptr : family->table().find(title);
}

} // namespace

class AssistantTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormIsWellFormed_data()
    {
        QTest::addColumn<QString>("title");
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const QString &title : family->table().titles()) {
                QTest::newRow(qPrintable(title)) << title;
            }
        }
    }

    void everyFormIsWellFormed()
    {
        QFETCH(QString, title);
        const FormAssistant *assistant = anyAssistant(title);
        QVERIFY(!assistant->id.isNull());
        QVERIFY(!assistant->description.isEmpty());
        QVERIFY(!assistant->promptTemplate.introduction.isEmpty());
        QVERIFY(!assistant->promptTemplate.closing.isEmpty());
        QVERIFY(assistant->promptTemplate.toneGuidelines.size() >= 2);

        QSet<QString> labels;
        QSet<QUuid> ids;
        for (const InputField &field : assistant->inputs) {
            // Values are keyed by label, so a repeated label would merge two fields.
            QVERIFY2(!labels.contains(field.label), qPrintable(field.label));
            labels.insert(field.label);
            QVERIFY(!field.label.isEmpty());
            QVERIFY(!field.id.isNull());
            QVERIFY(!ids.contains(field.id));
            ids.insert(field.id);
            const bool isSelect = field.type == InputField::Type::Select;
            QCOMPARE(field.options.isEmpty(), !isSelect);
            if (isSelect) {
                QVERIFY(field.placeholder.isEmpty());
                QCOMPARE(QSet<QString>(field.options.cbegin(), field.options.cend()).size(), field.options.size());
            }
            QCOMPARE(InputField::typeFromName(field.typeName()), std::optional(field.type));
        }
    }

    void titlesAndIdsAreUniqueAcrossFamilies()
    {
        QSet<QString> titles;
        QSet<QUuid> ids;
        int total = 0;
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const FormAssistant &assistant : family->table().entries()) {
                titles.insert(assistant.title);
                ids.insert(assistant.id);
                ++total;
                QCOMPARE(AssistantFamily::containing(assistant.title), family);
            }
        }
        QCOMPARE(titles.size(), total);
        QCOMPARE(ids.size(), total);
    }
};

ZENTRIK_TEST(AssistantTablesTest)
#include "tst_assistanttables.moc"
