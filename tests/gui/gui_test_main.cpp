// The GUI tests need a QApplication for the whole run; GoogleTest runs inside it.

#include <gtest/gtest.h>

#include <QApplication>
#include <cstring>
#include <memory>

#include "gui/desktop_app.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // Listing the tests (at build time) needs no windows.
    std::unique_ptr<QApplication> application;
    if (!::testing::GTEST_FLAG(list_tests)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        application = std::make_unique<QApplication>(argc, argv);
        talvex::gui::configureApplication();
    }
    return RUN_ALL_TESTS();
}
