#!/usr/bin/env bash
# lint.sh SOURCE BUILD: layout of all sources, clang-tidy over src/ and testbench/, the arrows. Says all it finds.
set -u
source=$1
build=$2
cd "$source" || exit 1

for tool in clang-format clang-tidy; do
    command -v "$tool" >/dev/null || {
        echo "lint: $tool is missing; as root: apt-get install --no-install-recommends clang-format clang-tidy" >&2
        exit 1
    }
done

trouble=0
echo "lint: layout"
git ls-files -z -- 'src/*.h' 'src/*.cpp' 'testbench/*.h' 'testbench/*.cpp' 'tests/*.h' 'tests/*.cpp' \
    'benchmarks/*.h' 'benchmarks/*.cpp' | xargs -0 clang-format --dry-run -Werror || trouble=1

echo "lint: arrows and lengths"
ctest --test-dir "$build" -R '^(arrows|lengths)$' --output-on-failure || trouble=1

echo "lint: clang-tidy"
git ls-files -z -- 'src/*.cpp' 'testbench/*.cpp' | xargs -0 -P 2 -n 1 clang-tidy -p "$build" --quiet || trouble=1

exit $trouble
