// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

// Rows that compare a figure with its target, with the floor it cannot go below and with a peer tool
// measured in the same run. Each row is printed for reading and once more as a tab-separated "summary"
// line, which bench/run-benchmarks.sh gathers into one table at the end of a run.
namespace BenchSummary {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// What a figure should be: at most a value, or at most a multiple of the floor.
struct Target {
    double limit = kNone;
    double timesFloor = kNone;
    static Target atMost(double value) { return {value, kNone}; }
    static Target atMostTimesFloor(double factor) { return {kNone, factor}; }
    QString text(const char* unit) const {
        if (std::isnan(timesFloor) && std::isnan(limit)) {
            return QStringLiteral("(figure)");
        }
        if (!std::isnan(timesFloor)) {
            return QStringLiteral("<= %1x floor").arg(timesFloor);
        }
        return QStringLiteral("<= %1 %2").arg(limit).arg(QString::fromUtf8(unit));
    }
    bool met(double value, double floor) const {
        if (std::isnan(timesFloor) && std::isnan(limit)) {
            return true;
        }
        if (std::isnan(value)) {
            return false;
        }
        if (!std::isnan(timesFloor)) {
            return !std::isnan(floor) && value <= timesFloor * floor;
        }
        return value <= limit;
    }
};

struct Comparison {
    double value = kNone;
    QString name;
};

inline double median(std::vector<double> values) {
    if (values.empty()) {
        return kNone;
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline QString ratio(double value, double base) {
    if (std::isnan(value) || std::isnan(base) || base <= 0) {
        return QStringLiteral("-");
    }
    return QStringLiteral("%1x").arg(value / base, 0, 'f', 2);
}

inline void header(const char* title) {
    std::printf("\n%s\n%-52s %10s %8s %-14s %8s %-8s %s\n", title, "case", "value", "unit", "target", "vs floor",
                "vs peer", "met");
    std::fflush(stdout);
}

// One figure: its value, what it should be, and how it compares with the floor and the peer tool.
inline void row(const QString& name, double value, const char* unit, const Target& target, const Comparison& floor = {},
                const Comparison& peer = {}) {
    const bool hasTarget = !std::isnan(target.limit) || !std::isnan(target.timesFloor);
    const char* met = !hasTarget ? "-" : target.met(value, floor.value) ? "yes" : "NO";
    const QByteArray targetText = target.text(unit).toUtf8();
    std::printf("%-52s %10.3f %8s %-14s %8s %-8s %s\n", name.toUtf8().constData(), value, unit, targetText.constData(),
                ratio(value, floor.value).toUtf8().constData(), ratio(value, peer.value).toUtf8().constData(), met);
    if (!floor.name.isEmpty() || !peer.name.isEmpty()) {
        std::printf("    floor: %s = %.3f %s; peer: %s = %.3f %s\n",
                    floor.name.isEmpty() ? "-" : floor.name.toUtf8().constData(), floor.value, unit,
                    peer.name.isEmpty() ? "-" : peer.name.toUtf8().constData(), peer.value, unit);
    }
    std::printf("summary\t%s\t%.3f\t%s\t%s\t%s\t%s\t%s\n", name.toUtf8().constData(), value, unit,
                targetText.constData(), ratio(value, floor.value).toUtf8().constData(),
                ratio(value, peer.value).toUtf8().constData(), met);
    std::fflush(stdout);
}

// The median of timings in milliseconds, with their count.
inline void timing(const QString& name, const std::vector<double>& times, const Target& target,
                   const Comparison& floor = {}, const Comparison& peer = {}) {
    row(QStringLiteral("%1 (median of %2)").arg(name).arg(times.size()), median(times), "ms", target, floor, peer);
}

inline void figure(const QString& name, double value, const char* unit, const Target& target) {
    row(name, value, unit, target);
}

}  // namespace BenchSummary
