#pragma once

#include "voice/voicenoteeditor.h"
#include "voice/voicenotelistmodel.h"
#include "voice/voicenotesviewmodel.h"

#include <QObject>
#include <QtQml/qqml.h>

// The voice notes screen's view model and the parts it hands out, under the names the
// screen uses. The screen creates its own view model and gives it the shared APIManager.

namespace zentrik {

struct VoiceNotesViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::VoiceNotesViewModel)
    QML_NAMED_ELEMENT(VoiceNotesViewModel)
};

struct VoiceNoteEditorForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::VoiceNoteEditor)
    QML_NAMED_ELEMENT(VoiceNoteEditor)
    QML_UNCREATABLE("owned by the voice notes view model")
};

struct VoiceNoteListModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::VoiceNoteListModel)
    QML_NAMED_ELEMENT(VoiceNoteListModel)
    QML_UNCREATABLE("owned by the voice notes view model")
};

} // namespace zentrik
