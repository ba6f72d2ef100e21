// The conversation history at the size a heavy user reaches: 10,000 conversations holding
// 200,000 messages (about 60 MB of text). Search through the FTS5 index is measured
// beside a plain LIKE scan of the same messages; opening a 1,000-message conversation (the
// store's load, and the load plus filling the chat's list model as the screen does), and
// committing one message in its own transaction with the WAL's normal sync.

#include "history/historystore.h"
#include "history/historytools.h"
#include "tools/chatmessagelistmodel.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

using namespace zentrik;

namespace {

constexpr int conversationCount = 10000;
constexpr int messagesPerConversation = 20;
constexpr int longConversationLength = 1000;

// Words of made-up syllables, drawn with a steeply falling frequency as in real text, plus
// a few real words placed a known number of times.
class TextWriter
{
public:
    TextWriter()
    {
        static const char *syllables[] = { "ka", "lo", "mi", "ne", "ru", "sa", "ti", "vo", "ze", "pa", "qui", "dra",
            "fen", "gol", "hu", "jor", "lem", "mun", "nis", "or" };
        for (int i = 0; i < 20000; ++i) {
            QString word;
            for (int n = i; word.size() < 3 || n > 0; n /= 20) {
                word += QLatin1String(syllables[n % 20]);
            }
            m_words.append(word);
        }
    }

    QString text(int words)
    {
        QString result;
        for (int i = 0; i < words; ++i) {
            const double u = std::uniform_real_distribution<double>(0, 1)(m_random);
            result += m_words.at(int(u * u * u * double(m_words.size() - 1)));
            result += (i % 12 == 11) ? QStringLiteral(". ") : QStringLiteral(" ");
        }
        return result;
    }

