#!/usr/bin/env bash
# Makes docs/picture.svg: a terminal in which the client named by KESTA syncs a few made-up files.
#
#   KESTA=build/linux/kesta docs/picture.sh [SVG]
set -euo pipefail
: "${KESTA:?names the client to show}"
client=$(realpath "$KESTA")
target=$(realpath -m "${1:-docs/picture.svg}")

# A short path that reads well in the picture; nobody's folder is taken for it.
home=/tmp/ann
mkdir "$home"
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/Music/Rock" "$home/Music/Jazz" "$home/Playlists" "$home/phone" "$home/.data" "$home/.run" "$home/.bin"
chmod 700 "$home/.run"
ln -s "$client" "$home/.bin/kesta"

# made NAME KILOBYTES: a file of that size, always changed at the same time.
made() {
    head -c "$(($2 * 1000))" /dev/zero >"$home/$1"
    touch -d "2026-03-14 15:09:26" "$home/$1"
}
made "Music/Rock/Riverside.mp3" 4100
made "Music/Rock/Night Train.mp3" 5300
made "Music/Jazz/Blue Room.mp3" 3900
printf '#EXTM3U\n../Music/Rock/Riverside.mp3\n../Music/Jazz/Blue Room.mp3\n' >"$home/Playlists/Evening.m3u8"
printf 'BEGIN:VCARD\r\nVERSION:3.0\r\nUID:%s\r\nFN:%s\r\nEND:VCARD\r\n' 1 "Bea Example" 2 "Cem Example" >"$home/friends.vcf"

cat >"$home/.bin/story" <<'SHELL'
stty cols 118 rows 30
cd ~
show() {
    printf '\e[32m$\e[0m \e[1m%s\e[0m\n' "$1"
    eval "$1"
}
show "kesta sync --phone phone --imei 356111220001113 --name \"Ann's phone\" --music Music --playlists Playlists"
echo
show "kesta sync --phone phone --contacts friends.vcf"
echo
show 'rm "Music/Rock/Night Train.mp3"'
show 'kesta sync --phone phone --music Music'
echo
show 'kesta why "Music/Jazz/Blue Room.mp3"'
SHELL

# Recorded as one event, so that the picture does not depend on when each line came.
env -i HOME="$home" PATH="$home/.bin:/usr/bin:/bin" LANG=C.UTF-8 TZ=UTC TERM=xterm-256color SHELL=/bin/bash \
    XDG_DATA_HOME="$home/.data" XDG_RUNTIME_DIR="$home/.run" script -qec "bash $home/.bin/story" "$home/.raw" </dev/null >/dev/null
python3 - "$home/.raw" "$home/.cast" <<'PYTHON'
import json, re, sys
columns = 118
text = "\n".join(open(sys.argv[1], encoding="utf-8", newline="").read().split("\n")[1:])  # behind script's own line
text = text.partition("\nScript done on")[0].rstrip()
shown = [re.sub(r"\x1b\[[0-9;]*m", "", line.rstrip("\r").rpartition("\r")[2]) for line in text.split("\n")]
rows = sum(max(1, -(-len(line) // columns)) for line in shown)
with open(sys.argv[2], "w", encoding="utf-8") as cast:
    print(json.dumps({"version": 2, "width": columns, "height": rows}), file=cast)
    print(json.dumps([0.1, "o", text]), file=cast)
    print(json.dumps([0.2, "o", "\x1b[?25l"]), file=cast)
PYTHON
termtosvg render "$home/.cast" "$home/.frames" --still-frames -t window_frame >/dev/null
# Columns stay columns, and lines their height, in every viewer.
python3 - "$(find "$home/.frames" -name '*.svg' | sort | tail -n 1)" "$target" <<'PYTHON'
import sys
svg = open(sys.argv[1], encoding="utf-8").read().replace("<svg ", '<svg xml:space="preserve" ')
svg = svg.replace("dominant-baseline: text-before-edge;", "").replace("font-size: 14px", "font-size: 13px")
svg = svg.replace("<text ", '<text y="13" ')
open(sys.argv[2], "w", encoding="utf-8").write(svg)
PYTHON
