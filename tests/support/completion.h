#pragma once

#include <QString>
#include <QTest>

#include <optional>

namespace zentrik::test {

// Records the calls of a completion callback that must run exactly once, and never before
// the call that started the operation has returned (the caller's state is not ready then).
//
//     Completion<TextResult> done;
//     manager.generateText(prompt, this, done.callback());
//     done.started();
//     QVERIFY2(done.waitOnce(), qPrintable(done.fault()));
template<typename Result> class Completion
{
public:
    auto callback()
    {
        return [this](const Result &result) {
            m_beforeReturn = m_beforeReturn || !m_started;
            ++m_calls;
            m_result = result;
        };
    }

    void started() { m_started = true; }

    // Waits for the first call, then lets the event loop run a little longer: a second call
    // would be queued right behind the first, so a short quiet spell shows there is none.
    [[nodiscard]] bool waitOnce(int timeoutMs = 10000)
    {
        if (QTest::qWaitFor([this] { return m_calls > 0; }, timeoutMs)) {
            QTest::qWait(20);
        }
        return fault().isEmpty();
    }

    // Empty when the callback ran once, after the call had returned; otherwise what went wrong.
    [[nodiscard]] QString fault() const
    {
        if (m_beforeReturn) {
            return QStringLiteral("called before the starting call returned");
        }
        return m_calls == 1 ? QString() : QStringLiteral("called %1 times").arg(m_calls);
    }

    [[nodiscard]] int calls() const { return m_calls; }
    [[nodiscard]] const Result &result() const { return *m_result; }

private:
    int m_calls = 0;
    bool m_started = false;
    bool m_beforeReturn = false;
    std::optional<Result> m_result;
};

} // namespace zentrik::test
