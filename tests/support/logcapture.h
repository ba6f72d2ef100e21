#pragma once

#include <QStringList>
#include <QtGlobal>

#include <cstring>

namespace zentrik::test {

// Collects the log messages while it lives, all of them or those of one category, and keeps
// them out of the test output, so that tests can check the program's diagnostic lines word
// for word. Messages it does not collect go to the handler installed before.
class LogCapture
{
public:
    explicit LogCapture(const char *category = nullptr)
    {
        s_category = category;
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
        const bool wanted
            = s_category == nullptr || (context.category != nullptr && std::strcmp(context.category, s_category) == 0);
        if (s_lines != nullptr && type != QtFatalMsg && wanted) {
            s_lines->append(message);
            return;
        }
        if (s_previous != nullptr) {
            s_previous(type, context, message);
        }
    }

    QStringList m_lines;
    static inline const char *s_category = nullptr;
    static inline QStringList *s_lines = nullptr;
    static inline QtMessageHandler s_previous = nullptr;
};

} // namespace zentrik::test
