#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTest>

#include <algorithm>
#include <limits>

namespace zentrik::test {

// The texts that make a backtracking pattern retry a long run from each of its starts are a
// prefix, one short unit repeated many times, and a suffix ("a" x 60,000 then "@b.c").
// Tables of them hold the three parts; each test grows them to the size it needs.
inline void addHostileColumns()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("suffix");
}

inline void addHostileRow(const char *name, const char *prefix, const char *unit, const char *suffix)
{
    QTest::newRow(name) << QString::fromUtf8(prefix) << QString::fromUtf8(unit) << QString::fromUtf8(suffix);
}

// The prefix, then the unit repeated until the text holds at least `size` characters, then
// the suffix.
inline QString hostileText(const QString &prefix, const QString &unit, const QString &suffix, qsizetype size)
{
    const qsizetype repeats
        = std::max<qsizetype>(1, (size - prefix.size() - suffix.size() + unit.size() - 1) / unit.size());
    return prefix + unit.repeated(repeats) + suffix;
}

// The quickest of a few runs, in milliseconds: what the work costs when the machine is not
// busy with something else at that moment.
template<typename Work> qint64 quickestMs(int runs, Work &&work)
{
    qint64 best = std::numeric_limits<qint64>::max();
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = std::min(best, timer.elapsed());
    }
    return best;
}

} // namespace zentrik::test
