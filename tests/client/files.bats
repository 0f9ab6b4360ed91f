# Commands on a device's files, without a host.
load host

files()
{
    camparam --root "$folder/home:$folder/data" "$@"
}

# What the folders hold, byte for byte.
content()
{
    (cd "$folder" && find home data -type f -exec cksum {} + | sort -k 3)
}

# The host runs no more then.
leave_files()
{
    camparam set af.zoom_value=7 panel.mode=full netport.http_port=81
    camparam call save
    end_host
}

@test "list, get, diff, dump, describe, test and check read the files, and write nothing" {
    leave_files
    content >"$folder/before"
    run files list --changed
    is 0 'NAME               KIND    MIN  MAX   DEFAULT  VALUE' 'af.zoom_value      number  0    1000  20       7      *' \
        'panel.mode         enum    -    -     dim      full   *' 'netport.http_port  text    -    -     80       81     *'
    run files get af.zoom_value netport
    is 0 'camparam: netport.key is a secret, which --show-secrets shows' 'af.zoom_value=7' 'netport.http_port=81'
    run files diff --only af
    is 7 'NAME           DEFAULT  VALUE' 'af.zoom_value  20       7'
    run files dump panel
    is 0 '{' '	"panel":	{' '		"mode":	"full",' '		"level":	5' '	}' '}'
    run files describe netport.key
    is 0 'netport.key' '  takes     text' '            secret'
    run files test af.zoom_value 1001
    is 4 'camparam: af.zoom_value: "1001" is out of range (number, 0 to 1000)'
    files check
    content | cmp "$folder/before" -
}

@test "what the host shows and what the files hold is the same" {
    camparam set af.zoom_value=7 panel.mode=full netport.http_port=81
    camparam call save
    [ "$(camparam list)" = "$(files list)" ]
    [ "$(camparam dump --show-secrets)" = "$(files dump --show-secrets)" ]
}

@test "without saved settings the defaults are in force" {
    leave_files
    run camparam --root "$folder/home" get af.zoom_value panel.mode
    is 0 'af.zoom_value=20' 'panel.mode=dim'
    run camparam --root "$folder/home" set af.zoom_value=3
    is 2 'camparam: name the folder of the saved settings, too: HOME:DATA'
}

@test "set, load and reset change the files of what they change" {
    leave_files
    files dump >"$folder/dump"
    content | grep -v panel >"$folder/before"
    run files set panel.level=9
    is 0 'panel.level=9'
    content | grep -v panel | cmp "$folder/before" -
    start_host
    run camparam get panel.level panel.mode af.zoom_value
    is 0 'panel.level=9' 'panel.mode=full' 'af.zoom_value=7'
    end_host
    run files reset --all
    [ "$status" = 0 ]
    run files get panel.level af.zoom_value netport.http_port
    is 0 'panel.level=5' 'af.zoom_value=20' 'netport.http_port=80'
    run files load "$folder/dump"
    is 0 '5 parsed, 3 changed, 2 unchanged, 0 unknown, 0 refused'
    run files get panel.mode af.zoom_value netport.http_port
    is 0 'panel.mode=full' 'af.zoom_value=7' 'netport.http_port=81'
}

@test "set: the same rules as with a host" {
    leave_files
    content >"$folder/before"
    run files set af.zoom_value=1001 panel.level=3
    is 4 'camparam: af.zoom_value: "1001" is out of range (number, 0 to 1000)' 'camparam: nothing was set'
    run files set af.zoom_value=3 --confirm 5
    is 2 'camparam: --confirm needs a host, and not --root'
    run files set af.zoom=3
    is 5 'camparam: no setting "af.zoom"; did you mean "af.zoom_value"?' 'camparam: nothing was set'
    content | cmp "$folder/before" -
}

@test "files that a host is at work on are not changed" {
    run files set af.zoom_value=3
    is 4 "camparam: a host is at work on \"$folder/data\"; change its settings by it"
    run files get af.zoom_value
    is 0 'af.zoom_value=20'
}

@test "nor are those that another client is changing" {
    leave_files
    run flock --shared "$folder/data" "$CAMPARAM" --root "$folder/home:$folder/data" set af.zoom_value=3
    is 4 "camparam: a host is at work on \"$folder/data\"; change its settings by it"
    run files get af.zoom_value
    is 0 'af.zoom_value=7'
}

@test "no file is made for what is not changed" {
    end_host
    rm -rf "$folder/data"
    mkdir "$folder/data"
    run files set panel.level=9
    is 0 'panel.level=9'
    [ "$(find "$folder/data" -type f ! -name '*.bak' -exec basename {} ';')" = panel.conf ]
}

@test "a file that cannot be written is told" {
    leave_files
    rm -rf "$folder/data"
    mkdir -p "$folder/data/af_cur.json.bak" # where a file shall be
    run files set af.zoom_value=8
    [ "$status" = 8 ]
    [ "${lines[0]}" = 'af.zoom_value=8' ]
    echo "${lines[1]}" | grep -q '^camparam: af is not saved: '
}

@test "a torn file is read as a host would, from its backup" {
    leave_files
    [ -s "$folder/data/af_cur.json.bak" ]
    : >"$folder/data/af_cur.json"
    content >"$folder/before"
    run files get af.zoom_value
    is 0 'af.zoom_value=7'
    content | cmp "$folder/before" -
}

@test "folders that are not there, and commands that need a host" {
    run camparam --root "$folder/none" list
    is 5 "camparam: no folder \"$folder/none\""
    run camparam --root "$folder/home:$folder/none" list
    is 5 "camparam: no folder \"$folder/none\""
    run camparam --root ":$folder" list
    is 2 "camparam: \":$folder\" is not of the form HOME or HOME:DATA"
    for command in watch status log wait confirm raw style 'share audio.mute=1' 'call save' 'record x' 'replay x'; do
        # shellcheck disable=SC2086 # words
        run files $command
        [ "$status" = 2 ]
        echo "$output" | grep -q 'needs a host, and not --root$'
    done
    run files --host 127.0.0.1 list
    [ "$status" = 2 ]
}
