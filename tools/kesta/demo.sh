#!/usr/bin/env bash
# Shows a sync of real files in books of its own, which are gone afterwards.
#
# Without arguments it gathers documents, pictures and sounds of this system, syncs them to a folder that plays the phone,
# syncs again, then changes and removes a file. Arguments go on to "kesta sync"; folders named there are synced instead,
# twice, and nothing in them is touched. KESTA names the client.
set -euo pipefail
: "${KESTA:?names the client to show}"

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

show_status() {
    step "What the books say now"
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
            --music | --music=* | --images | --images=* | --videos | --videos=* | --documents | --documents=*)
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
        arguments+=("${system_folders[@]}")
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

demo_of_system_files() {
    gather_system_files
    local arguments=(--phone "$work/phone" --name "Demo phone" "${system_folders[@]}")

    step "First sync: everything is new"
    sync "${arguments[@]}"

    step "Second sync: nothing has changed, so there is nothing to do"
    sync "${arguments[@]}"

    local changed removed
    changed=$(find "$work/pc" -type f | sort | sed -n 1p)
    removed=$(find "$work/pc" -type f | sort | sed -n 2p)
    step "One file changes and another one goes"
    printf 'changed  %s\nremoved  %s\n' "${changed#"$work/pc/"}" "${removed#"$work/pc/"}"
    printf 'one more line\n' >>"$changed"
    rm -f "$removed"

    step "Third sync: one update, one removal"
    sync "${arguments[@]}"
    show_status
    printf 'The phone holds %d files, among them:\n' "$(find "$work/phone" -type f ! -name '.kesta-*' | wc -l)"
    find "$work/phone" -type f ! -name '.kesta-*' -printf '  %P\n' | sort | awk 'NR % 60 == 1'
}

if [ $# -gt 0 ]; then
    demo_of_own_files "$@"
else
    demo_of_system_files
fi
exit $failures
