#!/bin/sh
# Installs the Debian packages the build, the tests and the benchmarks need,
# when they are missing and we are root. Prints what it would need otherwise.
set -e
want="g++ gcc make cmake libgtest-dev libgmock-dev libbenchmark-dev binutils"
want="$want libocct-foundation-dev libocct-modeling-data-dev libocct-modeling-algorithms-dev libocct-data-exchange-dev libsisl-dev"
missing=""
for pkg in $want; do
  dpkg-query -W -f='${Status}\n' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing="$missing $pkg"
done
[ -z "$missing" ] && exit 0
if [ "$(id -u)" -ne 0 ]; then
  echo "missing packages:$missing (run as root, or install them yourself)" >&2
  exit 1
fi
echo "installing:$missing"
export DEBIAN_FRONTEND=noninteractive
apt-get install -y --no-install-recommends $missing >/dev/null 2>&1 || {
  apt-get update >/dev/null
  apt-get install -y --no-install-recommends $missing
}
