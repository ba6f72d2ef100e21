#pragma once

#include <QString>
#include <QStringList>

namespace zentrik {

// The text of every page of a PDF, or why there is none.
struct PdfText
{
    enum class Problem { none, fileNotFound, notPdf, encrypted, noText, unreadable };

    Problem problem = Problem::none;
    QStringList pages; // page 1 first; a page without text is an empty string
    QString title; // the document's own title, or the file name

    [[nodiscard]] bool ok() const { return problem == Problem::none; }
    [[nodiscard]] int pageCount() const { return int(pages.size()); }
    // The one-line message the screen and the command line show for a problem.
    [[nodiscard]] QString message() const;
};

// Opens the file with Qt PDF and extracts the text of each page. A file that opens but
// holds no text at all (a scan) is reported as noText, with its page count kept.
[[nodiscard]] PdfText extractPdfText(const QString &path);

} // namespace zentrik
