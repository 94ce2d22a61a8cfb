#!/usr/bin/env bash
# Installs the cross toolchain, Wine (32-bit) and the test tools on Debian 12.
# Idempotent: returns at once when everything is already there. Run as root.
set -u

# fonts-wine brings Wine's own faces (Marlett draws the caption buttons); fonts-dejavu-core brings
# the monospaced face the Wine prefix maps "Courier New" to, so the code editor's text lines up.
PACKAGES_AMD64=(g++-mingw-w64-i686-posix mingw-w64-i686-dev mingw-w64-tools cmake ninja-build
                googletest xvfb xauth wine x11-apps netpbm fonts-wine fonts-dejavu-core)
PACKAGES_I386=(wine32:i386)

log() { echo "setup: $*" >&2; }

all_installed() {
    local p
    for p in "${PACKAGES_AMD64[@]}" "${PACKAGES_I386[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || return 1
    done
    command -v i686-w64-mingw32-g++-posix >/dev/null && command -v wine >/dev/null
}

here="$(dirname "${BASH_SOURCE[0]}")"
if all_installed; then
    bash "$here/i386-exec.sh"
    exit
fi

if [ "$(id -u)" != 0 ]; then
    log "packages are missing and this is not root; install them: ${PACKAGES_AMD64[*]} ${PACKAGES_I386[*]}"
    exit 1
fi

export DEBIAN_FRONTEND=noninteractive

if ! dpkg --print-foreign-architectures | grep -qx i386; then
    log "adding the i386 architecture"
    dpkg --add-architecture i386
fi

# A failing index must not stop us: apt-get update still refreshes the others.
log "apt-get update"
apt-get update -q >/dev/null 2>&1 || log "apt-get update reported errors; going on with the indexes it fetched"

log "installing the toolchain"
apt-get install -y -q --no-install-recommends "${PACKAGES_AMD64[@]}" >/dev/null \
    || log "first install attempt of the amd64 packages failed; retrying with the i386 fix-up"

# The i386 index can lag behind the amd64 one, so a Multi-Arch library installed (or about to be
# installed) for amd64 can have a version its i386 twin cannot match ("held broken packages").
# Simulate the install; for every i386 library apt names, pin both architectures to the i386
# candidate version when the amd64 side differs; repeat with the pins gathered so far until the
# simulation passes, then install for real.
PINS=()
pin_for() {
    local name=$1 version installed candidate
    version=$(apt-cache policy "$name:i386" 2>/dev/null | awk '/Candidate:/ {print $2}')
    [ -n "$version" ] && [ "$version" != "(none)" ] || return 1
    installed=$(dpkg-query -W -f='${Version}' "$name:amd64" 2>/dev/null || true)
    candidate=$(apt-cache policy "$name:amd64" 2>/dev/null | awk '/Candidate:/ {print $2}')
    if [ "$installed" != "$version" ] || [ "$candidate" != "$version" ]; then
        if [ -n "$installed" ] || [ "$candidate" != "$version" ]; then
            PINS+=("$name:i386=$version" "$name:amd64=$version")
            return 0
        fi
    fi
    return 1
}

simulate() {
    apt-get install -s -y --no-install-recommends --allow-downgrades \
        "${PACKAGES_AMD64[@]}" "${PACKAGES_I386[@]}" "${PINS[@]}" 2>&1
}

align_multiarch_versions() {
    local attempt output name added
    for attempt in $(seq 1 15); do
        if output=$(simulate); then
            return 0
        fi
        added=0
        for name in $(echo "$output" | grep -oE '[a-z0-9][a-z0-9.+-]*:i386' | sed 's/:i386$//' | sort -u); do
            case " ${PINS[*]} " in *" $name:i386="*) continue ;; esac
            pin_for "$name" && added=1
        done
        if [ $added = 0 ]; then
            log "apt cannot install the i386 packages and no further version skew was found:"
            echo "$output" | tail -20 >&2
            return 1
        fi
        log "pinning to the i386 versions: ${PINS[*]}"
    done
    return 1
}

align_multiarch_versions || log "version alignment did not converge"
apt-get install -y -q --no-install-recommends --allow-downgrades \
    "${PACKAGES_AMD64[@]}" "${PACKAGES_I386[@]}" "${PINS[@]}" >/dev/null \
    || { log "installing the packages failed"; exit 1; }

all_installed || { log "packages still missing after install"; exit 1; }
bash "$here/i386-exec.sh" || exit 1
log "toolchain ready"
