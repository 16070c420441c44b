#!/usr/bin/env bash
# Runs the tests of the report's page: run.sh MODULES, the folder of the modules from npm. Without
# node, Chromium or the modules it says so and skips them, as ctest reads status 77; in CI, where
# ./dev test has installed all of them, that is a failure.
set -euo pipefail

modules=$1

skip() {
  echo "no tests of the page: $*"
  [[ ${CI:-} != true ]] || exit 1
  exit 77
}

command -v node >/dev/null || skip "there is no node"
command -v chromium >/dev/null || skip "there is no chromium"
[[ -d $modules/axe-core && -d $modules/playwright-core ]] ||
  skip "there is no playwright-core or axe-core in $modules; ./dev test installs both"

export NODE_PATH=$modules
exec node --test --test-reporter=tap "$(dirname "${BASH_SOURCE[0]}")"/*_test.js
