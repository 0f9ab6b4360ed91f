# Commands on several hosts at once.
load host

here=127.0.0.1

both()
{
    camparam --host "$here" --host "$other" "$@"
}

@test "get and set: settings of two hosts side by side" {
    start_other
    run both get af panel.mode netport.http_port
    is 0 'NAME               127.0.0.1  127.0.0.1:6802' 'af.focus_mode      0          0' \
        'af.zoom_value      20         20' 'panel.mode         dim        dim' 'netport.http_port  80         80'
    run both set af.zoom_value=7
    is 0 'HOST            af.zoom_value' '127.0.0.1       7' '127.0.0.1:6802  7'
    camparam --host "$other" set af.zoom_value=8
    run both get af.zoom_value
    is 0 'HOST            af.zoom_value' '127.0.0.1       7' '127.0.0.1:6802  8'
    run both --json get af.zoom_value
    is 0 '{' '	"127.0.0.1":	{' '		"af":	{' '			"zoom_value":	7' '		}' '	},' \
        '	"127.0.0.1:6802":	{' '		"af":	{' '			"zoom_value":	8' '		}' '	}' '}'
}

@test "a setting that only one of the hosts has" {
    start_other 'extra = "5"'
    run both get netport.extra af.zoom_value
    is 6 'camparam: 127.0.0.1: no setting "netport.extra"' 'NAME           127.0.0.1  127.0.0.1:6802' \
        'af.zoom_value  20         20' 'netport.extra  -          5'
}

@test "set: what no host takes leaves no table" {
    start_other
    run both set af.zoom_value=1001
    is 4 'camparam: 127.0.0.1: af.zoom_value: "1001" is out of range (number, 0 to 1000)' \
        'camparam: 127.0.0.1: nothing was set' \
        'camparam: 127.0.0.1:6802: af.zoom_value: "1001" is out of range (number, 0 to 1000)' \
        'camparam: 127.0.0.1:6802: nothing was set'
}

@test "list: marks what differs from its default, and hides secrets" {
    start_other
    camparam --host "$other" set panel.level=7
    run both list panel netport.key
    is 0 'NAME         127.0.0.1  127.0.0.1:6802' 'panel.mode   dim        dim' 'panel.level  5          7 *' \
        'netport.key  secret     secret'
    run both list --changed
    is 0 'HOST            panel.level' '127.0.0.1       -' '127.0.0.1:6802  7 *'
}

@test "diff: between hosts" {
    start_other
    run both diff
    is 0
    camparam --host "$other" set panel.level=7 netport.http_port=81
    run both diff
    is 7 'NAME               127.0.0.1  127.0.0.1:6802' 'panel.level        5          7' \
        'netport.http_port  80         81'
    run both diff --only panel
    is 7 'HOST            panel.level' '127.0.0.1       5' '127.0.0.1:6802  7'
    run both --json diff --only panel
    is 7 '{' '	"panel.level":	{' '		"127.0.0.1":	5,' '		"127.0.0.1:6802":	7' '	}' '}'
    run both --host 127.0.0.1:6803 diff
    is 6 'camparam: 127.0.0.1:6803: nothing listens on 127.0.0.1 port 6803; is the host process running, is --host right?' \
        'HOST            panel.level  netport.http_port' '127.0.0.1       5            80' \
        '127.0.0.1:6802  7            81' '127.0.0.1:6803  -            -'
}

@test "diff: a setting that one of the hosts lacks, as JSON" {
    start_other 'extra = "5"'
    run both --json diff --only netport
    is 7 '{' '	"netport.extra":	{' '		"127.0.0.1":	null,' '		"127.0.0.1:6802":	"5"' '	}' '}'
}

@test "diff: of a host that is away nothing is told" {
    start_other
    camparam dump >"$folder/dump"
    camparam --host "$other" set panel.level=7
    run both --host 127.0.0.1:6803 --retries 0 diff "$folder/dump"
    is 6 'camparam: 127.0.0.1:6803: nothing listens on 127.0.0.1 port 6803; is the host process running, is --host right?' \
        'HOST            panel.level' 'FILE            5' '127.0.0.1       5' '127.0.0.1:6802  7' '127.0.0.1:6803  -'
}

