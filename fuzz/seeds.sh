#!/bin/sh
# usage: seeds.sh FOLDER
# Makes the inputs that fuzzing starts from, in FOLDER/TARGET: of the sample devices' files, and of
# the requests in docs/message-protocol.md. FOLDER/words has the words of both, as a dictionary.
set -eu
[ $# -eq 1 ] || { echo "usage: $0 FOLDER" >&2; exit 2; }
sources=$(cd "$(dirname "$0")/.." && pwd)
seeds=$1
camera=$sources/examples/camera/home
legacy=$sources/examples/camera-legacy/home
web_names=$camera/www2json.json

target()
{
    mkdir -p "$seeds/$1"
}

# In octal, as a shell's printf knows no other.
separator() { printf '\377'; }
byte() { printf '%b' "\\0$1"; }

# The blocks of JSON on the protocol page that are requests, each to a file "request-N".
requests()
{
    mkdir -p "$seeds/requests"
    awk -v folder="$seeds/requests" '
        /^```json$/ { text = ""; inside = 1; next }
        /^```$/ && inside {
            inside = 0
            if (text ~ /"msg_type"/)
                printf "%s", text > (folder "/request-" ++count)
            next
        }
        inside { text = text (text == "" ? "" : "\n") $0 }' "$sources/docs/message-protocol.md"
    [ -e "$seeds/requests/request-1" ] || { echo 'no requests on the protocol page' >&2; exit 1; }
}

# Each request with the guard off and on, and all of them as one input.
datagrams()
{
    target datagram
    for request in "$seeds"/requests/*; do
        name=${request##*/}
        { printf '\0'; cat "$request"; } >"$seeds/datagram/$name"
        { printf '\3'; cat "$request"; } >"$seeds/datagram/$name-guard"
    done
    { printf '\0'; for request in "$seeds"/requests/*; do cat "$request"; separator; done; } \
        >"$seeds/datagram/requests"
    for module in isp0 isp0_def af video0 audio misc misc_def netport overlay_def; do
        printf '\0{"msg_type":"get","msg_name":"n","msg_id":1,"%s":["all"]}' "$module" \
            >"$seeds/datagram/all-$module"
    done
}

# zeros COUNT
zeros() { head -c "$1" /dev/zero; }
# field SIZE TEXT
field() { printf '%s' "$2"; zeros $(($1 - ${#2})); }

share_datagrams()
{
    target share
    { zeros 8; printf '\74\0\0\0'; field 16 video; field 16 gop; zeros 32; } >"$seeds/share/gop"
    { zeros 8; printf '\5\0\0\0'; field 16 isp; field 16 hue; zeros 32; } >"$seeds/share/hue"
    { printf '\1\0\0\0'; zeros 8; field 16 audio; field 16 aeFormat; field 32 G711A; } \
        >"$seeds/share/aeFormat"
    { printf '\1\0\0\0\1\0\0\0'; zeros 4; field 16 video; field 16 rcMode; field 32 VBR; } \
        >"$seeds/share/rcMode"
    for seed in "$seeds"/share/*; do
        { printf '\1'; cat "$seed"; } >"$seeds/datagram/share-${seed##*/}"
    done
}

web_requests()
{
    target web
    reply='{"isp0":{"hue":5,"saturation":50},"netport":{"ip":"192.168.1.88"},"video0":{"bitRate":4500}}'
    for request in "$seeds"/requests/*; do
        { printf '\377'; cat "$web_names"; separator; cat "$request"; separator
          printf '%s' "$reply"; } >"$seeds/web/${request##*/}"
    done
    { printf '\77{"a":{"x":["w","S"]},"b":{"y":["w","N","Greedy"],"z":["v","N","K"],"p":["u","N","P"]'
      printf ',"f":["t","N","F"]},"page":["a","b"]}'; separator
      printf '{"msg_type":"set","msg_name":"page","data":"w=1&v=2.5&u=3&t=4.5"}'; separator
      printf '{"a":{"x":"text"},"b":{"y":1,"z":2500,"p":0,"f":1.5}}'; } >"$seeds/web/modifiers"
    { printf '\77'; cat "$legacy/www2json.json"; separator
      printf '{"msg_type":"get","msg_name":"network"}'; } >"$seeds/web/legacy"
}

texts()
{
    target reply
    target configure
    cp "$camera"/*.json "$seeds/reply"
    cp "$seeds"/requests/* "$seeds/reply"
    for file in "$camera"/*.conf "$legacy"/*.conf; do
        name=$(basename "$(dirname "$(dirname "$file")")")-${file##*/}
        { cat "$file"; separator; printf 'http_port'; separator; printf '8080'; } \
            >"$seeds/configure/$name"
    done
}

# life SETTINGS OPERATION... and what the operations take, all in octal; further lives follow. The
# operations are numbered by the table in fuzz/model/life.cpp.
life()
{
    for octal; do byte "$octal"; done
}

