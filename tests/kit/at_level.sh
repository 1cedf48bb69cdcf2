#!/usr/bin/env bash
# at_level.sh LOADER LEVEL PROGRAM...: runs a program that was compiled for an instruction level, or says that this machine lacks it.
loader=$1 level=$2
shift 2
case $level in
  x86-64-v*)
    if ! "$loader" --help | grep -qE "^ *$level .*supported"; then
      echo "skipped: this machine has no $level"
      exit 77
    fi
    ;;
esac
exec "$@"
