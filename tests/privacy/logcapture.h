#pragma once

#include <QLoggingCategory>
#include <QStringList>

#include <cstring>

namespace zentrik::test {

// Collects the messages of the zentrik.privacy category while it lives (and keeps them out
// of the test output); every other message goes to the handler installed before.
class PrivacyLogCapture
{
public:
    PrivacyLogCapture()
    {
        s_lines = &m_lines;
        s_previous = qInstallMessageHandler(&PrivacyLogCapture::handle);
    }
    ~PrivacyLogCapture()
    {
        qInstallMessageHandler(s_previous);
        s_lines = nullptr;
    }
    PrivacyLogCapture(const PrivacyLogCapture &) = delete;
    PrivacyLogCapture &operator=(const PrivacyLogCapture &) = delete;

    [[nodiscard]] const QStringList &lines() const { return m_lines; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (s_lines && context.category && std::strcmp(context.category, "zentrik.privacy") == 0) {
            s_lines->append(message);
            return;
        }
        if (s_previous) {
            s_previous(type, context, message);
        }
    }

    QStringList m_lines;
    static inline QStringList *s_lines = nullptr;
    static inline QtMessageHandler s_previous = nullptr;
};

} // namespace zentrik::test
