#!/usr/bin/env bash
# lint.sh SOURCE BUILD [FOLDER...]: layout of all sources, the arrows and the lengths, clang-tidy over the sources of
# these folders; src, guard and testbench when none is named. BUILD is configured. Says all it finds.
set -u
source=$1
build=$(realpath "$2")
shift 2
[ $# -gt 0 ] || set -- src guard testbench
cd "$source" || exit 1

for tool in clang-format clang-tidy python3; do
    command -v "$tool" >/dev/null || {
        echo "lint: $tool is missing; as root: apt-get install --no-install-recommends clang-format clang-tidy python3" >&2
        exit 1
    }
done

trouble=0
echo "lint: layout"
git ls-files -z --cached --others --exclude-standard -- \
    {src,guard,testbench,fuzz,tests,benchmarks,packaging}/'*.'{h,c,cpp} |
    xargs -0 clang-format --dry-run -Werror || trouble=1

echo "lint: arrows, lengths and shells"
for check in arrows lengths shells; do
    cmake -DROOT="$PWD" -P "cmake/check_$check.cmake" || trouble=1
done

cmake/tidy.py . "$build" "$@" || trouble=1

exit $trouble
