#pragma once

#include <QList>
#include <QStringList>

namespace zentrik::historyschema {

// The statements that bring a database from version i to version i + 1, for each i from 0;
// `PRAGMA user_version` holds the version a database is at. A released step is never
// changed: a new one is added at the end.
[[nodiscard]] const QList<QStringList> &migrations();
[[nodiscard]] int currentVersion();

} // namespace zentrik::historyschema
