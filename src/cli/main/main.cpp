#include "buildconfig.h"
#include "cli/verb.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(zentrik::build::version));

    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    return zentrik::cli::run(arguments);
}
