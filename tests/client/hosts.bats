# The same commands on hosts of all kinds: whole ones, half ones, none, and such as answer badly.
load host

write_web_names()
{
    cat >"$folder/home/www2json.json" <<'EOT'
{"json_pattern_list": ["panel"], "conf_pattern_list": ["netport"], "front": ["panel"],
 "panel": {"mode": ["mode", "S"], "level": ["lvl", "N"]}}
EOT
}

# Every command that ends by itself, its output without what differs from run to run, and its exit
# status; its arguments go before each command.
tour()
{
    while read -r words; do
        echo "\$ $words"
        # shellcheck disable=SC2086 # words
        (cd "$folder" && camparam "$@" $words 2>&1 </dev/null && echo "0" || echo "$?") |
            sed -E 's/[0-9]{4}-[0-9-]+[ T][0-9:.]+/TIME/g; s/^version 1.0.0, up .*/VERSION/; s/^[0-9]+ datagrams.*/COUNTERS/
                s/"(started|uptime|time)":[0-9]+/"\1":0/g; s/[0-9.]+ port [0-9]+/HOST/; s/by [0-9.]+$/by SENDER/
                s/^([a-zA-Z0-9]+ +[0-9]+) +[0-9]+ +(-|TIME) .*/\1/'
    done <<'EOT'
list
list af --changed
get
get af panel netport.http_port
get af.none
get none
set
set af.zoom_value=7 panel.mode=full
set af.zoom_value=7777
set panel.mode=f
set af.none=7 panel.level=3
set --partly af.none=7 panel.level=3
set netport.http_port=81 --wait-saved 20
set --number af.zoom_value=8
set --text panel.mode=dim
describe af.zoom_value
describe netport.key
list --changed
diff
dump
reset panel
reset none
load dump.json
load dump.json --dry-run --replace
load none.json
diff dump.json
test af.zoom_value 7
test af.zoom_value 7777
status
log panel
confirm
set panel.level=4 --confirm 60
confirm --show
confirm
style
style vivid
www get front
www get back
www set front lvl=3
www set front lvl=x
www set front other=3
share video.gop=3
call save
call changes --json
call nothing
raw
wait --for 30
check home
replay none
nosuch
EOT
}

write_dump()
{
    echo '{"af": {"zoom_value": 9}, "panel": {"mode": "full", "level": 77}, "none": {"x": 1}}' >"$folder/dump.json"
}

# A tour of the host itself, on new files.
tour_of_host()
{
    end_host
    rm -rf "$folder/data"
    start_host
    tour --host 127.0.0.1
}

# on_relay MODE: a host behind a relay that disturbs its answers.
on_relay()
{
    end_host
    rm -rf "$folder/data"
    start_host
    rm -f "$folder/relay.log"
    "$RELAY" "$1" 2>"$folder/relay.log" 3>&- &
    relay_process=$!
    wait_for grep -q ready "$folder/relay.log"
}

end_relay()
{
    kill "$relay_process"
    wait "$relay_process" || true
}

start_foreign()
{
    end_host
    rm -rf "$folder/data"
    mkdir "$folder/data"
    "$1" "$folder/home" "$folder/data" >/dev/null 2>"$folder/host.log" 3>&- &
    host_process=$!
    wait_for grep -q ready "$folder/host.log"
}

# What is expected comes from the host itself.
prepare()
{
    write_web_names
    write_dump
    expected=$BATS_FILE_TMPDIR/expected
    [ -e "$expected" ] || tour_of_host >"$expected"
    [ "$(grep -cx 0 "$expected")" -ge 25 ]
}

@test "a foreign host with the kit is a full one" {
    prepare
    start_foreign "$FOREIGN_HOST_WITH_COMMANDS"
    tour >"$folder/got"
    diff "$expected" "$folder/got"
}

@test "answers that come twice or late" {
    prepare
    on_relay twice
    tour --host 127.0.0.1:6801 >"$folder/got"
    end_relay
    diff "$expected" "$folder/got"
    on_relay late
    patience='--timeout 0.04 --retries 500' # all answers come too late for their requests
    tour --host 127.0.0.1:6801 >"$folder/got"
    end_relay
    diff "$expected" "$folder/got"
}

@test "answers among garbage" {
    prepare
    on_relay among-garbage
    tour --host 127.0.0.1:6801 | sed '/^\$ raw/,/^[0-9]/d' >"$folder/got"
    end_relay
    sed '/^\$ raw/,/^[0-9]/d' "$expected" | diff - "$folder/got"
}

@test "a host without the kit: what it can, and why not the rest" {
    write_web_names
    write_dump
    start_foreign "$FOREIGN_HOST"
    run camparam list
    is 1 'camparam: the host does not describe its settings; name a module, such as "camparam list af"'
    run camparam list af
    is 0 'af.focus_mode=0' 'af.zoom_value=20'
    run camparam get panel.mode netport
    is 0 'panel.mode=dim' 'netport.http_port=80' 'netport.key=hush'
    run camparam get panel.none
    is 5 'camparam: no setting "panel.none"'
    run camparam set panel.level=3
    is 2 "camparam: the host does not describe its settings; say with --number or --text how their values are sent"
    run camparam set --number panel.level=3
    is 0 'panel.level=3'
    run camparam set --text panel.mode=full
    is 0 'panel.mode=full'
    run camparam set --number af.zoom_value=3
    is 4 'camparam: af.zoom_value: "3" was not taken, the value is "20"'
    run camparam www get front
    is 0 'mode=full' 'lvl=3'
    run camparam www set front lvl=4
    is 0 'lvl=4'
    run camparam wait
    is 0
    for command in 'describe af' diff dump 'reset af' 'load dump.json' status log confirm 'confirm --show' style \
        'set --confirm 5 --number panel.level=3' 'get' 'set' 'watch --for 1'; do
        # shellcheck disable=SC2086 # words
        run camparam $command
        [ "$status" = 1 ]
        [ "${#lines[@]}" = 1 ]
    done
    run camparam call save
    [ "$status" = 4 ]
    run camparam set --number panel.level=5 --wait-saved
    [ "$status" = 1 ]
    [ "${lines[0]}" = 'panel.level=5' ]
}

@test "no host, and nothing but garbage: each command ends with 3" {
    write_web_names
    write_dump
    on_relay garbage
    end_host
    for host in 127.0.0.1:6802 127.0.0.1:6801; do
        for command in list 'list af' get 'get af' set 'set af.zoom_value=3' 'set --number af.zoom_value=3' 'describe af' \
            diff dump 'reset af' "load $folder/dump.json" 'test af.zoom_value 3' status log confirm style 'style vivid' \
            'www get front' 'www set front lvl=3' 'share video.gop=3' 'call save' 'watch --for 1' 'wait --for 0.3' \
            '--host 127.0.0.1:6803 get af'; do
            # shellcheck disable=SC2086 # words
            run "$CAMPARAM" --timeout 0.2 --retries 0 --host "$host" $command
            [ "$status" = 3 ]
            [ "${#lines[@]}" -ge 1 ]
        done
    done
    end_relay
}
