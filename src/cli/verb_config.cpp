#include "model/apimanager.h"
#include "model/modelcatalog.h"
#include "settings/preferences.h"
#include "verb.h"
#include "verbs.h"

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("config");
const QStringList settingNames { QStringLiteral("text-model"), QStringLiteral("image-model"),
    QStringLiteral("dark-mode") };

std::optional<bool> parseBoolean(const QString &text)
{
    const QString value = text.trimmed().toLower();
    if (value == QStringLiteral("true") || value == QStringLiteral("on") || value == QStringLiteral("yes")
        || value == QStringLiteral("1")) {
        return true;
    }
    if (value == QStringLiteral("false") || value == QStringLiteral("off") || value == QStringLiteral("no")
        || value == QStringLiteral("0")) {
        return false;
    }
    return std::nullopt;
}

bool isKnownTextModel(const QString &id)
{
    const auto &models = ModelCatalog::textModels();
    return id.endsWith(QStringLiteral(":free"))
        || std::any_of(models.begin(), models.end(), [&](const AIModel &m) { return m.id == id; });
}

bool isKnownImageModel(const QString &id)
{
    const auto &models = ModelCatalog::imageModels();
    return std::any_of(models.begin(), models.end(), [&](const ImageModel &m) { return m.id == id; });
}

int runConfig(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reads or writes a preference.\n"
                                                    "  config get NAME\n"
                                                    "  config set NAME VALUE\n"
                                                    "NAME is text-model, image-model or dark-mode (true/false)."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("get or set"));
    parser.addPositionalArgument(QStringLiteral("name"), QStringLiteral("text-model, image-model or dark-mode"));
    parser.addPositionalArgument(
        QStringLiteral("value"), QStringLiteral("the new value (set only)"), QStringLiteral("[value]"));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList args = parser.positionalArguments();
    if (args.isEmpty()) {
        return usageError(verbName, QStringLiteral("say get or set"));
    }
    const QString &action = args.at(0);
    if (action != QStringLiteral("get") && action != QStringLiteral("set")) {
        return usageError(verbName, QStringLiteral("unknown action '%1'; use get or set").arg(action));
    }
    if (args.size() < 2 || !settingNames.contains(args.at(1))) {
        return usageError(verbName, QStringLiteral("name one of %1").arg(settingNames.join(QStringLiteral(", "))));
    }
    const QString &name = args.at(1);
    Preferences preferences;

    if (action == QStringLiteral("get")) {
        if (args.size() != 2) {
            return usageError(verbName, QStringLiteral("config get takes one name"));
        }
        if (name == QStringLiteral("text-model")) {
            printOut(
                preferences.string(QString::fromLatin1(APIManager::textModelPreference), ModelCatalog::defaultTextModel)
                + QLatin1Char('\n'));
        } else if (name == QStringLiteral("image-model")) {
            printOut(preferences.string(
                         QString::fromLatin1(APIManager::imageModelPreference), ModelCatalog::defaultImageModel)
                + QLatin1Char('\n'));
        } else {
            printOut(preferences.boolean(QString::fromLatin1(darkModePreference), false) ? QStringLiteral("true\n")
                                                                                         : QStringLiteral("false\n"));
        }
        return exitSuccess;
    }

    if (args.size() != 3) {
        return usageError(verbName, QStringLiteral("config set takes a name and a value"));
    }
    const QString &value = args.at(2);
    if (name == QStringLiteral("text-model")) {
        if (!isKnownTextModel(value)) {
            return usageError(
                verbName, QStringLiteral("unknown text model '%1' (zentrik-cli models lists them)").arg(value));
        }
        if (!preferences.setString(QString::fromLatin1(APIManager::textModelPreference), value)) {
            return fail(preferences.errorString());
        }
    } else if (name == QStringLiteral("image-model")) {
        if (!isKnownImageModel(value)) {
            return usageError(
                verbName, QStringLiteral("unknown image model '%1' (zentrik-cli models lists them)").arg(value));
        }
        if (!preferences.setString(QString::fromLatin1(APIManager::imageModelPreference), value)) {
            return fail(preferences.errorString());
        }
    } else {
        const std::optional<bool> dark = parseBoolean(value);
        if (!dark) {
            return usageError(verbName, QStringLiteral("dark-mode takes true or false, not '%1'").arg(value));
        }
        if (!preferences.setBoolean(QString::fromLatin1(darkModePreference), *dark)) {
            return fail(preferences.errorString());
        }
    }
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::configVerb()
{
    return { QStringLiteral("config"),
        QStringLiteral("Read or write a preference (text-model, image-model, dark-mode)"), runConfig };
}
