#!/usr/bin/env bash
# Makes what a PC has besides documents and pictures, for the demo: demo_samples.sh TARGET [SOUND...]
#
# TARGET/Tones gets three short sounds, TARGET/Playlists playlists of them and of the sounds given, TARGET/bookmarks.html
# a browser's bookmarks, TARGET/friends.vcf contacts of three vCard versions, TARGET/home.ics a calendar. Everything is
# made up; example.com and its like lead nowhere.
set -euo pipefail

target=$1
shift
mkdir -p "$target"

# Address books and calendars have lines that end with CR LF.
crlf() { sed 's/$/\r/'; }

# A number as so many bytes, the lowest first, for printf.
bytes() {
    local value=$1 count=$2
    while [ "$count" -gt 0 ]; do
        printf '\\x%02x' $((value & 255))
        value=$((value >> 8)) count=$((count - 1))
    done
}

# tone FILE SAMPLES: half a second of a square wave, so many samples to a half of it; 8 bits, 8 kHz, one channel.
tone() {
    local file=$1 half=$2 length=4000 wave='' i
    for ((i = 0; i < half; ++i)); do wave+='\x60'; done
    for ((i = 0; i < half; ++i)); do wave+='\xa0'; done
    local sound=''
    for ((i = 0; i < length / (2 * half); ++i)); do sound+=$wave; done
    length=$((length / (2 * half) * 2 * half))
    {
        printf 'RIFF'
        printf "$(bytes $((length + 36)) 4)WAVEfmt $(bytes 16 4)$(bytes 1 2)$(bytes 1 2)"
        printf "$(bytes 8000 4)$(bytes 8000 4)$(bytes 1 2)$(bytes 8 2)data$(bytes $length 4)"
        printf '%b' "$sound"
    } >"$file"
}

mkdir -p "$target/Tones" "$target/Playlists"
tone "$target/Tones/low.wav" 20
tone "$target/Tones/middle.wav" 10
tone "$target/Tones/high.wav" 5

printf '%s\n' '#EXTM3U' '#EXTINF:1,Low' ../Tones/low.wav '#EXTINF:1,High' ../Tones/high.wav "$@" \
    >"$target/Playlists/Favourites.m3u8"
# The older form knows no UTF-8. The last entry is a stream, which no sync can copy.
printf '# from caf\351 to caf\351\n../Tones/low.wav\n%s\nhttp://radio.example.com/stream\n' \
    "$(cd "$target" && pwd)/Tones/middle.wav" >"$target/Playlists/On the way.m3u"

cat >"$target/bookmarks.html" <<'HTML'
<!DOCTYPE NETSCAPE-Bookmark-file-1>
<META HTTP-EQUIV="Content-Type" CONTENT="text/html; charset=UTF-8">
<TITLE>Bookmarks</TITLE>
<H1>Bookmarks</H1>
<DL><p>
    <DT><H3>Travel</H3>
    <DL><p>
        <DT><A HREF="https://trains.example.com/?from=K%C3%B6ln&amp;to=Paris" ADD_DATE="1767225600">Trains</A>
        <DT><A HREF="https://maps.example.com/">Maps &amp; routes</A>
    </DL><p>
    <DT><A HREF="https://www.example.org/">An example</A>
    <DT><A HREF="https://recipes.example.net/kn%C3%B6del">Knödel</A>
</DL><p>
HTML

crlf >"$target/friends.vcf" <<'VCF'
BEGIN:VCARD
VERSION:2.1
N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=C3=B6rg
TEL;CELL:+49 170 0000001
UID:demo-joerg
END:VCARD
BEGIN:VCARD
VERSION:3.0
FN:Ann Example
N:Example;Ann;;;
EMAIL;TYPE=INTERNET:ann@example.com
NOTE:A note that is longer than a line may be\, and is therefore folded o
 nto the next one.
UID:demo-ann
END:VCARD
BEGIN:VCARD
VERSION:4.0
FN:Бен Пример
TEL;VALUE=uri:tel:+1-555-0100
UID:urn:uuid:00000000-0000-4000-8000-000000000003
END:VCARD
VCF

crlf >"$target/home.ics" <<'ICS'
BEGIN:VCALENDAR
VERSION:2.0
PRODID:-//example.com//demo//EN
X-WR-CALNAME:Home
BEGIN:VEVENT
UID:demo-dentist
DTSTAMP:20260101T090000Z
DTSTART:20260316T143000
DURATION:PT1H
SUMMARY:Dentist
END:VEVENT
BEGIN:VEVENT
UID:demo-choir
DTSTAMP:20260101T090000Z
DTSTART:20260107T190000
DTEND:20260107T210000
RRULE:FREQ=WEEKLY;BYDAY=WE
SUMMARY:Choir
END:VEVENT
BEGIN:VTODO
UID:demo-tax
DTSTAMP:20260101T090000Z
DUE:20260531
SUMMARY:Tax return
END:VTODO
END:VCALENDAR
ICS
