#include "voice/voicelogging.h"

namespace zentrik {
Q_LOGGING_CATEGORY(lcVoice, "zentrik.voice", QtInfoMsg)
} // namespace zentrik
