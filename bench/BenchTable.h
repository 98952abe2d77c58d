// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

// Times an action several times and prints rows of a plain table: median, minimum and maximum.
namespace BenchTable {

struct Figures {
    double median = 0;
    double minimum = 0;
    double maximum = 0;
};

inline Figures summarize(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.front(), times.back()};
}

inline Figures measure(int repetitions, const std::function<void()>& action) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        QElapsedTimer timer;
        timer.start();
        action();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    return summarize(times);
}

inline void header(const char* title) {
    std::printf("\n%s\n%-58s %10s %10s %10s\n", title, "case", "median ms", "min ms", "max ms");
}

inline void row(const QString& name, const Figures& figures) {
    std::printf("%-58s %10.3f %10.3f %10.3f\n", name.toUtf8().constData(), figures.median, figures.minimum,
                figures.maximum);
    std::fflush(stdout);
}

}  // namespace BenchTable
