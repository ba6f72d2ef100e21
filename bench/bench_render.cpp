// Rendering a streamed reply: a 200 KB Markdown reply of the usual mix (headings,
// paragraphs with inline markup, lists, code blocks, tables, quotes) arriving in 4,000
// pieces. The incremental renderer re-parses only the unfinished tail; the naive way
// renders the whole text again on every piece. Both are measured against one render of the
// final text, and the cost of a piece late in the reply against one early in it.

#include "render/incrementalrenderer.h"
#include "render/markdownrenderer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

namespace {

constexpr qsizetype replySize = 200 * 1000;
constexpr qsizetype pieceCount = 4000;

// Writes a reply in the style of an assistant's long answer: sections with a heading,
// paragraphs with the occasional bold word, inline code or link, bulleted and numbered
// lists (some items with a bold lead-in or a nested point), code blocks, tables, quotes
// and task lists, with some non-ASCII text.
class ReplyWriter
{
public:
    QString write()
    {
        QString reply;
        reply.reserve(replySize + 4096);
        int section = 0;
        while (reply.size() < replySize) {
            reply += QStringLiteral("## %1. %2\n\n").arg(++section).arg(sentence(2, 6, false));
            for (int i = 0, blocks = pick(3, 7); i < blocks; ++i) {
                reply += block() + QStringLiteral("\n\n");
            }
        }
        return reply;
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    bool chance(int oneIn) { return pick(1, oneIn) == 1; }

    QString word()
    {
        static const std::array<const char *, 48> words = { "the", "a", "model", "reply", "stream", "renders",
            "quickly", "while", "tokens", "arrive", "caf\u00e9", "\u00fcber", "data", "server", "client", "request",
            "value", "config", "build", "test", "result", "simple", "table", "list", "because", "therefore", "function",
            "returns", "parameter", "each", "when", "and", "with", "of", "to", "in", "is", "for", "that", "this",
            "example", "approach", "memory", "network", "performance", "user", "settings", "\U0001F600" };
        return QString::fromUtf8(words.at(size_t(pick(0, int(words.size()) - 1))));
    }

    QString markedWord()
    {
        const QString w = word();
        const int roll = pick(1, 400);
        if (roll <= 8) {
            return QStringLiteral("**%1**").arg(w);
        }
        if (roll <= 13) {
            return QStringLiteral("*%1*").arg(w);
        }
        if (roll <= 23) {
            return QStringLiteral("`%1()`").arg(w);
        }
        if (roll <= 25) {
            return QStringLiteral("[%1](https://example.com/docs/%1)").arg(w);
        }
        if (roll <= 26) {
            return QStringLiteral("~~%1~~").arg(w);
        }
        return w;
    }

    QString sentence(int low, int high, bool markup)
    {
        QStringList parts;
        for (int i = 0, n = pick(low, high); i < n; ++i) {
            parts.append(markup ? markedWord() : word());
        }
        QString text = parts.join(QLatin1Char(' '));
        text[0] = text[0].toUpper();
        return text;
    }

    QString paragraph()
    {
        QStringList sentences;
        for (int i = 0, n = pick(2, 5); i < n; ++i) {
            sentences.append(sentence(10, 22, true) + (chance(6) ? QStringLiteral(":") : QStringLiteral(".")));
        }
        return sentences.join(QLatin1Char(' '));
    }

    QString item()
    {
        return chance(4) ? QStringLiteral("**%1**: %2").arg(sentence(1, 3, false), sentence(8, 20, true))
                         : sentence(8, 24, true) + QLatin1Char('.');
    }

    QString block()
    {
        const int roll = pick(1, 100);
        if (roll <= 35) {
            return paragraph();
        }
        if (roll <= 50) {
            QString list = sentence(6, 12, true) + QStringLiteral(":\n\n");
            for (int i = 0, n = pick(3, 7); i < n; ++i) {
                list += QStringLiteral("- %1\n").arg(item());
                if (chance(5)) {
                    list += QStringLiteral("  - %1\n").arg(sentence(5, 12, true));
                }
            }
            list.chop(1);
            return list;
        }
        if (roll <= 60) {
            QString list;
            for (int i = 1, n = pick(3, 6); i <= n; ++i) {
                list += QStringLiteral("%1. %2\n").arg(i).arg(item());
            }
            list.chop(1);
            return list;
        }
        if (roll <= 80) {
            static const std::array<const char *, 4> languages = { "cpp", "python", "bash", "json" };
            QString code = QStringLiteral("```%1\n").arg(QLatin1String(languages.at(size_t(pick(0, 3)))));
            for (int i = 0, n = pick(8, 35); i < n; ++i) {
                code += QString(pick(0, 3) * 4, QLatin1Char(' '))
                    + QStringLiteral("%1 = %2(%3, \"%4\");\n").arg(word(), word(), word(), sentence(1, 4, false));
            }
            return code + QStringLiteral("```");
        }
        if (roll <= 88) {
            QString table
                = QStringLiteral("| Option | Type | Default | Meaning |\n|:-------|:----:|--------:|:--------|\n");
            for (int i = 0, n = pick(4, 8); i < n; ++i) {
                table += QStringLiteral("| `%1` | %2 | %3 | %4 |\n")
                             .arg(word(), word())
                             .arg(pick(1, 9999))
                             .arg(sentence(2, 6, true));
            }
            table.chop(1);
            return table;
        }
        if (roll <= 95) {
            return QStringLiteral("> **Note:** %1.\n> %2.").arg(sentence(8, 16, true), sentence(8, 16, true));
        }
        return QStringLiteral("- [ ] %1\n- [x] %2\n\n---").arg(sentence(4, 10, true), sentence(4, 10, true));
    }

    std::mt19937 m_random { 20241121 };
};

const QString &reply()
{
    static const QString text = ReplyWriter().write();
    return text;
}

const std::vector<QStringView> &pieces()
{
    static const std::vector<QStringView> split = [] {
        std::vector<QStringView> result;
        const QString &text = reply();
        qsizetype at = 0;
        for (qsizetype i = 1; i <= pieceCount; ++i) {
            const qsizetype next = text.size() * i / pieceCount;
            result.push_back(QStringView(text).sliced(at, next - at));
            at = next;
        }
        return result;
    }();
    return split;
}

// CPU time of this thread: the machine may be shared, and waiting for a core is no work.
double cpuSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

struct StreamResult
{
    double totalSeconds = 0;
    double firstTenthPerPiece = 0;
    double lastTenthPerPiece = 0;
};

// Runs the stream once; `feed` handles one piece. The first and the last tenth of the
// pieces are timed on their own.
template<typename Feed> StreamResult stream(Feed feed)
{
    const std::vector<QStringView> &all = pieces();
    const size_t tenth = all.size() / 10;
    const double start = cpuSeconds();
    for (size_t i = 0; i < tenth; ++i) {
        feed(all[i]);
    }
    const double firstDone = cpuSeconds();
    for (size_t i = tenth; i < all.size() - tenth; ++i) {
        feed(all[i]);
    }
    const double lastStart = cpuSeconds();
    for (size_t i = all.size() - tenth; i < all.size(); ++i) {
        feed(all[i]);
    }
    const double end = cpuSeconds();
    return { end - start, (firstDone - start) / double(tenth), (end - lastStart) / double(tenth) };
}

// One final render timed right before and right after each stream, so that both see the
// same machine; the summary takes the median of the per-run ratios.
struct Sample
{
    double oneRender = 0;
    StreamResult stream;
};
std::vector<Sample> g_incremental;
std::vector<Sample> g_rerender;

double timeOneRender()
{
    const double start = cpuSeconds();
    const QList<zentrik::MarkdownBlock> blocks = zentrik::MarkdownRenderer::render(reply());
    benchmark::DoNotOptimize(blocks.size());
    return cpuSeconds() - start;
}

template<typename Feed> Sample sampleStream(Feed feed)
{
    const double before = timeOneRender();
    const StreamResult run = stream(feed);
    return { std::min(before, timeOneRender()), run };
}

void report(benchmark::State &state, const std::vector<Sample> &samples)
{
    if (samples.empty()) {
        return;
    }
    const Sample &last = samples.back();
    state.counters["pieces"] = double(pieces().size());
    state.counters["first_tenth_us_per_piece"] = last.stream.firstTenthPerPiece * 1e6;
    state.counters["last_tenth_us_per_piece"] = last.stream.lastTenthPerPiece * 1e6;
    state.counters["one_render_ms"] = last.oneRender * 1e3;
}

void renderFinalOnce(benchmark::State &state)
{
    for (auto _ : state) {
        const QList<zentrik::MarkdownBlock> blocks = zentrik::MarkdownRenderer::render(reply());
        benchmark::DoNotOptimize(blocks.size());
    }
    state.counters["reply_chars"] = double(reply().size());
    state.SetBytesProcessed(int64_t(state.iterations()) * reply().size() * 2);
}

void incremental(benchmark::State &state)
{
    for (auto _ : state) {
        zentrik::IncrementalRenderer renderer;
        g_incremental.push_back(sampleStream([&renderer](QStringView piece) {
            renderer.append(piece);
            benchmark::DoNotOptimize(renderer.blocks().size());
        }));
    }
    report(state, g_incremental);
}

void rerenderEverything(benchmark::State &state)
{
    for (auto _ : state) {
        QString text;
        g_rerender.push_back(sampleStream([&text](QStringView piece) {
            text += piece;
            const QList<zentrik::MarkdownBlock> blocks = zentrik::MarkdownRenderer::render(text);
            benchmark::DoNotOptimize(blocks.size());
        }));
    }
    report(state, g_rerender);
}

template<typename Ratio> double median(const std::vector<Sample> &samples, Ratio ratio)
{
    std::vector<double> values;
    for (const Sample &sample : samples) {
        values.push_back(ratio(sample));
    }
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values.at(values.size() / 2);
}

void printSummary(const char *name, const std::vector<Sample> &samples)
{
    if (samples.empty()) {
        return;
    }
    const double oneRender = median(samples, [](const Sample &s) { return s.oneRender; });
    const double total = median(samples, [](const Sample &s) { return s.stream.totalSeconds; });
    const double ratio = median(samples, [](const Sample &s) { return s.stream.totalSeconds / s.oneRender; });
    const double growth
        = median(samples, [](const Sample &s) { return s.stream.lastTenthPerPiece / s.stream.firstTenthPerPiece; });
    std::printf("%s: total %.2f ms of CPU time for %zu pieces = %.2fx one render of the final text (%.2f ms); "
                "per piece, last tenth / first tenth = %.2f (median of %zu runs)\n",
        name, total * 1e3, pieces().size(), ratio, oneRender * 1e3, growth, samples.size());
}

} // namespace

BENCHMARK(renderFinalOnce)->Unit(benchmark::kMillisecond);
BENCHMARK(incremental)->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(rerenderEverything)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("\nreply: %lld characters (%lld UTF-8 bytes) in %zu pieces\n", static_cast<long long>(reply().size()),
        static_cast<long long>(reply().toUtf8().size()), pieces().size());
    printSummary("incremental", g_incremental);
    printSummary("re-render everything", g_rerender);
    std::printf("targets: incremental under 3x one render; per piece, last tenth no more than 2x the first\n");
    return 0;
}
