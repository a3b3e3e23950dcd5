#!/usr/bin/env bash
# Runs the README's examples that need nothing but a photograph, on the demo's. Each must succeed
# and print no remark.
#
#   examples_test.sh ZAVRI README PHOTOGRAPH
set -euo pipefail
zavri=$1 readme=$2 photograph=$3
[[ -e $photograph ]] || exit 77
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
commands='burst|denoise|chroma|resize|rnr|compose|compare|info --thresholds|sweep'
mapfile -t lines < <(sed -En "s/ +#.*//; s/^zavri (($commands) .*)/\1/p" "$readme")
cd "$folder"
ln -s "$photograph" photo.jpg
((${#lines[@]} >= 10))
for line in "${lines[@]}"; do
  status=0
  eval "'$zavri' $line" >/dev/null 2>remarks || status=$?
  if ((status != 0)) || [[ -s remarks ]]; then
    echo "zavri $line: status $status, $(cat remarks)" >&2
    exit 1
  fi
done
