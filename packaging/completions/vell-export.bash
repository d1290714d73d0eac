# bash completion for vell-export
_vell_export() {
    local current=$2 previous=$3
    local options='--format --output --force --contacts --time-zone --locale --load-log --version --help'
    COMPREPLY=()
    case $previous in
        --format)
            mapfile -t COMPREPLY < <(compgen -W 'markdown text json' -- "$current")
            ;;
        --time-zone)
            mapfile -t COMPREPLY < <(compgen -W "$(awk '!/^#/ { print $3 }' \
                /usr/share/zoneinfo/zone.tab 2>/dev/null)" -- "$current")
            ;;
        --locale)
            mapfile -t COMPREPLY < <(compgen -W "$(locale -a 2>/dev/null)" -- "$current")
            ;;
        --output)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        --contacts)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -X '!*.vcf' -- "$current"; compgen -d -- "$current")
            ;;
        *)
            if [[ $current == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -X '!*.ichat' -- "$current"
                    compgen -d -- "$current")
            fi
            ;;
    esac
}
complete -F _vell_export vell-export
