// Runs the QML tests of the screens' components (tests/app/qml).
#include <QtQuickTest/quicktest.h>

QUICK_TEST_MAIN(components)
