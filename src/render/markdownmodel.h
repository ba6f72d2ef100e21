#pragma once

#include "render/incrementalrenderer.h"

#include <QAbstractListModel>
#include <QtQmlIntegration>

namespace zentrik {

// The blocks of one reply for a QML view. A streamed reply is fed piece by piece with
// appendText(); only rows whose blocks changed are reported (dataChanged naming the
// changed roles), new blocks arrive as inserted rows, so a view keeps its delegates and
// scroll position while the reply grows.
class MarkdownModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role {
        TypeRole
        = Qt::UserRole + 1, // "paragraph", "heading", "bulletList", "orderedList", "quote", "code", "table", "rule"
        TextRole, // rich text; the plain source of a code block
        LevelRole, // heading level
        LanguageRole, // code language
        ItemsRole, // list items: [{text, marker, depth, task: "", "checked" or "unchecked"}]
        TableHeaderRole, // header cells, rich text
        TableRowsRole, // rows of cells, rich text
        ColumnAlignmentsRole, // Qt::AlignLeft, Qt::AlignHCenter or Qt::AlignRight per column
    };
    Q_ENUM(Role)

    explicit MarkdownModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString text() const { return m_renderer.text(); }
    void setText(const QString &text);
    [[nodiscard]] int count() const { return int(m_rows.size()); }
    [[nodiscard]] const QList<MarkdownBlock> &blocks() const { return m_rows; }

    Q_INVOKABLE void appendText(const QString &piece);
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void textChanged();
    void countChanged();

private:
    // Brings the rows in line with the renderer from row `from` on; rows before it are
    // known to be unchanged.
    void syncRows(qsizetype from);

    IncrementalRenderer m_renderer;
    QList<MarkdownBlock> m_rows;
};

} // namespace zentrik
