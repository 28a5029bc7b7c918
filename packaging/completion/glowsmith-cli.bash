# bash completion for glowsmith-cli
_glowsmith_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options=
    local commands="info check export show relink pictures upload film beats"
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands help --help --version" -- "$word")
        return
    fi
    if [ "${COMP_WORDS[1]}" = help ]; then
        [ "$COMP_CWORD" -gt 2 ] || mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word")
        return
    fi
    case "$before" in
        --slot) mapfile -t COMPREPLY < <(compgen -W "1 2 3 4 5 6 7 8" -- "$word"); return ;;
        --pictures) mapfile -t COMPREPLY < <(compgen -d -- "$word"); return ;;
        --track | --start-mark | --from | --to | --fps) return ;;
        --size) mapfile -t COMPREPLY < <(compgen -W "1280x720 1920x1080 640x360 1080x1080" -- "$word"); return ;;
        --port) mapfile -t COMPREPLY < <(compgen -G "/dev/tty[AU]*" -- "$word"); return ;;
    esac
    local track="--track --slot --once --start-mark"
    case "${COMP_WORDS[1]}" in
        info) options="--json --help" ;;
        check) options="$track --json --help" ;;
        export | show) options="$track -o --help" ;;
        relink) options="--pictures --help" ;;
        pictures) options="-o --help" ;;
        upload) options="$track --port --help" ;;
        beats) options="--json --help" ;;
        film) options="-o --track --all-tracks --from --to --size --fps --no-song --time-code --help" ;;
    esac
    local files='!*.@(gsw3|bin)'
    [ "${COMP_WORDS[1]}" != beats ] || files='!*.@(mp3|wav|ogg|flac|m4a)'
    case "$word" in
        -*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
        *) mapfile -t COMPREPLY < <(compgen -f -X "$files" -- "$word"; compgen -d -- "$word") ;;
    esac
}
complete -o filenames -F _glowsmith_cli glowsmith-cli
