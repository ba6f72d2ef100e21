#include "model/modellogging.h"

Q_LOGGING_CATEGORY(lcModel, "zentrik.model", QtInfoMsg)
