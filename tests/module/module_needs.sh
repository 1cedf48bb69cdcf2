#!/usr/bin/env bash
# module_needs.sh READELF MODULE RUNPATH: the module needs libc and the core module, nothing else, and looks for the latter where
# it lies itself.
set -euo pipefail
dynamic=$("$1" -dW "$2")
needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
others=$(echo "$needed" | grep -vE '^(libc|libqorcore|ld-linux[a-z0-9-]*)\.so\.[0-9]+$' || true)
[ -z "$others" ] || { echo "$2 needs $others"; exit 1; }
echo "$needed" | grep -qx 'libqorcore.so.6' || { echo "$2 does not import the core module"; exit 1; }
soname=$(echo "$dynamic" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = libqorsr.so.6 ] || { echo "$2 calls itself $soname"; exit 1; }
runpath=$(echo "$dynamic" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
[ "$runpath" = "$3" ] || { echo "$2 has RUNPATH '$runpath', expected '$3'"; exit 1; }
if echo "$dynamic" | grep -qE '\((TEXTREL|RPATH)\)|EXECSTACK'; then echo "$2: text relocations, RPATH or an executable stack"; exit 1; fi
echo $needed
