#!/usr/bin/env bash
# The tree can be configured without the packages of tests and benchmarks, and then has the programs but none of those.
#   lean_configuration.sh SOURCES CMAKE
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$2" -S "$1" -B "$folder" -G Ninja -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON >"$folder/log" 2>&1 ||
    { tail -n 30 "$folder/log"; exit 1; }
targets=$("$2" --build "$folder" --target help)
for wanted in stagehost kxpCalverinScript calverincheck projector logsE; do
    grep -qE "^$wanted: " <<<"$targets" || { echo "there is no $wanted"; exit 1; }
done
if grep -E '^[a-z_.]*(_tests|_bench): ' <<<"$targets"; then
    echo "there are tests or benchmarks"
    exit 1
fi
for package in libgtest-dev libbenchmark-dev clang-tidy clang-format socat python3; do
    if grep -qx "$package" "$1/cmake/packages.txt"; then
        echo "./run would install $package"
        exit 1
    fi
done
