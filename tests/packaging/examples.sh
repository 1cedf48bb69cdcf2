#!/usr/bin/env bash
# examples.sh PREFIX EXAMPLES BUILD EXPECTED PYTHON: each example of the installed tree (EXAMPLES, below PREFIX), compiled with each command
# that the examples' page tells, with PREFIX in place of the one that it names, and run; EXPECTED holds what they print.
set -euo pipefail
prefix=$1 examples=$1/$2 build=$3 expected=$4 python=$5
rm -rf "$build"
cp -r "$examples" "$build"
cd "$build"
mapfile -t commands < <(sed -nE 's/^    (cc mixture\.c .*) && .*/\1/p' README.md | sed "s|\\\$HOME/qorsr|$prefix|g")
[ "${#commands[@]}" -eq 2 ] || { echo "README.md does not say how to compile, shared and static"; exit 1; }
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
sources=(*.c)
[ "${#sources[@]}" -ge 4 ] || { echo "these examples are installed: ${sources[*]}"; exit 1; }
for source in "${sources[@]}"; do
  name=${source%.c}
  for command in "${commands[@]}"; do
    echo "${command//mixture/$name}"
    bash -e -c "${command//mixture/$name}"
    "$expected/run.sh" "$python" "./$name" "$expected/$name.txt"
  done
  if ldd "$name" | grep libqor; then echo "the static $name loads a shared module"; exit 1; fi
done
