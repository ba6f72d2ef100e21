#pragma once

#include <QDir>
#include <QFile>
#include <QList>
#include <QString>

#include <utility>

namespace zentrik::test {

// Replies of the kind models send, plus the constructs that let later text change earlier
// blocks: open fences, lists that continue after blank lines, tables that take a
// paragraph's last line, setext underlines, lazy continuation, reference definitions, and
// byte order marks, CR line ends and unusual white space. One file each in
// tests/data/replies, read as bytes so that nothing is converted on the way.
inline QList<std::pair<QByteArray, QString>> sampleReplies()
{
    QList<std::pair<QByteArray, QString>> replies;
    const QDir folder(QStringLiteral(ZENTRIK_TEST_DATA "/replies"));
    for (const QString &name : folder.entryList({ QStringLiteral("*.md") }, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            replies.append({ name.toUtf8(), QString::fromUtf8(file.readAll()) });
        }
    }
    if (replies.isEmpty()) {
        qFatal("No sample replies in %s", qPrintable(folder.path()));
    }
    return replies;
}

} // namespace zentrik::test
