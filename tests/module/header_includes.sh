#!/usr/bin/env bash
# header_includes.sh HEADER INCLUDED: a public header includes that alone.
set -euo pipefail
includes=$(grep -E '^[[:space:]]*#[[:space:]]*include' "$1")
[ "$includes" = "#include $2" ] || { echo "$1 includes: $includes"; exit 1; }
