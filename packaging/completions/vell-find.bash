# bash completion for vell-find
_vell_find() {
    local current=$2 previous=$3 word
    local options='--from --with --after --before --best --context --count --json --contacts
        --no-index --version --help'
    COMPREPLY=()
    case $previous in
        --from | --with | --after | --before | -C | --context)
            return
            ;;
        --contacts)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -X '!*.vcf' -- "$current"; compgen -d -- "$current")
            return
            ;;
    esac
    # Folders stand behind "--".
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $word == -- ]]; then
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -X '!*.ichat' -- "$current"; compgen -d -- "$current")
            return
        fi
    done
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    fi
}
complete -F _vell_find vell-find
