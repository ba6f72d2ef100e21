#pragma once

#include "privacy/namematch.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace zentrik {

// Replaces person names where chat and letter text most often carries them: after a
// greeting at the start of the text or of a sentence ("Hi Anna") and before a sign-off
// ("Anna, have a nice weekend"). Names come from a list of well-known first names; matching
// is case-insensitive. Immutable after construction, so one instance may serve every thread.
class NameRedactorPII
{
public:
    // Uses the well-known-names list shipped in the application's resources.
    explicit NameRedactorPII(QString replaceWith);
    NameRedactorPII(QString replaceWith, QStringList wellKnownNames);
    ~NameRedactorPII();

    NameRedactorPII(const NameRedactorPII &) = delete;
    NameRedactorPII &operator=(const NameRedactorPII &) = delete;

    // The instance the redaction before every send uses, with "[NAME]", made on first use.
    [[nodiscard]] static const NameRedactorPII &shared();

    // The resource "well-known-names" (JSON array of strings); empty when it is missing or
    // is not such an array.
    [[nodiscard]] static QStringList loadWellKnownNames();

    [[nodiscard]] QString redact(const QString &text) const;

    // The matches one pass finds in a text, before any of them is replaced.
    [[nodiscard]] NameMatches matches(NamePass pass, const QString &text) const;

    [[nodiscard]] const QString &replaceWith() const;
    [[nodiscard]] const QStringList &wellKnownNames() const;

private:
    struct Matchers;

    QString m_replaceWith;
    QStringList m_wellKnownNames;
    std::unique_ptr<const Matchers> m_matchers;
};

} // namespace zentrik
