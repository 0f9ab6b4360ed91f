# Commands that compare, keep and bring back values.
load host

@test "diff: nothing differs at first" {
    run camparam diff
    is 0
}

@test "diff: what differs from its default, with exit status 7" {
    camparam set af.zoom_value=7 netport.http_port=81
    run camparam diff
    is 7 'NAME               DEFAULT  VALUE' \
        'af.zoom_value      20       7' \
        'netport.http_port  80       81'
    run camparam diff --only 'af.*'
    is 7 'NAME           DEFAULT  VALUE' 'af.zoom_value  20       7'
    run camparam diff --only 'panel'
    is 0
}

@test "diff: as JSON" {
    camparam set panel.mode=full
    run camparam --json diff
    is 7 '{' '	"panel.mode":	{' '		"default":	"dim",' '		"value":	"full"' '	}' '}'
    camparam reset panel.mode
    run camparam --json diff
    is 0 '{' '}'
}

@test "diff: from a dump" {
    camparam dump >"$folder/dump"
    run camparam diff "$folder/dump"
    is 0
    camparam set af.zoom_value=7
    run camparam diff "$folder/dump"
    is 7 'NAME           FILE  VALUE' 'af.zoom_value  20    7'
    run camparam diff - <"$folder/dump"
    is 7 'NAME           FILE  VALUE' 'af.zoom_value  20    7'
}

@test "diff: settings that one side lacks" {
    camparam dump | sed 's/"zoom_value":	20/"iris": 5/; s/"netport"/"other"/' >"$folder/dump"
    run camparam diff "$folder/dump"
    is 7 'NAME               FILE  VALUE' \
        'af.iris            5     -' \
        'af.zoom_value      -     20' \
        'other.http_port    80    -' \
        'netport.http_port  -     80'
}

@test "diff: a file that is none" {
    run camparam diff "$folder/none"
    is 1 "camparam: cannot read \"$folder/none\""
    echo '[]' >"$folder/dump"
    run camparam diff "$folder/dump"
    is 2 "camparam: \"$folder/dump\" holds no JSON object of modules"
    run camparam diff --only 'a.b'
    is 5 'camparam: no module "a"; did you mean "af"?'
    run camparam diff --only '*.b'
    is 5 'camparam: no setting matches "*.b"'
    run camparam diff --only '*zoom*'
    is 5 'camparam: no module matches "*zoom*"; settings of all modules match "*.*zoom*"'
    for pattern in '*.b' '[a].b' '?.b'; do
        run camparam diff --only "$pattern"
        is 5 "camparam: no setting matches \"$pattern\""
    done
    run camparam diff --only '[a]f'
    is 0
}

@test "dump: values of all that can be set, without secrets" {
    run camparam dump
    is 0 '{' '	"af":	{' '		"focus_mode":	0,' '		"zoom_value":	20' '	},' \
        '	"panel":	{' '		"mode":	"dim",' '		"level":	5' '	},' \
        '	"netport":	{' '		"http_port":	"80"' '	}' '}'
    run camparam dump --show-secrets netport
    is 0 '{' '	"netport":	{' '		"http_port":	"80",' '		"key":	"hush"' '	}' '}'
}

@test "load: brings a dump back, and counts" {
    camparam set af.zoom_value=7 panel.mode=full
    camparam dump >"$folder/dump"
    camparam reset --all
    run camparam load "$folder/dump"
    is 0 '5 parsed, 2 changed, 3 unchanged, 0 unknown, 0 refused'
    run camparam get af.zoom_value panel.mode
    is 0 'af.zoom_value=7' 'panel.mode=full'
    run camparam --json load - <"$folder/dump"
    is 0 '{"parsed":5,"changed":0,"unchanged":5,"unknown":0,"refused":0}'
}

@test "load: tells only what would change" {
    echo '{"af": {"zoom_value": 9}}' >"$folder/dump"
    run camparam load --dry-run "$folder/dump"
    is 0 'af.zoom_value: 20 -> 9' '1 parsed, 1 would change, 0 unchanged, 0 unknown, 0 refused'
    run camparam get af.zoom_value
    is 0 'af.zoom_value=20'
    echo '{"netport": {"key": "new"}}' >"$folder/dump"
    run camparam load --dry-run "$folder/dump"
    is 0 'netport.key: secret -> secret' '1 parsed, 1 would change, 0 unchanged, 0 unknown, 0 refused'
    run camparam --json load --dry-run "$folder/dump"
    is 0 '{"parsed":1,"would_change":1,"unchanged":0,"unknown":0,"refused":0}'
}

