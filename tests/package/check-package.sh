#!/usr/bin/env bash
# Builds the Debian package from the build tree, installs it into a scratch root and runs
# what it installed from there, the way a user would after `apt install ./zentrik_*.deb`.
#
# Usage: check-package.sh BUILD_DIR
#
# Why `dpkg --root` with --force-depends plus dpkg-checkbuilddeps, and not a chroot: a
# chroot would need a whole Debian tree (debootstrap reaches the network and takes
# minutes). The scratch root starts with an empty package database, so dpkg would refuse
# every dependency; instead the Depends field is checked with dpkg's own parser against
# this machine's database, and the installed programs run from the scratch root against
# this machine's libraries, Qt plugins and QML modules, which is exactly what those
# dependencies provide.
set -euo pipefail

BUILD_DIR=$(cd "${1:?usage: check-package.sh BUILD_DIR}" && pwd)
APP_ID=app.zentrik.Zentrik

failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }
pass() { echo "ok: $*"; }
die() { echo "FAIL: $*" >&2; exit 1; }

for tool in cpack dpkg dpkg-deb dpkg-checkbuilddeps desktop-file-validate appstreamcli groff readelf python3; do
  command -v "$tool" >/dev/null || die "$tool is not installed (scripts/setup installs it)"
done

WORK="$BUILD_DIR/tests/package/work"
rm -rf "$WORK"
mkdir -p "$WORK"
trap 'rm -rf "$WORK"' EXIT

# --- build -------------------------------------------------------------------------------
# cpack installs the already built targets; it does not build them.
[ -x "$BUILD_DIR/src/cli/zentrik-cli" ] || die "zentrik-cli is not built in $BUILD_DIR"
if ! cpack --config "$BUILD_DIR/CPackConfig.cmake" -B "$WORK/out" >"$WORK/cpack.log" 2>&1; then
  cat "$WORK/cpack.log" >&2
  die "cpack could not build the package"
