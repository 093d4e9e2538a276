#!/usr/bin/env bash
# Runs a command with a small disk of its own, whose path it finds in CALVERIN_SMALL_DISK:
#   small_disk.sh COMMAND...
# The disk lies in a mount namespace and is gone with the command. Where none may be made, the exit code is 77.
set -euo pipefail
place=$(mktemp -d)
trap 'rmdir "$place"' EXIT
unshare --map-root-user --mount true 2>/dev/null || exit 77
CALVERIN_SMALL_DISK=$place unshare --map-root-user --mount bash -c '
    mount -t tmpfs -o size=128k,mode=777 small "$CALVERIN_SMALL_DISK" || exit 77
    exec "$@"' small_disk "$@"
