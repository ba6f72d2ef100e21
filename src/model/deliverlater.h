#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

namespace zentrik {

// Runs `deliver` from `receiver`'s event loop once the caller has returned, so that a
// completion never runs inside the call that asked for it. A context that is gone by then (a
// closed screen) gets nothing; without a context the delivery always happens.
inline void deliverLater(QObject *receiver, QObject *context, std::function<void()> deliver)
{
    QPointer<QObject> guard(context);
    const bool hasContext = context != nullptr;
    QMetaObject::invokeMethod(
        receiver,
        [guard, hasContext, deliver = std::move(deliver)] {
            if (!hasContext || !guard.isNull()) {
                deliver();
            }
        },
        Qt::QueuedConnection);
}

} // namespace zentrik
