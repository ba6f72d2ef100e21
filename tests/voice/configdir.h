#pragma once

#include <QTemporaryDir>

// Points every file the program writes (preferences, recordings) at a scratch directory
// for as long as it lives.
class ConfigDir
{
public:
    ConfigDir() { qputenv("ZENTRIK_CONFIG_DIR", m_dir.path().toUtf8()); }
    ~ConfigDir() { qunsetenv("ZENTRIK_CONFIG_DIR"); }
    ConfigDir(const ConfigDir &) = delete;
    ConfigDir &operator=(const ConfigDir &) = delete;

    [[nodiscard]] QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};
