#pragma once

#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

// PDFs made on the spot with QPdfWriter: one page per text, or pages with only a picture
// (what a scanner produces), or an encrypted copy made with qpdf when it is installed.
namespace pdffixtures {

inline bool writeTextPdf(const QString &path, const QStringList &pages, const QString &title = QString())
{
    QPdfWriter writer(path);
    writer.setTitle(title);
    writer.setResolution(72);
    writer.setPageSize(QPageSize(QPageSize::A4));
    QPainter painter;
    if (!painter.begin(&writer)) {
        return false;
    }
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(10);
    painter.setFont(font);
    for (qsizetype i = 0; i < pages.size(); ++i) {
        if (i > 0) {
            writer.newPage();
        }
        painter.drawText(QRect(40, 40, 500, 760), Qt::TextWordWrap, pages.at(i));
    }
    return painter.end();
}

inline bool writeScannedPdf(const QString &path, int pageCount = 2)
{
    QPdfWriter writer(path);
    writer.setResolution(72);
    QPainter painter;
    if (!painter.begin(&writer)) {
        return false;
    }
    QImage scan(200, 100, QImage::Format_RGB32);
    scan.fill(Qt::white);
    for (int i = 0; i < pageCount; ++i) {
        if (i > 0) {
            writer.newPage();
        }
        painter.drawImage(QPoint(40, 40), scan);
    }
    return painter.end();
}

inline bool encryptWithQpdf(const QString &input, const QString &output)
{
    const QString qpdf = QStandardPaths::findExecutable(QStringLiteral("qpdf"));
    if (qpdf.isEmpty()) {
        return false;
    }
    QProcess process;
    process.start(qpdf,
        { QStringLiteral("--encrypt"), QStringLiteral("secret"), QStringLiteral("owner"), QStringLiteral("256"),
            QStringLiteral("--"), input, output });
    return process.waitForFinished(30000) && process.exitCode() == 0;
}

} // namespace pdffixtures
