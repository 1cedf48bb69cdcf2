#!/usr/bin/env bash
# find_package.sh CMAKE PROJECT BUILD PREFIX LANGUAGE: configures and builds the project against the tree under PREFIX, runs what came
# out, and looks at what the loader picks at each instruction level. Environment: CC, CXX, LEVELS, LOADER, LIBDIR.
set -euo pipefail
cmake=$1 project=$2 build=$3 prefix=$4 language=$5
rm -rf "$build"
"$cmake" -S "$project" -B "$build" -G Ninja -DLANGUAGE="$language" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF
"$cmake" --build "$build"
"$build/dynamic"
"$build/static"

if ldd "$build/static" | grep -E 'libqor'; then
  echo "the static program loads the shared module"
  exit 1
fi
[ -n "$LOADER" ] || exit 0
baseline=${LEVELS%% *}
for level in $LEVELS; do
  mask=$level expected=$LIBDIR/glibc-hwcaps/$level/libqorsr.so.6
  if [ "$level" = "$baseline" ]; then
    mask=none expected=$LIBDIR/libqorsr.so.6
  elif ! "$LOADER" --help | grep -qE "^ *$level .*supported"; then
    echo "skipped: this machine has no $level"
    continue
  fi
  chosen=$("$LOADER" --glibc-hwcaps-mask "$mask" --list "$build/dynamic" | awk '/libqorsr/ { print $3 }')
  if [ "$(realpath "$chosen")" != "$(realpath "$expected")" ]; then
    echo "level $level: the loader chose $chosen, not $expected"
    exit 1
  fi
  "$LOADER" --glibc-hwcaps-mask "$mask" "$build/dynamic"
done
