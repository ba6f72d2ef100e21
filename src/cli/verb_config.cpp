#include "clisession.h"
#include "model/apimanager.h"
#include "model/modelcatalog.h"
#include "model/networkpreferences.h"
#include "settings/keyservice.h"
#include "settings/preferences.h"
#include "verb.h"
#include "verbs.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("config");
const QStringList settingNames { QStringLiteral("text-model"), QStringLiteral("image-model"),
    QStringLiteral("dark-mode"), QStringLiteral("proxy"), QStringLiteral("ca-file"),
    QStringLiteral("transcription-provider") };

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
    if (const auto custom = splitCustomModelId(id)) {
        const CustomProviders providers(nullptr, nullptr);
        const CustomProvider *provider = providers.find(custom->first);
        return provider != nullptr && provider->serves(custom->second);
    }
    const auto &models = ModelCatalog::textModels();
    return id.endsWith(QStringLiteral(":free"))
        || std::any_of(models.begin(), models.end(), [&](const AIModel &m) { return m.id == id; });
}

// Stores or removes the proxy's password; false, with the reason printed, when the Secret
// Service failed.
bool storeProxyPassword(const QString &password)
{
    KeyService keys;
    KeyService::Outcome result;
    QEventLoop loop;
    keys.write({ { QString::fromLatin1(NetworkPreferences::proxyPasswordAccount), password } }, &loop,
        [&](const KeyService::Outcome &outcome) {
            result = outcome;
            loop.quit();
        });
    loop.exec();
    if (!result.succeeded()) {
        fail(QStringLiteral("could not store the proxy's password: %1").arg(secretStoreMessage(result.code)));
        return false;
    }
    return true;
}

int setProxy(Preferences &preferences, const QString &value, bool passwordFromStdin)
{
    const auto parsed = ProxySettings::parse(value);
    if (const auto *problem = std::get_if<QString>(&parsed)) {
        return usageError(verbName, *problem);
    }
    const auto &proxy = std::get<ProxySettings>(parsed);
    if (passwordFromStdin && proxy.user.isEmpty()) {
        return usageError(verbName, QStringLiteral("a proxy password needs a user: http://USER@HOST:PORT"));
    }
    if (passwordFromStdin) {
        const std::optional<QString> password = readSecret(QStringLiteral("the proxy's password"));
        if (!password || !storeProxyPassword(*password)) {
            return exitFailure;
        }
    }
    const bool written = preferences.update([&](QVariantMap &values) {
        values.insert(QString::fromLatin1(NetworkPreferences::proxyPreference), proxy.toString());
        if (proxy.mode == ProxySettings::Mode::manual) {
            values.insert(QString::fromLatin1(NetworkPreferences::manualProxyPreference), proxy.toString());
        }
        return true;
    });
    return written ? exitSuccess : fail(preferences.errorString());
}

int setCaFile(Preferences &preferences, const QString &value)
{
    const bool clear = value.isEmpty() || value == QStringLiteral("none");
    const QString path = clear ? QString() : QFileInfo(value).absoluteFilePath();
    if (const QString problem = NetworkPreferences::caFileProblem(path); !problem.isEmpty()) {
        return fail(problem);
    }
    if (!preferences.setString(QString::fromLatin1(NetworkPreferences::caFilePreference), path)) {
        return fail(preferences.errorString());
    }
    return exitSuccess;
}

int setTranscriptionProvider(Preferences &preferences, const QString &value)
{
    QString name;
    if (value.compare(QStringLiteral("openai"), Qt::CaseInsensitive) != 0) {
        const CustomProviders providers(nullptr, nullptr);
        const CustomProvider *provider = providers.find(value);
        if (provider == nullptr) {
            return usageError(verbName,
                QStringLiteral("no provider named '%1' (openai or one of zentrik-cli providers list)").arg(value));
        }
        name = provider->name;
    }
    if (!preferences.setString(QString::fromLatin1(APIManager::transcriptionProviderPreference), name)) {
        return fail(preferences.errorString());
    }
    return exitSuccess;
}

bool isKnownImageModel(const QString &id)
{
    const auto &models = ModelCatalog::imageModels();
    return std::any_of(models.begin(), models.end(), [&](const ImageModel &m) { return m.id == id; });
}

int runConfig(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reads or writes a preference.\n"
                       "  config get NAME\n"
                       "  config set NAME VALUE\n"
                       "NAME is one of:\n"
                       "  text-model              a catalogue id or custom:PROVIDER/MODEL\n"
                       "  image-model\n"
                       "  dark-mode               true or false\n"
                       "  proxy                   system, none, http://[USER@]HOST:PORT or\n"
                       "                          socks5://[USER@]HOST:PORT (with\n"
                       "                          --password-stdin for its password)\n"
                       "  ca-file                 a PEM file trusted besides the system's\n"
                       "                          certificates, or none\n"
                       "  transcription-provider  openai or a custom provider's name"));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("get or set"));
    parser.addPositionalArgument(QStringLiteral("name"), QStringLiteral("the setting"));
    const QCommandLineOption passwordOption(QStringLiteral("password-stdin"),
        QStringLiteral("set proxy: read the proxy's password from stdin (kept in the Secret Service)."));
    parser.addOption(passwordOption);
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
        } else if (name == QStringLiteral("proxy")) {
            printOut(NetworkPreferences::read(preferences).proxy.toString() + QLatin1Char('\n'));
        } else if (name == QStringLiteral("ca-file")) {
            printOut(NetworkPreferences::read(preferences).caFile + QLatin1Char('\n'));
        } else if (name == QStringLiteral("transcription-provider")) {
            const QString provider
                = preferences.string(QString::fromLatin1(APIManager::transcriptionProviderPreference));
            printOut((provider.isEmpty() ? QStringLiteral("openai") : provider) + QLatin1Char('\n'));
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
    if (parser.isSet(passwordOption) && name != QStringLiteral("proxy")) {
        return usageError(verbName, QStringLiteral("--password-stdin goes with config set proxy"));
    }
    if (name == QStringLiteral("proxy")) {
        return setProxy(preferences, value, parser.isSet(passwordOption));
    }
    if (name == QStringLiteral("ca-file")) {
        return setCaFile(preferences, value);
    }
    if (name == QStringLiteral("transcription-provider")) {
        return setTranscriptionProvider(preferences, value);
    }
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
        QStringLiteral("Read or write a setting (models, dark mode, proxy, CA file, transcription)"), runConfig };
}
