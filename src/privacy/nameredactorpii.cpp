#include "privacy/nameredactorpii.h"

#include "privacy/greetingscanner.h"
#include "privacy/icutext.h"
#include "privacy/namelookup.h"
#include "privacy/namepatterns.h"
#include "privacy/namereplacer.h"
#include "privacy/signoffscanner.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <unicode/regex.h>

// Resources of a static library are registered only when something asks for them.
static void initPrivacyResources()
{
    Q_INIT_RESOURCE(privacy);
}

namespace zentrik {

namespace {

QString resourcePath(const QString &name, const QString &extension)
{
    return QStringLiteral(":/%1.%2").arg(name, extension);
}

} // namespace

// Everything compiled from the name list, built once per instance. Lists of plain words go
// through the scanners; any other list through the two patterns themselves, compiled here
// once (a pattern that fails to compile is left out and its pass changes nothing).
struct NameRedactorPII::Matchers
{
    explicit Matchers(const QStringList &names)
    {
        if (NameLookup::canIndex(names)) {
            lookup = std::make_unique<NameLookup>(names);
            greetings = std::make_unique<GreetingScanner>(*lookup);
            signOffs = std::make_unique<SignOffScanner>(*lookup);
            if (greetings->isValid() && signOffs->isValid()) {
                return;
            }
            greetings.reset();
            signOffs.reset();
        }
        const QString alternation = namepatterns::alternation(names);
        greetingPattern
            = icutext::compile(icutext::copy(namepatterns::greetingPattern(alternation)), UREGEX_CASE_INSENSITIVE);
        signOffPattern
            = icutext::compile(icutext::copy(namepatterns::signOffPattern(alternation)), UREGEX_CASE_INSENSITIVE);
    }

    [[nodiscard]] NameMatches find(NamePass pass, const QString &text) const
    {
        const icu::UnicodeString view = icutext::view(text);
        if (greetings && signOffs) {
            return pass == NamePass::Greeting ? greetings->find(view) : signOffs->find(view);
        }
        const auto &pattern = pass == NamePass::Greeting ? greetingPattern : signOffPattern;
        return pattern ? collectNameMatches(*pattern, view) : NameMatches();
    }

    std::unique_ptr<NameLookup> lookup;
    std::unique_ptr<GreetingScanner> greetings;
    std::unique_ptr<SignOffScanner> signOffs;
    std::unique_ptr<icu::RegexPattern> greetingPattern;
    std::unique_ptr<icu::RegexPattern> signOffPattern;
};

NameRedactorPII::NameRedactorPII(QString replaceWith)
    : NameRedactorPII(std::move(replaceWith), loadWellKnownNames())
{ }

NameRedactorPII::NameRedactorPII(QString replaceWith, QStringList wellKnownNames)
    : m_replaceWith(std::move(replaceWith))
    , m_wellKnownNames(std::move(wellKnownNames))
    , m_matchers(std::make_unique<const Matchers>(m_wellKnownNames))
{ }

NameRedactorPII::~NameRedactorPII() = default;

const NameRedactorPII &NameRedactorPII::shared()
{
    static const NameRedactorPII instance(QStringLiteral("[NAME]"));
    return instance;
}

QStringList NameRedactorPII::loadWellKnownNames()
{
    initPrivacyResources();
    QFile file(resourcePath(QStringLiteral("well-known-names"), QStringLiteral("json")));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        return {};
    }
    QStringList names;
    const QJsonArray array = document.array();
    names.reserve(array.size());
    for (const auto &value : array) {
        if (!value.isString()) {
            return {};
        }
        names.append(value.toString());
    }
    return names;
}

QString NameRedactorPII::redact(const QString &text) const
{
    QString current = text;
    for (NamePass pass : { NamePass::Greeting, NamePass::SignOff }) {
        current = replaceNameMatches(current, m_matchers->find(pass, current), m_replaceWith);
    }
    return current;
}

NameMatches NameRedactorPII::matches(NamePass pass, const QString &text) const
{
    return m_matchers->find(pass, text);
}

const QString &NameRedactorPII::replaceWith() const
{
    return m_replaceWith;
}

const QStringList &NameRedactorPII::wellKnownNames() const
{
    return m_wellKnownNames;
}

} // namespace zentrik
