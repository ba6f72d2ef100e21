#include <QtTest>

#include <QRegularExpression>
#include <QTemporaryDir>

#include "model/transcriptionrequest.h"
#include "support/closingserver.h"
#include "support/completion.h"
#include "support/logcapture.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {

const QByteArray transcriptionPath = "/v1/audio/transcriptions";

QString describe(const TextResult &result)
{
    if (const auto *error = std::get_if<APIError>(&result)) {
        return QStringLiteral("error: ") + error->message();
    }
    return QStringLiteral("text: ") + std::get<QString>(result);
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        return {};
    }
    return path;
}

} // namespace

// The speech-to-text request: its multipart body, the key check and how answers are read.
class TestTranscription : public QObject
{
    Q_OBJECT

    // The transcript or error, once the operation has completed exactly once.
    QString transcribe(ProviderFixture &fixture, const QString &path)
    {
        test::Completion<TextResult> done;
        fixture.manager->transcribe(path, this, done.callback());
        done.started();
        return done.waitOnce() ? describe(done.result()) : done.fault();
    }

private Q_SLOTS:
    void sendsTheMultipartBodyByteForByte_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("audio");
        const auto row = [](const char *name, const QString &fileName, const QByteArray &audio) {
            QTest::newRow(name) << fileName << audio;
        };

