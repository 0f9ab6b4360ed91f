# Completion of camparam for bash.

_camparam()
{
    local line="${COMP_LINE:0:COMP_POINT}" words
    read -ra words <<<"$line"
    [[ $line != *[[:blank:]] ]] || words+=("")
    # Bash replaces what stands behind the last of these alone.
    local word="${words[-1]}" before=""
    [[ $COMP_WORDBREAKS != *=* || $word != *=* ]] || before="${word%"${word##*=}"}"
    [[ $COMP_WORDBREAKS != *:* || $word != *:* ]] || before="${word%"${word##*[=:]}"}"
    mapfile -t COMPREPLY < <("${words[0]}" --complete-args "${words[@]:1}" 2>/dev/null)
    COMPREPLY=("${COMPREPLY[@]#"$before"}")
    [[ ${COMPREPLY[0]-} != *[=/] ]] || compopt -o nospace 2>/dev/null
}

complete -F _camparam camparam
