#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "chat/chatcompletion.h"
#include "chat/chatcompletionchunk.h"
#include "chat/chatmessage.h"
#include "chat/chatmodel.h"
#include "chat/chatoptions.h"
#include "chat/openaichatclient.h"
#include "support/testregistry.h"

using namespace zentrik;

namespace {

QJsonObject parse(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).object();
}

} // namespace

// The records of the chat protocol: how requests are written and replies read.
class TestChatRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesMessages()
    {
        const ChatMessage plain(ChatMessage::Role::user, QStringLiteral("Hi"));
        QCOMPARE(plain.content.size(), 1);
        QCOMPARE(plain.toJson(), parse(R"({"role":"user","content":[{"type":"text","text":"Hi"}]})"));

        const ChatMessage mixed(ChatMessage::Role::assistant,
            { ChatMessage::Content::fromText(QStringLiteral("Look")),
                ChatMessage::Content::fromImage(QStringLiteral("https://x/y.png"), ChatMessage::ImageDetail::low),
                ChatMessage::Content::fromImage(QStringLiteral("data:image/png;base64,AA==")) },
            QStringLiteral("bob"));
        QCOMPARE(mixed.toJson(),
            parse(R"({"role":"assistant","name":"bob","content":[)"
                  R"({"type":"text","text":"Look"},)"
                  R"({"type":"image_url","image_url":{"url":"https://x/y.png","detail":"low"}},)"
                  R"({"type":"image_url","image_url":{"url":"data:image/png;base64,AA==","detail":"auto"}}]})"));
        QCOMPARE(ChatMessage(ChatMessage::Role::system, QString()).toJson().value("role").toString(), "system");
    }

    void bodyHoldsOnlyTheOptionsThatAreSet()
    {
        const QList<ChatMessage> messages { ChatMessage(ChatMessage::Role::user, QStringLiteral("p")) };
        QCOMPARE(OpenAIChatClient::requestBody(QStringLiteral("m"), messages, {}, false),
            parse(
                R"({"stream":false,"model":"m","messages":[{"role":"user","content":[{"type":"text","text":"p"}]}]})"));
        const QJsonObject streamed = OpenAIChatClient::requestBody(QStringLiteral("m"), messages, {}, true);
        QCOMPARE(streamed.value("stream"), QJsonValue(true));
        QCOMPARE(streamed.value("stream_options").toObject(), parse(R"({"include_usage":true})"));
        QCOMPARE(streamed.keys(), (QStringList { "messages", "model", "stream", "stream_options" }));
    }

    void writesEveryOption()
    {
        ChatOptions options;
        options.frequencyPenalty = 0.5;
        options.logitBias = QMap<QString, int> { { "50256", -100 } };
        options.logprobs = true;
        options.topLogprobs = 3;
        options.maxCompletionTokens = 200;
        options.n = 2;
        options.presencePenalty = -0.25;
        options.responseFormat = ChatOptions::ResponseFormat { ChatOptions::ResponseFormat::Type::jsonSchema,
            ChatOptions::JsonSchema { "card", QString("A card"), parse(R"({"type":"object"})"), true } };
        options.seed = 42;
        options.serviceTier = QStringLiteral("default");
        options.stop = QStringList { "\n\n", "END" };
        options.temperature = 0.7;
        options.topP = 0.9;
        options.tools = QList<ChatOptions::Tool> {
            { QStringLiteral("function"), { "lookup", QString("Finds things"), parse(R"({"type":"object"})"), false } },
            { QStringLiteral("function"), { "bare", std::nullopt, std::nullopt, std::nullopt } }
        };
        options.toolChoice = ChatOptions::ToolChoice { ChatOptions::ToolChoice::Mode::function, "lookup" };
        options.parallelToolCalls = false;
        options.user = QStringLiteral("u-1");

        QJsonObject body;
        options.writeTo(body);
        QCOMPARE(body,
            parse(R"({)"
                  R"("frequency_penalty":0.5, "logit_bias":{"50256":-100}, "logprobs":true, "top_logprobs":3,)"
                  R"("max_completion_tokens":200, "n":2, "presence_penalty":-0.25,)"
                  R"("response_format":{"type":"json_schema","json_schema":{"name":"card","description":"A card",)"
                  R"("schema":{"type":"object"},"strict":true}},)"
                  R"("seed":42, "service_tier":"default", "stop":["\n\n","END"], "temperature":0.7, "top_p":0.9,)"
                  R"("tools":[{"type":"function","function":{"name":"lookup","description":"Finds things",)"
                  R"("parameters":{"type":"object"},"strict":false}},)"
                  R"({"type":"function","function":{"name":"bare"}}],)"
                  R"("tool_choice":{"type":"function","function":{"name":"lookup"}},)"
                  R"("parallel_tool_calls":false, "user":"u-1"})"));
    }

    void writesTheSimpleForms_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("choice");
        QTest::addColumn<QByteArray>("expected");
        using F = ChatOptions::ResponseFormat::Type;
        using C = ChatOptions::ToolChoice::Mode;
        QTest::newRow("text, none") << int(F::text) << int(C::none)
                                    << QByteArray(R"({"response_format":{"type":"text"},"tool_choice":"none"})");
        QTest::newRow("json object, auto")
            << int(F::jsonObject) << int(C::automatic)
            << QByteArray(R"({"response_format":{"type":"json_object"},"tool_choice":"auto"})");
    }

    void writesTheSimpleForms()
    {
        QFETCH(int, format);
        QFETCH(int, choice);
        QFETCH(QByteArray, expected);
        ChatOptions options;
        options.responseFormat
            = ChatOptions::ResponseFormat { ChatOptions::ResponseFormat::Type(format), std::nullopt };
        options.toolChoice = ChatOptions::ToolChoice { ChatOptions::ToolChoice::Mode(choice), {} };
        QJsonObject body;
        options.writeTo(body);
        QCOMPARE(body, parse(expected.constData()));
    }

    void readsAWholeReply()
    {
        const auto completion = ChatCompletion::fromJson(parse(
            R"({)"
            R"("id":"chatcmpl-1","object":"chat.completion","created":1720000000,"model":"gpt-4o-mini",)"
            R"("service_tier":"default","system_fingerprint":"fp_1",)"
            R"("choices":[{"index":0,"finish_reason":"tool_calls",)"
            R"("message":{"role":"assistant","content":null,"refusal":"no",)"
            R"("tool_calls":[{"id":"call_1","type":"function","function":{"name":"f","arguments":"{}"}}]},)"
            R"("logprobs":{"content":[{"token":"Hi","logprob":-0.5,"bytes":[72,105],)"
            R"("top_logprobs":[{"token":"Hey","logprob":-1.5}]}],"refusal":null}}],)"
            R"("usage":{"completion_tokens":5,"prompt_tokens":7,"total_tokens":12,)"
            R"("completion_tokens_details":{"reasoning_tokens":1},"prompt_tokens_details":{"cached_tokens":2}}})"));
        QVERIFY(completion.has_value());
        QCOMPARE(completion->id, "chatcmpl-1");
        QCOMPARE(completion->created, 1720000000);
        QCOMPARE(completion->serviceTier, QString("default"));
        QCOMPARE(completion->systemFingerprint, QString("fp_1"));
        QCOMPARE(completion->choices.size(), 1);
        const auto &choice = completion->choices.first();
        QCOMPARE(choice.finishReason, ChatFinishReason::toolCalls);
        QVERIFY(!choice.message.content.has_value());
        QCOMPARE(choice.message.refusal, QString("no"));
        QCOMPARE(choice.message.toolCalls->first(), (ChatCompletion::ToolCall { "call_1", "function", "f", "{}" }));
        const auto &token = choice.logprobs->content->first();
        QCOMPARE(token.token, "Hi");
        QCOMPARE(token.bytes, (QList<int> { 72, 105 }));
        QCOMPARE(token.topLogprobs->first().token, "Hey");
        QVERIFY(!choice.logprobs->refusal.has_value());
        QCOMPARE(completion->usage->totalTokens, 12);
        QCOMPARE(completion->usage->completionTokensDetails->reasoningTokens, 1);
        QCOMPARE(completion->usage->promptTokensDetails->cachedTokens, 2);
    }

    void readsChunksWithPartialFields()
    {
        const auto chunk = ChatCompletionChunk::fromJson(
            parse(R"({)"
                  R"("id":"c","object":"chat.completion.chunk","created":1,"model":"m",)"
                  R"("choices":[{"index":0,"delta":{"tool_calls":[{"index":0,"function":{"arguments":"part"}}]},)"
                  R"("finish_reason":null}],)"
                  R"("usage":{"prompt_tokens":3}})"));
        QVERIFY(chunk.has_value());
        QVERIFY(!chunk->text().has_value());
        QVERIFY(!chunk->hasFinishReason());
        const auto &call = chunk->choices.first().delta.toolCalls->first();
        QCOMPARE(call.index, 0);
        QVERIFY(!call.id.has_value());
        QCOMPARE(call.functionArguments, QString("part"));
        QVERIFY(!call.functionName.has_value());
        QCOMPARE(chunk->usage->promptTokens, 3);
        QVERIFY(!chunk->usage->totalTokens.has_value());

        const auto last
            = ChatCompletionChunk::fromJson(parse(R"({"choices":[{"delta":{},"finish_reason":"length"}]})"));
        QVERIFY(last.has_value());
        QCOMPARE(last->choices.first().finishReason, ChatFinishReason::length);
        QVERIFY(last->hasFinishReason());
    }

    // Present fields of the wrong type make the record unreadable; absent or null ones don't.
    void rejectsWrongShapes_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("valid");
        QTest::newRow("no choices") << QByteArray(R"({"id":"x"})") << false;
        QTest::newRow("choice not an object") << QByteArray(R"({"choices":[1]})") << false;
        QTest::newRow("content a number") << QByteArray(R"({"choices":[{"delta":{"content":5}}]})") << false;
        QTest::newRow("created a string") << QByteArray(R"({"created":"now","choices":[]})") << false;
        QTest::newRow("logprob token missing")
            << QByteArray(R"({"choices":[{"delta":{},"logprobs":{"content":[{"logprob":1}]}}]})") << false;
        QTest::newRow("empty choices") << QByteArray(R"({"choices":[]})") << true;
        QTest::newRow("nulls") << QByteArray(
            R"({"id":null,"choices":[{"delta":{"content":null},"finish_reason":null,"logprobs":null}]})")
                               << true;
        QTest::newRow("unknown fields") << QByteArray(
            R"({"provider":"x","choices":[{"delta":{"reasoning":"r"},"native_finish_reason":"stop"}]})")
                                        << true;
    }

    void rejectsWrongShapes()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, valid);
        QCOMPARE(ChatCompletionChunk::fromJson(parse(json.constData())).has_value(), valid);
    }

    void readsModelLists()
    {
        const auto models = ChatModel::fromJson(
            parse(R"({"object":"list","data":[)"
                  R"({"id":"gpt-4o-mini","created":1721172741,"object":"model","owned_by":"system"},)"
                  R"({"id":"google/gemma-2-9b-it:free","name":"Gemma"}]})"));
        QVERIFY(models.has_value());
        QCOMPARE(models->data.size(), 2);
        QCOMPARE(models->data.first(), (ChatModel::Entry { "gpt-4o-mini", 1721172741, "model", "system" }));
        QCOMPARE(models->data.last().id, "google/gemma-2-9b-it:free");
        QVERIFY(!ChatModel::fromJson(parse(R"({"data":[{"created":1}]})")).has_value());
        QVERIFY(!ChatModel::fromJson(parse(R"({"models":[]})")).has_value());
    }
};

ZENTRIK_TEST(TestChatRecords)
#include "tst_chatrecords.moc"
