# Commands that need more of a device: picture styles, streams, recordings; on the sample device.
load host

start_sample()
{
    end_host
    rm -rf "$folder/data"
    mkdir "$folder/data"
    start_sample_again "$@"
}

start_sample_again()
{
    end_host
    # With share datagrams, which the other hosts of these tests do without.
    "$CAMPARAMD" --home "$SOURCES/examples/camera/home" --data "$folder/data" "$@" 2>"$folder/host.log" 3>&- &
    host_process=$!
    wait_for grep -q ready "$folder/host.log"
}

@test "style: shows, applies, and makes one the default" {
    start_sample
    run camparam style
    is 0 'standard    current, default' 'vivid' 'soft' 'lowlight' 'monochrome'
    run camparam style soft
    is 0 'soft  current'
    run camparam style vivid --default
    is 0 'vivid  current, default'
    run camparam style --default
    [ "$status" = 2 ]
    run camparam style none
    is 5 'camparam: no style "none"'
    run camparam --json style vivid
    [ "$status" = 0 ]
}

@test "list: says which style the marks are measured by" {
    start_sample
    camparam set isp0.hue=5
    run camparam list isp0.hue
    is 0 'NAME      KIND    MIN  MAX  DEFAULT  VALUE' 'isp0.hue  number  0    14   7        5      *' \
        '* of isp0: differs from the style "standard"'
    camparam style soft
    camparam call save
    start_sample_again
    camparam set isp0.hue=5
    run camparam list isp0.hue
    [ "${lines[2]}" = '* of isp0: differs from the style "soft"' ]
}

@test "share: a datagram to a stream, read back" {
    start_sample
    run camparam share video.bitRate=3000 --instance 1
    is 0 'video1.bitRate=3000'
    run camparam get video0.bitRate video1.bitRate
    is 0 'video0.bitRate=32768' 'video1.bitRate=3000'
    run camparam share video.bitRate=3000 --instance 256
    [ "$status" = 2 ]
    run camparam share misc.mirror=1
    [ "$status" = 2 ]
    run camparam share video.gop=301
    is 4 'camparam: video0.gop: "301" is out of range (number, 1 to 300)'
}

@test "call: as get or as set, with parameters of any type" {
    start_sample
    run camparam call style --get
    [ "$status" = 0 ]
    run camparam call reset 'misc=["mirror"]'
    is 0 '{' '	"accepted":	["misc.mirror"],' '	"refused":	{' '	}' '}'
    run camparam call reset --set 'misc=["none"]'
    is 4 '{' '	"accepted":	[],' '	"refused":	{' '		"misc.none":	"no such member"' '	}' '}'
    run camparam call reset --get 'misc=["mirror"]'
    [ "$status" = 4 ]
    run camparam call save --get --set
    [ "$status" = 2 ]
}

@test "record and replay: what clients send, and what differs" {
    start_sample
    "$CAMPARAM" record "$folder/day" --listen 6805 2>"$folder/recording" 3>&- &
    recorder=$!
    wait_for grep -q '^recording on port 6805$' "$folder/recording"
    camparam --port 6805 get misc.mirror
    camparam --port 6805 set misc.mirror=1
    camparam --port 6805 get misc.mirror
    kill -TERM "$recorder"
    wait "$recorder"
    camparam set misc.mirror=0
    run camparam replay "$folder/day"
    [ "$status" = 0 ]
    run camparam replay "$folder/day" --speed 100
    [ "$status" != 2 ]
    camparam set misc.mirror=1
    run camparam replay "$folder/day"
    [ "$status" = 7 ]
    run camparam replay "$folder/day" --speed 0
    [ "$status" = 2 ]
    run camparam record "$folder/none/day"
    [ "$status" = 1 ]
}

@test "set --create: new keys of conf files, where the host takes them" {
    start_sample --no-guard
    run camparam set netport.extra=5
    [ "$status" = 5 ]
    run camparam set --create netport.extra=5
    is 0 'netport.extra=5'
    start_sample
    run camparam set --create netport.extra=5
    is 4 'camparam: netport.extra: the host takes no new settings by request'
}

@test "version" {
    run "$CAMPARAM" --version
    is 0 'camparam 1.0.0'
}
