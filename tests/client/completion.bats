# What the shells offer to complete.
load host

# The words that may go on the last one.
offers()
{
    "$CAMPARAM" --complete-args "$@"
}

# A host that is slow on a busy machine is asked again: until_offered WORD... -- COMPLETION...
until_offered()
{
    words=()
    while [ "$1" != -- ]; do
        words+=("$1")
        shift
    done
    shift
    expected=$(printf '%s\n' "$@")
    wait_for is_offered
}
is_offered()
{
    [ "$(offers "${words[@]}")" = "$expected" ]
}

add_pages()
{
    cat >"$folder/home/www2json.json" <<'EOT'
{"json_pattern_list": ["panel"], "conf_pattern_list": ["netport"], "zoom": ["af"], "front": ["panel"],
 "af": {"zoom_value": ["zoom", "N"]}, "panel": {"mode": ["mode"], "level": ["lvl", "N"]}}
EOT
    end_host
    start_host
}

@test "commands and options" {
    run offers s
    is 0 set status style share
    run offers www ''
    is 0 get set
    run offers --host 127.0.0.1 --h
    is 0 --help --host --hosts
    run offers set --p
    is 0 --partly --port
    run offers get --partly
    is 0
    for command in '' set load www; do
        # shellcheck disable=SC2086 # no word for none
        "$CAMPARAM" $command --help | sed -n 's/^ *\(-[a-z],\)\{0,1\}\(--[a-z-]*\).*/\2/p' >"$folder/options"
        [ -s "$folder/options" ]
        while read -r option; do
            # shellcheck disable=SC2086
            offers $command "$option" | grep -qx -- "$option"
        done <"$folder/options"
    done
}

@test "settings, and after = values alone" {
    until_offered get af. -- af.focus_mode af.zoom_value
    until_offered list p -- panel panel.mode panel.level
    until_offered set af.z -- af.zoom_value=
    until_offered set af.focus_mode= -- af.focus_mode=auto af.focus_mode=manual
    until_offered set af.zoom_value=3 panel.mode=f -- panel.mode=full
    until_offered test panel.mode '' -- dim full
    until_offered diff --only 'netport.h' -- netport.http_port
    run offers set af.none=
    is 0
}

@test "what no request can change is not offered, and share names have no number" {
    sed -i '$s/.$/, "audio": {"mute": {"names": {"0": "off", "1": "on"}}}}/' "$folder/home/descriptions.json"
    add_read_only
    until_offered set audio. -- audio.mute=
    until_offered get audio. -- audio.aeFormat audio.mute
    until_offered share audio. -- audio.mute=
    until_offered share audio.mute= -- audio.mute=off audio.mute=on
}

@test "pages and their names, and commands of the host" {
    add_pages
    until_offered www get '' -- zoom front
    until_offered www set front '' -- mode= lvl=
    until_offered www set front 'mode=dim&l' -- 'mode=dim&lvl='
    run offers call s
    is 0 save status style
    run offers style ''
    is 0
}

@test "the host that is named, or the files" {
    start_other 'extra = "5"'
    until_offered --host "$other" get netport.e -- netport.extra
    until_offered --host 127.0.0.1 --port 6802 get netport.e -- netport.extra
    until_offered "--host=$other" get netport.e -- netport.extra
    CAMPARAM_HOST=$other until_offered get netport.e -- netport.extra
    run offers --port 6803 get ''
    is 0
    run offers --root "$folder/other/home" get netport.e
    is 0 netport.extra
}

@test "files and folders" {
    mkdir "$folder/f"
    touch "$folder/f/one" "$folder/f/other"
    mkdir "$folder/f/under"
    run offers load "$folder/f/o"
    is 0 "$folder/f/one" "$folder/f/other"
    run offers --root "$folder/f/"
    is 0 "$folder/f/one" "$folder/f/other" "$folder/f/under/"
    cd "$folder/f"
    run offers check ''
    is 0 one other under/
}

# in_bash LINE: what bash would insert for the end of the line.
in_bash()
{
    PATH=$(dirname "$CAMPARAM"):$PATH bash -c '
        . "$1/cli/camparam.bash"; COMP_LINE=$2; COMP_POINT=${#2}; _camparam; printf "%s\n" "${COMPREPLY[@]}"' \
        bash "$SOURCES" "$1"
}
in_zsh()
{
    PATH=$(dirname "$CAMPARAM"):$PATH zsh -f -c '
        compadd() { while [[ $1 != -- ]]; do shift; done; shift; (( $# == 0 )) || print -l -- "$@"; }
        _camparam() { . "$1" }
        words=("${(@s: :)2}"); CURRENT=$#words; PREFIX=$words[-1]; _camparam "$1/cli/camparam.zsh"' \
        zsh "$SOURCES" "$1"
}
in_fish()
{
    PATH=$(dirname "$CAMPARAM"):$PATH HOME=$folder fish --no-config -c \
        'source "$argv[1]/cli/camparam.fish"; complete -C "$argv[2]"' "$SOURCES" "$1"
}

@test "bash, zsh and fish" {
    for shell in bash zsh fish; do
        wait_for eval "in_$shell 'camparam get af.z' | grep -qx 'af.zoom_value'"
        run "in_$shell" 'camparam ww'
        is 0 www
        run "in_$shell" 'camparam www '
        is 0 get set
        wait_for eval "in_$shell 'camparam set af.foc' | grep -qx 'af.focus_mode='"
        run "in_$shell" 'camparam nosuch '
        [ -z "$output" ]
    done
    wait_for eval "in_zsh 'camparam set af.focus_mode=m' | grep -qx 'af.focus_mode=manual'"
    wait_for eval "in_fish 'camparam set af.focus_mode=m' | grep -qx 'af.focus_mode=manual'"
    # Bash takes what stands behind "=" for a word of its own.
    wait_for eval "in_bash 'camparam set af.focus_mode=m' | grep -qx 'manual'"
    wait_for eval "in_bash 'camparam --host 127.0.0.1:6800 get af.z' | grep -qx 'af.zoom_value'"
}

@test "words in quotes, and blanks in values" {
    sed -i 's/"manual"/"by hand"/' "$folder/home/descriptions.json"
    end_host
    start_host
    until_offered set 'af.focus_mode=by h' -- 'af.focus_mode=by hand'
    for line in 'camparam set af.focus_mode=b' 'camparam set af.focus_mode=by\ ' 'camparam  set  af.focus_mode=by\ h'; do
        wait_for eval "in_bash '$line' | grep -qx 'by\\\\ hand'"
    done
    wait_for eval "in_bash 'camparam set \"af.focus_mode=by h' | grep -qx 'af.focus_mode=by hand'"
    wait_for eval "in_bash 'camparam \"--host\" 127.0.0.1 get af.z' | grep -qx af.zoom_value"
    mkdir "$folder/a b"
    cp "$folder"/home/* "$folder/a b"
    run in_bash "camparam --root $folder/a\\ b get af.z"
    is 0 af.zoom_value
    run in_bash "camparam --root '$folder/a b' get af.z"
    is 0 af.zoom_value
}
