#include "support/testregistry.h"

#ifdef ZENTRIK_TEST_GUI
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

int main(int argc, char **argv)
{
    TestApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    return zentrik::test::runRegisteredTests(argc, argv);
}
