#!/bin/sh
# Holds the exported names of the library given against exported_names.txt, both
# ways; C++ names stand there demangled.
set -eu
export LC_ALL=C
nm -D --defined-only --demangle "$1" | cut -d ' ' -f 3- | sort |
    diff -u "$(dirname "$0")/exported_names.txt" - &&
    echo "$(wc -l <"$(dirname "$0")/exported_names.txt") names, all as listed"
