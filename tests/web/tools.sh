#!/bin/sh
# tools.sh FOLDER: what the page's tests need of npm, into that folder; then the types of the page's modules.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$1"
cp "$here/package.json" "$here/package-lock.json" "$1"
if ! command -v npm >/dev/null || ! (cd "$1" && timeout 120 npm ci --no-audit --no-fund >npm.log 2>&1); then
    echo "Skipped: npm can't fetch the test's packages here."
    rm -rf "$1/node_modules"
    exit 77
fi
exec "$1/node_modules/.bin/tsc" --allowJs --checkJs --noEmit --strict --target es2022 --module es2022 \
    --lib es2023,dom,dom.iterable --skipLibCheck "$here"/../../web/*.js "$here"/../../web/types.d.ts
