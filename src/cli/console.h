#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zentrik::cli {

// The streams a run reads and writes. The program uses the process's own; a test installs
// one of its own to run verbs in its process, feed them input and read what they printed.
class Console
{
public:
    Console() = default;
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;
    virtual ~Console() = default;

    virtual void writeOut(const QByteArray &bytes) = 0;
    virtual void writeErr(const QByteArray &bytes) = 0;
    // Everything left on stdin; empty when it cannot be read.
    [[nodiscard]] virtual QByteArray readAll() = 0;
    // Everything left on stdin, or std::nullopt with error set to one line when it cannot be
    // read (a directory, a closed descriptor), which is not the same as empty input.
    [[nodiscard]] virtual std::optional<QByteArray> readAllChecked(QString &error)
    {
        Q_UNUSED(error);
        return readAll();
    }
    // The next line of stdin with its line break; empty at its end.
    [[nodiscard]] virtual QByteArray readLine() = 0;
    [[nodiscard]] virtual bool atEnd() = 0;
    [[nodiscard]] virtual bool inputIsTerminal() const = 0;
    [[nodiscard]] virtual bool errorIsTerminal() const = 0;

    // The installed console, or the process's own streams.
    [[nodiscard]] static Console &current();
};

// Makes `console` the current one for its lifetime.
class ScopedConsole
{
public:
    explicit ScopedConsole(Console &console);
    ScopedConsole(const ScopedConsole &) = delete;
    ScopedConsole &operator=(const ScopedConsole &) = delete;
    ~ScopedConsole();

private:
    Console *m_previous;
};

} // namespace zentrik::cli
