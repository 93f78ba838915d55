#!/usr/bin/env bash
# Installs the library that was built in folder $1, then builds and runs an application against it: through the CMake
# package, and through pkg-config. $2 is the application's source folder, $3 the C++ compiler, $4 extra flags.
set -euo pipefail
build=$1 source=$2 compiler=$3 flags=${4:-}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$scratch/build" >/dev/null
"$scratch/build/consumer"

pc=$(dirname "$(find "$scratch/prefix" -name velan.pc)")
# The file names the prefix that was configured; this installation lies elsewhere.
read -ra options < <(PKG_CONFIG_PATH=$pc pkg-config --define-variable=prefix="$scratch/prefix" --cflags --libs velan)
read -ra extra <<<"$flags"
"$compiler" -std=c++20 "${extra[@]}" "$source/main.cpp" "${options[@]}" -o "$scratch/plain"
LD_LIBRARY_PATH=$(dirname "$pc") "$scratch/plain"
