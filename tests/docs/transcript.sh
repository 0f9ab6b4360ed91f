#!/bin/sh
# usage: transcript.sh HOST CLIENT SAMPLE_HOME PAGE
# Runs the commands of a page's console blocks, one after the other, on a sample device and a second one, in a folder
# that is laid out as the project's. Compares what they print, errors too, with what the page shows. To be run in a
# network of its own.
set -eu
host=$1
client=$2
home=$3
page=$(realpath "$4")
folder=$(mktemp -d)
PATH=$PATH:/usr/sbin:/sbin
ip link set lo up 2>/dev/null || true # on the machine's own network it is
cd "$folder"
mkdir -p build/bin examples/camera
ln -s "$home" examples/camera/home
# A busy machine may need longer than the usual second.
printf '#!/bin/sh\nexec "%s" --timeout 20 "$@"\n' "$client" >build/bin/camparam
chmod +x build/bin/camparam
"$host" --home examples/camera/home --data build/camera-data 2>log &
process=$!
"$host" --home examples/camera/home --data build/second-data --port 6801 2>second-log &
second=$!
trap 'kill "$process" "$second"; wait || true; rm -rf "$folder"' EXIT
build/bin/camparam wait --for 30 >/dev/null
build/bin/camparam --host localhost:6801 wait --for 30 >/dev/null

awk '/^```console$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$page" >shown
sed -n 's/^\$ //p' shown >commands
while read -r command; do
    printf '$ %s\n' "$command"
    sh -c "$command" 2>&1 </dev/null || true
done <commands >printed
echo "$(wc -l <commands) commands; < shown, > printed:"
[ -s commands ]
diff shown printed
