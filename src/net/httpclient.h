#pragma once

#include <QObject>
#include <QPointer>

#include <chrono>
#include <functional>
#include <memory>
#include <unordered_map>

#include "net/httprequest.h"
#include "net/httpresponse.h"
#include "net/linesplitter.h"
#include "net/networksettings.h"

class QNetworkAccessManager;
class QNetworkReply;

namespace zentrik {

class ConnectionPolicy;

// The program's one way onto the network: every request of every provider goes through
// one HttpClient and its single QNetworkAccessManager, on the thread that owns it. Each
// handler runs on that thread, at most once per call, and never after the call was
// cancelled or its context object destroyed.
//
// TLS peers are always verified (against the system's authorities and an extra CA file the
// user may name), redirects are followed by hand so that credentials never travel to another
// host, and the user's proxy settings (by default the system's, http_proxy and friends
// included) apply to every request except those to this computer.
//
// A request the server may have received is never sent again, by this class or by Qt
// underneath: a connection that closes before the answer is a lost connection. So is an
// answer whose body stops short of its announced length. The request's own credentials are
// replaced by "[KEY]" in everything handed back, and a request whose headers could smuggle
// in others is refused before anything is sent.
class HttpClient : public QObject
{
    Q_OBJECT

public:
    using CallId = quint64;
    using ResultHandler = std::function<void(const HttpResult &result)>;

    struct StreamHandlers
    {
        // Each complete line of a successful (2xx) answer, as soon as it has arrived.
        // Returning false ends the call quietly: nothing else is read or reported.
        std::function<bool(QByteArrayView line)> onLine;
        // Once at the end, unless the call was ended quietly: for a successful answer an
        // HttpResponse without body (its lines were handed over), for any other status the
        // response with its body, or the transport error that cut the exchange short.
        ResultHandler onFinished;
    };

    // How long a connection may stay silent before the request counts as timed out, unless
    // the request sets its own timeout. Matches the usual default of URL loading services.
    static constexpr std::chrono::milliseconds defaultTimeout { 60000 };
    static constexpr int maxRedirects = 10;
    // How long a whole-reply request may take in total, unless the request sets its own.
    static constexpr std::chrono::milliseconds defaultDeadline { 300000 };
    // The body of a failed streamed answer is kept only up to this size.
    static constexpr qsizetype maxErrorBodySize = qsizetype(1024) * 1024;
    // The most a reply may bring, whole or streamed; more is refused with an error rather
    // than held in memory.
    static constexpr qsizetype maxReplySize = qsizetype(64) * 1024 * 1024;
    static constexpr qint64 readAhead = qint64(1024) * 1024;

    explicit HttpClient(QObject *parent = nullptr);
    ~HttpClient() override;

    // One request; onFinished receives the whole answer or the transport error. When context
    // is given, the call is cancelled when context is destroyed.
    CallId send(HttpRequest request, QObject *context, ResultHandler onFinished);
    // One request whose answer is read line by line as it arrives.
    CallId stream(HttpRequest request, QObject *context, StreamHandlers handlers);
    // Ends the call at once; none of its handlers runs afterwards. Unknown ids are ignored.
    void cancel(CallId id);

    [[nodiscard]] bool isActive(CallId id) const;
    [[nodiscard]] int activeCallCount() const { return int(m_calls.size()); }

    [[nodiscard]] std::chrono::milliseconds timeout() const { return m_timeout; }
    void setTimeout(std::chrono::milliseconds timeout);
    [[nodiscard]] std::chrono::milliseconds deadline() const { return m_deadline; }
    void setDeadline(std::chrono::milliseconds deadline);

    // The proxy and the extra CA file; requests started from now on follow them.
    void setNetworkSettings(const NetworkSettings &settings);
    [[nodiscard]] const NetworkSettings &networkSettings() const;

private:
    struct Call;
    using CallPtr = std::shared_ptr<Call>;

    CallId begin(HttpRequest request, QObject *context, StreamHandlers handlers, bool streaming);
    void start(const CallPtr &call);
    // Sends the call's request to the address a redirect named, forgetting what the old
    // reply read.
    void restart(const CallPtr &call);
    void onReadyRead(CallId id);
    void onFinished(CallId id);
    // Takes what the reply has brought; false when that ended the call.
    bool take(const CallPtr &call, const QByteArray &bytes);
    // True when the redirect was followed or refused (the call goes on or has ended).
    bool followRedirect(const CallPtr &call, int status);
    void failLater(const CallPtr &call, const TransportError &error);
    // Hands over the complete lines in bytes; false when the call ended meanwhile.
    bool deliverLines(const CallPtr &call, QByteArrayView bytes);
    void complete(const CallPtr &call, const HttpResult &result);
    // Forgets the call and aborts its reply without reporting anything.
    void drop(const CallPtr &call);
    [[nodiscard]] CallPtr find(CallId id) const;

    QNetworkAccessManager *m_manager;
    std::unique_ptr<ConnectionPolicy> m_connections;
    std::unordered_map<CallId, CallPtr> m_calls;
    CallId m_nextId = 1;
    std::chrono::milliseconds m_timeout = defaultTimeout;
    std::chrono::milliseconds m_deadline = defaultDeadline;
};

} // namespace zentrik
