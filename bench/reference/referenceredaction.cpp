#include "reference/referenceredaction.h"

#include "privacy/icutext.h"
#include "privacy/namepatterns.h"
#include "privacy/namereplacer.h"
#include "privacy/redactionrules.h"

#include <unicode/regex.h>

#include <memory>

namespace zentrik::reference {

namespace {

bool splitsSurrogatePair(const QString &text, qsizetype index)
{
    return index > 0 && index < text.size() && text.at(index - 1).isHighSurrogate() && text.at(index).isLowSurrogate();
}

} // namespace

NameMatches nameMatches(NamePass pass, const QString &text, const QStringList &names)
{
    const QString alternation = namepatterns::alternation(names);
    const QString pattern = pass == NamePass::Greeting ? namepatterns::greetingPattern(alternation)
                                                       : namepatterns::signOffPattern(alternation);
    const auto compiled = icutext::compile(icutext::copy(pattern), UREGEX_CASE_INSENSITIVE);
    if (!compiled) {
        return {};
    }
    const icu::UnicodeString input = icutext::copy(text);
    return collectNameMatches(*compiled, input);
}

QString applyNameMatches(const QString &text, const NameMatches &matches, const QString &replaceWith)
{
    QString current = text;
    for (const NameMatch &match : matches) {
        const bool inside = match.participated() && match.end >= match.start && match.end <= current.size();
        const bool splits
            = inside && (splitsSurrogatePair(current, match.start) || splitsSurrogatePair(current, match.end));
        if (const char *problem = nameMatchProblem(match, current.size(), splits)) {
            logSkippedNameMatch(match, problem);
            continue;
        }
        current.replace(match.start, match.end - match.start, replaceWith);
    }
    return current;
}

QString redactNames(const QString &text, const QStringList &names, const QString &replaceWith)
{
    QString current = text;
    for (NamePass pass : { NamePass::Greeting, NamePass::SignOff }) {
        current = applyNameMatches(current, nameMatches(pass, current, names), replaceWith);
    }
    return current;
}

QString redactPatterns(const QString &text)
{
    icu::UnicodeString current = icutext::copy(text);
    for (const RedactionRule &rule : redactionRules) {
        const auto compiled = icutext::compile(icutext::copy(rule.pattern), 0);
        if (!compiled) {
            continue;
        }
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(current, status));
        if (icutext::failed(status)) {
            continue;
        }
        icu::UnicodeString replaced = matcher->replaceAll(icutext::copy(rule.replacement), status);
        matcher.reset();
        if (!icutext::failed(status)) {
            current = replaced;
        }
    }
    return icutext::toQString(current);
}

QString redact(const QString &text, const QStringList &names)
{
    return redactPatterns(redactNames(text, names, QStringLiteral("[NAME]")));
}

} // namespace zentrik::reference
