#pragma once

#include "pdf/pdfchatviewmodel.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/devtoolviewmodel.h"
#include "tools/generatorviewmodel.h"

#include <QObject>
#include <QtQml/qqml.h>

// The text tools' view models under the names their screens use. Each screen creates its
// own and hands it the shared APIManager.

namespace zentrik {

struct GeneratorViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::GeneratorViewModel)
    QML_NAMED_ELEMENT(GeneratorViewModel)
};

struct AskMeAnythingViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::AskMeAnythingViewModel)
    QML_NAMED_ELEMENT(AskMeAnythingViewModel)
};

struct DevToolViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::DevToolViewModel)
    QML_NAMED_ELEMENT(DevToolViewModel)
};

struct PdfChatViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::PdfChatViewModel)
    QML_NAMED_ELEMENT(PdfChatViewModel)
};

struct ChatToolViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::ChatToolViewModel)
    QML_NAMED_ELEMENT(ChatToolViewModel)
    QML_UNCREATABLE("made by the chat screens' view models")
};

// A conversation as a tool's view model hands it over.
struct ChatMessageListModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::ChatMessageListModel)
    QML_NAMED_ELEMENT(ChatMessageListModel)
    QML_UNCREATABLE("owned by a chat screen's view model")
};

} // namespace zentrik
