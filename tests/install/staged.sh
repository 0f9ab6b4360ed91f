#!/bin/sh
# usage: staged.sh CMAKE BUILD_DIR LIB_DIR
# Installs below DESTDIR for the prefix /usr, as a packager does, and looks for each kind of file.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

DESTDIR=$folder "$1" --install "$2" --prefix /usr >/dev/null
lib=usr/$3
for file in usr/bin/camparam usr/bin/camparamd \
    "$lib/libcamparam.so" "$lib/libcamparam.so.1" "$lib/libcamparam_platform.so" \
    "$lib/libcamparam_commands.so" "$lib/libcamparam_commands.so.1" "$lib/pkgconfig/camparam-commands.pc" \
    "$lib/cmake/camparam/camparam-config.cmake" \
    "$lib/cmake/camparam/camparam-config-version.cmake" \
    "$lib/pkgconfig/camparam.pc" "$lib/pkgconfig/camparam-platform.pc" \
    usr/share/bash-completion/completions/camparam usr/share/zsh/vendor-completions/_camparam \
    usr/share/fish/vendor_completions.d/camparam.fish \
    usr/share/man/man1/camparam.1 usr/share/man/man3/libcamparam.3 usr/share/man/man5/camparam-files.5 \
    usr/share/man/man7/camparam-protocol.7 usr/share/man/man8/camparamd.8 \
    usr/include/camparam/camparam.h usr/include/camparam/af_members.def; do
    [ -e "$folder/$file" ] || { echo "missing: $file"; exit 1; }
done
outside=$(find "$folder" -mindepth 1 -maxdepth 1 ! -name usr)
[ -z "$outside" ] || { echo "outside /usr: $outside"; exit 1; }
# Neither the build's folders nor the stage may show in what others read.
! grep -rIl -e "$2" -e "$folder" "$folder"
