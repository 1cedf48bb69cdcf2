#!/usr/bin/env bash
# run.sh PYTHON PROGRAM EXPECTED: runs an example in a folder of its own; what it prints is compared with the file EXPECTED. The examples
# of recordings are given one that wav.py makes, and refuse what is none.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
python=$1 program=$2 expected=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
arguments=()
case $(basename "$program") in
  cepstra) arguments=("$folder/hum.wav") ;;
  activity) arguments=("$folder/hum.wav" noisy) ;;
esac
if [ ${#arguments[@]} -gt 0 ]; then
  "$python" "$here/wav.py" "${arguments[@]}"
  arguments=("${arguments[0]}")
  if "$program" "$0" > "$folder/refused" 2>&1; then
    echo "$program took a script for a recording"
    exit 1
  fi
  grep -q usage "$folder/refused"
fi
"$program" "${arguments[@]}" > "$folder/printed"
diff "$expected" "$folder/printed"
