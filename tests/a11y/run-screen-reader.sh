#!/usr/bin/env bash
# Starts the app under a virtual display with its own session bus and accessibility bus, on a
# home holding the demo catalogue, and walks it as a screen reader's user: blind_path.py.
# usage: run-screen-reader.sh VELMORA DEMO_DIR TRANSLATIONS.ts
set -uo pipefail
app=$1 demo=$2 texts=$3
here=$(cd "$(dirname "$0")" && pwd)
for tool in Xvfb dbus-run-session xdotool /usr/libexec/at-spi-bus-launcher; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is missing (scripts/setup installs it)"; exit 77; }
done
/usr/bin/python3 -c "import pyatspi" 2>/dev/null || { echo "SKIP: python3-pyatspi is missing (scripts/setup installs it)"; exit 77; }

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/Documents"
cp "$demo"/velmora-*.db "$home/Documents/"

# Under AddressSanitizer: the X keyboard library copies atom names with strndup from buffers that
# are not NUL-terminated, which is correct C but what strict string checks report; the app under
# X is run without them (the unit tests, on the offscreen platform, keep them).
[ -n "${ASAN_OPTIONS:-}" ] && export ASAN_OPTIONS="$ASAN_OPTIONS:strict_string_checks=0"

# Xvfb picks a free display itself and writes its number once it accepts connections, so two
# virtual displays never race for one number and the app never starts before its display is up.
# Without -noreset the server resets whenever its last client leaves (the check below, or the
# accessibility bus launcher publishing its address), and an app connecting just then finds no
# display.
exec 3< <(Xvfb -displayfd 1 -noreset -screen 0 600x900x24 -nolisten tcp 2>"$home/xvfb.log")
xvfb=$!
read -r -t 30 display <&3 || { echo "FAIL: the virtual display did not start"; cat "$home/xvfb.log"; exit 1; }
trap 'kill $xvfb 2>/dev/null; wait $xvfb 2>/dev/null; rm -rf "$home"' EXIT
export DISPLAY=":$display"
xdotool getdisplaygeometry >/dev/null || { echo "FAIL: display $DISPLAY does not answer"; exit 1; }

export app home here texts
dbus-run-session -- bash -c '
  export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
  /usr/libexec/at-spi-bus-launcher --launch-immediately &
  bus=$!
  "$app" --home "$home" > "$home/app.log" 2>&1 &
  pid=$!
  /usr/bin/python3 "$here/blind_path.py" "$texts"
  status=$?
  kill $pid $bus 2>/dev/null
  wait $pid 2>/dev/null
  [ $status -eq 0 ] || { echo "--- the app said:"; tail -20 "$home/app.log"; }
  exit $status
' 2> >(grep -v "dbus-daemon\|SpiRegistry\|fd limit" >&2)
