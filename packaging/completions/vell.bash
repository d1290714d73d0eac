# bash completion for vell
_vell() {
    local current=$2 previous=$3
    COMPREPLY=()
    compopt -o filenames 2>/dev/null
    if [[ $previous == --render ]]; then
        mapfile -t COMPREPLY < <(compgen -f -X '!*.png' -- "$current"; compgen -d -- "$current")
    elif [[ $current == -* ]]; then
        compopt +o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -W '--new-instance --render --dark --version --help' -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -X '!*.ichat' -- "$current"; compgen -d -- "$current")
    fi
}
complete -F _vell vell
