#!/usr/bin/env bash
# install_tree.sh CMAKE BUILD INSTALLED MOVED: installs the build under INSTALLED, then moves the tree to MOVED.
set -euo pipefail
cmake=$1 build=$2 installed=$3 moved=$4
rm -rf "$installed" "$moved"
"$cmake" --install "$build" --prefix "$installed" > "$installed.log"
mv "$installed" "$moved"
if left=$(grep -rIlF "$installed" "$moved"); then
  echo "these files remember where they were installed: $left"
  exit 1
fi
if left=$(grep -rIlF "$build" "$moved"); then
  echo "these files remember where they were built: $left"
  exit 1
fi
find "$moved" -type f -o -type l | sort
