#!/usr/bin/env bash
# Usage: page_test.sh FIXTURE NODE_MODULES. Exit status 77: skipped, for want of a browser.
set -euo pipefail

for name in chromium chromium-browser google-chrome; do
  browser=$(command -v $name) && break
done
if [[ -z ${browser:-} ]]; then
  echo "skipped: chromium is not installed"
  exit 77
fi
if [[ ! -d $2/playwright-core ]]; then
  echo "the test's libraries are missing; run scripts/fetch-report-assets --tests and build again"
  exit 1
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$1" "$folder/page.html"
node "$(dirname "$0")/page_test.mjs" "$browser" "$2/playwright-core" "$folder/page.html"
