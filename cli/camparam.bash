# Completion of camparam for bash.

# Splits a line into words without their quotes. Bash's own words keep them, and are split at "=" and ":".
_camparam_split()
{
    local line="$1" word="" quote="" char i
    local begun=""
    words=()
    for ((i = 0; i < ${#line}; i++)); do
        char="${line:i:1}"
        if [[ $quote != "'" && $char == "\\" ]]; then
            i=$((i + 1))
            word+="${line:i:1}" begun=1
        elif [[ -n $quote && $char == "$quote" ]]; then
            quote=""
        elif [[ -z $quote && $char == [\'\"] ]]; then
            quote="$char" begun=1
        elif [[ -z $quote && $char == [[:blank:]] ]]; then
            [[ -z $begun ]] || words+=("$word")
            word="" begun=""
        else
            word+="$char" begun=1
        fi
    done
    words+=("$word")
    open_quote="$quote"
}

_camparam()
{
    local words open_quote
    _camparam_split "${COMP_LINE:0:COMP_POINT}"
    # Bash replaces what stands behind the last of these alone.
    local word="${words[-1]}" before=""
    if [[ -z $open_quote ]]; then
        [[ $COMP_WORDBREAKS != *=* || $word != *=* ]] || before="${word%"${word##*=}"}"
        [[ $COMP_WORDBREAKS != *:* || $word != *:* ]] || before="${word%"${word##*[=:]}"}"
    fi
    mapfile -t COMPREPLY < <("${words[0]}" --complete-args "${words[@]:1}" 2>/dev/null)
    COMPREPLY=("${COMPREPLY[@]#"$before"}")
    [[ ${COMPREPLY[0]-} != *[=/] ]] || compopt -o nospace 2>/dev/null
    [[ -n $open_quote || -z ${COMPREPLY[0]-} ]] || mapfile -t COMPREPLY < <(printf '%q\n' "${COMPREPLY[@]}")
}

complete -F _camparam camparam