fi
shopt -s nullglob
debs=("$WORK"/out/*.deb)
shopt -u nullglob
[ "${#debs[@]}" -eq 1 ] || die "expected one .deb, found ${#debs[@]}"
DEB=${debs[0]}
echo "built $(basename "$DEB") ($(du -k "$DEB" | cut -f1) KiB)"

# --- control fields ------------------------------------------------------------------------
field() { dpkg-deb --field "$DEB" "$1" || die "dpkg-deb cannot read the control fields of $DEB"; }
[ "$(field Package)" = zentrik ] || fail "package name is '$(field Package)', not zentrik"
VERSION=$(field Version)
DEPENDS=$(field Depends)
[[ "$VERSION" =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "version '$VERSION' is not MAJOR.MINOR.PATCH"
[ -n "$(field Maintainer)" ] || fail "no Maintainer"
# Libraries found by dpkg-shlibdeps, and what only the program's run time reveals.
for needed in libc6 libqt6core6 libqt6network6 libsecret-1-0 libicu72 \
              qml6-module-qtquick-controls gstreamer1.0-plugins-good fonts-noto-color-emoji; do
  grep -Eq "(^|, )$needed( |,|$)" <<<"$DEPENDS" || fail "Depends lacks $needed: $DEPENDS"
done
if dpkg-checkbuilddeps -d "$DEPENDS" /dev/null 2>"$WORK/deps.err"; then
  pass "every declared dependency is installed on this machine"
else
  fail "declared dependencies missing on this machine: $(cat "$WORK/deps.err")"
fi

# --- install into the scratch root ----------------------------------------------------------
ROOT="$WORK/root"
mkdir -p "$ROOT/var/lib/dpkg/info" "$ROOT/var/lib/dpkg/updates" "$ROOT/var/log"
: >"$ROOT/var/lib/dpkg/status"
dpkg_root=(dpkg --root="$ROOT" --force-depends)
[ "$(id -u)" -eq 0 ] || dpkg_root+=(--force-not-root)
if ! "${dpkg_root[@]}" --install "$DEB" >"$WORK/dpkg.log" 2>&1; then
  cat "$WORK/dpkg.log" >&2
  die "dpkg could not install the package into the scratch root"
fi
status=$(dpkg-query --admindir="$ROOT/var/lib/dpkg" --show --showformat='${Status} ${Version}' zentrik 2>&1 || true)
[ "$status" = "install ok installed $VERSION" ] || fail "package state in the scratch root: $status"
# Every installed file matches the checksum the package recorded for it.
if verify=$(dpkg --root="$ROOT" --verify zentrik 2>&1) && [ -z "$verify" ]; then
  pass "installed files match the package's checksums"
else
  fail "dpkg --verify: $verify"
fi

expected=(
  /usr/bin/zentrik-cli
  /usr/share/man/man1/zentrik-cli.1.gz
  /usr/share/doc/zentrik/copyright
)
HAS_APP=0
if [ -x "$BUILD_DIR/src/app/zentrik" ]; then
  HAS_APP=1
  expected+=(
    /usr/bin/zentrik
    "/usr/share/applications/$APP_ID.desktop"
    "/usr/share/metainfo/$APP_ID.metainfo.xml"
    "/usr/share/icons/hicolor/scalable/apps/$APP_ID.svg"
  )
fi
listed=$(dpkg-query --admindir="$ROOT/var/lib/dpkg" --listfiles zentrik || true)
for path in "${expected[@]}"; do
  grep -qxF "$path" <<<"$listed" || fail "the package does not list $path"
  [ -f "$ROOT$path" ] || fail "$path was not installed"
done
# Nothing of the build machine may leak into the package.
if grep -E '/(work|tmp|home)/|/build[^/]*/|\.a$|/include/' <<<"$listed"; then
  fail "the package holds build-tree files (above)"
fi

# The installed programs must not look for libraries in the build tree.
for program in "$ROOT"/usr/bin/*; do
  if readelf --dynamic "$program" | grep -E 'R(UN)?PATH'; then
    fail "$(basename "$program") carries a library search path (above)"
  fi
done

# --- run from the scratch root --------------------------------------------------------------
# A clean environment: scratch home and XDG folders, a config folder of its own, no session
# bus (so no keyring either), and provider addresses on a port where nothing listens, so a
# stray request fails at once instead of reaching the internet.
SCRATCH_HOME="$WORK/home"
mkdir -p "$SCRATCH_HOME/.config" "$SCRATCH_HOME/.local/share" "$SCRATCH_HOME/.cache" "$WORK/run" "$WORK/config"
chmod 700 "$WORK/run"
nowhere=http://127.0.0.1:9
run_installed() {
  env -i PATH="$ROOT/usr/bin:/usr/bin:/bin" LANG=C.UTF-8 HOME="$SCRATCH_HOME" \
    XDG_CONFIG_HOME="$SCRATCH_HOME/.config" XDG_DATA_HOME="$SCRATCH_HOME/.local/share" \
    XDG_CACHE_HOME="$SCRATCH_HOME/.cache" XDG_RUNTIME_DIR="$WORK/run" ZENTRIK_CONFIG_DIR="$WORK/config" \
    ZENTRIK_OPENAI_BASE_URL=$nowhere ZENTRIK_ANTHROPIC_BASE_URL=$nowhere ZENTRIK_OPENROUTER_BASE_URL=$nowhere \
    ZENTRIK_TOGETHER_BASE_URL=$nowhere ZENTRIK_FAL_QUEUE_URL=$nowhere ZENTRIK_FAL_REST_URL=$nowhere \
    "$@"
}
CLI="$ROOT/usr/bin/zentrik-cli"

if out=$(run_installed "$CLI" --version 2>"$WORK/err"); then
  [ "$out" = "zentrik-cli $VERSION" ] || fail "--version printed '$out', the package is $VERSION"
else
  fail "zentrik-cli --version failed: $(cat "$WORK/err")"
fi

# Fresh preferences: the default text and image models are the selected ones.
selected_models() { python3 -c '
import json, sys
data = json.load(sys.stdin)
picked = [m["id"] for group in ("textModels", "imageModels") for m in data[group] if m["selected"]]
print(" ".join(picked))' ; }
if out=$(run_installed "$CLI" models 2>"$WORK/err"); then
  for id in gpt-4o-mini fal-ai/flux-pro claude-3-haiku-20240307 black-forest-labs/FLUX.1-schnell-Free; do
    grep -qF "$id" <<<"$out" || fail "models does not list $id"
  done
  marked=$(grep -c '^\*' <<<"$out" || true)
  [ "$marked" -eq 2 ] || fail "models marks $marked entries as selected, expected 2: $out"
else
  fail "zentrik-cli models failed: $(cat "$WORK/err")"
fi
if out=$(run_installed "$CLI" models --json 2>"$WORK/err") && picked=$(selected_models <<<"$out"); then
  [ "$picked" = "gpt-4o-mini fal-ai/flux-pro" ] || fail "models --json selects '$picked' on a fresh start"
else
  fail "zentrik-cli models --json gave no readable JSON: $(cat "$WORK/err")"
fi
# A choice made with the installed program is kept in ZENTRIK_CONFIG_DIR and read back.
if run_installed "$CLI" config set text-model claude-3-haiku-20240307 >/dev/null 2>"$WORK/err" \
   && out=$(run_installed "$CLI" models --json 2>>"$WORK/err") && picked=$(selected_models <<<"$out"); then
  [ "$picked" = "claude-3-haiku-20240307 fal-ai/flux-pro" ] || fail "after config set, models selects '$picked'"
  [ -f "$WORK/config/Zentrik.conf" ] || fail "the preferences were not written to ZENTRIK_CONFIG_DIR"
else
  fail "config set / models --json failed: $(cat "$WORK/err")"
fi
pass "zentrik-cli runs from the scratch root"

# --- desktop integration files ----------------------------------------------------------------
if [ "$HAS_APP" -eq 1 ]; then
  desktop="$ROOT/usr/share/applications/$APP_ID.desktop"
  metainfo="$ROOT/usr/share/metainfo/$APP_ID.metainfo.xml"
  desktop-file-validate "$desktop" || fail "desktop-file-validate rejects $APP_ID.desktop"
  appstreamcli validate --no-net "$metainfo" || fail "appstreamcli rejects $APP_ID.metainfo.xml"
  exec_program=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop" | head -n 1)
  [ -x "$ROOT/usr/bin/$exec_program" ] || fail "the launcher runs '$exec_program', which is not in /usr/bin"
  icon=$(sed -n 's/^Icon=//p' "$desktop")
  [ -f "$ROOT/usr/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "the launcher's icon '$icon' is not installed"
  metainfo_fields=$(python3 - "$metainfo" <<'EOF' || true
import sys, xml.etree.ElementTree as ET
root = ET.parse(sys.argv[1]).getroot()
releases = root.findall("./releases/release")
print(root.findtext("launchable"), releases[0].get("version") if releases else "none")
EOF
  )
  read -r launchable newest_release <<<"$metainfo_fields"
  [ "$launchable" = "$APP_ID.desktop" ] || fail "the metainfo launches '$launchable'"
  [ "$newest_release" = "$VERSION" ] || fail "the metainfo's newest release is $newest_release, the package is $VERSION"

  # The window program starts from the scratch root (off screen, so it needs no display).
  if out=$(run_installed env QT_QPA_PLATFORM=offscreen "$ROOT/usr/bin/zentrik" --version 2>"$WORK/err"); then
    [ "$out" = "Zentrik $VERSION" ] || fail "zentrik --version printed '$out', the package is $VERSION"
  else
    fail "zentrik --version failed: $(cat "$WORK/err")"
  fi
  # Then every screen once: the views' imports resolve against the QML modules and plugins
  # of this machine, not against anything in the build tree.
  if ! run_installed env QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software \
       timeout 60 "$ROOT/usr/bin/zentrik" --measure-startup >"$WORK/app.out" 2>"$WORK/app.err"; then
    fail "zentrik --measure-startup failed: $(tail -n 5 "$WORK/app.err")"
  fi
  if grep -E 'is not installed|plugin cannot be loaded|Could not load the Qt platform plugin' "$WORK/app.err"; then
    fail "the window misses a module or plugin at run time (above)"
  fi
fi

# --- manual page ------------------------------------------------------------------------------
man_page="$ROOT/usr/share/man/man1/zentrik-cli.1.gz"
if [ -f "$man_page" ]; then
  warnings=$(gzip -dc "$man_page" | groff -man -Tutf8 -ww -z 2>&1 || echo "groff failed")
  [ -z "$warnings" ] || fail "groff warns about the manual page: $warnings"
  rendered=$(gzip -dc "$man_page" | groff -man -Tutf8 2>/dev/null | sed 's/.\x08//g' || true)
  grep -qF "Zentrik $VERSION" <<<"$rendered" || fail "the manual page does not name version $VERSION"
  # Every verb the installed program offers has its entry in the manual.
  verbs=$(run_installed "$CLI" --help | sed -n 's/^  \([a-z][a-z-]*\) .*/\1/p' || true)
  [ -n "$verbs" ] || fail "zentrik-cli --help lists no verbs"
  for verb in $verbs; do
    grep -Eq "^ {7}(zentrik-cli )?$verb( |$)" <<<"$rendered" || fail "the manual page has no entry for '$verb'"
  done
fi

if [ "$failures" -gt 0 ]; then
  echo "$failures check(s) failed" >&2
  exit 1
fi
echo "package $(basename "$DEB") installs and runs"
