# What a person at a terminal sees, and what a program reads.
load host

# on_terminal COMMAND: its output, as a terminal gets it; line ends without CR.
on_terminal()
{
    TERM=xterm script -qec "$1" /dev/null | tr -d '\r'
}

@test "colour: on a terminal alone, and unless NO_COLOR is set" {
    camparam set af.zoom_value=7
    escape=$(printf '\033')
    run on_terminal "'$CAMPARAM' list 'af.*'"
    [ "${lines[0]}" = "${escape}[1mNAME           KIND    MIN  MAX   DEFAULT  VALUE${escape}[0m" ]
    [ "${lines[1]}" = 'af.focus_mode  number  0    2     0        0' ]
    [ "${lines[2]}" = "${escape}[33maf.zoom_value  number  0    1000  20       7      *${escape}[0m" ]
    run on_terminal "'$CAMPARAM' get none"
    [ "${lines[0]%%none*}" = "${escape}[31mcamparam:${escape}[0m no module \"" ]
    run on_terminal "NO_COLOR= '$CAMPARAM' list af"
    [ "${lines[2]%%af*}" = "${escape}[33m" ]
    for plain in "NO_COLOR=1 '$CAMPARAM' list af" "TERM=dumb '$CAMPARAM' list af" "'$CAMPARAM' list af | cat"; do
        run on_terminal "$plain"
        [ "$status" = 0 ]
        [ "${lines[0]}" = 'NAME           KIND    MIN  MAX   DEFAULT  VALUE' ]
    done
}

@test "progress: a bar on a terminal for what takes longer" {
    run on_terminal "'$CAMPARAM' --host 127.0.0.1:6809 wait --for 2"
    echo "$output" | grep -q 'seconds \[#* *\] [12] of 2'
    escape=$(printf '\033')
    # Its line is empty before the message.
    [ "${output##*of 2}" = "${escape}[K${escape}[K${escape}[31mcamparam:${escape}[0m 127.0.0.1 port 6809 has not answered in time; --for waits longer" ]
    run camparam --host 127.0.0.1:6809 wait --for 1.3
    is 3 'camparam: 127.0.0.1 port 6809 has not answered in time; --for waits longer'
    kill -STOP "$host_process"
    run on_terminal "'$CAMPARAM' --timeout 3 --retries 0 --host 127.0.0.1 --host localhost get af"
    kill -CONT "$host_process"
    echo "$output" | grep -q 'hosts \[#* *\] 0 of 2'
}

@test "messages are lines of JSON with --json" {
    run camparam --json get af.none nothing
    is 5 '{' '	"af":	{' '	}' '}' '{"message":"no setting \"af.none\"","status":5}' \
        '{"message":"no module \"nothing\"","status":5}'
}

# The host has this text then, in octal as printf takes it.
give_name()
{
    # shellcheck disable=SC2059 # it is a format
    printf "name = \"$1\"\n" >>"$folder/home/netport.conf"
    end_host
    start_host
    camparam --json get netport.name >"$folder/json"
    iconv -f UTF-8 -t UTF-8 "$folder/json" >/dev/null
}

@test "JSON is UTF-8 whatever the values hold, and does not control a terminal" {
    give_name 'a\233b\377c\302\233d\177e'
    run cat "$folder/json"
    is 0 '{' '	"netport":	{' "		\"name\":	\"a$(printf '\357\277\275')b$(printf '\357\277\275')c\\u009bd\\u007fe\"" '	}' '}'
    run camparam get netport.name
    is 0 'netport.name=a\x9bb\xffc\xc2\x9bd\x7fe'
}

@test "halves of a surrogate pair are no UTF-8" {
    give_name 'a\355\240\200b\355\237\277'
    run camparam get netport.name
    is 0 "netport.name=a\xed\xa0\x80b$(printf '\355\237\277')"
}
