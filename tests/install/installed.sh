#!/usr/bin/env bash
# Installs the build into a folder and uses what is there as its user does: the program by its name in the path, the completion, the page.
#   installed.sh CMAKE BUILD
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$1" --install "$2" --prefix "$prefix" >"$prefix/log"
PATH=$prefix/bin:$PATH
work=$prefix/work
mkdir "$work"
cd "$work"

stagehost new udp demo >/dev/null
stagehost run demo/show.json | grep -qx 'The show is over: all 5 steps went well.'
stagehost check --strict demo/demo.js | grep -qx 'demo/demo.js: ok'
stagehost --version | grep -qE '^stagehost [0-9.]+ \(([0-9a-f]{10}|unknown)\)$'

commands=$(stagehost --help | sed -n '/^Commands/,/^Options/s/^  \([a-z]\+\).*/\1/p')
[ "$(wc -w <<<"$commands")" -gt 10 ]
options=$(stagehost --help | sed -n '/^Options/,/^Examples/s/^  \(--[a-z-]\+\).*/\1/p')
page=$(man --warnings -l "$prefix"/share/man/man1/stagehost.1 2>"$prefix/warnings" | col -b)
[ ! -s "$prefix/warnings" ] || { cat "$prefix/warnings"; exit 1; }
for word in $commands $options; do
    grep -q -- "$word" <<<"$page" || { echo "the page does not tell $word"; exit 1; }
    grep -q -- "$word" "$prefix"/share/zsh/vendor-completions/_stagehost || { echo "zsh does not complete $word"; exit 1; }
done
! command -v zsh >/dev/null || zsh -n "$prefix"/share/zsh/vendor-completions/_stagehost

# What bash offers for the words of a line.
offered() {
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    COMPREPLY=()
    _stagehost || true # nothing offered is no failure
    printf '%s\n' "${COMPREPLY[@]}"
}
. "$prefix/share/bash-completion/completions/stagehost"
offers() { offered "${@:2}" | grep -x -- "$1" >/dev/null; } # to the end, so that nobody writes to a reader that has gone
for command in $commands; do offers "$command" stagehost "${command:0:2}"; done
for option in $options; do offers "$option" stagehost run "${option:0:4}"; done
offers serial stagehost new s
offers counterpart stagehost declarations c
offers newer stagehost --link n
offers demo/show.json stagehost run demo/s
touch demo/peer.py
! offers demo/peer.py stagehost run demo/ || { echo 'files of Python are offered'; exit 1; }
echo "installed, with $(wc -w <<<"$commands") commands and $(wc -w <<<"$options") options in page and completions"
