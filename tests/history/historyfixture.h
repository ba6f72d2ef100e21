#pragma once

#include "history/historystore.h"
#include "history/historytools.h"

#include <QTemporaryDir>

// Conversations made up for the history tests, in a scratch folder.
namespace historyfixture {

inline zentrik::StoredMessage message(const QString &uid, zentrik::MessageRole role, const QString &text, qint64 timeMs,
    zentrik::MessageEnding ending = zentrik::MessageEnding::complete)
{
    zentrik::StoredMessage stored;
    stored.uid = uid;
    stored.role = role;
    stored.text = stored.typed = stored.sent = text;
    stored.model = QStringLiteral("gpt-4o-mini");
    stored.timeMs = timeMs;
    stored.ending = ending;
    return stored;
}

inline zentrik::ConversationRecord conversation(const QString &uid, const QString &tool, qint64 timeMs)
{
    zentrik::ConversationRecord record;
    record.uid = uid;
    record.tool = tool;
    record.createdMs = record.updatedMs = timeMs;
    return record;
}

// Saves every message of the conversation the way the tools do, one at a time.
inline bool save(zentrik::HistoryStore &store, const zentrik::ConversationRecord &record)
{
    for (const zentrik::StoredMessage &stored : record.messages) {
        zentrik::ConversationRecord header = record;
        header.messages.clear();
        header.updatedMs = stored.timeMs;
        if (!store.saveMessage(header, stored)) {
            return false;
        }
    }
    return true;
}

// One conversation of each kind, with a redacted question, a stopped reply, a generator's
// fields and an image run.
inline QList<zentrik::ConversationRecord> variedConversations()
{
    using namespace zentrik;
    constexpr qint64 t0 = 1714557600000; // 2024-05-01 10:00 UTC
    ConversationRecord chat = conversation(QStringLiteral("chat-1"), historytool::askMeAnything, t0);
    chat.title = QStringLiteral("Trip to Lisbon");
    chat.messages = { message(QStringLiteral("m-1"), MessageRole::user, QStringLiteral("Plan a trip for [PERSON]"), t0),
        message(
            QStringLiteral("m-2"), MessageRole::assistant, QStringLiteral("Visit the **Alfama** district."), t0 + 1000),
        message(QStringLiteral("m-3"), MessageRole::user, QStringLiteral("Shorter please"), t0 + 2000),
        message(QStringLiteral("m-4"), MessageRole::assistant, QStringLiteral("Alfama, then Belém"), t0 + 3000,
            MessageEnding::stopped) };
    chat.messages[0].typed = QStringLiteral("Plan a trip for Maria Sanchez");
    chat.messages[0].sent = QStringLiteral("Please answer: Plan a trip for [PERSON]");
    chat.updatedMs = t0 + 3000;

    ConversationRecord pdf = conversation(QStringLiteral("pdf-1"), historytool::pdfChat, t0 + 10000);
    pdf.title = QStringLiteral("What is the deadline?");
    pdf.pdfPath = QStringLiteral("/home/user/contract.pdf");
    pdf.pdfSha256 = QString(64, QLatin1Char('a'));
    pdf.messages = { message(QStringLiteral("p-1"), MessageRole::user, pdf.title, t0 + 10000),
        message(QStringLiteral("p-2"), MessageRole::assistant, QStringLiteral("March 3 (page 4)."), t0 + 11000,
            MessageEnding::failed) };
    pdf.updatedMs = t0 + 11000;

    ConversationRecord generator = conversation(QStringLiteral("gen-1"), historytool::generator, t0 + 20000);
    generator.title = QStringLiteral("Slogan Generator: Quokka Coffee");
    generator.generator = GeneratorRun { QStringLiteral("marketing"), QStringLiteral("Slogan Generator"),
        { { QStringLiteral("Brand"), QStringLiteral("Quokka Coffee") },
            { QStringLiteral("Tone"), QStringLiteral("Playful") } } };
    generator.messages = { message(QStringLiteral("g-1"), MessageRole::user,
                               QStringLiteral("Brand: Quokka Coffee\nTone: Playful"), t0 + 20000),
        message(QStringLiteral("g-2"), MessageRole::assistant, QStringLiteral("Wake up happy."), t0 + 21000) };
    generator.messages[0].sent = QStringLiteral("You are a marketing assistant. Brand: Quokka Coffee…");
    generator.updatedMs = t0 + 21000;

    ConversationRecord image = conversation(QStringLiteral("img-1"), historytool::imageStudio, t0 + 30000);
    image.title = QStringLiteral("A lighthouse at dusk");
    image.image
        = ImageRun { QStringLiteral("fal-ai/flux/schnell"), QStringLiteral("/data/history-pictures/img-1.png") };
    image.messages = { message(QStringLiteral("i-1"), MessageRole::user, image.title, t0 + 30000) };
    return { chat, pdf, generator, image };
}

} // namespace historyfixture
