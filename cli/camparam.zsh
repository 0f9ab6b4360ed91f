#compdef camparam
# Completion of camparam for zsh, as the function _camparam.

local -a found
found=("${(@f)$(${(Q)words[1]} --complete-args "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}")
compadd -S '' -- ${(M)found:#*[=/]}
compadd -- ${found:#(*[=/]|)}
