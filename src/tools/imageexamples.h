#pragma once

#include <QList>
#include <QString>

namespace zentrik {

struct ImageExample
{
    QString title;
    QString text;
};

// The ready-made prompts the image studio offers, in the order shown.
[[nodiscard]] const QList<ImageExample> &imageExamples();

} // namespace zentrik
