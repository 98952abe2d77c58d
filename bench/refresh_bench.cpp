// SPDX-License-Identifier: MIT
// How fast the panel's refresh publishes: the placeholder cards (on the calling thread) and the
// captured snapshots (handed back from the background capture), with three monitors and a few windows.
#include <QApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/controller/AppController.h"
#include "platform/x11/X11Platform.h"
#include "tests/testclient/TestClient.h"

namespace {

constexpr int kRounds = 40;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("refresh_bench: no X server\n", stderr);
        return 1;
    }
    platform->install();
    TestClient client;
    if (!client.start() || client.openMany(QStringLiteral("w"), 12, QStringLiteral("w=400 h=300")).size() != 12) {
        std::fputs("refresh_bench: the test client did not open its windows\n", stderr);
        return 1;
    }
    AppController controller;
    QElapsedTimer timer;
    double placeholdersAt = -1;
    QObject::connect(&controller, &AppController::displaysChanged, [&] {
        if (placeholdersAt < 0) {
            placeholdersAt = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        }
    });

    std::vector<double> placeholders;
    std::vector<double> captured;
    for (int round = 0; round < kRounds; ++round) {
        placeholdersAt = -1;
        timer.start();
        controller.refreshForMenuOpen();
        while (controller.isLoadingPreviews() && timer.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        const double done = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        if (placeholdersAt >= 0 && !controller.isLoadingPreviews()) {
            placeholders.push_back(placeholdersAt);
            captured.push_back(done);
        }
    }
    client.exit();
    if (placeholders.empty()) {
        std::puts("refresh_bench: no refresh completed");
        return 1;
    }
    std::printf("%-60s %10s %10s %6s\n", "refreshForMenuOpen, 3 monitors, 12 windows", "median ms", "min ms", "n");
    std::printf("%-60s %10.3f %10.3f %6zu\n", "call -> placeholder cards published", median(placeholders),
                *std::min_element(placeholders.begin(), placeholders.end()), placeholders.size());
    std::printf("%-60s %10.3f %10.3f %6zu\n", "call -> captured snapshots published", median(captured),
                *std::min_element(captured.begin(), captured.end()), captured.size());
    std::printf("cards: %lld, previews: %s\n", static_cast<long long>(controller.displays().size()),
                controller.displays().value(0).previewImage ? "yes" : "no");
    return 0;
}
