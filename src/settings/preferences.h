#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

class QSettings;

namespace zentrik {

// The window's appearance: dark when true, light when absent or false.
inline constexpr const char *darkModePreference = "isDarkMode";

// The user's small state (chosen models, appearance, voice notes): strings, booleans and
// data by key. Stored with QSettings under "Zentrik"/"Zentrik", or in
// $ZENTRIK_CONFIG_DIR/Zentrik.conf when that variable is set (tests, portable use).
// Keys never go here; they live in the SecretStore.
//
// Every write is a read-modify-write of the whole file under a lock that other processes
// (a second window, the command line) respect too, checked after the fact and put in place
// by an atomic rename: a full disk, an unwritable file or a kill in the middle leaves the
// previous file exactly as it was, and no temporary file stays behind once the next write
// has run. The folder is kept private (0700) and the file readable by its owner only (0600),
// since it holds the voice notes' transcripts.
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

    // Every write reaches the disk before it returns; false when it could not be made (see
    // errorString()), in which case the stored file is unchanged.
    bool setString(const QString &key, const QString &value);
    bool setBoolean(const QString &key, bool value);
    bool setData(const QString &key, const QByteArray &value);
    bool remove(const QString &key);

    // Hands every stored value, as stored at this moment, to edit, and writes the map back
    // when edit returns true; no other process writes in between. False when the write
    // failed (or edit declined); errorString() is empty when edit declined.
    bool update(const std::function<bool(QVariantMap &values)> &edit);
    // Why the last write failed, as one line naming the file.
    [[nodiscard]] QString errorString() const { return m_errorString; }

    // The file the preferences are kept in.
    [[nodiscard]] QString fileName() const;

    // Where the program's data goes: "data" under $ZENTRIK_CONFIG_DIR when set, otherwise
    // the platform's data location.
    [[nodiscard]] static QString dataDirectory();

private:
    [[nodiscard]] bool writeLocked(const QVariantMap &values);
    void removeLeftovers() const;

    std::unique_ptr<QSettings> m_settings;
    QString m_errorString;
};

} // namespace zentrik
