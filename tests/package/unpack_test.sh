#!/usr/bin/env bash
# Builds the Debian package from a build tree, unpacks it into a temporary root and checks what
# an installation would get: both programs run from there, the unit passes systemd's own check,
# the desktop entry and metadata validate.
# Usage: unpack_test.sh BUILD_DIR VERSION
set -euo pipefail
build=$1
version=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$work/out" >"$work/cpack.log" 2>&1) ||
  { cat "$work/cpack.log" >&2; fail "cpack"; }
deb=$work/out/zrn-pennaro_${version}_$(dpkg --print-architecture).deb
[ -f "$deb" ] || fail "no $deb"
root=$work/root
dpkg-deb -x "$deb" "$root"

for f in usr/bin/zrn-pennaro usr/bin/zrn-switcher-sim \
  usr/share/applications/org.zrn.pennaro.desktop \
  usr/share/icons/hicolor/scalable/apps/org.zrn.pennaro.svg \
  usr/share/metainfo/org.zrn.pennaro.metainfo.xml \
  usr/share/man/man1/zrn-pennaro.1.gz usr/share/man/man1/zrn-switcher-sim.1.gz \
  usr/share/doc/zrn-pennaro/README.md usr/share/doc/zrn-pennaro/copyright \
  usr/share/doc/zrn-pennaro/changelog.gz usr/share/doc/zrn-pennaro/monitoring/alerts.yml \
  usr/lib/systemd/system/zrn-pennaro-headless.service; do
  [ -f "$root/$f" ] || fail "the package lacks /$f"
done

# Run from the unpacked root, without a display, as after an installation.
for program in zrn-pennaro zrn-switcher-sim; do
  got=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$root/usr/bin/$program" --version)
  [ "$got" = "$program $version" ] || fail "$program --version said '$got'"
done
# The unpacked man pages carry the version, not a placeholder.
zcat "$root/usr/share/man/man1/zrn-pennaro.1.gz" | grep -q "zrn-pennaro $version" ||
  fail "man page without the version"
grep -q "version=\"$version\"" "$root/usr/share/metainfo/org.zrn.pennaro.metainfo.xml" ||
  fail "metainfo without the version"

# systemd checks the unit inside the root, so its ExecStart must name the unpacked program; the
# standard targets it refers to come from this machine.
unit=$root/usr/lib/systemd/system/zrn-pennaro-headless.service
grep -qx 'ExecStart=/usr/bin/zrn-pennaro --headless --folder /var/lib/zrn-pennaro' "$unit" ||
  fail "ExecStart"
grep -qx 'DynamicUser=yes' "$unit" || fail "the unit does not run as its own user"
grep -qx 'StateDirectory=zrn-pennaro' "$unit" || fail "the unit has no state directory"
for units in /usr/lib/systemd/system /lib/systemd/system; do
  [ -d "$units" ] && cp -rn "$units/." "$root/usr/lib/systemd/system/"
done
# A misspelt key or value is only a warning to systemd; here it fails.
verify=$(systemd-analyze verify --man=no --root="$root" zrn-pennaro-headless.service 2>&1) ||
  fail "systemd-analyze verify: $verify"
[ -z "$verify" ] || fail "systemd-analyze verify: $verify"

if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$root/usr/share/applications/org.zrn.pennaro.desktop" ||
    fail "desktop entry"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$root/usr/share/metainfo/org.zrn.pennaro.metainfo.xml" >/dev/null ||
    fail "AppStream metadata"
fi
echo "package $deb unpacked and checked"
