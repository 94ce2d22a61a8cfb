# Shared by build.sh and test.sh: installs what is missing, configures once and builds.
# Sets `root` and `build`.
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BRANNOC_BUILD:-$root/build}"

build_everything() {
    bash "$root/scripts/setup.sh"
    if [ ! -f "$build/build.ninja" ]; then
        cmake -S "$root" -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/i686-w64-mingw32.cmake" >/dev/null
    fi
    cmake --build "$build" -j"$(nproc)"
}
