#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the Debian package from a build folder whose targets are built and checks it: the control fields,
# dependencies found by dpkg-shlibdeps rather than written by hand, every installed file, and that the
# packaged program runs; as root with CI=true also that it installs with apt-get, runs from /usr/bin and is
# removed again. Usage: check-deb.sh BUILD_DIR. Exits 77 (skipped) without dpkg-deb.
set -euo pipefail
BUILD_DIR=$1
for tool in dpkg-deb dpkg-shlibdeps cpack; do
    command -v "$tool" >/dev/null || { echo "check-deb: $tool is missing (Debian packages dpkg-dev, cmake)"; exit 77; }
done

WORK=$(mktemp -d /tmp/lattica-deb.XXXXXX)
trap 'rm -rf "$WORK"' EXIT
failures=0
fail() {
    echo "check-deb: $*"
    failures=$((failures + 1))
}

if ! cpack --config "$BUILD_DIR/CPackConfig.cmake" -G DEB -B "$WORK" >"$WORK/cpack.log" 2>&1; then
    cat "$WORK/cpack.log"
    echo "check-deb: cpack failed"
    exit 1
fi
debs=("$WORK"/lattica_*.deb)
[ -f "${debs[0]}" ] || { ls -l "$WORK"; echo "check-deb: no lattica_*.deb was made"; exit 1; }
deb=${debs[0]}
echo "check-deb: made $(basename "$deb")"

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = lattica ] || fail "Package is '$(field Package)'"
[[ "$(field Version)" =~ ^[0-9]+\.[0-9]+\.[0-9]+-[0-9]+$ ]] || fail "Version is '$(field Version)'"
[ "$(field Architecture)" = "$(dpkg --print-architecture)" ] || fail "Architecture is '$(field Architecture)'"
[ -n "$(field Maintainer)" ] || fail "there is no Maintainer"
[ -n "$(field Description)" ] || fail "there is no Description"
[ -n "$(field Homepage)" ] || fail "there is no Homepage"

# Depends: the libraries the binary links, with the versions dpkg-shlibdeps worked out, the SVG icon engine,
# which Qt loads at run time, and the icon theme the icons are installed into.
depends=$(field Depends)
echo "check-deb: Depends: $depends"
listed() { [[ ", $depends," == *", $1 "* || ", $depends," == *", $1,"* ]]; }
for library in libc6 libstdc++6 libqt6core6 libqt6gui6 libqt6widgets6 libqt6dbus6 libqt6network6 libxcb1 \
    libxcb-randr0 libxkbcommon0 libdbus-1-3 libqt6svg6 hicolor-icon-theme; do
    listed "$library" || fail "Depends lacks $library"
done
# The versions come from the symbols the binary uses, so nobody wrote them.
for library in libc6 libqt6core6 libqt6widgets6; do
    [[ ", $depends," == *", $library (>= "[0-9]* ]] || fail "Depends has no computed version of $library"
done

contents=$(dpkg-deb -c "$deb" | awk '{ print $NF }')
for path in \
    ./usr/bin/lattica \
    ./usr/libexec/lattica/lattica-app \
    ./usr/share/applications/app.lattica.Lattica.desktop \
    ./usr/share/metainfo/app.lattica.Lattica.metainfo.xml \
    ./usr/share/icons/hicolor/scalable/apps/app.lattica.Lattica.svg \
    ./usr/share/icons/hicolor/symbolic/apps/app.lattica.Lattica-symbolic.svg \
    ./usr/share/man/man1/lattica.1.gz \
    ./usr/share/bash-completion/completions/lattica \
    ./usr/share/dbus-1/interfaces/app.lattica.Lattica1.xml \
    ./usr/share/doc/lattica/copyright; do
    grep -qxF "$path" <<<"$contents" || fail "the package lacks $path"
done

# The packaged launcher and program are stripped, and the launcher finds the program where it was installed.
dpkg-deb -x "$deb" "$WORK/root"
version=$("$WORK/root/usr/bin/lattica" --version) || fail "the packaged lattica --version failed"
[[ $version == "Lattica "* ]] || fail "the packaged lattica --version printed '$version'"
for binary in usr/bin/lattica usr/libexec/lattica/lattica-app; do
    file "$WORK/root/$binary" 2>/dev/null | grep -q "not stripped" && fail "the packaged $binary is not stripped"
done
zcat "$WORK/root/usr/share/man/man1/lattica.1.gz" | grep -q '^\.SH DESCRIPTION' || fail "the manual page has no DESCRIPTION"

# On a CI machine, as root: the package as a user gets it. apt installs it with its dependencies from what
# the machine already has (nothing is downloaded), the installed program answers, and the package goes
# again; the list of installed packages is the same afterwards as before.
install_check() {
    if dpkg-query -W -f='${Status}' lattica 2>/dev/null | grep -q "install ok installed"; then
        fail "a lattica package is installed already; the install check does not touch it"
        return
    fi
    dpkg-query -W -f='${Package}\n' | sort >"$WORK/before"
    trap 'apt-get purge -y -qq lattica >/dev/null 2>&1 || true; rm -rf "$WORK"' EXIT
    # Nothing is downloaded: apt's plan must install this package alone, its dependencies being here.
    if ! apt-get install -s --no-install-recommends "$deb" >"$WORK/plan.log" 2>&1; then
        cat "$WORK/plan.log"
        fail "apt-get cannot install $(basename "$deb") on this machine (see above)"
        return
    fi
    missing=$(awk '$1 == "Inst" && $2 != "lattica" { print $2 }' "$WORK/plan.log" | tr '\n' ' ')
    if [ -n "$missing" ]; then
        fail "dependencies missing from this machine, which the check does not download: $missing"
        return
    fi
    if ! DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$deb" \
        >"$WORK/install.log" 2>&1; then
        cat "$WORK/install.log"
        fail "apt-get install $(basename "$deb") failed (see above)"
        return
    fi
    echo "check-deb: installed with apt-get install $(basename "$deb")"
    installed=$(/usr/bin/lattica --version) || fail "the installed /usr/bin/lattica --version failed"
    [[ $installed == "Lattica "* ]] || fail "the installed /usr/bin/lattica --version printed '$installed'"
    echo "check-deb: /usr/bin/lattica --version: $installed"
    dpkg-query -W -f='${Package}\n' | sort >"$WORK/after"
    # What apt brought in for the package goes with it.
    mapfile -t added < <(comm -13 "$WORK/before" "$WORK/after")
    if ! DEBIAN_FRONTEND=noninteractive apt-get purge -y -q "${added[@]}" >"$WORK/remove.log" 2>&1; then
        cat "$WORK/remove.log"
        fail "apt-get purge ${added[*]} failed"
    fi
    trap 'rm -rf "$WORK"' EXIT
    [ ! -e /usr/bin/lattica ] || fail "/usr/bin/lattica is still there after the purge"
    dpkg-query -W -f='${Package}\n' | sort >"$WORK/end"
    cmp -s "$WORK/before" "$WORK/end" || fail "the installed packages differ from before: $(diff "$WORK/before" "$WORK/end" | tr '\n' ' ')"
    echo "check-deb: removed again (${added[*]}); the installed packages are as before"
}
if [ "$(id -u)" -eq 0 ] && [ "${CI:-}" = true ]; then
    install_check
else
    echo "check-deb: not installing the package (that needs root and CI=true)"
fi

if ((failures > 0)); then
    echo "check-deb: $failures problem(s)"
    exit 1
fi
echo "check-deb: the package has every file and computed dependencies"
