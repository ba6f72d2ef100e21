#pragma once

#include <QStringList>
#include <QtGlobal>

namespace zentrik::test {

// Collects every log message while it lives (and keeps them out of the test output), so
// tests can check the program's diagnostic lines word for word.
class LogCapture
{
public:
    LogCapture()
    {
        s_lines = &m_lines;
        s_previous = qInstallMessageHandler(&LogCapture::handle);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(s_previous);
        s_lines = nullptr;
    }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    [[nodiscard]] const QStringList &lines() const { return m_lines; }
    [[nodiscard]] bool has(const QString &line) const { return m_lines.contains(line); }
    [[nodiscard]] QStringList startingWith(const QString &prefix) const
    {
        QStringList found;
        for (const QString &line : m_lines) {
            if (line.startsWith(prefix)) {
                found.append(line);
            }
        }
        return found;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (s_lines != nullptr && type != QtFatalMsg) {
            s_lines->append(message);
            return;
        }
        if (s_previous != nullptr) {
            s_previous(type, context, message);
        }
    }

    QStringList m_lines;
    static inline QStringList *s_lines = nullptr;
    static inline QtMessageHandler s_previous = nullptr;
};

} // namespace zentrik::test
