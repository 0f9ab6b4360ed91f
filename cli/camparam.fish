# Completion of camparam for fish.

function __camparam_complete
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    command $words[1] --complete-args $words[2..-1] "$word" 2>/dev/null
end

complete -c camparam -f -a '(__camparam_complete)'
