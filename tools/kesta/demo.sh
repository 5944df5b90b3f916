#!/usr/bin/env bash
# Shows a sync of real files in database of its own, which are gone afterwards.
#
# Without arguments it gathers documents, pictures and sounds of this system, makes playlists, bookmarks, contacts and a
# calendar, syncs it all to a folder that plays the phone, syncs again, then changes some of it. Arguments go on to
# "kesta sync"; what is named there is synced instead, twice, and nothing in it is touched. KESTA names the client.
set -euo pipefail
: "${KESTA:?names the client to show}"
KESTA=$(realpath "$KESTA")
samples_script=$(realpath "$(dirname "$0")")/demo_samples.sh

work=$(mktemp -d "${TMPDIR:-/tmp}/kesta-demo.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM
export XDG_DATA_HOME=$work/data XDG_RUNTIME_DIR=$work/run
mkdir -p "$work/data" "$work/run" "$work/phone" "$work/pc"
chmod 700 "$work/run"

step() { printf '\n=== %s\n' "$*"; }

# Without a terminal a line for each of hundreds of files would drown the story.
sync_options=()
[ -t 1 ] || sync_options+=(--quiet)

failures=0
# A demo goes on to its end; what a sync could not do it has said itself.
sync() {
    printf '$ kesta sync'
    printf ' %q' "$@"
    printf '\n'
    "$KESTA" sync "${sync_options[@]}" "$@" || failures=1
}

# What the user would type, and what comes of it.
show() {
    printf '$ kesta'
    printf ' %q' "$@"
    printf '\n'
    "$KESTA" "$@" || failures=1
}

show_status() {
    step "What the database says now"
    printf '$ kesta status\n'
    "$KESTA" status
}

# gather LIMIT TARGET NAME-PATTERN FOLDER...: copies the first files of that kind, with the folders they lie in.
gather() {
    local limit=$1 target=$2 pattern=$3 folder found=()
    shift 3
    mkdir -p "$target"
    for folder in "$@"; do
        [ -d "$folder" ] && found+=("$folder")
    done
    [ ${#found[@]} -gt 0 ] || return 0
    find "${found[@]}" -type f -size +0 -size -4000k -regextype posix-extended -iregex "$pattern" -print0 2>/dev/null |
        sort -z | sed -z -n "1,${limit}s|^/||p" >"$work/list"
    [ ! -s "$work/list" ] || tar -C / --null -T "$work/list" -cf - | tar -C "$target" -xf -
}

count_files() { find "$1" -type f | wc -l; }

demo_of_own_files() {
    local has_phone=no has_folders=no argument
    for argument in "$@"; do
        case "$argument" in
            --phone | --phone=*) has_phone=yes ;;
            --music | --music=* | --images | --images=* | --videos | --videos=* | --documents | --documents=* | \
                --playlists | --playlists=* | --bookmarks | --bookmarks=* | --contacts | --contacts=* | \
                --calendar | --calendar=*)
                has_folders=yes
                ;;
        esac
    done
    local arguments=("$@")
    if [ $has_phone = no ]; then
        arguments=(--phone "$work/phone" --name "Demo phone" "$@")
    fi
    if [ $has_folders = no ]; then
        gather_system_files
        make_samples
        arguments+=("${system_folders[@]}" "${samples[@]}")
    fi
    step "First sync"
    sync "${arguments[@]}"
    step "Second sync: nothing has changed, so there is nothing to do"
    sync "${arguments[@]}"
    show_status
}

system_folders=()
gather_system_files() {
    step "Gathering files of this system"
    gather 250 "$work/pc/Documents" '.*(\.(html|pdf|txt|rst|md|gz)|/copyright)' /usr/share/doc /usr/share/cmake-*/Help
    gather 200 "$work/pc/Pictures" '.*\.(png|jpe?g|svg|gif|webp)' \
        /usr/share/pixmaps /usr/share/backgrounds /usr/share/wallpapers /usr/share/icons /usr/share/doc /usr/share/nodejs
    gather 100 "$work/pc/Sounds" '.*\.(wav|ogg|oga|mp3|flac|midi?)' \
        /usr/share/sounds /usr/share/games /usr/lib /usr/share
    local folder option
    for folder in Documents:--documents Pictures:--images Sounds:--music; do
        option=${folder#*:}
        folder=$work/pc/${folder%%:*}
        if [ "$(count_files "$folder")" -gt 0 ]; then
            printf '%-10s %5d files, %s\n' "${folder##*/}" "$(count_files "$folder")" "$(du -sh "$folder" | cut -f1)"
            system_folders+=("$option" "$folder")
        else
            printf '%-10s none on this system, left out\n' "${folder##*/}"
            rmdir "$folder"
        fi
    done
}

samples=()
make_samples() {
    local sounds=()
    [ ! -d "$work/pc/Sounds" ] || mapfile -t sounds < <(find "$work/pc/Sounds" -type f | sort | sed -n 1,3p)
    "$samples_script" "$work/pc" "${sounds[@]}"
    samples=(--playlists "$work/pc/Playlists" --bookmarks "$work/pc/bookmarks.html"
        --contacts "$work/pc/friends.vcf" --calendar "$work/pc/home.ics")
    printf 'Made for the demo: 2 playlists, 4 bookmarks, 3 contacts, 3 calendar entries\n'
}

demo_of_system_files() {
    gather_system_files
    make_samples
    local imei=004999010640000
    local families=("${system_folders[@]}" "${samples[@]}")
    # From here on the commands are as short as a user would type them.
    cd "$work"
    local arguments=(--phone phone --imei $imei --name "Demo phone" "${families[@]#"$work/"}")

    step "First sync: everything is new"
    sync "${arguments[@]}"

    step "Second sync: nothing has changed, so there is nothing to do"
    sync "${arguments[@]}"

    local changed removed
    changed=$(find pc/Documents pc/Pictures -type f 2>/dev/null | sort | sed -n 1p)
    removed=$(find pc/Documents pc/Pictures -type f 2>/dev/null | sort | sed -n 2p)
    step "One file changes, one goes, a song leaves a playlist, a contact has a new address, a bookmark is added"
    printf 'changed  %s\nremoved  %s\n' "$changed" "$removed"
    printf 'one more line\n' >>"$changed"
    rm -f "$removed"
    sed -i '/high\.wav/d' pc/Playlists/Favourites.m3u8
    sed -i 's/ann@example\.com/ann@example.org/' pc/friends.vcf
    sed -i 's|^</DL><p>$|    <DT><A HREF="https://news.example.com/">News</A>\n</DL><p>|' pc/bookmarks.html
    mkdir Backups

    step "Third sync: only that is done, and the phone is backed up"
    sync "${arguments[@]}" --backup Backups
    show_status

    step "What is recorded of playlists and contacts"
    show files --imei $imei --category playlists
    show files --imei $imei --category contacts

    step "Why a file is on the phone, or is not"
    show why "$changed"
    show why "$removed"
    show why pc/Tones/low.wav

    step "Pictures are no longer wanted on this phone: a sync leaves them as they are"
    show settings --imei $imei select.gallery=no
    sync --phone phone --images pc/Pictures
    printf '\nThe phone holds %d files.\n' "$(find phone -type f ! -name '.kesta-*' | wc -l)"
}

if [ $# -gt 0 ]; then
    demo_of_own_files "$@"
else
    demo_of_system_files
fi
[ $failures -ne 0 ] || printf '\nEverything has gone well.\n'
exit $failures
