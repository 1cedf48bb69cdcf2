#!/usr/bin/env bash
# module_names.sh COMPILER NM HEADER MODULE: the module exports exactly the functions that the header declares.
set -euo pipefail
here=$(dirname "$0")
declared=$("$here/declared_names.sh" "$1" "$3" | sort)
exported=$("$2" -D --defined-only "$4" | awk '{ print $NF }' | sort)
[ -n "$declared" ] || { echo "no declarations were found in $3"; exit 1; }
if ! diff <(echo "$declared") <(echo "$exported"); then
  echo "< is declared in $3 alone, > is exported by $4 alone"
  exit 1
fi
echo "$(echo "$exported" | wc -l) names"
