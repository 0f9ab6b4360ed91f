# Commands that tell how the camera fares.
load host

# What a line of a table holds, with single blanks.
row()
{
    "$@" | tr -s ' ' | grep "^$word "
}

@test "describe: all that is known of settings" {
    camparam set af.focus_mode=manual
    run camparam describe 'af.*'
    is 0 'af.focus_mode: Focus mode' '  takes     number, 0 to 2' '  names     0 auto, 1 manual' \
        '  default   0 (auto)' '  start     0 (auto)' '  now       1 (manual)' \
        'af.zoom_value: Zoom' '            0 is wide.' '  takes     number, 0 to 1000, in steps' \
        '  default   20' '  start     20' '  now       20'
}

@test "describe: secrets are hidden" {
    run camparam describe netport.key
    is 0 'netport.key' '  takes     text' '            secret'
    run camparam describe netport.key --show-secrets
    is 0 'netport.key' '  takes     text' '  default   hush' '  now       hush' '            secret'
}

@test "describe: needs settings, and finds similar ones" {
    run camparam describe
    [ "$status" = 2 ]
    run camparam describe af.zoom
    is 5 'camparam: no setting "af.zoom"; did you mean "af.zoom_value"?'
}

@test "list: secrets are hidden, and what changed can be asked for" {
    camparam set netport.key=other panel.level=7
    run camparam list netport.key
    is 0 'NAME         KIND  MIN  MAX  DEFAULT  VALUE' 'netport.key  text  -    -    secret   secret'
    run camparam list --changed
    is 0 'NAME         KIND    MIN  MAX  DEFAULT  VALUE' 'panel.level  number  0    9    5        7      *'
    run camparam list --changed --show-secrets 'netport.*'
    is 0 'NAME         KIND  MIN  MAX  DEFAULT  VALUE' 'netport.key  text  -    -    hush     other  *'
}

@test "list: finds settings by a word of their name, label or help" {
    run camparam list --find ZOOM
    is 0 'NAME           KIND    MIN  MAX   DEFAULT  VALUE' 'af.zoom_value  number  0    1000  20       20'
    run camparam --json list panel af --find 'is wide'
    [ "$status" = 0 ]
    [ "$(echo "$output" | grep -c '"kind"')" = 1 ]
    run camparam list --changed --find zoom
    is 5 'camparam: no setting has the word "zoom"'
    run camparam list panel --find zoom
    is 5 'camparam: no setting has the word "zoom"'
}

@test "a member alone, or a part of it, is suggested with its module" {
    run camparam get zoom_value
    is 5 'camparam: no module "zoom_value"; did you mean "af.zoom_value"?'
    run camparam set LEVEL=3
    is 5 'camparam: no module "LEVEL"; did you mean "panel.level"?' 'camparam: nothing was set'
}

@test "get: settings by a pattern" {
    run camparam get 'af.*o*' panel.level 'netport.*'
    is 0 'af.focus_mode=0' 'af.zoom_value=20' 'panel.level=5' 'netport.http_port=80'
    run camparam --show-secrets get '*.key'
    is 0 'netport.key=hush'
    run camparam get '*.key'
    is 5 'camparam: no setting that matches "*.key" can be asked for by its name'
}

@test "list: a module that has no settings" {
    echo '{"focus_mode": [3, 1' >"$folder/home/af_range.json"
    run camparam --root "$folder/home" list af
    is 0 "camparam: no settings there; \"camparam check\" looks for faults in a device's files" \
        'NAME  KIND  MIN  MAX  DEFAULT  VALUE'
}

@test "status: what is saved of each module" {
    run camparam status
    [ "$status" = 0 ]
    [ "${lines[0]%, up*}" = 'version 1.0.0' ]
    word=af
    [ "$(row camparam status)" = 'af 0 0 - saved' ]
    camparam set af.zoom_value=7 --wait-saved
    [ "$(row camparam status | cut -d ' ' -f 1-3,6-)" = 'af 1 1 saved' ]
    [ "$(camparam --json status | grep -c '"failed_saves":	0')" = 1 ]
}

@test "set: waits for what can be saved, and tells what cannot be" {
    end_host
    start_host --no-write-conf
    run camparam set af.zoom_value=7 netport.http_port=81 --wait-saved 20
    is 8 'af.zoom_value=7' 'netport.http_port=81' 'camparam: netport is not saved: writing is off'
}

@test "set: what was refused is not forgotten when the rest is saved" {
    run camparam set --partly af.zoom_value=7 af.none=3 --wait-saved 20
    is 6 'camparam: no setting "af.none"' 'af.zoom_value=7'
}

@test "status: why a module is not saved" {
    end_host
    start_host --no-write-conf
    camparam set netport.http_port=81
    word=netport
    [ "$(row camparam status)" = 'netport 1 0 - writing is off' ]
    rm -rf "$folder/data"
    camparam set af.zoom_value=7
    run camparam call save
    [ "$status" = 4 ]
    word=af
    [ "$(row camparam status)" = 'af 1 0 - No such file or directory' ]
}

