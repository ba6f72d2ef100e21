#include "model/customprovider.h"

#include <QCoreApplication>
#include <QJsonArray>

namespace zentrik {

namespace {
const QString idPrefix = QStringLiteral("custom:");
constexpr qsizetype longestName = 40;
constexpr qsizetype longestModelId = 200;

QString tr(const char *text)
{
    return QCoreApplication::translate("CustomProvider", text);
}

bool hasControlCharacter(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
}

QStringList stringsOf(const QJsonValue &value)
{
    QStringList strings;
    for (const auto &entry : value.toArray()) {
        if (entry.isString() && !modelIdProblem(entry.toString())) {
            strings.append(entry.toString());
        }
    }
    strings.removeDuplicates();
    return strings;
}
} // namespace

QStringList CustomProvider::models() const
{
    QStringList all = listedModels;
    for (const QString &model : typedModels) {
        if (!all.contains(model)) {
            all.append(model);
        }
    }
    return all;
}

QUrl CustomProvider::endpoint(const QString &path) const
{
    QUrl url = baseUrl;
    url.setPath(url.path() + path);
    return url;
}

QString CustomProvider::keyAccountFor(const QString &name)
{
    return QStringLiteral("customProviderKey:") + name;
}

QString CustomProvider::modelId(const QString &model) const
{
    return customModelId(name, model);
}

QJsonObject CustomProvider::toJson() const
{
    return { { QStringLiteral("name"), name }, { QStringLiteral("baseUrl"), baseUrl.toString() },
        { QStringLiteral("hasKey"), hasKey },
        { QStringLiteral("listedModels"), QJsonArray::fromStringList(listedModels) },
        { QStringLiteral("typedModels"), QJsonArray::fromStringList(typedModels) } };
}

std::optional<CustomProvider> CustomProvider::fromJson(const QJsonObject &object)
{
    CustomProvider provider;
    provider.name = object.value(QLatin1String("name")).toString();
    const auto url = normalizedProviderUrl(object.value(QLatin1String("baseUrl")).toString());
    if (providerNameProblem(provider.name) || !std::holds_alternative<QUrl>(url)) {
        return std::nullopt;
    }
    provider.baseUrl = std::get<QUrl>(url);
    provider.hasKey = object.value(QLatin1String("hasKey")).toBool();
    provider.listedModels = stringsOf(object.value(QLatin1String("listedModels")));
    provider.typedModels = stringsOf(object.value(QLatin1String("typedModels")));
    return provider;
}

QString customModelId(const QString &providerName, const QString &model)
{
    return idPrefix + providerName + QLatin1Char('/') + model;
}

bool isCustomModelId(const QString &modelId)
{
    return modelId.startsWith(idPrefix);
}

std::optional<std::pair<QString, QString>> splitCustomModelId(const QString &modelId)
{
    if (!isCustomModelId(modelId)) {
        return std::nullopt;
    }
    const qsizetype slash = modelId.indexOf(QLatin1Char('/'), idPrefix.size());
    if (slash < 0) {
        return std::nullopt;
    }
    QString name = modelId.mid(idPrefix.size(), slash - idPrefix.size());
    QString model = modelId.mid(slash + 1);
    if (name.isEmpty() || model.isEmpty()) {
        return std::nullopt;
    }
    return std::pair { std::move(name), std::move(model) };
}

std::optional<QString> providerNameProblem(const QString &name)
{
    if (name.trimmed().isEmpty()) {
        return tr("A provider needs a name.");
    }
    if (name != name.trimmed()) {
        return tr("A provider's name does not begin or end with a space.");
    }
    if (name.size() > longestName) {
        return tr("A provider's name is at most %1 characters long.").arg(longestName);
    }
    if (name.contains(QLatin1Char('/')) || hasControlCharacter(name)) {
        return tr("A provider's name cannot contain \"/\" or control characters.");
    }
    for (const char *builtIn : { "OpenAI", "Anthropic", "Claude", "OpenRouter", "Together", "fal", "Fal AI" }) {
        if (name.compare(QLatin1String(builtIn), Qt::CaseInsensitive) == 0) {
            return tr("\"%1\" is the name of a built-in provider; choose another.").arg(name);
        }
    }
    return std::nullopt;
}

std::variant<QUrl, QString> normalizedProviderUrl(const QString &text)
{
    const QString trimmed = text.trimmed();
    QUrl url(trimmed, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (trimmed.isEmpty() || !url.isValid() || url.host().isEmpty()
        || (scheme != QLatin1String("http") && scheme != QLatin1String("https"))) {
        return tr("\"%1\" is not an http:// or https:// address, such as http://127.0.0.1:11434/v1.").arg(trimmed);
    }
    if (!url.userInfo().isEmpty()) {
        return tr("Give the provider's key on its own, not in the address.");
    }
    if (url.hasQuery() || url.hasFragment()) {
        return tr("A provider's address has no query or fragment: %1").arg(trimmed);
    }
    QString path = url.path();
    while (path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    url.setPath(path);
    url.setScheme(scheme);
    return url;
}

std::optional<QString> modelIdProblem(const QString &model)
{
    if (model.trimmed().isEmpty()) {
        return tr("A model needs an id.");
    }
    if (model.size() > longestModelId || hasControlCharacter(model) || model != model.trimmed()) {
        return tr("\"%1\" cannot be a model id.").arg(model.left(longestModelId));
    }
    return std::nullopt;
}

} // namespace zentrik
