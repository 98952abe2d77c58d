# SPDX-License-Identifier: MIT
# `cpack -G DEB` in the build folder makes lattica_VERSION-BUILD_ARCH.deb from what `cmake --install` installs.
set(CPACK_PACKAGE_NAME lattica)
set(CPACK_PACKAGE_VENDOR "The Lattica developers")
set(CPACK_PACKAGE_CONTACT "The Lattica developers <${LATTICA_SUPPORT_EMAIL}>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "preview your monitors and move windows between them")
set(CPACK_PACKAGE_HOMEPAGE_URL ${LATTICA_PROJECT_URL})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${LATTICA_BUILD_NUMBER})
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION_SUMMARY}
Lattica is a tray utility for people who work with several monitors. Its panel
shows one card per monitor with a live preview, the number of visible windows
and the applications that have windows there; from a card, all windows of the
monitor, or those of one application, move to another monitor. Each monitor
can have a global keyboard shortcut that moves the focused window to it. The
same moves are available from the command line and over D-Bus.
.
Lattica works on X11 desktops with an EWMH window manager.")
# The libraries the program links are found by dpkg-shlibdeps. What is used without being linked is named
# here: the SVG icon engine that Qt loads to draw the installed icons, and the hicolor theme's index, without
# which Qt finds no icon in the theme.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, hicolor-icon-theme")
# Qt's own texts in the user's language (Lattica's are compiled in).
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n")
# GNOME shows the tray icon only through this extension. Suggested, not recommended: it depends on GNOME
# Shell, which a recommendation would bring onto every other desktop.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-shell-extension-appindicator")

include(CPack)