@test "log: who changed what" {
    run camparam log
    is 0
    camparam set af.zoom_value=7 netport.key=x
    [ "$(camparam log | cut -d ' ' -f 4-)" = 'af.zoom_value: 20 -> 7  by 127.0.0.1
netport.key: secret -> secret  by 127.0.0.1' ]
    [ "$(camparam log 'netport.*' | wc -l)" = 1 ]
    [ "$(camparam log --json | sed 's/"time":[0-9]*/"time":1/' | head -n 1)" = \
        '{"number":1,"time":1,"module":"af","member":"zoom_value","old":20,"new":7,"by":"127.0.0.1"}' ]
}

@test "log: longer than a page" {
    for value in 1 2 3 4 5 6 7 8 9 10; do
        for setting in http_port; do
            camparam set "netport.$setting=$(printf '%0250d' "$value")"
        done
    done
    [ "$(camparam log | wc -l)" = 10 ]
}

@test "watch: a line for each change" {
    camparam set af.zoom_value=1 # before: not told
    # Not by the function, of which the shell that runs it would be ended alone.
    "$CAMPARAM" --timeout 20 watch 'af.*' >"$folder/watch" 3>&- &
    watcher=$!
    wait_for sh -c "'$CAMPARAM' set af.zoom_value=2 af.focus_mode=0; sleep 0.3; '$CAMPARAM' set af.zoom_value=3;
        grep -q 'zoom_value=3' '$folder/watch'"
    camparam set panel.level=1
    camparam set af.focus_mode=2
    wait_for grep -q 'focus_mode=2' "$folder/watch"
    kill "$watcher"
    grep -qx 'af.zoom_value=3 (was 2, by 127.0.0.1)' "$folder/watch"
    grep -qx 'af.focus_mode=2 (was 0, by 127.0.0.1)' "$folder/watch"
    ! grep -q 'panel\|=1' "$folder/watch"
}

@test "watch: runs a command, prints JSON, sees the host go and come" {
    "$CAMPARAM" --timeout 0.2 --retries 0 --json watch \
        --on "echo \"\$CAMPARAM_SETTING \$CAMPARAM_OLD \$CAMPARAM_NEW \$CAMPARAM_BY\" >>'$folder/ran'" \
        >"$folder/watch" 2>"$folder/told" 3>&- &
    watcher=$!
    wait_for sh -c "'$CAMPARAM' set af.zoom_value=2; '$CAMPARAM' set af.zoom_value=3; [ -s '$folder/ran' ]"
    grep -q '^af.zoom_value [0-9]* [23] 127.0.0.1$' "$folder/ran"
    grep -q '"member":"zoom_value"' "$folder/watch"
    end_host
    wait_for grep -q 'nothing listens\|no answer' "$folder/told"
    start_host
    wait_for grep -q 'started anew' "$folder/told"
    camparam set af.zoom_value=9
    wait_for grep -q '"new":9' "$folder/watch"
    kill "$watcher"
}

@test "watch and log: settings that there are none of" {
    run camparam watch --for 1 'lens.*'
    is 5 'camparam: no setting matches "lens.*"'
    run camparam log af.zoom
    is 5 'camparam: no setting "af.zoom"; did you mean "af.zoom_value"?'
    run camparam log af.zoom_value
    is 0 ''
}

@test "watch: values do not control a terminal" {
    "$CAMPARAM" --timeout 20 watch netport >"$folder/watch" 3>&- &
    watcher=$!
    wait_for sh -c "'$CAMPARAM' set netport.http_port=\$\$; sleep 0.3; [ -s '$folder/watch' ]"
    camparam set "netport.http_port=$(printf 'a\033[31mb')"
    camparam set netport.http_port=8
    wait_for grep -q '=8 ' "$folder/watch"
    kill "$watcher"
    grep -q '^netport.http_port=a\\x1b\[31mb (was [0-9]*, by 127.0.0.1)$' "$folder/watch"
    grep -qxF 'netport.http_port=8 (was a\x1b[31mb, by 127.0.0.1)' "$folder/watch"
}

@test "watch: tells once that the host is away" {
    "$CAMPARAM" --timeout 0.2 --retries 0 watch --for 4 >"$folder/watch" 2>"$folder/told" 3>&- &
    watcher=$!
    wait_for sh -c "'$CAMPARAM' set af.zoom_value=2; '$CAMPARAM' set af.zoom_value=3; [ -s '$folder/watch' ]"
    end_host
    wait "$watcher"
    [ "$(wc -l <"$folder/told")" = 1 ]
}

@test "watch: ends after its time" {
    run camparam watch --for 0.3
    is 0
}

@test "confirm: keeps what was set for a time" {
    run camparam confirm
    is 4 'camparam: nothing waits to be confirmed'
    camparam set netport.http_port=81 --confirm 60
    run camparam confirm --show
    is 0 'netport.http_port'
    run camparam confirm
    is 0 'netport.http_port'
    run camparam confirm --json
    is 4 '{"confirmed":[]}' '{"message":"nothing waits to be confirmed","status":4}'
}

@test "confirm: what is set for a time is shown, with what cannot be" {
    run camparam set af.zoom_value=3 panel.level=4 --confirm 60
    is 0 'af.zoom_value=3' 'panel.level=4' 'camparam: set for 60 s; "camparam confirm" keeps it'
    camparam confirm
    run camparam set --partly af.zoom_value=5 panel.level=44 --confirm 60
    is 6 'camparam: panel.level: "44" is out of range (number, 0 to 9)' 'af.zoom_value=5' \
        'camparam: set for 60 s; "camparam confirm" keeps it'
    run camparam set af.zoom_value=5 --confirm 60 --wait-saved
    [ "$status" = 2 ]
}

@test "set: tells of values that the host cannot take back" {
    camparam set netport.http_port=81 --confirm 60
    run camparam set af.zoom_value=3 --confirm 60
    is 4 'camparam: af.zoom_value: another change waits to be confirmed' 'camparam: nothing was set'
}

@test "without a host each command ends with 3" {
    end_host
    for command in status log confirm dump diff 'describe af' 'reset af' 'test af.zoom_value 1' 'watch --for 1'; do
        # shellcheck disable=SC2086 # words
        run "$CAMPARAM" --timeout 0.2 --retries 0 $command
        [ "$status" = 3 ]
    done
}
