#!/usr/bin/env bash
# declared_names.sh COMPILER HEADER: the functions that a header declares itself, one a line, in its order. The preprocessor does the
# reading: comments and macros are gone, and line markers tell what comes from the header and what from the system's.
set -euo pipefail
"$1" -E -x c "$2" | awk -v header="$2" '
  /^# [0-9]+ "/ { ours = ($3 == "\"" header "\""); next }
  ours { text = text " " $0 }
  END {
    while (gsub(/__attribute__ *\(\([^()]*(\([^()]*\))?[^()]*\)\)/, " ", text)) {}
    while (gsub(/\{[^{}]*\}/, " ", text)) {}                 # bodies of enums and structs
    n = split(text, declaration, ";")
    for (i = 1; i <= n; ++i) {
      if (declaration[i] ~ /^ *typedef / || declaration[i] !~ /\(/) continue
      sub(/\(.*/, "", declaration[i])                         # what stands in front of the arguments
      m = split(declaration[i], word, /[ *]+/)
      while (m > 0 && word[m] == "") --m
      print word[m]
    }
  }'
