#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <string_view>

namespace zentrik::namepatterns {

// The greeting words, in the order the greeting pattern tries them.
inline constexpr std::array<std::u16string_view, 8> greetingWords
    = { u"dear", u"hi", u"hello", u"greetings", u"hey", u"hey there", u"my name", u"my name is" };

// What may follow a name as a sign-off; its last group is the pattern's third group.
inline constexpr std::u16string_view signOffPhrases
    = u"(thx|thanks|thank you|regards|best|[a-z]+ly|[a-z]+ regards|all the best|happy [a-z]+ing|"
      u"take care|have a [a-z]+ (weekend|night|day))";

// The two patterns of the name pass for a name alternation (the names joined by "|").
// Both are compiled case-insensitively; group 3 is what gets replaced.
[[nodiscard]] QString greetingPattern(const QString &nameAlternation);
[[nodiscard]] QString signOffPattern(const QString &nameAlternation);

[[nodiscard]] inline QString alternation(const QStringList &names)
{
    return names.join(QLatin1Char('|'));
}

} // namespace zentrik::namepatterns