        row("m4a recording", "recording-1.m4a",
            QByteArray("\x00\x00\x00\x20"
                       "ftypM4A ",
                12));
        // Bytes that look like the form's own syntax must pass through untouched.
        row("binary with CR LF and dashes", "memo.wav", QByteArray("\r\n--\r\n\r\n\x00\xff\xfe--boundary--\r\n", 24));
        row("empty file", "empty", QByteArray());
        row("name with spaces and umlauts", QString::fromUtf8("Büro Notiz.mp3"), QByteArray(4096, 'a'));
    }

    void sendsTheMultipartBodyByteForByte()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, audio);
        QTemporaryDir dir;
        const QString path = writeFile(dir, fileName, audio);
        QVERIFY(!path.isEmpty());
        // The request exactly as it arrived on the wire: the fake provider's HTTP library
        // would take the multipart body apart into fields.
        test::ClosingServer server;
        server.answerFirst(1, 5000, R"({"text":"ok"})");
        ProviderFixture fixture;
        qputenv("ZENTRIK_OPENAI_BASE_URL", server.baseUrl().toString().toUtf8());
        fixture.use(QStringLiteral("claude-3-haiku-20240307"), QStringLiteral("sk-voice"));

        QCOMPARE(transcribe(fixture, path), QStringLiteral("text: ok"));
        QCOMPARE(server.requests().size(), 1);
        const QByteArray request = server.requests().first();
        const QByteArray head = request.left(request.indexOf("\r\n\r\n"));
        const QByteArray body = request.mid(head.size() + 4);
        QVERIFY2(head.startsWith("POST /v1/audio/transcriptions HTTP/1.1\r\n"), head);
        const auto header = [&head](const QByteArray &name) {
            for (const QByteArray &line : head.split('\n')) {
                if (line.toLower().startsWith(name.toLower() + ':')) {
                    return line.mid(name.size() + 1).trimmed();
                }
            }
            return QByteArray();
        };
        QCOMPARE(header("Authorization"), QByteArray("Bearer sk-voice"));

        const QByteArray contentType = header("Content-Type");
        const QByteArray prefix = "multipart/form-data; boundary=";
        QVERIFY2(contentType.startsWith(prefix), contentType);
        const QByteArray boundary = contentType.mid(prefix.size());
        QVERIFY2(QRegularExpression(QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$"))
                     .match(QString::fromLatin1(boundary))
                     .hasMatch(),
            boundary);

        const QByteArray expected = "--" + boundary + "\r\n" + "Content-Disposition: form-data; name=\"model\"\r\n\r\n"
            + "whisper-1\r\n" + "--" + boundary + "\r\n"
            + "Content-Disposition: form-data; name=\"file\"; filename=\"audio.m4a\"\r\n"
            + "Content-Type: audio/m4a\r\n\r\n" + audio + "\r\n" + "--" + boundary + "--\r\n";
        QCOMPARE(body, expected);
        QVERIFY(body.startsWith("--" + boundary + "\r\n"));
        QVERIFY(body.endsWith("\r\n--" + boundary + "--\r\n"));
    }

    void eachRequestHasAFreshBoundary()
    {
        const QByteArray first
            = TranscriptionRequest::build(QStringLiteral("k"), TranscriptionRequest::newBoundary(), "a")
                  .header("Content-Type");
        const QByteArray second
            = TranscriptionRequest::build(QStringLiteral("k"), TranscriptionRequest::newBoundary(), "a")
                  .header("Content-Type");
        QVERIFY(first != second);
        const HttpRequest request = TranscriptionRequest::build(QStringLiteral("k"), "B", "a");
        QCOMPARE(request.timeout, std::chrono::milliseconds(60000));
    }

    void missingKeyFailsAtOnce_data()
    {
        QTest::addColumn<bool>("fileExists");
        QTest::newRow("readable file") << true;
        // The key is checked before the file is read.
        QTest::newRow("no file either") << false;
    }

    void missingKeyFailsAtOnce()
    {
        QFETCH(bool, fileExists);
        QTemporaryDir dir;
        const QString path = fileExists ? writeFile(dir, QStringLiteral("a.m4a"), "audio") : dir.filePath("none.m4a");
        ProviderFixture fixture;
        // A free text model needs no key, but transcription always needs the OpenAI one.
        fixture.use(QStringLiteral("mistralai/mistral-7b-instruct:free"), QString());
        fixture.manager->overrideUserKeys({}, {}, {});
        QVERIFY(fixture.manager->openAIKey().isEmpty());
        test::LogCapture log;

        QCOMPARE(transcribe(fixture, path), QStringLiteral("error: API key is missing. Please add it in Settings."));
        QCOMPARE(fixture.fake->requestCount(), 0);
        QVERIFY(log.startingWith(QStringLiteral("Sending request")).isEmpty());
        QVERIFY(log.startingWith(QStringLiteral("Failed to read audio file")).isEmpty());
    }

    void unreadableFileSendsNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("missing") << "missing";
        QTest::newRow("directory") << "directory";
    }

    void unreadableFileSendsNothing()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString path = kind == "missing" ? dir.filePath("gone.m4a") : dir.path();
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        test::LogCapture log;

        QCOMPARE(transcribe(fixture, path), QStringLiteral("error: Failed to prepare the request data."));
        QCOMPARE(fixture.fake->requestCount(), 0);
        const QStringList lines = log.startingWith(QStringLiteral("Failed to read audio file: "));
        QCOMPARE(lines.size(), 1);
        QVERIFY2(
            lines.first().size() > QStringLiteral("Failed to read audio file: ").size(), qPrintable(lines.first()));
        QVERIFY(!log.has(QStringLiteral("Sending request to OpenAI API")));
    }

    void readsTheAnswer_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QString>("logLine");
        const auto row = [](const char *name, const int &status, const QByteArray &body, const QString &outcome,
                             const QString &logLine) { QTest::newRow(name) << status << body << outcome << logLine; };

        row("transcript", 200, QByteArray(R"({"text":"Buy milk and eggs."})"), "text: Buy milk and eggs.",
            "Transcription received from API: Buy milk and eggs.");
        row("empty transcript is not an error", 200, QByteArray(R"({"text": ""})"),
            "text: ", "Transcription received from API: ");
        row("no text", 200, QByteArray(R"({"task":"transcribe"})"), "error: Invalid response received from the server.",
            "Invalid response format from API");
        row("service error", 401, QByteArray(R"({"error":{"message":"Incorrect API key provided"}})"),
            "error: Invalid response received from the server.", "Invalid response format from API");
        row("no body", 200, QByteArray(), "error: No data received from the server.", "No data received from API");
    }

    void readsTheAnswer()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, outcome);
        QFETCH(QString, logLine);
        QTemporaryDir dir;
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::json(body, status));
        test::LogCapture log;

        QCOMPARE(transcribe(fixture, writeFile(dir, QStringLiteral("a.m4a"), "audio")), outcome);
        QVERIFY(log.has(QStringLiteral("Sending request to OpenAI API")));
        QVERIFY2(log.has(logLine), qPrintable(log.lines().join(QLatin1Char('\n'))));
    }

    void bodyThatIsNotJson()
    {
        QTemporaryDir dir;
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::json(QByteArray("Bad gateway"), 502));
        test::LogCapture log;

        const QString result = transcribe(fixture, writeFile(dir, QStringLiteral("a.m4a"), "audio"));
        // The parser's own words follow, on the screen and in the log.
        const QString prefix = QStringLiteral("error: Failed to parse the server response: ");
        QVERIFY2(result.startsWith(prefix) && result.size() > prefix.size(), qPrintable(result));
        QVERIFY(log.has(QStringLiteral("Failed to parse API response: ") + result.mid(prefix.size())));
    }

    // A lost connection says so and logs one line; the other transport failures take the same
    // path and are checked with the text operation.
    void lostConnectionIsLogged()
    {
        QTemporaryDir dir;
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::truncated(R"({"text":"a long answer"})", 5));
        test::LogCapture log;
        QCOMPARE(transcribe(fixture, writeFile(dir, QStringLiteral("a.m4a"), "audio")),
            "error: The network connection was lost. Please check your internet connection and try again.");
        const QStringList failures = log.startingWith(QStringLiteral("API request failed: "));
        QCOMPARE(failures.size(), 1);
        QVERIFY(failures.first().size() > QStringLiteral("API request failed: ").size());
    }
};

ZENTRIK_TEST(TestTranscription)
#include "tst_transcription.moc"
