#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the source layout: which folder may include which. Each folder has a layer; a file may include
# only files of its own folder or of a lower layer, so the folders cannot include each other in a cycle.
# Backends are included only by app/main.cpp (and the tests), and only app/ui and KeyboardShortcuts/widgets
# use widgets.
# Usage: check-layout.sh SOURCE_DIR. Prints every breach and exits 1 if there is one.
set -euo pipefail
cd "$1"

# The layer of a source folder; nothing for folders the rules do not cover.
layer_of() {
    case "$1" in
    platform) echo 0 ;;
    KeyboardShortcuts) echo 1 ;;
    app/model) echo 2 ;;
    app/windows) echo 3 ;;
    app/mover | app/displays | app/displayshortcuts | app/update | app/permissions) echo 4 ;;
    app/controller) echo 5 ;;
    app/commands | app/ui/common | KeyboardShortcuts/widgets) echo 6 ;;
    app/ui/panel | app/ui/settings | app/ui/guide | app/ui/update) echo 7 ;;
    app/ui) echo 8 ;;
    app) echo 9 ;;
    *) echo "" ;;
    esac
}

breaches=0
breach() {
    echo "layout: $1"
    breaches=$((breaches + 1))
}

while IFS= read -r file; do
    folder=$(dirname "$file")
    own=$(layer_of "$folder")
    [[ -n "$own" ]] || breach "$file is in a folder without a layer ($folder)"
    while IFS= read -r included; do
        target=$(dirname "$included")
        case "$target" in
        platform/x11 | platform/xdg | platform/fake | platform/kwin | platform/gnome)
            [[ "$file" == app/main.cpp ]] || breach "$file includes the backend header $included"
            continue
            ;;
        esac
        [[ "$target" == "$folder" ]] && continue
        theirs=$(layer_of "$target")
        if [[ -z "$theirs" ]]; then
            breach "$file includes $included from a folder without a layer"
        elif ((theirs >= own)); then
            breach "$file (layer $own) includes $included (layer $theirs)"
        fi
    done < <(sed -n 's/^#include "\([^"]*\/[^"]*\)".*/\1/p' "$file")
    if [[ "$file" != app/ui/* && "$file" != app/main.cpp && "$file" != KeyboardShortcuts/widgets/* ]] &&
        grep -Eq '^#include <(QtWidgets/)?(QWidget|QApplication|QAbstractButton|QLabel|QPushButton|QLayout|QBoxLayout|QVBoxLayout|QHBoxLayout|QMenu|QDialog|QStyle|QScrollArea|QLineEdit|QSystemTrayIcon|QToolTip|QFrame|QStackedLayout|QCheckBox|QProgressBar|QGridLayout|QStylePainter|QStyleOption)>' "$file"; then
        breach "$file includes a QtWidgets header outside app/ui and KeyboardShortcuts/widgets"
    fi
done < <(find platform KeyboardShortcuts app \( -name '*.h' -o -name '*.cpp' \) | grep -Ev '^platform/[a-z0-9]+/' | sort)

if ((breaches > 0)); then
    echo "layout: $breaches breach(es)"
    exit 1
fi
echo "layout: every include follows the layers"
