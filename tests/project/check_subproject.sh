#!/usr/bin/env bash
# Builds and runs an application of Meson that has the library's source tree ($1) as a subproject. $2 is the
# application's source folder, $3 the folder to build in, which is kept. Ends with 77 where Meson is missing.
set -euo pipefail
velan=$1 application=$2 folder=$3
command -v meson >/dev/null || exit 77

mkdir -p "$folder/subprojects"
ln -sfn "$velan" "$folder/subprojects/velan"
cp "$application"/{main.cpp,meson.build,meson_options.txt} "$folder"
cd "$folder"
[ -f build/build.ninja ] || meson setup build -Dfrom=subproject >setup.log || { cat setup.log && exit 1; }
ninja -C build >build.log || { tail -30 build.log && exit 1; }
./build/consumer
