#!/usr/bin/env bash
# header_documented.sh COMPILER HEADER: every function is declared once, marked as exported, and stands in a documentation group
# (between @{ and @}) that has a title and a text; and each has a line of its own in front of it.
set -euo pipefail
here=$(dirname "$0")
names=$("$here/declared_names.sh" "$1" "$2")
twice=$(echo "$names" | sort | uniq -d)
[ -z "$twice" ] || { echo "declared twice: $twice"; exit 1; }
odd=$(echo "$names" | grep -vE '^qorsr?[A-Z][A-Za-z0-9_]*$' || true)
[ -z "$odd" ] || { echo "names outside the pattern: $odd"; exit 1; }

# Walks the header character by character where comments begin and end: commands count inside comments, names outside.
grouped=$(awk '
  {
    line = $0
    while (line != "") {
      if (inside) {
        at = index(line, "*/")
        comment = at ? substr(line, 1, at - 1) : line
        line = at ? substr(line, at + 2) : ""
        if (documenting) {
          if (comment ~ /@defgroup +[a-z0-9_]+ +[^ ]/) titled = 1
          depth += gsub(/@\{/, "", comment)
          closed = gsub(/@\}/, "", comment)
          depth -= closed
          if (closed) titled = 0
          if (depth < 0 || depth > 1) { print "groups open or close twice at line " NR > "/dev/stderr"; exit 1 }
        }
        if (at) inside = 0
      } else {
        at = index(line, "/*")
        code = at ? substr(line, 1, at - 1) : line
        documenting = at && substr(line, at, 3) == "/**"
        line = at ? substr(line, at + 2) : ""
        if (at) inside = 1
        if (match(code, /^QORSR_API .*[ *]qors[A-Za-z0-9_]+\(/)) {
          name = substr(code, 1, RLENGTH - 1)
          sub(/\(.*/, "", name)
          sub(/.*[ *]/, "", name)
          if (depth == 1 && titled) print name
        }
      }
    }
  }
  END { if (depth != 0) { print "a group is not closed" > "/dev/stderr"; exit 1 } }' "$2")
if ! diff <(echo "$names" | sort) <(echo "$grouped" | sort); then
  echo "< is declared but stands in no documentation group, > the other way round"
  exit 1
fi
bare=$(awk '/^QORSR_API / && (before !~ /\*\/$/ || before ~ /@[{}] *\*\/$/) { print FNR ": " $0 } { before = $0 }' "$2")
[ -z "$bare" ] || { echo "functions without a line of their own:"; echo "$bare"; exit 1; }
groups=$(grep -oE '@defgroup +[a-z0-9_]+' "$2" | sort | uniq -d)
[ -z "$groups" ] || { echo "two groups share a name: $groups"; exit 1; }
echo "$(echo "$names" | wc -l) functions in $(grep -c '@defgroup' "$2") groups"
