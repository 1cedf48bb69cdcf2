#!/usr/bin/env bash
# header_read.sh COMPILER PYTHON CHECK HEADER: the reader of the description (CHECK) finds exactly the functions that the header declares,
# and each is described.
set -euo pipefail
here=$(dirname "$0")
"$2" -B "$3" "$4"
if ! diff <("$here/declared_names.sh" "$1" "$4") <("$2" -B "$3" "$4" --names); then
  echo "< is declared, > is read"
  exit 1
fi