@test "load: names each refusal, and sets the rest" {
    echo '{"af": {"zoom_value": 9, "focus_mode": 8, "iris": 1}, "other": {"a": 1}, "panel": {"mode": "x"}}' \
        >"$folder/dump"
    run camparam load "$folder/dump"
    is 6 'camparam: af.focus_mode: "8" is out of range (number, 0 to 2)' \
        'camparam: no setting "af.iris"' \
        'camparam: no module "other"' \
        'camparam: panel.mode: no "x" here (one of dim, full)' \
        '5 parsed, 1 changed, 0 unchanged, 2 unknown, 2 refused'
    run camparam get af
    is 0 'af.focus_mode=0' 'af.zoom_value=9'
}

@test "load: merges, or replaces what the dump lacks" {
    camparam set panel.level=9
    echo '{"af": {"zoom_value": 9}}' >"$folder/dump"
    run camparam load --merge "$folder/dump"
    is 0 '1 parsed, 1 changed, 0 unchanged, 0 unknown, 0 refused'
    run camparam get panel.level
    is 0 'panel.level=9'
    run camparam load --replace "$folder/dump"
    is 0 '6 parsed, 1 changed, 5 unchanged, 0 unknown, 0 refused'
    run camparam get panel.level
    is 0 'panel.level=5'
    run camparam load --merge --replace "$folder/dump"
    [ "$status" = 2 ]
}

@test "dump and load: what no request can change is left alone" {
    add_read_only
    run camparam get audio
    is 0 'audio.aeFormat=G711A (read-only)' 'audio.mute=0'
    run camparam dump audio
    is 0 '{' '	"audio":	{' '		"mute":	0' '	}' '}'
    echo '{"af": {"zoom_value": 9}}' >"$folder/dump"
    run camparam load --replace "$folder/dump"
    is 0 '7 parsed, 1 changed, 6 unchanged, 0 unknown, 0 refused'
}

@test "load: a whole device comes back after a reset, secrets too" {
    camparam set af.zoom_value=1 af.focus_mode=1 panel.mode=full panel.level=1 netport.http_port=1 netport.key=2
    camparam dump --show-secrets >"$folder/dump"
    camparam reset --all
    run camparam load "$folder/dump"
    is 0 '6 parsed, 6 changed, 0 unchanged, 0 unknown, 0 refused'
    run camparam diff "$folder/dump" --show-secrets
    is 0
}

@test "reset: what is named" {
    camparam set af.zoom_value=7 af.focus_mode=1
    run camparam reset af.zoom_value
    is 0 'af.zoom_value'
    run camparam get af
    is 0 'af.focus_mode=1' 'af.zoom_value=20'
}

@test "reset: patterns, and everything" {
    camparam set af.zoom_value=7 af.focus_mode=1 panel.level=1 netport.key=x
    run camparam reset 'af.z*'
    is 0 'af.zoom_value'
    run camparam reset --all
    is 0 'af.focus_mode' 'netport.key' 'panel.level'
    run camparam reset --all
    is 0 'netport.key'
    run camparam diff
    is 0
}

@test "reset: needs to be told what" {
    run camparam reset
    is 2 'camparam: name settings, or everything with --all'
    run camparam reset --all af
    is 2 'camparam: name settings, or everything with --all'
    run camparam reset af.none
    is 5 'camparam: no setting "af.none"'
}

@test "reset: as JSON" {
    camparam set af.zoom_value=7
    run camparam reset af --json
    is 0 '{' '	"accepted":	["af.zoom_value"],' '	"refused":	{' '	}' '}'
}

@test "test: tells whether a value would be taken" {
    run camparam test af.zoom_value 1000
    is 0 'af.zoom_value=1000 would be taken'
    run camparam test af.focus_mode manual --json
    is 0 '{"setting":"af.focus_mode","value":1}'
    run camparam test af.zoom_value 1001
    is 4 'camparam: af.zoom_value: "1001" is out of range (number, 0 to 1000)'
    run camparam test panel.mode bright
    is 4 'camparam: panel.mode: no "bright" here (one of dim, full)'
    run camparam test af.iris 1
    is 5 'camparam: no setting "af.iris"'
    run camparam test panel.level --text 5
    is 4 'camparam: panel.level: not a 32-bit integer'
    run camparam get af.zoom_value
    is 0 'af.zoom_value=20'
}

