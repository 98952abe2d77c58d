// SPDX-License-Identifier: MIT
// Capture of one 2560 x 1440 monitor: MIT-SHM, plain GetImage, `xwd -root` as a whole process, and a
// memcpy of the same number of bytes as the floor. Run on a virtual desktop whose second monitor is
// 2560 x 1440.
#include <QCoreApplication>
#include <QImage>
#include <QProcess>
#include <cstring>
#include <vector>

#include "bench/BenchTable.h"
#include "platform/x11/X11Capture.h"

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QRect monitor(1920, 0, 2560, 1440);
    X11Capture capture(qgetenv("DISPLAY"));
    if (!capture.hasSharedMemory()) {
        std::fprintf(stderr, "capture_bench: the server offers no shared memory; SHM figures are GetImage\n");
    }
    BenchTable::header("Capture of a 2560 x 1440 monitor");
    volatile int sink = 0;
    const size_t bytes = size_t(monitor.width()) * size_t(monitor.height()) * 4;
    std::vector<unsigned char> from(bytes, 1);
    std::vector<unsigned char> to(bytes, 0);
    // The three take turns, so that they see the same load on a shared machine.
    std::vector<double> shared;
    std::vector<double> plain;
    std::vector<double> copy;
    for (int i = 0; i < 30; ++i) {
        shared.push_back(BenchTable::measure(1, [&] {
                             const QImage image = capture.capture(monitor, X11Capture::Method::SharedMemory);
                             sink = sink + image.constBits()[0];
                         }).median);
        plain.push_back(BenchTable::measure(1, [&] {
                            const QImage image = capture.capture(monitor, X11Capture::Method::GetImage);
                            sink = sink + image.constBits()[0];
                        }).median);
        copy.push_back(BenchTable::measure(1, [&] {
                           std::memcpy(to.data(), from.data(), bytes);
                           sink = sink + to[bytes / 2];
                       }).median);
    }
    const BenchTable::Figures sharedFigures = BenchTable::summarize(shared);
    const BenchTable::Figures copyFigures = BenchTable::summarize(copy);
    BenchTable::row(QStringLiteral("MIT-SHM (picture used in place)"), sharedFigures);
    BenchTable::row(QStringLiteral("GetImage"), BenchTable::summarize(plain));
    BenchTable::row(QStringLiteral("memcpy of the same bytes (floor)"), copyFigures);
    std::printf("%-58s %10.2f\n", "MIT-SHM / memcpy, medians", sharedFigures.median / copyFigures.median);
    BenchTable::row(QStringLiteral("xwd -root -silent (whole process, whole screen)"), BenchTable::measure(10, [] {
                        QProcess process;
                        process.setStandardOutputFile(QProcess::nullDevice());
                        process.start(QStringLiteral("xwd"), {QStringLiteral("-root"), QStringLiteral("-silent")});
                        process.waitForFinished(30000);
                    }));
    return sink == -1 ? 1 : 0;
}
