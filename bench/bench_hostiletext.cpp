// Texts shaped to make a backtracking engine retry a long run from each of its starts: the
// privacy guard and the copy clean-up against the straightforward chains they must agree
// with (the regex engine searching each pattern over the whole text), measured in the same
// run at 10,000 characters, where the chains still finish; then the library alone on a
// megabyte of each.

#include "privacy/nameredactorpii.h"
#include "privacy/piimanager.h"
#include "reference/referenceredaction.h"
#include "reference/referencestrip.h"
#include "render/markdownstrip.h"

#include <QLoggingCategory>
#include <QString>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <map>
#include <string>

namespace {

struct Shape
{
    const char *name;
    const char *prefix;
    const char *unit;
    const char *suffix;
    bool markdown;
};

constexpr std::array<Shape, 7> shapes = { {
    { "address/letters", "", "a", "@b.c", false },
    { "address/dotted", "", "a.", "@b.c", false },
    { "address/domain", "a@", "b.", "c", false },
    { "strip/brackets", "", "[", "", true },
    { "strip/open-links", "", "[a](", "", true },
    { "strip/stars", "", "*", "x", true },
    { "redact/digits-and-blanks", "", "1 ", "", false },
} };

QString textOf(const Shape &shape, qsizetype size)
{
    const QString unit = QString::fromUtf8(shape.unit);
    const QString prefix = QString::fromUtf8(shape.prefix);
    const QString suffix = QString::fromUtf8(shape.suffix);
    return prefix + unit.repeated(std::max<qsizetype>(1, (size - prefix.size() - suffix.size()) / unit.size()))
        + suffix;
}

void library(benchmark::State &state, const Shape &shape)
{
    const QString text = textOf(shape, state.range(0));
    for (auto _ : state) {
        if (shape.markdown) {
            benchmark::DoNotOptimize(zentrik::stripMarkdown(text));
            benchmark::DoNotOptimize(zentrik::matchesRulePattern(text));
        } else {
            benchmark::DoNotOptimize(zentrik::PIIManager::redact(text));
        }
    }
}

void referenceChain(benchmark::State &state, const Shape &shape)
{
    const QString text = textOf(shape, state.range(0));
    const QStringList &names = zentrik::NameRedactorPII::shared().wellKnownNames();
    for (auto _ : state) {
        if (shape.markdown) {
            benchmark::DoNotOptimize(zentrik::reference::stripMarkdown(text));
            benchmark::DoNotOptimize(zentrik::reference::matchesRulePattern(text));
        } else {
            benchmark::DoNotOptimize(zentrik::reference::redact(text, names));
        }
    }
}

constexpr int compared = 10000;
constexpr int megabyte = 1 << 20;

// The usual table, then per shape the reference's time over the library's at 10,000
// characters, and the library's time for a megabyte.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                m_cpu[run.benchmark_name()] = run.cpu_accumulated_time / double(run.iterations);
            }
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\n%-26s %14s %18s %9s %14s\n", "shape", "library (ms)", "reference (ms)", "ratio", "1 MB (ms)");
        for (const Shape &shape : shapes) {
            const std::string name = shape.name;
            const double fast = find("library/" + name + "/" + std::to_string(compared));
            const double slow = find("reference/" + name + "/" + std::to_string(compared) + "/iterations:1");
            const double large = find("library/" + name + "/" + std::to_string(megabyte));
            std::printf(
                "%-26s %14.3f %18.1f %8.0fx %14.1f\n", shape.name, fast * 1e3, slow * 1e3, slow / fast, large * 1e3);
        }
    }

private:
    double find(const std::string &name) const
    {
        const auto it = m_cpu.find(name);
        return it == m_cpu.end() ? 0.0 : it->second;
    }

    std::map<std::string, double> m_cpu;
};

} // namespace

int main(int argc, char **argv)
{
    QLoggingCategory::setFilterRules(QStringLiteral("zentrik.privacy.info=false"));
    for (const Shape &shape : shapes) {
        const std::string name = shape.name;
        benchmark::RegisterBenchmark(("library/" + name).c_str(), library, shape)
            ->Arg(compared)
            ->Arg(megabyte)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("reference/" + name).c_str(), referenceChain, shape)
            ->Arg(compared)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
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