@test "diff: of hosts with a dump" {
    start_other
    camparam dump >"$folder/dump"
    run both diff "$folder/dump"
    is 0
    camparam --host "$other" set panel.level=7 netport.http_port=81 panel.mode=full
    run both diff - <"$folder/dump"
    is 7 'NAME               FILE  127.0.0.1  127.0.0.1:6802' 'panel.mode         dim   dim        full' \
        'panel.level        5     5          7' 'netport.http_port  80    80         81'
}

@test "dump and load: by host, with counts" {
    start_other
    camparam set af.zoom_value=3
    camparam dump af >"$folder/dump"
    run both dump af
    is 0 '{' '	"127.0.0.1":	{' '		"af":	{' '			"focus_mode":	0,' '			"zoom_value":	3' '		}' '	},' \
        '	"127.0.0.1:6802":	{' '		"af":	{' '			"focus_mode":	0,' '			"zoom_value":	20' '		}' '	}' '}'
    run both load - --dry-run <"$folder/dump"
    is 0 'HOST            PARSED  WOULD CHANGE  UNCHANGED  UNKNOWN  REFUSED' \
        '127.0.0.1       2       0             2          0        0' \
        '127.0.0.1:6802  2       1             1          0        0'
    run both load - <"$folder/dump"
    is 0 'HOST            PARSED  CHANGED  UNCHANGED  UNKNOWN  REFUSED' \
        '127.0.0.1       2       0        2          0        0' \
        '127.0.0.1:6802  2       1        1          0        0'
    run both --json load "$folder/dump"
    [ "$status" = 0 ]
    [ "$(echo "$output" | grep -c '"unchanged":	2')" = 2 ]
}

@test "status: a row for each host" {
    start_other
    run both status
    [ "$status" = 0 ]
    [ "$(echo "${lines[0]}" | tr -s ' ')" = 'HOST VERSION UP DATAGRAMS SAVES FAILED SAVES NOT AS SAVED' ]
    [ "$(echo "${lines[2]}" | cut -d ' ' -f 1,3)" = '127.0.0.1:6802 1.0.0' ]
}

@test "hosts from a file, more than run at once" {
    start_other
    printf '# cameras\n%s\n\n%s # the other one\n' "$here" "$other" >"$folder/hosts"
    for port in 6811 6812 6813 6814 6815 6816 6817 6818 6819; do
        echo "localhost:$port" >>"$folder/hosts"
    done
    run camparam --hosts "$folder/hosts" --retries 0 get af.zoom_value
    [ "$status" = 6 ]
    [ "$(echo "$output" | grep -c '^localhost:68[0-9]* *-$')" = 9 ]
    [ "$(echo "$output" | grep -c '^127.0.0.1\(:6802\)\? *20$')" = 2 ]
    [ "$(echo "$output" | grep -c 'camparam: localhost:68[0-9]*: nothing listens')" = 9 ]
    run camparam --hosts "$folder/none" get af.zoom_value
    is 1 "camparam: cannot read \"$folder/none\""
    printf '# none\n' >"$folder/hosts"
    run camparam --hosts "$folder/hosts" set af.zoom_value=9
    is 2 "camparam: \"$folder/hosts\" names no host"
    printf '%s\n' "$other" >"$folder/hosts"
    run camparam --hosts "$folder/hosts" get af.zoom_value
    is 0 'af.zoom_value=20'
}

@test "more hosts than files may be open" {
    seq 6811 6870 | sed 's/^/127.0.0.1:/' >"$folder/hosts"
    run sh -c "ulimit -n 40; '$CAMPARAM' --hosts '$folder/hosts' --host '$here' get af.zoom_value"
    [ "$status" = 6 ]
    [ "$(echo "$output" | grep -c 'camparam: 127.0.0.1:68[0-9]*: nothing listens')" = 60 ]
    echo "$output" | grep -q '^127.0.0.1 *20$'
}

