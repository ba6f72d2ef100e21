#include "pdf/pdftext.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QPdfDocument>
#include <QPdfSelection>

namespace zentrik {

QString PdfText::message() const
{
    switch (problem) {
    case Problem::none:
        return {};
    case Problem::fileNotFound:
        return QCoreApplication::translate("PdfText", "The file could not be found.");
    case Problem::notPdf:
        return QCoreApplication::translate("PdfText", "This file is not a PDF.");
    case Problem::encrypted:
        return QCoreApplication::translate(
            "PdfText", "This PDF is password-protected. Open an unprotected copy instead.");
    case Problem::noText:
        return QCoreApplication::translate(
            "PdfText", "This PDF has no text to read; it may be a scan. Try a PDF with selectable text.");
    case Problem::unreadable:
        return QCoreApplication::translate("PdfText", "The PDF could not be read.");
    }
    return {};
}

PdfText extractPdfText(const QString &path)
{
    PdfText result;
    QFile file(path);
    if (!file.exists()) {
        result.problem = PdfText::Problem::fileNotFound;
        return result;
    }
    // PDF readers accept the signature anywhere in the first kilobyte.
    if (!file.open(QIODevice::ReadOnly) || !file.read(1024).contains("%PDF-")) {
        result.problem = file.isOpen() ? PdfText::Problem::notPdf : PdfText::Problem::unreadable;
        return result;
    }
    file.close();

    QPdfDocument document;
    const QPdfDocument::Error error = document.load(path);
    switch (error) {
    case QPdfDocument::Error::None:
        break;
    case QPdfDocument::Error::IncorrectPassword:
    case QPdfDocument::Error::UnsupportedSecurityScheme:
        result.problem = PdfText::Problem::encrypted;
        return result;
    case QPdfDocument::Error::InvalidFileFormat:
        result.problem = PdfText::Problem::notPdf;
        return result;
    case QPdfDocument::Error::FileNotFound:
        result.problem = PdfText::Problem::fileNotFound;
        return result;
    default:
        result.problem = PdfText::Problem::unreadable;
        return result;
    }

    result.title = document.metaData(QPdfDocument::MetaDataField::Title).toString().trimmed();
    if (result.title.isEmpty()) {
        result.title = QFileInfo(path).completeBaseName();
    }
    bool anyText = false;
    for (int page = 0; page < document.pageCount(); ++page) {
        const QString text = document.getAllText(page).text();
        anyText = anyText || !text.trimmed().isEmpty();
        result.pages.append(text);
    }
    if (!anyText) {
        result.problem = PdfText::Problem::noText;
    }
    return result;
}

} // namespace zentrik
