#!/usr/bin/env bash
# pkg_config.sh PKG_CONFIG PROJECT BUILD LANGUAGE: builds the project's program by hand, with the flags that pkg-config names, against
# the module and fully static, and runs both. Environment: CC, CXX, LIBDIR, MACHINE_FLAGS.
set -euo pipefail
pkg_config=$1 project=$2 build=$3 language=$4
export PKG_CONFIG_PATH=$LIBDIR/pkgconfig
case $language in
  C) compile=("$CC" -std=c11 "$project/consumer.c") ;;
  CXX) compile=("$CXX" -std=c++20 "$project/consumer.cpp") ;;
esac
rm -rf "$build"
mkdir -p "$build"
set -x
# shellcheck disable=SC2046,SC2086 # the flags are words
{
  "${compile[@]}" $MACHINE_FLAGS $("$pkg_config" --cflags qorsr) -o "$build/dynamic" $("$pkg_config" --libs qorsr qorcore) \
    -Wl,-rpath,"$("$pkg_config" --variable=libdir qorsr)"
  "$build/dynamic"
  "${compile[@]}" $MACHINE_FLAGS $("$pkg_config" --cflags qorsr) -static -o "$build/static" $("$pkg_config" --static --libs qorsr)
  "$build/static"
}
[ "$("$pkg_config" --modversion qorsr)" = 6.0.0 ]
