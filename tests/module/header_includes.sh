#!/usr/bin/env bash
# header_includes.sh HEADER: a public header includes <stdint.h> alone.
set -euo pipefail
includes=$(grep -E '^[[:space:]]*#[[:space:]]*include' "$1")
[ "$includes" = '#include <stdint.h>' ] || { echo "$1 includes: $includes"; exit 1; }
