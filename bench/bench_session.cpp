// The window's memory over a long session: the real window on the Code Debugger streams
// 1,000 replies from a fake OpenAI service on loopback, one after the other in one
// conversation (saved, with the earlier messages carried), and the process's peak resident
// memory is read after the first ten replies and after the last. A leak per reply (a
// delegate, a renderer, a stream kept alive) shows as the difference. The fake provider runs
// in a child process, so that the requests it records do not count as the window's memory.
// Usage: bench_session [REPLIES]; prints one line per checkpoint, then "growth: N MB".
#include "app/zentrikapp.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/devtoolviewmodel.h"

#include "model/apimanager.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <sys/prctl.h>
#include <unistd.h>

using namespace zentrik;

namespace {

// VmHWM of /proc/self/status, in MiB.
double peakResidentMiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QRegularExpressionMatch match
        = QRegularExpression(QStringLiteral("VmHWM:\\s+(\\d+) kB")).match(QString::fromLatin1(status.readAll()));
    return match.hasMatch() ? match.captured(1).toDouble() / 1024 : -1;
}

// A reply as a debugger gives it: prose, a list and a code block, in pieces.
QList<QByteArray> replyPieces(int index)
{
    const QStringList parts { QStringLiteral("The loop in reply %1 reads one element past the end. ").arg(index),
        QStringLiteral("Here is why:\n\n- the bound is `<=`\n- the array has `n` elements\n\n"),
        QStringLiteral("```cpp\nfor (int i = 0; i < n; ++i) {\n    total += values[i];\n}\n```\n\n"),
        QStringLiteral("With `<` the last index is `n - 1`, which is **inside** the array.") };
    QList<QByteArray> pieces;
    for (const QString &part : parts) {
        pieces.append(test::chunkLine(part));
    }
    pieces.append(test::doneLine);
    return pieces;
}

// Forks the fake OpenAI service; returns its port, or 0. The child ends with its parent.
int startFakeProvider(int argc, char **argv)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        return 0;
    }
    const pid_t child = fork();
    if (child < 0) {
        return 0;
    }
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        close(pipeEnds[0]);
        const QCoreApplication application(argc, argv);
        test::FakeProvider fake;
        std::atomic<int> served = 0;
        fake.handle("POST", "/v1/chat/completions", [&served](const test::RecordedRequest &) {
            return test::ScriptedReply::sse(replyPieces(++served), std::chrono::milliseconds(1));
        });
        const int port = fake.port();
        if (write(pipeEnds[1], &port, sizeof port) != sizeof port) {
            _exit(1);
        }
        close(pipeEnds[1]);
        _exit(QCoreApplication::exec());
    }
    close(pipeEnds[1]);
    int port = 0;
    if (read(pipeEnds[0], &port, sizeof port) != sizeof port) {
        port = 0;
    }
    close(pipeEnds[0]);
    return port;
}

} // namespace

int main(int argc, char **argv)
{
    const int port = startFakeProvider(argc, argv);
    if (port == 0) {
        std::fprintf(stderr, "bench_session: the fake provider did not start\n");
        return 1;
    }
    const QTemporaryDir config;
    qputenv("ZENTRIK_CONFIG_DIR", config.path().toLocal8Bit());
    qputenv("ZENTRIK_LICENSE_URL", QByteArray());
    qputenv("QT_QUICK_BACKEND", qgetenv("QT_QUICK_BACKEND").isEmpty() ? "software" : qgetenv("QT_QUICK_BACKEND"));
    QGuiApplication application(argc, argv);
    const int replies = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 1000;
    if (replies < 10) {
        std::fprintf(stderr, "bench_session: give at least 10 replies\n");
        return 2;
    }

    qputenv("ZENTRIK_OPENAI_BASE_URL", QByteArray("http://127.0.0.1:") + QByteArray::number(port));

    ZentrikApp::configureApplication();
    ZentrikApp app;
    if (!app.load() || !QTest::qWaitForWindowExposed(app.window())) {
        std::fprintf(stderr, "bench_session: the window did not open\n");
        return 1;
    }
    app.openAtStart(QStringLiteral("Code Debugger"));
    DevToolViewModel *debugger = nullptr;
    const bool opened = QTest::qWaitFor([&] {
        debugger = app.window()->findChild<DevToolViewModel *>(QStringLiteral("devToolViewModel"));
        return debugger != nullptr && debugger->apiManager() != nullptr;
    });
    if (!opened) {
        std::fprintf(stderr, "bench_session: the Code Debugger did not open\n");
        return 1;
    }
    debugger->apiManager()->setSelectedTextModel(QStringLiteral("gpt-4o-mini"));
    debugger->apiManager()->overrideUserKeys(QStringLiteral("sk-bench-session"), QString(), QString());

    double afterTen = 0;
    for (int reply = 1; reply <= replies; ++reply) {
        debugger->setInput(
            QStringLiteral("Why does loop %1 crash?\nfor (int i = 0; i <= n; ++i) total += v[i];").arg(reply));
        debugger->send();
        if (!QTest::qWaitFor([&] { return !debugger->isProcessing(); }, 30000) || !debugger->errorMessage().isEmpty()
            || debugger->messages()->rowCount() != 2 * reply) {
            std::fprintf(
                stderr, "bench_session: reply %d did not arrive: %s\n", reply, qPrintable(debugger->errorMessage()));
            return 1;
        }
        if (reply == 10 || reply == replies) {
            // Let the window draw what arrived before reading the peak.
            QTest::qWait(50);
            const double peak = peakResidentMiB();
            std::printf("peak memory after %d replies: %.1f MB\n", reply, peak);
            std::fflush(stdout);
            if (reply == 10) {
                afterTen = peak;
            } else {
                std::printf("growth: %.1f MB\n", peak - afterTen);
            }
        }
    }
    return 0;
}
