#!/bin/sh
# volumes.sh FOLDER USER COMMAND...: makes small drives below FOLDER, of real file systems, and runs the command with
# them. Only that command and what it starts sees them, and they go with it. Asks for root, and for a start by
# `unshare --mount --propagation private`.
set -eu
folder=$1 user=$2
shift 2
[ "$(readlink /proc/self/ns/mnt)" != "$(readlink /proc/$PPID/ns/mnt)" ] || { echo "no mounts of its own" >&2; exit 1; }

made() { # KIND SIZE [what makes the file system]: a file of that size, mounted
    truncate -s "$2" "$folder/$1.img"
    mkdir "$folder/$1"
    kind=$1
    shift 2
    "$@" "$folder/$kind.img" >/dev/null
    mount -o loop "$folder/$kind.img" "$folder/$kind"
    mountpoint -q "$folder/$kind"
    chown "$user" "$folder/$kind"
}

made ext4 400M mkfs.ext4 -q -F -m 0
made xfs 400M mkfs.xfs -q
made btrfs 400M mkfs.btrfs -q
# As sticks have it, which knows neither owners nor links.
truncate -s 400M "$folder/exfat.img"
mkfs.exfat "$folder/exfat.img" >/dev/null
mkdir "$folder/exfat"
device=$(losetup --find --show "$folder/exfat.img")
mount.exfat-fuse -o "allow_other,uid=$user" "$device" "$folder/exfat" >/dev/null 2>&1
# Let go of once the drive does.
losetup --detach "$device"
mountpoint -q "$folder/exfat"
mkdir "$folder/small"
mount -t tmpfs -o size=64m,mode=755 none "$folder/small"
mountpoint -q "$folder/small"
chown "$user" "$folder/small"
exec "$@"