sequences()
{
    target sequence
    for settings in 0 1 2 3; do
        # Values of each kind, a forced save, a stop; then each answer, and a start without a save.
        { life "$settings" 0 0 5 1 1 1 0 3 0 1 6 0 1 3 1 10 0 1 11 1 5 1 17 26
          life 5 "$settings" 14 0 0 5 1 0 1 27; } >"$seeds/sequence/lives-$settings"
        # A folder that goes and comes back, a full disk, and the repeated saves: none after 2 s less
        # 1 ms, one after that.
        life "$settings" 0 0 5 1 1 20 17 21 15 3 16 15 0 16 22 5 17 23 15 7 16 17 \
            >"$seeds/sequence/failures-$settings"
        # A change that is due after 2 s, and not before.
        life "$settings" 0 0 5 1 1 15 3 16 15 0 16 1 0 3 1 0 15 4 16 >"$seeds/sequence/due-$settings"
        life "$settings" 13 6 0 5 1 4 6 6 0 0 5 0 14 6 0 5 1 2 2 2 1 2 15 4 16 24 25 1 2 13 7 0 0 1 0 0 \
            >"$seeds/sequence/requests-$settings"
        # A request for a new key of a conf module, and for all keys.
        life "$settings" 13 0 0 0 0 10 0 4 4 0 14 0 0 0 0 0 10 0 17 \
            >"$seeds/sequence/new-key-$settings"
        # A picture size whose name begins another one, a file that is cut, and one that is changed.
        { life "$settings" 3 1 1 0 0 17 27 5 "$settings" 26 0 4 0 11 "$settings" 17 27 1 0 0 2 60
          life "$settings" 17; } >"$seeds/sequence/files-$settings"
    done
}

# join FILE...: their contents, separated
join()
{
    cat "$1"
    shift
    for file; do separator; cat "$file"; done
}

# Byte 0 is the place of the module in the table of fuzz/files.cpp.
files()
{
    target files
    for home in "$camera" "$legacy"; do
        device=$(basename "$(dirname "$home")")
        { printf '\0'; join "$home/af_range.json" "$home/af_def.json" "$home/af_def.json"; } \
            >"$seeds/files/$device-af"
        { printf '\1'; join "$home/audio_range.json" "$home/audio_def.json" "$home/audio_def.json"
          separator; printf '{"mute":1,"aeFormat":"G711A"}'; } >"$seeds/files/$device-audio"
        { printf '\2'; join "$home/video_range.json" "$home/video_def.json" "$home/video_def.json"
          separator; printf '{"gop":1,"size":"PIC_D1"}'; } >"$seeds/files/$device-video"
        { printf '\4'; join "$home/netport.conf" "$home/netport.conf"
          separator; printf '{"http_port":"8080"}'; } >"$seeds/files/$device-netport"
        { printf '\0'; join "$home/misc_range.json"; } >"$seeds/files/$device-misc-range"
    done
    { printf '\3'; join "$camera/misc_range.json" "$camera/misc.conf" "$camera/misc.conf"
      separator; printf '{"mirror":1,"ndi_mode":"off"}'; } >"$seeds/files/panel"
    { printf '\5{"version":2,"isp0_style_def":1,"text":"x"}'; separator
      printf '{"isp0_style_def":2,"text":"y"}'; } >"$seeds/files/odm"
}

# Byte 0 has the settings; then each file behind its place in the table of fuzz/start.cpp.
starts()
{
    target start
    printf '\0' >"$seeds/start/sample"
    printf '\3' >"$seeds/start/sample-guard"
    for settings in 0 1; do
        { byte "$settings"; byte 10; cat "$legacy/misc_range.json"; separator
          printf '\11'; cat "$legacy/misc_def.json"; separator
          printf '\27'; cat "$legacy/misc_def.json"; } >"$seeds/start/legacy-$settings"
        { byte "$settings"; byte 23; printf '{"isp0":{"style":1,"hue":3}}'; separator
          printf '\31{"version":1,"isp0_style_def":2,"isp0_antiflicker_def":2}'; separator
          printf '\17{"zoom_value":5,'; separator; printf '\20{"zoom_value":5,"focus_mode":1}'; } \
            >"$seeds/start/saved-$settings"
        { byte "$settings"; byte 14; printf '{"json_pattern_list":["panel","misc"]}'; separator
          printf '\15'; cat "$camera/misc_range.json"; separator
          printf '\16'; cat "$camera/misc.conf"; separator
          printf '\35'; cat "$camera/misc.conf"; } >"$seeds/start/panel-$settings"
        { byte "$settings"; byte 36; printf '{"isp0_style_def":1}'; separator; printf '\0'; separator
          printf '\17\376'; separator; printf '\21\375'; } >"$seeds/start/broken-$settings"
    done
}

words()
{
    grep -ho '"[A-Za-z0-9_.]\{2,\}"' "$camera"/* "$legacy"/* "$seeds"/requests/* | sort -u \
        >"$seeds/words"
}

rm -rf "$seeds/requests"
requests
words
datagrams
share_datagrams
web_requests
texts
files
starts
sequences
rm -r "$seeds/requests"
