#!/usr/bin/env bash
# module_imports.sh NM MODULE: what the module takes from elsewhere is the C library's and the allocator pair; nothing of the C++
# run-time library, no thread, no file, no environment.
set -euo pipefail
imports=$("$1" -D --undefined-only "$2" | awk '{ sub(/@.*/, "", $NF); print $NF }' | sort -u)
bad=$(echo "$imports" | grep -E '^(_Z|__cxa_(guard|throw|begin|end|alloc|pure|rethrow)|__gxx|_Unwind|pthread_|thrd_|f?open|fopen|getenv|secure_getenv|malloc|calloc|realloc|free|aligned_alloc|posix_memalign|printf|fprintf|puts|exit|system)' || true)
if [ -n "$bad" ]; then
  echo "$2 imports:"
  echo "$bad"
  exit 1
fi
echo $imports
