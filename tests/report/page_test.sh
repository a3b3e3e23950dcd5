#!/usr/bin/env bash
# Usage: page_test.sh FIXTURE ZAVRI NODE_MODULES. Exit status 77: skipped, for want of a browser.
set -euo pipefail
fixture=$1 zavri=$2 modules=$3

for name in chromium chromium-browser google-chrome; do
  browser=$(command -v $name) && break
done
if [[ -z ${browser:-} ]]; then
  echo "skipped: chromium is not installed"
  exit 77
fi
if [[ ! -d $modules/playwright-core ]]; then
  echo "the test's libraries are missing; run scripts/fetch-report-assets --tests and build again"
  exit 1
fi

here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$fixture" fixture.html photo.png
"$zavri" burst photo.png --object -o burst
"$zavri" report burst --thresh 90 --thresh-luma 90 -o truth.html
"$zavri" report burst/frame?_*.nv12 --thresh 90 --thresh-luma 90 -o dumps.html
"$zavri" noise burst/frame?_*.nv12 --report noise.html
cat >rows.jsonl <<'END'
{"mode": "whole", "thresh": 8, "luma_noise_removed": 2.5, "luma_texture_psnr": 33.1}
{"mode": "whole", "thresh": 16, "luma_noise_removed": 5.5, "luma_texture_psnr": 30.1}
{"mode": "chroma", "thresh": 16, "luma_noise_removed": 0, "luma_texture_psnr": 34, "extra": null}
END
"$zavri" report rows.jsonl -o rows.html

node "$here/page_test.mjs" "$browser" "$modules/playwright-core" fixture.html truth.html \
  dumps.html noise.html rows.html
