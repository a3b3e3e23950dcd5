#!/usr/bin/env bash
# Runs every command of the walk in docs/tuning.md on padded dumps of a simulated phone.
#
#   tuning_walk_test.sh ZAVRI docs/tuning.md
#
# Exit status 77: skipped, for want of the photograph.
set -euo pipefail
zavri=$1
walk=$(sed -n '/^## From a phone/,$s/^    //p' "$2")
photo=/usr/share/backgrounds/Dragonfly_by_Bolly.jpg
if [[ ! -e $photo ]]; then
  echo "skipped: $photo is not installed"
  exit 77
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ln -s "$photo" photo.jpg
"$zavri" burst photo.jpg --seed 2 -o scene --quiet
# Rows of 4288 bytes, planes of 3200 rows.
python3 - <<'END'
for k in range(4):
    frame = open(f'scene/frame{k}_4224x3168.nv12', 'rb').read()
    rows = [frame[i:i + 4224].ljust(4288, b'\x80') for i in range(0, len(frame), 4224)]
    padding = [bytes(4288)]
    with open(f'dump{k}_4224x3168.nv12', 'wb') as dump:
        dump.write(b''.join(rows[:3168] + 32 * padding + rows[3168:] + 16 * padding))
END
rm -r scene

zavri() { "$zavri" "$@"; }
(($(grep -c '^zavri' <<<"$walk") >= 9))
eval "set -e; set -x; $walk"

# The padding is in the result, and something was denoised.
[[ $(stat -c %s denoised_4224x3168.nv12) == $((4288 * 3200 * 3 / 2)) ]]
if cmp -s dump0_4224x3168.nv12 denoised_4224x3168.nv12; then exit 1; fi
