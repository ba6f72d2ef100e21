#include "console.h"

#include <QFile>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zentrik::cli {

namespace {

class ProcessConsole final : public Console
{
public:
    void writeOut(const QByteArray &bytes) override { write(stdout, bytes); }
    void writeErr(const QByteArray &bytes) override { write(stderr, bytes); }

    QByteArray readAll() override { return input() ? m_in.readAll() : QByteArray(); }
    std::optional<QByteArray> readAllChecked(QString &error) override
    {
        // read(2) rather than QFile, which reports a directory or a closed descriptor on
        // stdin as an empty text.
        QByteArray bytes;
        std::array<char, 65536> buffer {};
        for (;;) {
            const ssize_t got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
            if (got > 0) {
                bytes.append(buffer.data(), got);
            } else if (got == 0) {
                return bytes;
            } else if (errno != EINTR) {
                error = errno == EISDIR
                    ? QStringLiteral("cannot read stdin: it is a directory")
                    : QStringLiteral("cannot read stdin: %1").arg(QString::fromLocal8Bit(std::strerror(errno)));
                return std::nullopt;
            }
        }
    }
    QByteArray readLine() override { return input() ? m_in.readLine() : QByteArray(); }
    bool atEnd() override { return !input() || m_in.atEnd(); }
    [[nodiscard]] bool inputIsTerminal() const override { return ::isatty(STDIN_FILENO) != 0; }
    [[nodiscard]] bool errorIsTerminal() const override { return ::isatty(STDERR_FILENO) != 0; }

private:
    static void write(FILE *stream, const QByteArray &bytes)
    {
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
        std::fflush(stream);
    }

    // One reader for the whole run, so that what one read buffered is there for the next.
    bool input() { return m_in.isOpen() || m_in.open(stdin, QIODevice::ReadOnly); }

    QFile m_in;
};

Console *&installed()
{
    static Console *console = nullptr;
    return console;
}

} // namespace

Console &Console::current()
{
    if (Console *console = installed()) {
        return *console;
    }
    static ProcessConsole process;
    return process;
}

ScopedConsole::ScopedConsole(Console &console)
    : m_previous(installed())
{
    installed() = &console;
}

ScopedConsole::~ScopedConsole()
{
    installed() = m_previous;
}

} // namespace zentrik::cli
