#!/usr/bin/env bash
# Static analysis: clang-format, clang-tidy, cppcheck and shellcheck, for the page prettier, eslint and tsc, and for the
# width of Markdown lines mdl. Any finding is an error.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake ninja-build g++ clang clang-format clang-tidy cppcheck shellcheck libgtest-dev libbenchmark-dev \
    ruby-mdl
scripts/install_npm.sh
mapfile -t sources < <(git ls-files '*.cpp')
mapfile -t headers < <(git ls-files '*.h')
mapfile -t scripts < <(git grep -lE '^#!.*(bash|sh)$' && git ls-files '*.bash')

clang-format --dry-run --Werror "${sources[@]}" "${headers[@]}"
shellcheck "${scripts[@]}"
git ls-files -z '*.md' | xargs -0 mdl --style .mdl_style.rb
npx prettier --check web tests/web scripts/*.mjs '*.js' '*.json'
npx eslint --max-warnings 0 .
npx tsc
# Unlike cppcheck, clang-tidy's bugprone-exception-escape sees which exceptions are caught.
# Newer releases of cppcheck count it as a finding that they do not follow every branch.
cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ --enable=warning,performance,portability \
    --suppress=throwInNoexceptFunction --suppress=normalCheckLevelMaxBranches -Isrc src
cmake --preset clang -B out/analysis -DSTASHKEEP_BENCH=ON -DSTASHKEEP_FUZZ=ON \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
# The extra argument is against lines like "107957 warnings generated", about what is suppressed in system headers.
printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -n 1 clang-tidy -p out/analysis --quiet --extra-arg=-fno-caret-diagnostics
echo "${#sources[@]} sources, ${#headers[@]} headers and ${#scripts[@]} scripts: no findings"
