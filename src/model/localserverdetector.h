#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <QtQmlIntegration>

#include <chrono>
#include <functional>

namespace zentrik {

class CustomProviders;
class HttpClient;

// Looks for model servers running on this computer (Ollama, LM Studio, llama.cpp's server)
// by asking each usual loopback port for its model list, all at once and with a short time
// limit, in the background. What it finds is only offered: nothing is added or selected
// until the user says so with use().
class LocalServerDetector : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("APIManager hands out its detector")
    Q_PROPERTY(QVariantList offers READ offerList NOTIFY offersChanged FINAL)
    Q_PROPERTY(bool detecting READ detecting NOTIFY detectingChanged FINAL)

public:
    struct Candidate
    {
        QString name;
        quint16 port = 0;
    };
    struct Server
    {
        QString name;
        QUrl baseUrl;
        QStringList models;

        friend bool operator==(const Server &, const Server &) = default;
    };

    // How long one port may take to answer; a closed port answers at once.
    static constexpr std::chrono::milliseconds probeTimeout { 1500 };

    LocalServerDetector(HttpClient *http, CustomProviders *providers, QObject *parent = nullptr);

    // Ollama on 11434, LM Studio on 1234 and llama.cpp's server on 8080, unless
    // ZENTRIK_LOCAL_SERVERS lists others as "Name=port,Name=port" (tests, unusual setups).
    [[nodiscard]] static QList<Candidate> defaultCandidates();
    [[nodiscard]] QList<Candidate> candidates() const { return m_candidates; }
    void setCandidates(const QList<Candidate> &candidates);

    // Probes every candidate; finished() follows once each has answered or given up. A
    // detection under way is replaced.
    Q_INVOKABLE void detect();
    [[nodiscard]] bool detecting() const { return m_pending > 0; }
    // Every server found by the last detection, in the order of the candidates.
    [[nodiscard]] QList<Server> found() const { return m_found; }
    // Those found that are not yet among the custom providers (by address).
    [[nodiscard]] QList<Server> offers() const;
    // Each offer: name, baseUrl, models (a list of ids), modelCount.
    [[nodiscard]] QVariantList offerList() const;

    using Completion = std::function<void(const QString &error)>;
    // Adds the offered server at baseUrl as a custom provider (no key), under its name or,
    // when that is taken, the name followed by a number. The completion gets the error line,
    // empty on success; useFinished() says the same to the window.
    void use(const QString &baseUrl, QObject *context, const Completion &done);
    Q_INVOKABLE void use(const QString &baseUrl);

Q_SIGNALS:
    void offersChanged();
    void detectingChanged();
    void finished();
    void useFinished(const QString &error);

private:
    void probe(qsizetype index, int round);
    void settle(int round);

    QPointer<HttpClient> m_http;
    CustomProviders *m_providers;
    QList<Candidate> m_candidates;
    QList<Server> m_found;
    QList<std::pair<int, Server>> m_round;
    int m_pending = 0;
    int m_roundNumber = 0;
};

} // namespace zentrik
