// SPDX-License-Identifier: MIT
#include "app/commands/MonitorTargets.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

enum class Direction { Left, Right, Up, Down };

std::optional<Direction> directionNamed(const QString& word) {
    if (word == QLatin1String("left")) {
        return Direction::Left;
    }
    if (word == QLatin1String("right")) {
        return Direction::Right;
    }
    if (word == QLatin1String("up")) {
        return Direction::Up;
    }
    if (word == QLatin1String("down")) {
        return Direction::Down;
    }
    return std::nullopt;
}

// The nearest monitor that lies wholly on that side of `from` (its near edge at or beyond from's far edge),
// preferring, at equal distance, the one that overlaps `from` most along the other axis.
std::optional<DisplayDescriptor> neighbour(Direction direction, const DisplayDescriptor& from,
                                           const QList<DisplayDescriptor>& displays) {
    const QRectF& a = from.bounds;
    std::optional<DisplayDescriptor> best;
    double bestGap = std::numeric_limits<double>::max();
    double bestOverlap = -std::numeric_limits<double>::max();
    for (const DisplayDescriptor& display : displays) {
        if (display.persistentID == from.persistentID) {
            continue;
        }
        const QRectF& b = display.bounds;
        double gap = 0;
        double overlap = 0;
        switch (direction) {
            case Direction::Left:
                gap = a.left() - b.right();
                overlap = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
                break;
            case Direction::Right:
                gap = b.left() - a.right();
                overlap = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
                break;
            case Direction::Up:
                gap = a.top() - b.bottom();
                overlap = std::min(a.right(), b.right()) - std::max(a.left(), b.left());
                break;
            case Direction::Down:
                gap = b.top() - a.bottom();
                overlap = std::min(a.right(), b.right()) - std::max(a.left(), b.left());
                break;
        }
        // Monitors that touch have a gap of 0; a little overlap from rounding still counts as beside.
        if (gap < -1.0) {
            continue;
        }
        if (gap < bestGap - 0.5 || (std::fabs(gap - bestGap) <= 0.5 && overlap > bestOverlap)) {
            best = display;
            bestGap = gap;
            bestOverlap = overlap;
        }
    }
    return best;
}

// The whole sentence for each direction, so that translations can word each one.
QString missingNeighbour(Direction direction) {
    switch (direction) {
        case Direction::Up:
            return QCoreApplication::translate("MonitorTargets", "There is no monitor above %1.");
        case Direction::Down:
            return QCoreApplication::translate("MonitorTargets", "There is no monitor below %1.");
        case Direction::Left:
            return QCoreApplication::translate("MonitorTargets", "There is no monitor to the left of %1.");
        case Direction::Right:
            return QCoreApplication::translate("MonitorTargets", "There is no monitor to the right of %1.");
    }
    return {};
}

QString monitorCount(qsizetype count) {
    if (count == 1) {
        return QCoreApplication::translate("MonitorTargets", "1 monitor");
    }
    const int many = static_cast<int>(count);
    return QCoreApplication::translate("MonitorTargets", "%n monitors", nullptr, many);
}

}  // namespace

bool MonitorTargets::isRelative(const QString& target) {
    const QString word = target.trimmed().toLower();
    return word == QLatin1String("next") || word == QLatin1String("previous") || directionNamed(word).has_value();
}

std::variant<DisplayDescriptor, MonitorTargets::NoSuchMonitor> MonitorTargets::resolve(
    const QString& target, const QList<DisplayDescriptor>& displays, const std::optional<DisplayDescriptor>& from) {
    if (displays.isEmpty()) {
        return NoSuchMonitor{QCoreApplication::translate("MonitorTargets", "No monitor is connected.")};
    }
    const QString word = target.trimmed().toLower();

    bool isNumber = false;
    const int index = word.toInt(&isNumber);
    if (isNumber) {
        const auto found = std::find_if(displays.cbegin(), displays.cend(),
                                        [index](const DisplayDescriptor& d) { return d.index == index; });
        if (found != displays.cend()) {
            return *found;
        }
        return NoSuchMonitor{QCoreApplication::translate(
                                 "MonitorTargets", "There is no monitor %1; there are %2, numbered as in the panel.")
                                 .arg(target, monitorCount(displays.size()))};
    }

    if (isRelative(word)) {
        if (!from) {
            return NoSuchMonitor{
                QCoreApplication::translate("MonitorTargets",
                                            "\"%1\" starts from the focused window's monitor, and no window has focus.")
                    .arg(target)};
        }
        if (const std::optional<Direction> direction = directionNamed(word)) {
            if (std::optional<DisplayDescriptor> found = neighbour(*direction, *from, displays)) {
                return *found;
            }
            return NoSuchMonitor{missingNeighbour(*direction).arg(from->name)};
        }
        QList<DisplayDescriptor> ordered = displays;
        std::stable_sort(ordered.begin(), ordered.end(),
                         [](const DisplayDescriptor& a, const DisplayDescriptor& b) { return a.index < b.index; });
        const auto at = std::find_if(ordered.cbegin(), ordered.cend(),
                                     [&](const DisplayDescriptor& d) { return d.persistentID == from->persistentID; });
        const qsizetype position = at == ordered.cend() ? 0 : at - ordered.cbegin();
        const qsizetype step = word == QLatin1String("next") ? 1 : ordered.size() - 1;
        return ordered[(position + step) % ordered.size()];
    }

    for (const DisplayDescriptor& display : displays) {
        if (display.name.compare(target.trimmed(), Qt::CaseInsensitive) == 0) {
            return display;
        }
    }
    // The identifier `lattica displays` lists, which stays the same when the monitors are renumbered.
    for (const DisplayDescriptor& display : displays) {
        if (display.persistentID == target.trimmed()) {
            return display;
        }
    }
    QStringList names;
    for (const DisplayDescriptor& display : displays) {
        names.append(QStringLiteral("%1 (%2)").arg(display.index).arg(display.name));
    }
    return NoSuchMonitor{
        QCoreApplication::translate("MonitorTargets", "No monitor is called \"%1\". The monitors are: %2.")
            .arg(target, names.join(QStringLiteral(", ")))};
}
