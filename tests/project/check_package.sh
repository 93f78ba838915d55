#!/usr/bin/env bash
# Installs the library that was built in folder $1, moves the installation, then builds and runs an application against
# it, through CMake's package and through pkg-config: with each of the compilers $4 and, where it is installed and $4 has
# it, with Meson. $2 is the application's source folder, $3 extra flags of the compiler.
set -euo pipefail
build=$1 source=$2 flags=$3 compilers=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/prefix"
pc=$(dirname "$(find "$scratch/prefix" -name velan.pc)")
export PKG_CONFIG_PATH=$pc CMAKE_PREFIX_PATH=$scratch/prefix LD_LIBRARY_PATH=${pc%/pkgconfig} CXXFLAGS=$flags
# With flags it is built for sanitizers, whose reports and debugging data name folders.
if [ -z "$flags" ] && grep -r --binary-files=text "$build" "$scratch/prefix"; then
  echo "The installation names the folder where it was built." >&2
  exit 1
fi
[ ! -x "$scratch/prefix/bin/velan" ] || env -u LD_LIBRARY_PATH "$scratch/prefix/bin/velan" --version >/dev/null

read -ra options < <(pkg-config --cflags --libs velan)
read -ra extra <<<"$flags"
for compiler in ${compilers%meson}; do
  command -v "$compiler" >/dev/null || continue
  "$compiler" -std=c++20 "${extra[@]}" "$source/main.cpp" "${options[@]}" -o "$scratch/plain"
  "$scratch/plain"
  cmake -S "$source" -B "$scratch/cmake" --fresh -G Ninja -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
  cmake --build "$scratch/cmake" >/dev/null
  "$scratch/cmake/consumer"
done

[[ $compilers == *meson ]] && command -v meson >/dev/null || exit 0
for from in pkg-config cmake; do
  (cd "$source" && meson setup "$scratch/meson-$from" -Dfrom=$from >"$scratch/log") || { cat "$scratch/log" && exit 1; }
  ninja -C "$scratch/meson-$from" >/dev/null
  "$scratch/meson-$from/consumer"
done
