#!/usr/bin/env bash
# module_data.sh OBJDUMP MODULE: the module holds no data that could change. What the start files put there is not ours; constants
# that hold addresses stand in .data.rel.ro, which the loader closes.
set -euo pipefail
start_files='completed(\.[0-9]+)?|__dso_handle|__TMC_END__|__bss_start|_edata|_end'
ours=$("$1" -t "$2" | awk '$NF != "" { for (i = 2; i < NF; ++i) if ($i ~ /^\.(data|bss|tdata|tbss|sdata|sbss)$/ || $i == "*COM*") print $i, $NF }' |
  grep -vE " ($start_files|\.data|\.bss)$" || true)
if [ -n "$ours" ]; then
  echo "data that can change in $2:"
  echo "$ours"
  exit 1
fi
