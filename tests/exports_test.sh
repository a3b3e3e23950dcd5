#!/bin/sh
# Compares what the shared object exports and needs with what is meant: the names of exports.txt,
# and nothing of the system but the C library, the log and the vendor's vision library.
#
# usage: exports_test.sh NM READELF LIBRARY
set -eu
nm=$1 readelf=$2 library=$3
export LC_ALL=C

dynamic=$("$readelf" -dW "$library")
status=0

expect() { # WHAT EXPECTED ACTUAL
  [ "$2" = "$3" ] && return
  printf '%s\n  expected: %s\n  found:    %s\n' "$1" "$2" "$3"
  status=1
}

# Name and version differ between systems; the loader, in a library of its own or not, comes with the
# C library.
needed=$(printf '%s\n' "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\.so.*\]/\1/p' |
  grep -v -e '^ld-' -e '^libdl' | sort | tr '\n' ' ')
expect 'needed libraries' 'libc libfastcvopt liblog ' "$needed"

soname=$(printf '%s\n' "$dynamic" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
expect 'name in the file' "$(basename "$library")" "$soname"

textrel=$(printf '%s\n' "$dynamic" | grep -c TEXTREL || true)
expect 'text relocations' 0 "$textrel"

if ! "$nm" -D --defined-only "$library" | sed 's/.* //' | sort |
  diff "$(dirname "$0")/exports.txt" -; then
  echo 'exported names: "<" is missing, ">" is new'
  status=1
fi
exit $status
