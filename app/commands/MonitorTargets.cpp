#include "app/commands/MonitorTargets.h"

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

// The nearest monitor whose centre lies on that side of `from`'s centre: nearest along the direction,
// then least off to the side.
std::optional<DisplayDescriptor> neighbour(Direction direction, const DisplayDescriptor& from,
                                           const QList<DisplayDescriptor>& displays) {
    const QPointF origin = from.bounds.center();
    std::optional<DisplayDescriptor> best;
    double bestAlong = std::numeric_limits<double>::max();
    double bestAcross = std::numeric_limits<double>::max();
    for (const DisplayDescriptor& display : displays) {
        if (display.persistentID == from.persistentID) {
            continue;
        }
        const QPointF centre = display.bounds.center();
        const double dx = centre.x() - origin.x();
        const double dy = centre.y() - origin.y();
        double along = 0;
        double across = 0;
        switch (direction) {
            case Direction::Left:
                along = -dx, across = std::fabs(dy);
                break;
            case Direction::Right:
                along = dx, across = std::fabs(dy);
                break;
            case Direction::Up:
                along = -dy, across = std::fabs(dx);
                break;
            case Direction::Down:
                along = dy, across = std::fabs(dx);
                break;
        }
        if (along <= 0) {
            continue;
        }
        if (along < bestAlong || (along == bestAlong && across < bestAcross)) {
            best = display;
            bestAlong = along;
            bestAcross = across;
        }
    }
    return best;
}

QString monitorCount(qsizetype count) {
    return count == 1 ? QStringLiteral("1 monitor") : QStringLiteral("%1 monitors").arg(count);
}

}  // namespace

bool MonitorTargets::isRelative(const QString& target) {
    const QString word = target.trimmed().toLower();
    return word == QLatin1String("next") || word == QLatin1String("previous") || directionNamed(word).has_value();
}

std::variant<DisplayDescriptor, MonitorTargets::NoSuchMonitor> MonitorTargets::resolve(
    const QString& target, const QList<DisplayDescriptor>& displays, const std::optional<DisplayDescriptor>& from) {
    if (displays.isEmpty()) {
        return NoSuchMonitor{QStringLiteral("No monitor is connected.")};
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
        return NoSuchMonitor{QStringLiteral("There is no monitor %1; there are %2, numbered as in the panel.")
                                 .arg(target, monitorCount(displays.size()))};
    }

    if (isRelative(word)) {
        if (!from) {
            return NoSuchMonitor{
                QStringLiteral("\"%1\" starts from the focused window's monitor, and no window has focus.")
                    .arg(target)};
        }
        if (const std::optional<Direction> direction = directionNamed(word)) {
            if (std::optional<DisplayDescriptor> found = neighbour(*direction, *from, displays)) {
                return *found;
            }
            return NoSuchMonitor{QStringLiteral("There is no monitor %1 of %2.")
                                     .arg(*direction == Direction::Up     ? QStringLiteral("above")
                                          : *direction == Direction::Down ? QStringLiteral("below")
                                                                          : QStringLiteral("to the ") + word,
                                          from->name)};
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
    QStringList names;
    for (const DisplayDescriptor& display : displays) {
        names.append(QStringLiteral("%1 (%2)").arg(display.index).arg(display.name));
    }
    return NoSuchMonitor{QStringLiteral("No monitor is called \"%1\". The monitors are: %2.")
                             .arg(target, names.join(QStringLiteral(", ")))};
}
