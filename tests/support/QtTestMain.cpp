// SPDX-License-Identifier: MIT
// The main of every GoogleTest program: a Qt application first, so that timers, queued calls,
// widgets and the X11 connection behave as they do in the program.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
