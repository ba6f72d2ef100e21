#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

#include <optional>
#include <utility>
#include <vector>

namespace zentrik::test {

// Sets environment variables for its lifetime and then puts back what was there before.
class ScopedEnvironment
{
public:
    ScopedEnvironment() = default;
    explicit ScopedEnvironment(const QProcessEnvironment &variables)
    {
        for (const QString &name : variables.keys()) {
            set(name.toUtf8(), variables.value(name));
        }
    }
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;
    ~ScopedEnvironment()
    {
        for (auto it = m_saved.rbegin(); it != m_saved.rend(); ++it) {
            if (it->second) {
                qputenv(it->first.constData(), *it->second);
            } else {
                qunsetenv(it->first.constData());
            }
        }
    }

    void set(const QByteArray &name, const QString &value)
    {
        m_saved.emplace_back(name,
            qEnvironmentVariableIsSet(name.constData()) ? std::optional<QByteArray>(qgetenv(name.constData()))
                                                        : std::nullopt);
        qputenv(name.constData(), value.toUtf8());
    }

private:
    std::vector<std::pair<QByteArray, std::optional<QByteArray>>> m_saved;
};

// Every file the program writes (preferences, recordings, notes) in a scratch folder of
// its own for as long as this lives.
class ScopedConfigDir
{
public:
    ScopedConfigDir() { m_environment.set("ZENTRIK_CONFIG_DIR", m_dir.path()); }

    [[nodiscard]] QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
    ScopedEnvironment m_environment;
};

} // namespace zentrik::test
