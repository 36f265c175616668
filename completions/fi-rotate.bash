# shellcheck shell=bash
# Completion of fi-rotate for bash. Subcommands and options are those that its own help names, so that both agree.

_fi_rotate_subcommands() {
    "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,$ s/^  \([a-z]*\) .*/\1/p'
}

_fi_rotate_options() {
    "$@" --help 2>/dev/null | sed -n 's/^ *\(-h,\)\{0,1\}\(--[a-z-]*\).*/\2/p'
}

_fi_rotate_hazards() {
    # The message for a name that it does not know lists all.
    "$1" check --explain '' 2>&1 | sed -n 's/^  \([a-z0-9-]*\)$/\1/p'
}

_fi_rotate() {
    local program=$1 current=$2 previous=$3 subcommand='' word
    local -a words=("${COMP_WORDS[@]:1:COMP_CWORD-1}")
    for word in "${words[@]}"; do
        [[ $word == -* ]] || { subcommand=$word && break; }
    done

    COMPREPLY=()
    if [[ -z $subcommand ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_fi_rotate_subcommands "$program") $(_fi_rotate_options "$program")" \
            -- "$current")
        return
    fi
    case $subcommand,$previous in
        *,--only)
            mapfile -t COMPREPLY < <(compgen -W 'kept invalid rotated' -- "$current")
            ;;
        check,--explain)
            mapfile -t COMPREPLY < <(compgen -W "$(_fi_rotate_hazards "$program")" -- "$current")
            ;;
        *,--exclude-weekday)
            mapfile -t COMPREPLY < <(compgen -W 'monday tuesday wednesday thursday friday saturday sunday' \
                -- "$current")
            ;;
        *,--config | *,--rounds | *,--every | *,--start | *,--exclude-every | *,--keep-days | *,--call) ;;
        *)
            if [[ $current == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$(_fi_rotate_options "$program" "$subcommand")" -- "$current")
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
            fi
            ;;
    esac
}

complete -F _fi_rotate fi-rotate
