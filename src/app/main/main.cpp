#include "app/zentrikapp.h"

#include <QtQml/qqmlextensionplugin.h>

// The views and the app's QML types are a static plugin linked into this executable.
Q_IMPORT_QML_PLUGIN(ZentrikPlugin)

int main(int argc, char **argv)
{
    return zentrik::ZentrikApp::run(argc, argv);
}
