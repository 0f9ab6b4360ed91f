# To be loaded by the tests: a camparamd on files of its own, alone in the network of the test.

# A device with a lens, a pattern module and a conf module with a secret.
write_home()
{
    mkdir -p "$folder/home"
    cat >"$folder/home/www2json.json" <<'EOF'
{"json_pattern_list": ["panel"], "conf_pattern_list": ["netport"]}
EOF
    echo '{"focus_mode": [0, 2], "zoom_value": [0, 1000]}' >"$folder/home/af_range.json"
    echo '{"focus_mode": 0, "zoom_value": 20}' >"$folder/home/af_def.json"
    echo '{"mode": ["dim", "full"], "level": [0, 9]}' >"$folder/home/panel_range.json"
    printf 'mode = "dim"\nlevel = "5"\n' >"$folder/home/panel.conf"
    printf 'http_port = "80"\nkey = "hush"\n' >"$folder/home/netport.conf"
    cat >"$folder/home/descriptions.json" <<'EOF'
{"af": {"focus_mode": {"label": "Focus mode", "names": {"0": "auto", "1": "manual"}},
        "zoom_value": {"label": "Zoom", "unit": "steps", "help": "0 is wide."}},
 "netport": {"key": {"secret": true}}}
EOF
}

# wait_for COMMAND...
wait_for()
{
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 400 ] || { echo "in vain: $*"; return 1; }
        sleep 0.05
    done
}

start_host()
{
    : >"$folder/host.log" # before the host does it: an earlier one is in it
    "$CAMPARAMD" --home "$folder/home" --data "$folder/data" --no-share "$@" 2>"$folder/host.log" 3>&- &
    host_process=$!
    wait_for grep -q ready "$folder/host.log"
}

# A second host on files of its own, at $other: start_other [LINE...], of its "netport.conf".
start_other()
{
    mkdir -p "$folder/other"
    cp -r "$folder/home" "$folder/other/home"
    printf '%s\n' "$@" >>"$folder/other/home/netport.conf"
    "$CAMPARAMD" --home "$folder/other/home" --data "$folder/other/data" --no-share --port 6802 \
        2>"$folder/other.log" 3>&- &
    other_process=$!
    other=127.0.0.1:6802
    wait_for grep -q ready "$folder/other.log"
}

end_host()
{
    [ -z "${host_process-}" ] || { kill "$host_process" 2>/dev/null; wait "$host_process" || true; }
    host_process=
}

# The client, patient on a busy machine, but for the options in $patience.
camparam()
{
    # shellcheck disable=SC2086 # words
    "$CAMPARAM" ${patience---timeout 20} "$@"
}

setup()
{
    PATH=$PATH:/usr/sbin:/sbin
    ip link set lo up # in a network of the test's own it is down
    folder=$(mktemp -d)
    write_home
    start_host
}

teardown()
{
    end_host
    [ -z "${other_process-}" ] || { kill "$other_process"; wait "$other_process" || true; }
    rm -rf "$folder"
}

# Starts the host anew with a setting that no request can change, as the device gives numbers for
# its names: audio.aeFormat. It differs from its default.
add_read_only()
{
    echo '{"aeFormat": [0, 1], "mute": [0, 1]}' >"$folder/home/audio_range.json"
    echo '{"aeFormat": 0, "mute": 0}' >"$folder/home/audio_def.json"
    end_host
    echo '{"aeFormat": 1, "mute": 0}' >"$folder/data/audio_cur.json"
    start_host
}

# is STATUS [LINE...]: of the last run, exactly.
is()
{
    expected=$1
    shift
    wanted=$(printf '%s\n' "$@")
    if [ "$status" != "$expected" ] || [ "$output" != "$wanted" ]; then
        printf 'status %s, expected %s\n--- got\n%s\n--- expected\n%s\n' "$status" "$expected" "$output" "$wanted"
        return 1
    fi
}
