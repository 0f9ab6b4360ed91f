# Completion of camparam's commands, options and settings for bash.

_camparam_settings()
{
    camparam --timeout 0.3 --retries 0 list 2>/dev/null | awk 'NR > 1 { print $1 }'
}

_camparam()
{
    local word="${COMP_WORDS[COMP_CWORD]}" command="" i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "${COMP_WORDS[i]}" in
        list | get | set | call | raw) command="${COMP_WORDS[i]}" ;;
        esac
    done

    case "$word,$command" in
    -*) mapfile -t COMPREPLY < <(compgen -W "--help --version --host --port --timeout --retries
        --json --number --text --get --set" -- "$word") ;;
    *,) mapfile -t COMPREPLY < <(compgen -W "list get set call raw" -- "$word") ;;
    *,list | *,get) mapfile -t COMPREPLY < <(compgen -W "$(_camparam_settings)" -- "$word") ;;
    *,set)
        mapfile -t COMPREPLY < <(compgen -S = -W "$(_camparam_settings)" -- "$word")
        compopt -o nospace 2>/dev/null
        ;;
    *,call) mapfile -t COMPREPLY < <(compgen -W "describe lens save" -- "$word") ;;
    esac
}

complete -F _camparam camparam
