#!/usr/bin/env bash
# Makes 32-bit x86 Linux programs (the 32-bit Wine loader and server) runnable on this machine.
# Some virtual machines run 64-bit user code only: the kernel answers ENOEXEC for every i386 ELF
# file. There, 32-bit programs run through qemu's user-mode emulator, registered with binfmt_misc
# so that every exec of an i386 ELF file (Wine starts its helper processes itself) goes through it.
# Debian 12's own qemu 7.2 tracks guest pages one at a time and spends most of a minute starting
# each Wine process; the backported qemu 10 starts one in well under a second.
# Idempotent; run as root after wine32 is installed.
set -u
log() { echo "setup: $*" >&2; }

probe=/usr/lib/wine/wine
runs_natively_or_emulated() { "$probe" --version >/dev/null 2>&1; }

if runs_natively_or_emulated; then
    exit 0
fi
log "this machine does not run 32-bit x86 programs; registering qemu's i386 emulator for them"

backports=/etc/apt/sources.list.d/brannoc-bookworm-backports.list
if ! apt-cache madison qemu-user 2>/dev/null | grep -q bpo12; then
    echo 'deb http://deb.debian.org/debian bookworm-backports main' >"$backports"
    apt-get update -q >/dev/null 2>&1 || log "apt-get update reported errors; going on"
fi
export DEBIAN_FRONTEND=noninteractive
apt-get install -y -q --no-install-recommends -t bookworm-backports qemu-user >/dev/null 2>&1 \
    || apt-get install -y -q --no-install-recommends qemu-user >/dev/null 2>&1 \
    || { log "installing qemu-user failed"; exit 1; }
emulator=$(command -v qemu-i386 || command -v qemu-i386-static) \
    || { log "qemu-i386 is missing after the install"; exit 1; }

binfmt=/proc/sys/fs/binfmt_misc
[ -e "$binfmt/register" ] || mount -t binfmt_misc binfmt_misc "$binfmt" \
    || { log "cannot mount binfmt_misc"; exit 1; }
# An old entry may name an emulator that has been replaced (the F flag keeps the file it opened).
[ -e "$binfmt/qemu-i386" ] && echo -1 >"$binfmt/qemu-i386"
# i386 ELF executables and shared objects (e_type 2 or 3, e_machine 3).
magic='\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00'
mask='\xff\xff\xff\xff\xff\xfe\xfe\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
echo ":qemu-i386:M::$magic:$mask:$emulator:F" >"$binfmt/register" \
    || { log "registering the emulator with binfmt_misc failed"; exit 1; }

runs_natively_or_emulated || { log "32-bit programs still do not run"; exit 1; }
log "32-bit programs run through $emulator"
