#!/usr/bin/env bash
# The house checks, and with --tidy the linter over every source file of the release build.
#
#   Tests/House/lint.sh [--tidy [FILE...]]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

commands=build/tidy/compile_commands.json

# Clang 14 spells the language differently, has coroutines without GCC's option for them, and knows concepts but
# not the number by which the standard library asks for them.
translate_commands()
{
    mkdir -p build/tidy
    sed -e 's/-std=c++23/-std=c++2b/g' -e 's/ -fcoroutines / /g' -e 's/ -Werror / -D__cpp_concepts=202002L /g' \
        build/release/compile_commands.json >"$commands"
}

tidy()
{
    timeout 300 clang-tidy --quiet -p build/tidy --extra-arg=-Wno-unknown-warning-option "$1" 2>&1 \
        | { grep -vE '^[0-9]+ warnings? (and [0-9]+ errors? )?(generated|treated)|^Suppressed|^Use -' || true; }
}

case ${1:-} in
'')
    exec /usr/bin/python3 Tests/House/tst_house.py
    ;;
--one)
    tidy "$2"
    exit
    ;;
--tidy)
    shift
    /usr/bin/python3 Tests/House/tst_house.py
    ;;
*)
    sed -n '2,4s/^# \{0,1\}//p' "$0" >&2
    exit 2
    ;;
esac

[ -f build/release/compile_commands.json ] || { echo "Configure the release preset first." >&2; exit 1; }
translate_commands

files=("$@")
if [ ${#files[@]} -eq 0 ]; then
    # Of the compiled files those of ours; what the build generates lies under build/.
    mapfile -t files < <(/usr/bin/python3 - "$commands" "$PWD" <<'PYTHON'
import json, os, sys
commands, root = sys.argv[1:]
for entry in json.load(open(commands)):
    path = os.path.relpath(entry["file"], root)
    if not path.startswith(("build/", "..")):
        print(path)
PYTHON
    )
fi

printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" Tests/House/lint.sh --one
echo "clang-tidy: ${#files[@]} files, no findings"