@test "hosts that cannot be: named wrongly, twice, or all away" {
    run camparam --host "$here" --host "$here" get af
    is 2 'camparam: the host 127.0.0.1 is named twice'
    run camparam --host "$here" --host 'a:b:c]' get af
    [ "$status" = 2 ]
    run camparam --retries 0 --host "$here:6811" --host "$here:6812" --json get af.zoom_value
    is 3 \
        '{"message":"127.0.0.1:6811: nothing listens on 127.0.0.1 port 6811; is the host process running, is --host right?","status":3}' \
        '{"message":"127.0.0.1:6812: nothing listens on 127.0.0.1 port 6812; is the host process running, is --host right?","status":3}' \
        '{' '	"127.0.0.1:6811":	null,' '	"127.0.0.1:6812":	null' '}'
}

@test "commands for one host say so" {
    for command in 'watch' 'describe af' 'log' 'wait' 'confirm' 'raw' 'style' 'share audio.mute=1' 'call save' \
        'record x' 'replay x' 'reset af' 'test af.zoom_value 1' 'www get image'; do
        # shellcheck disable=SC2086 # words
        run camparam --host "$here" --host "$here:6802" $command
        [ "$status" = 2 ]
        echo "$output" | grep -q 'takes one host$'
    done
}

@test "hosts that nobody names are not taken for the usual one" {
    printf '# none yet\n' >"$folder/hosts"
    run camparam --hosts "$folder/hosts" set af.zoom_value=7
    is 2 "camparam: \"$folder/hosts\" names no host"
    for option in --hosts --root --host; do
        run camparam "$option" '' set af.zoom_value=7
        [ "$status" = 2 ]
        run camparam "$option=" set af.zoom_value=7
        [ "$status" = 2 ]
    done
    run camparam diff ''
    [ "$status" = 2 ]
    run camparam check "$folder/home" --data ''
    [ "$status" = 2 ]
    CAMPARAM_HOST='' run camparam get af.zoom_value
    is 0 'af.zoom_value=20'
    CAMPARAM_HOST='' run "$CAMPARAM" --complete-args call st
    is 0 'status' 'style'
}

@test "set: what modules have, what is refused everywhere, and what waits to be confirmed" {
    start_other
    camparam --host "$other" set panel.level=7
    run both set panel
    is 0 'NAME         127.0.0.1  127.0.0.1:6802' 'panel.mode   dim        dim' 'panel.level  5          7 *'
    run both set
    is 0 'NAME     127.0.0.1  127.0.0.1:6802' 'isp0     0          0' 'af       2          2' \
        'audio    0          0' 'panel    2          2' 'netport  2          2'
    run both set panel.level=77
    is 4 'camparam: 127.0.0.1: panel.level: "77" is out of range (number, 0 to 9)' \
        'camparam: 127.0.0.1: nothing was set' \
        'camparam: 127.0.0.1:6802: panel.level: "77" is out of range (number, 0 to 9)' \
        'camparam: 127.0.0.1:6802: nothing was set'
    run both set panel.level=8 --confirm 60
    is 0 'camparam: 127.0.0.1: set for 60 s; "camparam confirm" keeps it' \
        'camparam: 127.0.0.1:6802: set for 60 s; "camparam confirm" keeps it' \
        'HOST            panel.level' '127.0.0.1       8' '127.0.0.1:6802  8'
}

@test "a process that does not end by itself has failed" {
    start_other
    kill -STOP "$host_process"
    "$CAMPARAM" --timeout 60 --host "$here" --host "$other" get af.zoom_value >"$folder/got" 3>&- &
    client=$!
    wait_for pgrep -P "$client"
    kill -KILL "$(pgrep -o -P "$client")" # it waits for the host that stands still
    kill -CONT "$host_process"
    status=0
    wait "$client" || status=$?
    [ "$status" = 6 ]
    grep -qx '127.0.0.1       -' "$folder/got"
    grep -qx '127.0.0.1:6802  20' "$folder/got"
}
