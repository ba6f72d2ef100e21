#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>

#include <utility>

namespace zentrik {

// Runs work on the shared thread pool and hands its result to done on the main thread, unless
// context has been destroyed by then. For CPU work such as decoding and encoding pictures,
// which would otherwise stall the window.
template<typename Work, typename Done> void runInBackground(QObject *context, Work work, Done done)
{
    QPointer<QObject> guard(context);
    QThreadPool::globalInstance()->start([guard, work = std::move(work), done = std::move(done)]() mutable {
        auto result = work();
        QCoreApplication *application = QCoreApplication::instance();
        if (application == nullptr) {
            return;
        }
        QMetaObject::invokeMethod(
            application,
            [guard, result = std::move(result), done = std::move(done)]() mutable {
                if (!guard.isNull()) {
                    done(std::move(result));
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace zentrik
