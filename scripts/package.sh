#!/usr/bin/env bash
# Builds the packages of this system into build/packages: package.sh
# Built twice from the same commit they are the same, byte for byte.
#   package.sh windows   the component for Windows, as a zip with its documents
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ ${1:-} == -h || ${1:-} == --help ]]; then
    sed -n '2,4s/^# \{0,1\}//p' "$0"
    exit 0
fi
if [[ -n $(git status --porcelain) ]]; then
    echo "package: what is not committed is left out" >&2
fi
out=$PWD/build/packages
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$out"
# Times in what is packed are that of the commit.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH

windows() {
    local version name=quorvel-windows
    scripts/install-packages.sh windows
    mkdir "$work/$name"
    git archive HEAD | tar -x -C "$work" --one-top-level=source
    (cd "$work/source" && scripts/build.sh windows quorvel)
    cp "$work/source/build/windows/bin/components/quorvel.dll" docs/statistics-file.md docs/xml-library.md docs/windows.md CHANGELOG.md "$work/$name"
    version=$(sed -n 's/^project(quorvel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
    find "$work/$name" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
    (cd "$work" && find "$name" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -@ "$name-$version.zip")
    mv "$work"/*.zip "$out"
    ls -l "$out"/*.zip
}

if [[ ${1:-} == windows ]]; then
    windows
    exit
fi
scripts/install-packages.sh package
git archive HEAD | tar -x -C "$work" --one-top-level=ostrevan
log=$out/build.log
echo "Building the packages; the log is $log"
if ! (cd "$work/ostrevan" && dpkg-buildpackage --build=binary --no-sign) >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    exit 1
fi
mv "$work"/*.deb "$work"/*.buildinfo "$work"/*.changes "$out"
ls -l "$out"/*.deb
