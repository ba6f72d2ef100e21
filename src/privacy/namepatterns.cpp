#include "privacy/namepatterns.h"

namespace zentrik::namepatterns {

namespace {
QString toQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), qsizetype(text.size()));
}
} // namespace

QString greetingPattern(const QString &nameAlternation)
{
    QStringList words;
    for (std::u16string_view word : greetingWords) {
        words.append(toQString(word));
    }
    return QStringLiteral("(^|\\.\\s+)(") + words.join(QLatin1Char('|')) + QStringLiteral(") (\\b") + nameAlternation
        + QStringLiteral("\\b)");
}

QString signOffPattern(const QString &nameAlternation)
{
    return QStringLiteral("(\\b") + nameAlternation + QStringLiteral("\\b),? ") + toQString(signOffPhrases);
}

} // namespace zentrik::namepatterns
