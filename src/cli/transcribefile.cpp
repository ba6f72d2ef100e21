#include "transcribefile.h"

#include "clisession.h"
#include "model/apimanager.h"
#include "verb.h"

#include <QEventLoop>
#include <QFile>

#include <optional>

namespace zentrik::cli {

std::variant<QString, int> transcribeFile(const QString &path)
{
    // Checked here so an unreadable path is named as such, not reported as a network error.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    }
    file.close();

    if (!environmentKeysUsable()) {
        return exitFailure;
    }
    APIManager manager(APIManager::KeyReading::onRequest);
    if (!loadKeys(manager, { QString::fromLatin1(APIManager::openAIAccount) })) {
        return exitFailure;
    }
    QEventLoop loop;
    std::optional<TextResult> result;
    manager.transcribe(path, &loop, [&](const TextResult &outcome) {
        result = outcome;
        loop.quit();
    });
    loop.exec();
    if (const auto *error = std::get_if<APIError>(&*result)) {
        return fail(error->message());
    }
    return std::get<QString>(*result);
}

} // namespace zentrik::cli
