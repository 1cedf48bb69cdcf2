#!/usr/bin/env bash
# archive_data.sh OBJDUMP ARCHIVE: no object of the static library has data that could change, or code that runs at the start.
set -euo pipefail
"$1" -hw "$2" | awk '
  / file format / { object = $1 }
  $2 ~ /^\.(data|bss|tdata|tbss|init_array|ctors)(\..*)?$/ && $2 !~ /^\.data\.rel\.ro/ && $3 !~ /^0+$/ { print object, $2, $3; found = 1 }
  END { exit found }'
