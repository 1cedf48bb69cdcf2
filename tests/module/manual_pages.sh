#!/usr/bin/env bash
# manual_pages.sh PYTHON SOURCE FOLDER: every function has its page, and mandoc (or else groff) has no complaint about any.
set -euo pipefail
python=$1 source=$2 folder=$3
rm -rf "$folder"
"$python" -B "$source/scripts/interface/manual_pages.py" "$source/include/qorsr.h" "$folder"
diff <("$python" -B "$source/scripts/interface/check.py" "$source/include/qorsr.h" --names | sort) \
  <(find "$folder/man3" -name '*.3' -printf '%f\n' | sed 's/\.3$//' | sort)
if command -v mandoc > /dev/null; then
  mandoc -T lint -W warning "$folder"/man3/*.3 "$folder"/man7/*.7
elif command -v groff > /dev/null; then
  complaints=$(groff -t -mandoc -ww -z "$folder"/man7/qorsr.7 "$folder"/man3/qorsM*.3 2>&1)
  [ -z "$complaints" ] || { echo "$complaints"; exit 1; }
else
  echo "neither mandoc nor groff is here: the form of the pages was not looked at"
fi
