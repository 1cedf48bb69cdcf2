#!/usr/bin/env bash
# module_instructions.sh OBJDUMP MODULE LEVEL: the code keeps to the registers that every processor of the level has.
set -euo pipefail
case $3 in
  sse3) beyond='%[yz]mm|%xmm(1[6-9]|2[0-9]|3[01])|%k[0-7]|\sv[a-z]+[ps][sd]\s' ;;
  x86-64-v3) beyond='%zmm|%[xy]mm(1[6-9]|2[0-9]|3[01])|%k[0-7]' ;;
  *) exit 0 ;;
esac
if "$1" -d --no-show-raw-insn "$2" | grep -m 5 -P "$beyond"; then
  echo "$2 has instructions beyond $3"
  exit 1
fi
