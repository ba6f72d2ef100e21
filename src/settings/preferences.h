#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QSettings;

namespace zentrik {

// The window's appearance: dark when true, light when absent or false.
inline constexpr const char *darkModePreference = "isDarkMode";

// The user's small state (chosen models, appearance, voice notes): strings, booleans and
// data by key. Stored with QSettings under "Zentrik"/"Zentrik", or in
// $ZENTRIK_CONFIG_DIR/Zentrik.conf when that variable is set (tests, portable use).
// Keys never go here; they live in the SecretStore.
class Preferences
{
public:
    Preferences();
    ~Preferences();
    Preferences(const Preferences &) = delete;
    Preferences &operator=(const Preferences &) = delete;

    [[nodiscard]] bool contains(const QString &key) const;
    [[nodiscard]] QString string(const QString &key, const QString &fallback = {}) const;
    [[nodiscard]] bool boolean(const QString &key, bool fallback = false) const;
    [[nodiscard]] QByteArray data(const QString &key) const;

    // Every write is flushed at once so that nothing is lost if the program is killed.
    void setString(const QString &key, const QString &value);
    void setBoolean(const QString &key, bool value);
    void setData(const QString &key, const QByteArray &value);
    void remove(const QString &key);

    // The file the preferences are kept in.
    [[nodiscard]] QString fileName() const;

    // Where every file the program writes goes: $ZENTRIK_CONFIG_DIR when set, otherwise
    // the platform's location for the given kind ("config" or "data").
    [[nodiscard]] static QString configDirectory();
    [[nodiscard]] static QString dataDirectory();

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace zentrik
