# bash completion for vell-export
_vell_export() {
    local current=$2 previous=$3
    local options='--format --output --output-dir --force --update --merge --index --report --expand
        --byte-order-mark --pictures --attachments --files0-from --check --contacts --time-zone --locale --recover
        --load-log --verbose --quiet --version --help'
    # "--format=j" comes as three words.
    if [[ ${COMP_WORDS[COMP_CWORD]} == = ]]; then
        current=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    case $previous in
        -f | --format)
            mapfile -t COMPREPLY < <(compgen -W 'markdown md text txt html json jsonl csv archive' -- "$current")
            ;;
        --pictures)
            mapfile -t COMPREPLY < <(compgen -W 'embed folder none' -- "$current")
            ;;
        --time-zone)
            mapfile -t COMPREPLY < <(compgen -W "$(awk '!/^#/ { print $3 }' \
                /usr/share/zoneinfo/zone.tab 2>/dev/null)" -- "$current")
            ;;
        --locale)
            mapfile -t COMPREPLY < <(compgen -W "$(locale -a 2>/dev/null)" -- "$current")
            ;;
        -o | --output | --report | --files0-from)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        -d | --output-dir | --attachments)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
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
