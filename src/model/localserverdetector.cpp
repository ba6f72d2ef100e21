#include "model/localserverdetector.h"

#include "chat/chatmodel.h"
#include "model/customproviders.h"
#include "net/httpclient.h"

#include <QJsonDocument>
#include <QVariantMap>

namespace zentrik {

namespace {

QUrl baseUrlFor(quint16 port)
{
    return { QStringLiteral("http://127.0.0.1:%1/v1").arg(port) };
}

// The ids of an OpenAI model list, or std::nullopt when the answer is none (another kind
// of server on the port).
std::optional<QStringList> modelIds(const HttpResult &result)
{
    const auto *response = std::get_if<HttpResponse>(&result);
    if (response == nullptr || !response->isSuccess()) {
        return std::nullopt;
    }
    const std::optional<ChatModel> list = ChatModel::fromJson(QJsonDocument::fromJson(response->body).object());
    if (!list) {
        return std::nullopt;
    }
    QStringList ids;
    for (const ChatModel::Entry &entry : list->data) {
        if (!modelIdProblem(entry.id)) {
            ids.append(entry.id);
        }
    }
    return ids;
}

} // namespace

LocalServerDetector::LocalServerDetector(HttpClient *http, CustomProviders *providers, QObject *parent)
    : QObject(parent)
    , m_http(http)
    , m_providers(providers)
    , m_candidates(defaultCandidates())
{
    connect(providers, &CustomProviders::changed, this, &LocalServerDetector::offersChanged);
}

QList<LocalServerDetector::Candidate> LocalServerDetector::defaultCandidates()
{
    const QString configured = qEnvironmentVariable("ZENTRIK_LOCAL_SERVERS");
    if (configured.isNull()) {
        return { { QStringLiteral("Ollama"), 11434 }, { QStringLiteral("LM Studio"), 1234 },
            { QStringLiteral("llama.cpp"), 8080 } };
    }
    QList<Candidate> candidates;
    for (const QString &entry : configured.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const qsizetype equals = entry.lastIndexOf(QLatin1Char('='));
        bool ok = false;
        const uint port = entry.mid(equals + 1).trimmed().toUInt(&ok);
        if (ok && port > 0 && port <= 65535) {
            const QString name = equals > 0 ? entry.left(equals).trimmed() : QStringLiteral("Local server");
            candidates.append({ name, quint16(port) });
        }
    }
    return candidates;
}

void LocalServerDetector::setCandidates(const QList<Candidate> &candidates)
{
    m_candidates = candidates;
}

void LocalServerDetector::detect()
{
    if (m_http.isNull()) {
        return;
    }
    const bool wasDetecting = detecting();
    const int round = ++m_roundNumber;
    m_round.clear();
    m_pending = int(m_candidates.size());
    for (qsizetype index = 0; index < m_candidates.size(); ++index) {
        probe(index, round);
    }
    if (wasDetecting != detecting()) {
        Q_EMIT detectingChanged();
    }
    if (m_pending == 0) {
        settle(round);
    }
}

void LocalServerDetector::probe(qsizetype index, int round)
{
    const Candidate candidate = m_candidates.at(index);
    HttpRequest request;
    request.url = baseUrlFor(candidate.port);
    request.url.setPath(request.url.path() + QStringLiteral("/models"));
    request.timeout = probeTimeout;
    request.deadline = probeTimeout;
    m_http->send(request, this, [this, candidate, round, index](const HttpResult &result) {
        if (round != m_roundNumber) {
            return;
        }
        if (const std::optional<QStringList> models = modelIds(result)) {
            m_round.append({ int(index), Server { candidate.name, baseUrlFor(candidate.port), *models } });
        }
        if (--m_pending == 0) {
            settle(round);
        }
    });
}

void LocalServerDetector::settle(int round)
{
    std::sort(m_round.begin(), m_round.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    QList<Server> found;
    for (const auto &[index, server] : std::exchange(m_round, {})) {
        found.append(server);
    }
    const bool changed = found != m_found;
    m_found = found;
    if (round == m_roundNumber) {
        Q_EMIT detectingChanged();
    }
    if (changed) {
        Q_EMIT offersChanged();
    }
    Q_EMIT finished();
}

QList<LocalServerDetector::Server> LocalServerDetector::offers() const
{
    QList<Server> offers;
    for (const Server &server : m_found) {
        const auto &added = m_providers->list();
        const bool known = std::any_of(added.begin(), added.end(), [&](const CustomProvider &provider) {
            return provider.baseUrl.adjusted(QUrl::StripTrailingSlash) == server.baseUrl
                || (provider.baseUrl.port() == server.baseUrl.port() && isLoopbackHost(provider.baseUrl.host()));
        });
        if (!known) {
            offers.append(server);
        }
    }
    return offers;
}

QVariantList LocalServerDetector::offerList() const
{
    QVariantList list;
    for (const Server &server : offers()) {
        list.append(QVariantMap { { QStringLiteral("name"), server.name },
            { QStringLiteral("baseUrl"), server.baseUrl.toString() }, { QStringLiteral("models"), server.models },
            { QStringLiteral("modelCount"), server.models.size() } });
    }
    return list;
}

void LocalServerDetector::use(const QString &baseUrl, QObject *context, const Completion &done)
{
    const QList<Server> available = offers();
    const auto offer = std::find_if(
        available.begin(), available.end(), [&](const Server &server) { return server.baseUrl.toString() == baseUrl; });
    if (offer == available.end()) {
        const QString error = tr("No model server is offered at %1.").arg(baseUrl);
        QMetaObject::invokeMethod(
            this, [done, error] { done(error); }, Qt::QueuedConnection);
        return;
    }
    QString name = offer->name;
    for (int number = 2; m_providers->find(name) != nullptr; ++number) {
        name = QStringLiteral("%1 %2").arg(offer->name).arg(number);
    }
    const QString providerName = name;
    m_providers->add(providerName, baseUrl, QString(), context,
        [this, providerName, models = offer->models, done](const QString &error) {
            // The list just read is the one the server gives; no need to ask again.
            done(error.isEmpty() ? m_providers->setListedModels(providerName, models) : error);
        });
}

void LocalServerDetector::use(const QString &baseUrl)
{
    use(baseUrl, this, [this](const QString &error) { Q_EMIT useFinished(error); });
}

} // namespace zentrik
