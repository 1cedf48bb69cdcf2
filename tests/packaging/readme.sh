#!/usr/bin/env bash
# readme.sh README BUILD PREFIX: the README's program, pasted and compiled with the README's own commands, against the tree under PREFIX
# in place of the prefix that the README names.
set -euo pipefail
readme=$1 build=$2 prefix=$3
rm -rf "$build"
mkdir -p "$build"
cd "$build"
sed -n '/^```c$/,/^```$/p' "$readme" | sed '/^```/d' > program.c
[ -s program.c ] || { echo "no program in $readme"; exit 1; }
sed -nE 's/^    ((export PKG_CONFIG_PATH|cc program\.c).*)/\1/p' "$readme" | sed "s|\\\$HOME/qorsr|$prefix|g" > commands
[ "$(wc -l < commands)" -eq 2 ] || { echo "$readme does not say how to compile its program"; exit 1; }
cat commands
bash -e commands
