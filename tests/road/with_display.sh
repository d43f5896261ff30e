#!/usr/bin/env bash
# Runs a command on a display of its own, with a window manager: without one, focus does not come back to a window when a
# dialog over it closes.
set -euo pipefail
home=$(mktemp -d)
# Settings of the user who runs the tests are neither read nor written.
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_RUNTIME_DIR=$home/run QT_QPA_PLATFORM=xcb
mkdir -m 700 "$home/run"
mkfifo "$home/display"
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$home/display" 2>"$home/xvfb.log" &
server=$!
trap 'kill "${manager:-$server}" "$server" 2>/dev/null || true; wait; rm -rf -- "$home"' EXIT
read -r number <"$home/display"
export DISPLAY=:$number
cat >"$home/.jwmrc" <<'RC'
<?xml version="1.0"?><JWM><FocusModel>click</FocusModel><Key mask="A" key="F4">close</Key></JWM>
RC
jwm >"$home/jwm.log" 2>&1 &
manager=$!
"$@"
