// Redaction before a send, on documents of 1 KB, 100 KB and 1 MB: the library's fast path
// (PIIManager::redact) against the straightforward chain it must agree with, measured in the
// same run. The reference recompiles its patterns on every call and tries the full name
// alternation at every position, so its large inputs take minutes.

#include "privacy/nameredactorpii.h"
#include "privacy/piimanager.h"
#include "reference/referenceredaction.h"

#include <QLoggingCategory>
#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <map>
#include <random>
#include <string>

namespace {

// A long mail thread: prose with the odd greeting, sign-off, address and number in it.
QString makeDocument(qsizetype size)
{
    static const std::array<const char *, 40> words = { "the", "report", "meeting", "customer", "please", "send",
        "really", "only", "family", "schedule", "and", "of", "to", "in", "is", "that", "for", "with", "next", "week",
        "invoice", "project", "update", "review", "draft", "team", "budget", "quarter", "numbers", "kindly", "compass",
        "user", "about", "this", "we", "will", "have", "a", "new", "plan" };
    static const std::array<const char *, 12> specials = { "Hi Anna, ", "Hello Bob. ", "Thanks, Maria\n\n",
        "Best regards,\nJohn\n\n", "Christopher, have a nice weekend. ", "Write to jane.doe@example.com today. ",
        "Call (555) 123-4567 or 5551234567. ", "Dear Ms Smith, ", "The server is 10.0.0.12. ",
        "Her SSN is 123-45-6789. ", "Ship to 90210-1234. ", "login: admin " };
    std::mt19937 random(20240601);
    std::string text;
    text.reserve(size_t(size) + 64);
    while (qsizetype(text.size()) < size) {
        if (random() % 40 == 0) {
            text += specials.at(random() % specials.size());
            continue;
        }
        text += words.at(random() % words.size());
        text += random() % 12 == 0 ? ". " : " ";
    }
    text.resize(size_t(size));
    return QString::fromStdString(text);
}

const QString &document(qsizetype size)
{
    static std::map<qsizetype, QString> documents;
    auto it = documents.find(size);
    if (it == documents.end()) {
        it = documents.emplace(size, makeDocument(size)).first;
    }
    return it->second;
}

void fastPath(benchmark::State &state)
{
    const QString &text = document(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(zentrik::PIIManager::redact(text));
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * state.range(0));
}

void reference(benchmark::State &state)
{
    const QString &text = document(state.range(0));
    const QStringList &names = zentrik::NameRedactorPII::shared().wellKnownNames();
    for (auto _ : state) {
        benchmark::DoNotOptimize(zentrik::reference::redact(text, names));
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * state.range(0));
}

BENCHMARK(fastPath)->Name("redact/fast")->Arg(1 << 10)->Arg(100 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(reference)
    ->Name("redact/reference")
    ->Arg(1 << 10)
    ->Arg(100 << 10)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// Prints the usual table, then the ratio of reference to fast path for each input size, by
// CPU time (steadier than wall time when the machine is busy) and by wall time.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const auto iterations = double(run.iterations);
                m_times[run.benchmark_name()]
                    = { run.cpu_accumulated_time / iterations, run.real_accumulated_time / iterations };
            }
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf(
            "\n%-7s %21s %25s %17s\n", "input", "fast cpu/wall (ms)", "reference cpu/wall (ms)", "ratio cpu/wall");
        for (const auto &[label, size] :
            { std::pair { "1 KB", 1 << 10 }, std::pair { "100 KB", 100 << 10 }, std::pair { "1 MB", 1 << 20 } }) {
            const auto fast = m_times.find("redact/fast/" + std::to_string(size));
            const auto slow = m_times.find("redact/reference/" + std::to_string(size) + "/iterations:1");
            if (fast == m_times.end() || slow == m_times.end()) {
                continue;
            }
            const auto [fastCpu, fastWall] = fast->second;
            const auto [slowCpu, slowWall] = slow->second;
            std::printf("%-7s %10.3f /%9.3f %12.1f /%11.1f %7.0fx /%7.0fx\n", label, fastCpu * 1e3, fastWall * 1e3,
                slowCpu * 1e3, slowWall * 1e3, slowCpu / fastCpu, slowWall / fastWall);
        }
    }

private:
    std::map<std::string, std::pair<double, double>> m_times;
};

} // namespace

int main(int argc, char **argv)
{
    // Sign-offs without a name part are skipped with a log line each; keep them off the table.
    QLoggingCategory::setFilterRules(QStringLiteral("zentrik.privacy.info=false"));

    const QString &sample = document(1 << 10);
    const QStringList &names = zentrik::NameRedactorPII::shared().wellKnownNames();
    if (zentrik::PIIManager::redact(sample) != zentrik::reference::redact(sample, names)) {
        std::fprintf(stderr, "fast path and reference disagree on the 1 KB document\n");
        return 1;
    }

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
