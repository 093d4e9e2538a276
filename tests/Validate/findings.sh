#!/usr/bin/env bash
# What the validator says of a fault, and how the results are kept apart from the module's: findings.sh KXPVALIDATE FAULTY_MODULE
set -euo pipefail
validate=$1 module=$2

fail() {
    echo "$1" >&2
    exit 1
}

# expect FAULT TEXT: the results of the case that finds the fault have the text.
expect() {
    local results
    results=$(KXP_FAULT=$1 "$validate" "$module" --level 1 --only "${1%%:*}") && fail "$1 was not found"
    [[ $results == *"$2"* ]] || fail "$1: no \"$2\" in: $results"
}

expect stated-answers:version "IKXPModule::GetModuleVersion(out) gives 998; promised: 999"
expect stated-answers:capability "IKXPDevice::QueryCapability(3) answers 0; promised: 24"
expect stated-answers:exception "IKXPDevice::Start() throws an exception of the type "
expect stated-answers:exception "Stumble (over a cable); promised: nothing throws across the border"
expect stated-answers:entry-point "gives another module; promised: the same"
expect stated-answers:not-cleared "leaves the pointer; promised: 0 and a null pointer"
expect walks:name "promised: \"desk\", from the last SetName, or from the Name of a setup"
expect contexts-end-once:reference "200 references of contexts were not given back"
expect requests-answered:heap "crash: has written beyond the end of a block of the heap"
expect requests-answered:double-free "crash: frees what is no block of the heap, was freed before"
expect texts-given-back:overrun "crash: touches memory that it may not, beyond the end of the text of a value"
expect given-back:text "bytes of the heap are left by each time of IKXPDevice::GetSetup and ReleaseString"
expect release-at-any-instant:slow-release "promised: at most 2 s"
expect process-left-alone:output 'standard output has 35 bytes: "{"case":"faces"'
expect process-left-alone:closed-output "stream 1 closed"
expect faces:longer 'IKXPDevice::QueryInterface("IMInterface ") answers 0'
expect stated-answers:no-device-host "CreateDevice(null, out) ahead of SetDeviceHost answers 0; promised: 17"
expect stated-answers:no-command-gone "CheckCommand(null, device, 123456, params) answers 0; promised: 771"
expect stated-answers:slow-release "promised: at most 2 s"
expect host-objects-kept "the module releases an object of the host's: the root; promised: "
expect module-goes-first:deletes-itself "while: a second Release of the module"
expect module-goes-first:deletes-devices "by a pointer out of an object or a block that was freed before"
expect module-goes-first:deletes-devices "while: Start of the device, which the host has not released, behind Release of its module"
expect parameters-after-end:refused "IKXPDevice::ExecuteCommand(3, Work) answers 3; promised: 0"

# A case without work says so.
results=$(KXP_FAULT=allowed:no-script "$validate" "$module" --level 1 --only parameters-after-end --only process-left-alone)
[ "$(grep -c "runs no script: behind Start its variable ScriptFunctions does not name" <<<"$results")" = 2 ] ||
    fail "refused commands: $results"
[ "$(grep -c skipped <<<"$results")" = 2 ] || fail "cases that tested nothing: $results"

# Where every Release is slow the run is short, and says why.
results=$(KXP_FAULT=stated-answers:slow-release "$validate" "$module" --level 1) && fail "slow releases were not found"
[ "$(grep -c "Release takes longer than it may even where" <<<"$results")" -gt 20 ] || fail "slow releases: $results"

# What the module writes to standard output is none of the results.
results=$(KXP_FAULT=process-left-alone:output "$validate" "$module" --level 1 --only faces --only older-link --json)
[ "$(wc -l <<<"$results")" = 2 ] || fail "two cases have other than two lines: $results"

# A case can be done again by the line that is given for it, whatever the module's name is.
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
name=$folder/"it's a \"module\" \$x.kxp6"
cp "$module" "$name"
again=$(KXP_FAULT=stated-answers:version "$validate" "$name" --level 2 --seed 7 --only stated-answers |
    sed -n 's/^ *again: kxpvalidate //p') || true
[[ $again == *"--level 2 --seed 7" ]] || fail "again: $again"
eval "words=($again)"
[ "${words[0]}" = "$name" ] || fail "the module's name: ${words[0]}"
