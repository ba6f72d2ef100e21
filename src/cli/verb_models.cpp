#include "model/apimanager.h"
#include "model/modelcatalog.h"
#include "settings/preferences.h"
#include "verb.h"
#include "verbs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

int runModels(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Lists the text and image models in catalogue order, then "
                                                    "the custom providers' models; the selected ones are marked "
                                                    "with *."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Machine-readable output."));
    parser.addOption(jsonOption);
    if (auto exit = parseArguments(parser, QStringLiteral("models"), arguments)) {
        return *exit;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return usageError(QStringLiteral("models"), QStringLiteral("models takes no arguments"));
    }

    // The selections are read straight from the preferences: listing models needs no keys.
    const Preferences preferences;
    const CustomProviders providers(nullptr, nullptr);
    const QString textModel
        = preferences.string(QString::fromLatin1(APIManager::textModelPreference), ModelCatalog::defaultTextModel);
    const QString imageModel
        = preferences.string(QString::fromLatin1(APIManager::imageModelPreference), ModelCatalog::defaultImageModel);

    if (parser.isSet(jsonOption)) {
        QJsonArray text;
        for (const AIModel &model : ModelCatalog::textModels()) {
            text.append(QJsonObject { { QStringLiteral("id"), model.id }, { QStringLiteral("name"), model.name },
                { QStringLiteral("icon"), model.icon }, { QStringLiteral("usage"), model.usage },
                { QStringLiteral("selected"), model.id == textModel } });
        }
        QJsonArray image;
        for (const ImageModel &model : ModelCatalog::imageModels()) {
            image.append(QJsonObject { { QStringLiteral("id"), model.id }, { QStringLiteral("name"), model.name },
                { QStringLiteral("features"), QJsonArray::fromStringList(model.features) },
                { QStringLiteral("selected"), model.id == imageModel } });
        }
        QJsonArray custom;
        for (const CustomProvider &provider : providers.list()) {
            for (const QString &model : provider.models()) {
                custom.append(QJsonObject { { QStringLiteral("id"), provider.modelId(model) },
                    { QStringLiteral("name"), model }, { QStringLiteral("provider"), provider.name },
                    { QStringLiteral("selected"), provider.modelId(model) == textModel } });
            }
        }
        const QJsonObject root { { QStringLiteral("textModels"), text }, { QStringLiteral("customTextModels"), custom },
            { QStringLiteral("imageModels"), image }, { QStringLiteral("selectedTextModel"), textModel },
            { QStringLiteral("selectedImageModel"), imageModel } };
        printOut(QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
        return exitSuccess;
    }

    QString out = QStringLiteral("Text models:\n");
    for (const AIModel &model : ModelCatalog::textModels()) {
        out += QStringLiteral("%1 %2 %3 %4 (%5)\n")
                   .arg(model.id == textModel ? QStringLiteral("*") : QStringLiteral(" "), model.icon,
                       model.id.leftJustified(42), model.name, model.usage);
    }
    for (const CustomProvider &provider : providers.list()) {
        out += QStringLiteral("\n%1 (%2):\n").arg(provider.name, provider.baseUrl.toString());
        for (const QString &model : provider.models()) {
            const QString id = provider.modelId(model);
            out += QStringLiteral("%1 %2\n").arg(id == textModel ? QStringLiteral("*") : QStringLiteral(" "), id);
        }
    }
    out += QStringLiteral("\nImage models:\n");
    for (const ImageModel &model : ModelCatalog::imageModels()) {
        out += QStringLiteral("%1 %2 %3 (%4)\n")
                   .arg(model.id == imageModel ? QStringLiteral("*") : QStringLiteral(" "), model.id.leftJustified(40),
                       model.name, model.features.join(QStringLiteral(", ")));
    }
    const auto custom = splitCustomModelId(textModel);
    const bool isCustom
        = custom && providers.find(custom->first) != nullptr && providers.find(custom->first)->serves(custom->second);
    if (!isCustom
        && !std::any_of(ModelCatalog::textModels().begin(), ModelCatalog::textModels().end(),
            [&](const AIModel &m) { return m.id == textModel; })) {
        out += QStringLiteral("\nSelected text model %1 is not in the catalogue.\n").arg(textModel);
    }
    printOut(out);
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::modelsVerb()
{
    return { QStringLiteral("models"), QStringLiteral("List the text and image models"), runModels };
}
