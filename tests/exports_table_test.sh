#!/bin/sh
# Compares the table of exported names in docs/architecture.md with exports.txt, and looks for each
# name in the file that the table gives. C++ members count as their class.
#
# usage: exports_table_test.sh CXXFILT
set -eu
cxxfilt=$1
cd "$(dirname "$0")/.."
export LC_ALL=C

lists=$(mktemp -d)
trap 'rm -r "$lists"' EXIT
status=0

sed -n 's/^| `\([A-Za-z0-9_]*\)` | `\(.*\)` |$/\1 \2/p' docs/architecture.md >"$lists/rows"
"$cxxfilt" <tests/exports.txt | sed 's/[:(].*//' | sort -u >"$lists/exported"
if ! sed 's/ .*//' "$lists/rows" | sort | diff "$lists/exported" -; then
  echo 'table of exported names: "<" is missing, ">" is not exported'
  status=1
fi
while read -r name file; do
  if ! grep -qsw "$name" "$file"; then
    echo "$name is not in $file"
    status=1
  fi
done <"$lists/rows"
exit $status
