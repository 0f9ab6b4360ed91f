# Completion of camparam's commands, options and settings for bash.

_camparam_settings()
{
    camparam --timeout 0.3 --retries 0 list 2>/dev/null | awk 'NR > 1 { print $1 }'
}

# The settings that share datagrams can change, without the number of the instance.
_camparam_shared()
{
    _camparam_settings | sed -nE 's/^(video|isp)0\./\1./p; /^audio\./p'
}

_camparam_styles()
{
    camparam --timeout 0.3 --retries 0 style 2>/dev/null | awk '{ print $1 }'
}

_camparam()
{
    local word="${COMP_WORDS[COMP_CWORD]}" command="" i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "$command,${COMP_WORDS[i]}" in
        ,list | ,get | ,set | ,describe | ,diff | ,reset | ,dump | ,load | ,watch | ,test | ,status | ,log | \
            ,confirm | ,call | ,style | ,www | ,share | ,raw | ,wait | ,record | ,replay) command="${COMP_WORDS[i]}" ;;
        www,get | www,set) command="www ${COMP_WORDS[i]}" ;;
        esac
    done

    case "$word,$command" in
    -*) mapfile -t COMPREPLY < <(compgen -W "--help --version --host --port --timeout --retries
        --json --show-secrets --number --text --get --set --default --instance --changed
        --partly --create --wait-saved --confirm --only --all --dry-run --merge --replace --on --for
        --show --listen --speed --data" -- "$word") ;;
    *,) mapfile -t COMPREPLY < <(compgen -W "list get set describe diff reset dump load watch test
        status log confirm call style www share raw wait record replay check" -- "$word") ;;
    *,list | *,get | *,describe | *,reset | *,dump | *,watch | *,test | *,log) mapfile -t COMPREPLY < <(compgen -W "$(_camparam_settings)" -- "$word") ;;
    *,set)
        mapfile -t COMPREPLY < <(compgen -S = -W "$(_camparam_settings)" -- "$word")
        compopt -o nospace 2>/dev/null
        ;;
    *,share)
        mapfile -t COMPREPLY < <(compgen -S = -W "$(_camparam_shared)" -- "$word")
        compopt -o nospace 2>/dev/null
        ;;
    *,call) mapfile -t COMPREPLY < <(compgen -W "changes check confirm describe lens log
        reload reset save status style" -- "$word") ;;
    *,style) mapfile -t COMPREPLY < <(compgen -W "$(_camparam_styles)" -- "$word") ;;
    *,record | *,replay | *,load | *,diff | *,check)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        compopt -o filenames 2>/dev/null
        ;;
    *,www) mapfile -t COMPREPLY < <(compgen -W "get set" -- "$word") ;;
    esac
}

complete -F _camparam camparam
