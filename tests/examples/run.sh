#!/usr/bin/env bash
# run.sh PYTHON PROGRAM EXPECTED: runs an example in a folder of its own; what it prints is compared with the file EXPECTED. The example
# `cepstra` is given a recording that wav.py makes, and refuses what is no recording.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
python=$1 program=$2 expected=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
arguments=()
if [ "$(basename "$program")" = cepstra ]; then
  "$python" "$here/wav.py" "$folder/hum.wav"
  arguments=("$folder/hum.wav")
  if "$program" "$0" > "$folder/refused" 2>&1; then
    echo "$program took a script for a recording"
    exit 1
  fi
  grep -q usage "$folder/refused"
fi
"$program" "${arguments[@]}" > "$folder/printed"
diff "$expected" "$folder/printed"