@test "load: what is no setting does not keep the rest back" {
    echo '{"af": 5, "panel": {"level": 3}, "netport": null}' >"$folder/dump"
    run camparam load "$folder/dump"
    is 6 'camparam: "af" is a module; name a setting of it, as in "af.MEMBER=VALUE"' \
        'camparam: "netport" is a module; name a setting of it, as in "netport.MEMBER=VALUE"' \
        '3 parsed, 1 changed, 0 unchanged, 0 unknown, 2 refused'
}

@test "load and diff: a folder, and a dump with something behind it" {
    echo '{"af": {"zoom_value": 7}} {"af": {"zoom_value": 8}}' >"$folder/dump"
    for command in load diff; do
        run camparam "$command" "$folder"
        is 1 "camparam: cannot read \"$folder\""
        run camparam "$command" "$folder/dump"
        is 2 "camparam: \"$folder/dump\" holds no JSON object of modules"
    done
    run camparam get af.zoom_value
    is 0 'af.zoom_value=20'
}

@test "dump: leaves out what JSON cannot hold, and says so" {
    printf 'name = "a\377"\n' >>"$folder/home/netport.conf"
    end_host
    start_host
    run camparam dump netport
    is 6 'camparam: netport.name is no UTF-8, the dump leaves it out' \
        '{' '	"netport":	{' '		"http_port":	"80"' '	}' '}'
}

@test "set: --wait-saved with and without its seconds" {
    run camparam set --wait-saved af.zoom_value=7
    is 0 'af.zoom_value=7'
    run camparam set --wait-saved 20 af.zoom_value=8
    is 0 'af.zoom_value=8'
    run camparam set af.zoom_value=9 --wait-saved 0
    is 8 'af.zoom_value=9' 'camparam: af is not saved: not yet'
    for seconds in nan -1 3601 soon; do
        run camparam set af.zoom_value=10 --wait-saved "$seconds"
        [ "$status" = 2 ]
    done
    run camparam watch --for nan
    [ "$status" = 2 ]
    run camparam get af.zoom_value
    is 0 'af.zoom_value=9'
}

@test "www set: a value that the store would cut is not sent" {
    printf '{"json_pattern_list": ["panel"], "front": ["netport"], "netport": {"http_port": ["port", "S"]}}' \
        >"$folder/home/www2json.json"
    end_host
    start_host
    long=$(printf '%032d' 1)
    run camparam www set front "port=$long"
    is 4 "camparam: port: \"$long\" has 32 bytes, the host takes 31"
    run camparam www set front "port=${long#0}"
    is 0 "port=${long#0}"
}

@test "call: what only begins as JSON is a text" {
    run camparam call check --get 'panel={"level":3}'
    [ "$status" = 0 ]
    run camparam call check --get 'panel={"level":3} x'
    [ "$status" = 4 ]
    echo "$output" | grep -q 'not an object of settings'
}

@test "diff: from a dump with secrets, which are compared and shown only when asked for" {
    camparam dump --show-secrets >"$folder/dump"
    run camparam diff "$folder/dump"
    is 0
    camparam set netport.key=other
    run camparam diff "$folder/dump"
    is 0
    run camparam diff "$folder/dump" --show-secrets
    is 7 'NAME         FILE  VALUE' 'netport.key  hush  other'
}

@test "get: a module's secrets are left out, unless they are asked for" {
    run camparam get netport
    is 0 'camparam: netport.key is a secret, which --show-secrets shows' 'netport.http_port=80'
    run camparam --json get netport
    is 0 '{"message":"netport.key is a secret, which --show-secrets shows"}' \
        '{' '	"netport":	{' '		"http_port":	"80"' '	}' '}'
    run camparam get netport --show-secrets
    is 0 'netport.http_port=80' 'netport.key=hush'
    run camparam get netport netport.key
    is 0 'netport.http_port=80' 'netport.key=hush' 'netport.key=hush'
}