    [[nodiscard]] QString commonWord() const { return m_words.first(); }

private:
    QStringList m_words;
    std::mt19937 m_random { 42 };
};

struct Fixture
{
    QTemporaryDir dir;
    std::unique_ptr<HistoryStore> store;
    QString longConversation;
    QString commonWord;
    double megabytes = 0;
};

StoredMessage messageOf(int index, const QString &text, qint64 time)
{
    StoredMessage message;
    message.uid = newHistoryUid();
    message.role = index % 2 ? MessageRole::assistant : MessageRole::user;
    message.text = message.typed = message.sent = text;
    message.model = QStringLiteral("gpt-4o-mini");
    message.timeMs = time;
    return message;
}

Fixture &fixture()
{
    static Fixture *shared = [] {
        auto *made = new Fixture;
        made->store = std::make_unique<HistoryStore>(made->dir.filePath(QStringLiteral("history.sqlite")));
        if (!made->store->open()) {
            std::fprintf(stderr, "cannot open: %s\n", qPrintable(made->store->error()));
            std::abort();
        }
        TextWriter writer;
        made->commonWord = writer.commonWord();
        QElapsedTimer timer;
        timer.start();
        qint64 characters = 0;
        QList<ConversationRecord> batch;
        for (int c = 0; c < conversationCount; ++c) {
            ConversationRecord record;
            record.uid = newHistoryUid();
            record.tool = historytool::all().at(c % 4);
            record.title = writer.text(5);
            record.createdMs = record.updatedMs = 1700000000000 + qint64(c) * 60000;
            for (int m = 0; m < messagesPerConversation; ++m) {
                QString text = writer.text(m % 2 ? 53 : 23);
                if (c % 500 == 0 && m == 3) {
                    text += QStringLiteral(" The grey heron nests in the reeds.");
                }
                characters += text.size();
                record.messages.append(messageOf(m, text, record.createdMs + m));
            }
            batch.append(std::move(record));
            if (batch.size() == 500) {
                made->store->import(batch);
                batch.clear();
            }
        }
        ConversationRecord longOne;
        longOne.uid = made->longConversation = newHistoryUid();
        longOne.tool = historytool::askMeAnything;
        longOne.title = QStringLiteral("A long one");
        longOne.createdMs = longOne.updatedMs = 1800000000000;
        for (int m = 0; m < longConversationLength; ++m) {
            const QString text = m % 2 ? QStringLiteral("## Answer %1\n\n%2\n\n- **%3**\n- `%4`\n")
                                             .arg(m)
                                             .arg(writer.text(60), writer.text(3), writer.text(1))
                                       : writer.text(25);
            longOne.messages.append(messageOf(m, text, longOne.createdMs + m));
        }
        made->store->import({ longOne });
        made->megabytes = double(characters) / 1e6;
        std::fprintf(stderr,
            "history fixture: %d conversations, %d messages, %.1f million characters, built in %.1f s\n",
            conversationCount, conversationCount * messagesPerConversation, made->megabytes,
            double(timer.elapsed()) / 1000);
        return made;
    }();
    return *shared;
}

const char *queries[]
    = { "rare word", "word in most messages", "two words", "start of a word", "start of a word in most messages" };

// As typed into the search field: a word followed by a blank is taken whole, the last word
// otherwise also as the start of longer ones.
QString queryText(int which)
{
    switch (which) {
    case 0:
        return QStringLiteral("heron ");
    case 1:
        return fixture().commonWord + QLatin1Char(' ');
    case 2:
        return QStringLiteral("grey reeds ");
    case 3:
        return QStringLiteral("her");
    default:
        return fixture().commonWord;
    }
}

void searchFts(benchmark::State &state)
{
    const QString query = queryText(int(state.range(0)));
    qsizetype hits = 0;
    for (auto _ : state) {
        hits = fixture().store->search(query).size();
        benchmark::DoNotOptimize(hits);
    }
    state.SetLabel(QStringLiteral("%1: %2 hits").arg(QLatin1String(queries[state.range(0)])).arg(hits).toStdString());
}

// Every conversation with a message containing the text, found by reading every message.
void searchLike(benchmark::State &state)
{
    const QString query = queryText(int(state.range(0)));
    qsizetype hits = 0;
    for (auto _ : state) {
        QSqlQuery scan(fixture().store->database().connection());
        scan.prepare(QStringLiteral("SELECT DISTINCT conversation_id FROM messages WHERE content LIKE ?"));
        scan.addBindValue(QLatin1Char('%') + query.trimmed().section(QLatin1Char(' '), 0, 0) + QLatin1Char('%'));
        scan.exec();
        hits = 0;
        while (scan.next()) {
            ++hits;
        }
        benchmark::DoNotOptimize(hits);
    }
    state.SetLabel(QStringLiteral("%1: %2 hits").arg(QLatin1String(queries[state.range(0)])).arg(hits).toStdString());
}

void loadConversation(benchmark::State &state)
{
    for (auto _ : state) {
        const std::optional<ConversationRecord> loaded = fixture().store->load(fixture().longConversation);
        benchmark::DoNotOptimize(loaded->messages.size());
    }
}

// What opening it on screen costs before the first frame: the load, and the chat's list
// model filled (each reply's Markdown parsed into blocks).
void loadAndShowConversation(benchmark::State &state)
{
    ChatMessageListModel list;
    for (auto _ : state) {
        const std::optional<ConversationRecord> loaded = fixture().store->load(fixture().longConversation);
        QList<ChatMessageRecord> records;
        for (const StoredMessage &message : loaded->messages) {
            ChatMessageRecord record;
            record.id = message.uid;
            record.role = message.role == MessageRole::user ? ChatMessageRecord::Role::user
                                                            : ChatMessageRecord::Role::assistant;
            record.content = message.text;
            record.timeMs = message.timeMs;
            records.append(record);
        }
        list.setRecords(records);
    }
}

void commitOneMessage(benchmark::State &state)
{
    ConversationRecord header;
    header.uid = fixture().longConversation;
    header.tool = historytool::askMeAnything;
    int index = 0;
    for (auto _ : state) {
        header.updatedMs = 1900000000000 + index;
        const StoredMessage message
            = messageOf(index++, QStringLiteral("A new question about herons and reeds"), header.updatedMs);
        if (!fixture().store->saveMessage(header, message)) {
            state.SkipWithError("save failed");
        }
    }
}

} // namespace

BENCHMARK(searchFts)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);
BENCHMARK(searchLike)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);
BENCHMARK(loadConversation)->Unit(benchmark::kMillisecond);
BENCHMARK(loadAndShowConversation)->Unit(benchmark::kMillisecond);
BENCHMARK(commitOneMessage)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    fixture();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
